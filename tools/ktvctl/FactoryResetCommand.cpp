#include "Command.h"
#include "Settings.h"

#include <configuration/KTV_Configuration.h>
#include <configuration/KTV_InterfaceConfig.h>
#include <datasource/KTV_DataSource.h>
#include <wifi/KTV_Connection.h>

#include <QFile>
#include <QMetaEnum>

#include <memory>

namespace {

/** The facade does not report whether its reset has succeeded. */
bool isReset(const KTV_DataSource &meter)
{
    const QString directory = meter.getMainConfig()->get_mainInterfaceUserDataDirectory();
    for (const char *file : {"interfaceConfig.db", "dataList.db", "wifi.db"}) {
        if (!QFile::exists(directory + QLatin1String(file)))
            return false;
    }
    const auto keys = QMetaEnum::fromType<KTV_InterfaceConfig::SettingKey>();
    for (int i = 0; i < keys.keyCount(); ++i) {
        const auto key = KTV_InterfaceConfig::SettingKey(keys.value(i));
        if (!meter.get_InterfaceConfig()->getValue(key, QString()).isNull())
            return false;
    }
    const std::unique_ptr<QList<WiFi::Network *>> known(meter.getConnection()->GetMyNetwork());
    const bool isEmpty = known->isEmpty();
    qDeleteAll(*known);
    return isEmpty;
}

int factoryReset(const Call &call)
{
    const QString serialNumber = serialNumberOf(call);
    KTV_DataSource meter;
    if (!serialNumber.isNull()) // otherwise the destructor would store the default one
        meter.setMeterSerialName(serialNumber);
    meter.ClearToDefault();
    return isReset(meter)
        ? Success
        : fail(QStringLiteral("not everything could be reset; --verbose tells more"));
}

} // namespace

Family factoryResetFamily()
{
    return {
        "factory-reset",
        "Settings, lists, known networks and brightness as they were at first. Unwise while the "
        "interface runs, which would go on writing into files that are gone; the start "
        "restarts the WiFi supplicant.",
        {{"",
          "",
          "remove settings, list entries and known networks",
          factoryReset,
          {serialOption("Serial number that the meter reports (else the stored one).")}}}};
}
