// A language file; one that does not parse must change nothing.

#include "Target.h"

#include <language/LangSerwis.h>

#include <QHash>

#include <memory>

namespace {

const QString directory = QStringLiteral("/home/root/Langs/");

} // namespace

void prepareTarget()
{
    Meter::writeFile(
        directory + QStringLiteral("OK/OK.xml"),
        "<l><Lang><timeFormat value='H'/></Lang><Main><title value='kept'/></Main></l>");
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Meter::writeFile(directory + QStringLiteral("ZZ/ZZ.xml"), bytesOf(data, size));
    LangSerwis texts(directory, KTV_Configuration::MeterModels_NaN);
    FUZZ_EXPECT(texts.setLang(QStringLiteral("OK")));
    const bool isLoaded = texts.setLang(QStringLiteral("ZZ"));
    const QString title = texts.getText(QStringLiteral("Main"), QStringLiteral("title"), QString());
    FUZZ_EXPECT(texts.getCurrentLang() == QLatin1String(isLoaded ? "ZZ" : "OK"));
    FUZZ_EXPECT(isLoaded || title == QLatin1String("kept"));
    FUZZ_EXPECT(isLoaded || texts.getTimeFormat() == QLatin1String("H"));
    const std::unique_ptr<QHash<QString, QString>> section(
        texts.getSection(QStringLiteral("Main")));
    // If getText() finds the first text of a key, getSection() has that key, too.
    FUZZ_EXPECT(title.isNull() || section->contains(QStringLiteral("title")));
    return 0;
}
