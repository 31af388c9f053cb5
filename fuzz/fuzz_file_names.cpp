// File names that can be saved.

#include "Target.h"

#include <tools/Tools.h>

#include <QFile>

void prepareTarget()
{ }

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    using QERNTools::Tools;
    FuzzInput input(data, size);
    const QString directory = QStringLiteral("/media/sdcard/Clients/");
    const QString name = consumeText(input, 300);
    const QString valid = Tools::validFileName(name);
    FUZZ_EXPECT(!valid.contains(QLatin1Char('/')));
    FUZZ_EXPECT(Tools::validFileName(valid) == valid);
    const QString extension = consumeText(input, 16);
    for (const QString &taken : {Tools::findFreeFileName(directory, valid),
                                 Tools::findFreeFileName(directory, valid, extension)})
        FUZZ_EXPECT(taken.isEmpty() || !QFile::exists(directory + taken));
    return 0;
}
