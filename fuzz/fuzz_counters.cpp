// liczniki.bin: any file can be read, and counts that are added are saved.

#include "Target.h"

#include <counters/KTV_Liczniki.h>

namespace {

const QString directory = QStringLiteral("/media/sdcard/Log/");
constexpr int fileSize = 64;

} // namespace

void prepareTarget()
{ }

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString path = directory + QStringLiteral("liczniki.bin");
    Meter::writeFile(path, bytesOf(data, size));
    constexpr auto counter = KTV_Liczniki::Licznik_Demagnetyzacja;
    qint64 count = 0;
    {
        KTV_Liczniki counters(directory);
        counters.up_dictionary(counter);
        count = counters.get_dictionary(counter);
    }
    FUZZ_EXPECT(Meter::readFile(path).size() == fileSize);
    const KTV_Liczniki saved(directory);
    FUZZ_EXPECT(saved.get_dictionary(counter) == count);
    return 0;
}
