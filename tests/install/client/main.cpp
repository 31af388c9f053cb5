#include <configuration/KTV_Configuration.h>
#include <datasource/KTV_DataSource.h>
#include <platform/PowerManager.h>

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    KTV_DataSource meter;
    meter.setMeterSerialName("CH0001");
    meter.getPowerManager()->SetBrightness(70);
    std::puts(qPrintable(meter.getMainConfig()->get_MeterFullName()));
}
