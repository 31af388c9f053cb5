// /home/root/globalInfo.xml

#include "Target.h"

#include <configuration/KTV_Configuration.h>

void prepareTarget()
{ }

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Meter::writeFile(QStringLiteral("/home/root/globalInfo.xml"), bytesOf(data, size));
    const KTV_Configuration meter;
    meter.get_MeterFullName();
    meter.get_InterfaceVersion();
    meter.get_clientsDirectory();
    meter.get_SoundSampleDirectory();
    FUZZ_EXPECT(meter.get_MeterModel() == KTV_Configuration::MeterModels_NaN);
    return 0;
}
