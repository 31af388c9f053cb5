#include "Checks.h"

#include <QHash>

namespace {

enum Kind
{
    Text,
    Directory, ///< file names are appended to it
    Number,
    Switch
};

struct Setting
{
    const char *name;
    Kind kind;
    const char *byDefault;
};

constexpr Setting settings[] = {
    {"_meterProducer", Text, "QERN"},
    {"_interfaceVersion", Text, "0.0.0.0"},
    {"_betaVersion", Text, ""},
    {"_clientsDirectory", Directory, "/media/sdcard/Clients/"},
    {"_logDirectory", Directory, "/media/sdcard/Log/"},
    {"_updateDirectory", Text, "/media/sdcard/Update"}, // names are not appended to this one
    {"_currentFirmwareDirectory", Directory, "/home/root/Firmware/"},
    {"_mainInterfeaceDirectory", Directory, "/home/root/"},
    {"_mainInterfaceLangsDirectory", Directory, "/home/root/Langs/"},
    {"_mainInterfaceUserDataDirectory", Directory, "/media/sdcard/UserData/"},
    {"_mainInterfaceUserHelpDirectory", Directory, "/home/root/Help/"},
    {"_soundSamplePath", Directory, "/etc/wav/"},
    {"_batteryAlarm1", Number, "10"},
    {"_batteryAlarm2", Number, "3"},
    {"_soundOff", Switch, "false"},
    {"_rebootOff", Switch, "false"},
};

const QString valueName = QStringLiteral("Value");

const Setting *settingOf(const QString &name)
{
    for (const Setting &setting : settings) {
        if (name == QLatin1String(setting.name))
            return &setting;
    }
    return nullptr;
}

bool isSwitch(const QString &value)
{
    return value.isEmpty() || value.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0
        || value.compare(QLatin1String("false"), Qt::CaseInsensitive) == 0;
}

/** What is wrong with a value; null if it is valid. */
QString problemOf(const Setting &setting, const QString &value)
{
    const QString fallsBack =
        QStringLiteral("and counts as '%1'").arg(QLatin1String(setting.byDefault));
    bool ok = true;
    if (setting.kind == Number)
        value.toInt(&ok);
    if (!ok)
        return QStringLiteral("'%1' is no number %2").arg(value, fallsBack);
    if (setting.kind == Switch && !isSwitch(value))
        return QStringLiteral("'%1' is neither true nor false %2").arg(value, fallsBack);
    if (setting.kind == Directory && !value.endsWith(QLatin1Char('/')))
        return QStringLiteral("the directory '%1' does not end in a slash").arg(value);
    return {};
}

using Elements = QHash<QString, QDomElement>;

/**
 * Collects the elements of the settings below @p parent by name. Of duplicates, collects the one
 * that the library uses; reports these and unknown elements.
 */
void findSettings(const QDomElement &parent, const QString &path, Elements &found, Report &report)
{
    for (auto element = parent.firstChildElement(); !element.isNull();
         element = element.nextSiblingElement()) {
        const QString name = element.tagName();
        const int line = lineOf(element);
        if (!settingOf(name)) {
            if (element.hasAttribute(valueName))
                report.warning(path, line, QStringLiteral("there is no setting '%1'").arg(name));
        } else if (found.contains(name)) {
            report.warning(path, line, QStringLiteral("'%1' is set above already").arg(name));
        } else {
            found.insert(name, element);
        }
        findSettings(element, path, found, report);
    }
}

} // namespace

Places checkDescription(const Image &image, Report &report)
{
    const QString path = QStringLiteral("/home/root/globalInfo.xml");
    Places places;
    if (!image.exists(path)) {
        report.warning(path,
                       QStringLiteral("missing: every default applies, and without it the "
                                      "library knows no sound samples"));
        return places;
    }
    const auto document = readDocument(image, path, report);
    if (!document)
        return places;
    Elements found;
    findSettings(rootOf(*document), path, found, report);
    QHash<QString, QString> values;
    for (const Setting &setting : settings) {
        const QString name = QLatin1String(setting.name);
        const QDomElement element = found.value(name);
        values.insert(name, element.attribute(valueName, QLatin1String(setting.byDefault)));
        if (element.isNull())
            continue;
        if (!element.hasAttribute(valueName)) {
            report.error(path, lineOf(element),
                         QStringLiteral("'%1' has no attribute 'Value'").arg(name));
            continue;
        }
        const QString problem = problemOf(setting, values.value(name));
        if (!problem.isNull())
            report.error(path, lineOf(element), name + QStringLiteral(": ") + problem);
    }
    places.languages = values.value(QStringLiteral("_mainInterfaceLangsDirectory"));
    places.help = values.value(QStringLiteral("_mainInterfaceUserHelpDirectory"));
    places.samples = values.value(QStringLiteral("_soundSamplePath"));
    return places;
}
