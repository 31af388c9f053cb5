// A client on a device with the maker's own platform library: uses everything for which the library
// needs it, and calls functions that only the maker's classes have.

#include <datasource/KTV_DataSource.h>
#include <platform/Pendrive.h>
#include <platform/PowerManager.h>
#include <platform/PrintOnSato.h>
#include <platform/Update.h>
#include <platform/skanerQR.h>

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    KTV_DataSource meter;
    meter.setMeterSerialName(QStringLiteral("CH0001"));
    meter.getPowerManager()->SetBrightness(70);
    const int before = meter.getPowerManager()->reading();
    meter.ClearToDefault();
    std::printf("brightness %d, %d; printer %d; reader %d; stick %d; updater %d\n", before,
                meter.getPowerManager()->reading(), meter.getPrinter()->reading(),
                meter.getSkaner()->reading(), meter.getPendrive()->reading(),
                meter.getUpdate()->reading());
}
