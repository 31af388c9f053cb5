#include "Command.h"

#include <configuration/KTV_Configuration.h>
#include <datasource/KTV_DataSource.h>

#include <QJsonArray>
#include <QJsonObject>

namespace {

struct Directory
{
    const char *name;
    const char *title;
    QString (KTV_Configuration::*path)() const;
};

const Directory directories[] = {
    {"clients", "Clients", &KTV_Configuration::get_clientsDirectory},
    {"log", "Log", &KTV_Configuration::get_logDirectory},
    {"update", "Update", &KTV_Configuration::get_UpdateDirecotry},
    {"firmware", "Firmware", &KTV_Configuration::get_CurrentFirmwareDirectory},
    {"main", "Interface", &KTV_Configuration::get_mainInterfeaceDirectory},
    {"languages", "Languages", &KTV_Configuration::get_mainInterfaceLangsDirectory},
    {"userData", "User data", &KTV_Configuration::get_mainInterfaceUserDataDirectory},
    {"help", "Help", &KTV_Configuration::get_mainInterfaceUserHelpDirectory},
    {"soundSamples", "Sound samples", &KTV_Configuration::get_SoundSampleDirectory},
};

QJsonObject machineAnswer(const KTV_Configuration &meter)
{
    QJsonObject paths;
    for (const Directory &directory : directories)
        paths.insert(QLatin1String(directory.name), (meter.*directory.path)());
    return {
        {QStringLiteral("serialNumber"), meter.get_SerialNumber()},
        {QStringLiteral("model"), meter.get_MeterModelName()},
        {QStringLiteral("fullName"), meter.get_MeterFullName()},
        {QStringLiteral("interfaceVersion"), meter.get_InterfaceVersion()},
        {QStringLiteral("systemVersion"), meter.get_SystemVersion()},
        {QStringLiteral("directories"), paths},
        {QStringLiteral("batteryAlarms"),
         QJsonArray {meter.get_batteryAlarm1(), meter.get_batteryAlarm2()}},
        {QStringLiteral("soundOff"), meter.get_SoundOff()},
        {QStringLiteral("rebootOff"), meter.get_RebootOff()},
        {QStringLiteral("touchScreen"), KTV_DataSource::TouchScreenEnable()},
    };
}

QString humanAnswer(const KTV_Configuration &meter)
{
    NamedValues rows;
    rows.add("Meter", meter.get_MeterFullName());
    rows.add("Serial number", meter.get_SerialNumber());
    rows.add("Interface version", meter.get_InterfaceVersion());
    rows.add("System version", meter.get_SystemVersion());
    for (const Directory &directory : directories)
        rows.add(directory.title, (meter.*directory.path)());
    rows.add(
        "Battery alarms",
        QStringLiteral("%1 %, %2 %").arg(meter.get_batteryAlarm1()).arg(meter.get_batteryAlarm2()));
    rows.add("Sound off", yesOrNo(meter.get_SoundOff()));
    rows.add("Reboot off", yesOrNo(meter.get_RebootOff()));
    rows.add("Touch screen", yesOrNo(KTV_DataSource::TouchScreenEnable()));
    return rows.text();
}

int info(const Call &call)
{
    KTV_Configuration meter;
    if (call.isSet("serial"))
        meter.set_SerialNumber(call.option("serial"));
    call.print(machineAnswer(meter), humanAnswer(meter));
    return Success;
}

int firstStart(const Call &call)
{
    const bool isFirst = KTV_DataSource::FirstStart();
    call.print(isFirst, yesOrNo(isFirst));
    return Success;
}

} // namespace

Family infoFamily()
{
    return {"info",
            "The device's description. Safe at any time. The serial number is AA0000 until the "
            "meter reports its own to the interface.",
            {{"",
              "",
              "print identity, versions, directories and switches",
              info,
              {serialOption("Serial number whose model is to be shown.")}}}};
}

Family firstStartFamily()
{
    return {"first-start",
            "The mark that an installation leaves. Unwise before the interface has started: the "
            "mark is taken away, and the interface will not see it.",
            {{"", "", "say whether this is the first start, and take the mark away", firstStart}}};
}
