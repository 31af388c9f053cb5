#include "configuration/KTV_Configuration.h"

#include "configuration/MeterModel_p.h"
#include "internal/Guarded_p.h"
#include "internal/RegularFile_p.h"
#include "internal/XmlFile_p.h"
#include "internal/log_p.h"

#include <optional>

using Internal::guarded;
using Internal::log;

namespace {

const QLatin1String descriptionFile("/home/root/globalInfo.xml");
const QLatin1String systemVersionFile("/etc/version");
const QLatin1String unknownVersion(" - ????");
constexpr int defaultBatteryAlarm1 = 10;
constexpr int defaultBatteryAlarm2 = 3;

std::optional<QString> readSystemVersion()
{
    return guarded("KTV_Configuration::get_SystemVersion: ", []() -> std::optional<QString> {
        Internal::RegularFile file(systemVersionFile);
        if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
            return std::nullopt;
        return QString::fromUtf8(file.readAll()).trimmed();
    });
}

} // namespace

KTV_Configuration::MeterModels KTV_Configuration::_meterModel = MeterModels_NaN;

class KTV_Configuration::Private
{
public:
    bool readDocument();

    QString producer = QStringLiteral("QERN");
    QString modelName = Internal::meterModel(MeterModels_NaN).name;
    QString interfaceVersion = QStringLiteral("0.0.0.0");
    QString betaVersion;
    QString clientsDirectory = QStringLiteral("/media/sdcard/Clients/");
    QString logDirectory = QStringLiteral("/media/sdcard/Log/");
    QString updateDirectory = QStringLiteral("/media/sdcard/Update"); // kept: no "/" at its end
    QString mainDirectory = QStringLiteral("/home/root/");
    // Set before the file is read: a file that changes the main directory does not change these.
    QString firmwareDirectory = mainDirectory + QStringLiteral("Firmware/");
    QString langsDirectory = mainDirectory + QStringLiteral("Langs/");
    QString userDataDirectory = QStringLiteral("/media/sdcard/UserData/");
    QString helpDirectory = mainDirectory + QStringLiteral("Help/");
    QString serialNumber = QStringLiteral("AA0000");
    QString soundSampleDirectory; // stays empty unless a file is loaded
    int batteryAlarm1 = defaultBatteryAlarm1;
    int batteryAlarm2 = defaultBatteryAlarm2;
    bool soundOff = false;
    bool rebootOff = false;
    QDomDocument document;
};

bool KTV_Configuration::Private::readDocument()
{
    Internal::RegularFile file(descriptionFile);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        log() << "Fail to open KTV_Configuration:" << descriptionFile;
        return false;
    }
    Internal::XmlError error;
    if (!Internal::parseXml(file, document, error)) {
        log() << "Fail to load KTV_Configuration!" << error.message << " Row:" << error.line
              << " Col:" << error.column;
        return false;
    }
    return true;
}

KTV_Configuration::KTV_Configuration(QObject *parent)
    : QObject(parent)
    , d(std::make_unique<Private>())
{
    guarded("KTV_Configuration: ", [this] {
        if (!d->readDocument())
            return;
        LoadDataFromXML();
        d->document.clear(); // everything in it has been read
    });
}

KTV_Configuration::~KTV_Configuration() = default;

void KTV_Configuration::LoadDataFromXML()
{
    log() << "\n\nKTV_Configuration::LoadDataFromXML():";
    const QDomElement root = d->document.firstChildElement();
    struct TextKey
    {
        const char *key;
        QString &value;
    };
    const TextKey textKeys[] = {
        {"_meterProducer", d->producer},
        {"_interfaceVersion", d->interfaceVersion},
        {"_betaVersion", d->betaVersion},
        {"_clientsDirectory", d->clientsDirectory},
        {"_logDirectory", d->logDirectory},
        {"_updateDirectory", d->updateDirectory},
        {"_currentFirmwareDirectory", d->firmwareDirectory},
        {"_mainInterfeaceDirectory", d->mainDirectory},
        {"_mainInterfaceLangsDirectory", d->langsDirectory},
        {"_mainInterfaceUserDataDirectory", d->userDataDirectory},
        {"_mainInterfaceUserHelpDirectory", d->helpDirectory},
    };
    for (const TextKey &entry : textKeys)
        entry.value = getValueString(&root, QLatin1String(entry.key), entry.value);
    d->batteryAlarm1 = getValueInt(&root, QStringLiteral("_batteryAlarm1"), defaultBatteryAlarm1);
    d->batteryAlarm2 = getValueInt(&root, QStringLiteral("_batteryAlarm2"), defaultBatteryAlarm2);
    d->soundOff = getValueBool(&root, QStringLiteral("_soundOff"), false);
    d->rebootOff = getValueBool(&root, QStringLiteral("_rebootOff"), false);
    d->soundSampleDirectory =
        getValueString(&root, QStringLiteral("_soundSamplePath"), QStringLiteral("/etc/wav/"));
    log() << "KTV_Configuration::LoadDataFromXML() end\n\n";
}

QString KTV_Configuration::getValueString(const QDomElement *root, const QString &key,
                                          const QString &defaultValue) const
{
    if (!root || root->isNull())
        return defaultValue;
    const QString text = QStringLiteral("getValue(") + key + QStringLiteral(") error:");
    return guarded(text, defaultValue, [root, &key, &defaultValue] {
        const QDomElement element = root->elementsByTagName(key).item(0).toElement();
        return element.attribute(QStringLiteral("Value"), defaultValue);
    });
}

int KTV_Configuration::getValueInt(const QDomElement *root, const QString &key,
                                   int defaultValue) const
{
    bool ok = false;
    const int value = getValueString(root, key, QString::number(defaultValue)).toInt(&ok);
    return ok ? value : defaultValue;
}

bool KTV_Configuration::getValueBool(const QDomElement *root, const QString &key,
                                     bool defaultValue) const
{
    const QString text = getValueString(root, key, QString());
    log() << "KTV_Configuration::getValue:" << key << " value:" << text << ";";
    const QString lower = text.toLower();
    if (lower == QLatin1String("true"))
        return true;
    if (lower == QLatin1String("false"))
        return false;
    return defaultValue;
}

void KTV_Configuration::set_SerialNumber(const QString &serial)
{
    log() << "KTV_Configuration::set_SerialNumber(" << serial << ")";
    d->serialNumber = serial;
    _ParseMeterModelName(Internal::meterModelOfSerialNumber(serial).name);
}

void KTV_Configuration::_ParseMeterModelName(const QString &name)
{
    const Internal::MeterModel &row = Internal::meterModelOfName(name);
    _meterModel = row.model;
    d->modelName = row.name;
}

QString KTV_Configuration::get_InterfaceVersion() const
{
    QString version = d->interfaceVersion;
    if (!d->betaVersion.isEmpty())
        version += QStringLiteral(" beta: ") + d->betaVersion;
    const auto system = readSystemVersion();
    return version + (system ? QStringLiteral(" - ") + *system : QString(unknownVersion));
}

QString KTV_Configuration::get_SystemVersion() const
{
    return readSystemVersion().value_or(unknownVersion);
}

QString KTV_Configuration::get_MeterFullName() const
{
    return d->producer + QLatin1Char(' ') + d->modelName;
}

KTV_Configuration::MeterModels KTV_Configuration::get_MeterModel() const
{
    return _meterModel;
}

KTV_Configuration::MeterModels KTV_Configuration::currentMeterModel()
{
    return _meterModel;
}

QString KTV_Configuration::get_MeterModelName() const
{
    return d->modelName;
}

QString KTV_Configuration::get_clientsDirectory() const
{
    return d->clientsDirectory;
}

QString KTV_Configuration::get_logDirectory() const
{
    return d->logDirectory;
}

QString KTV_Configuration::get_mainInterfeaceDirectory() const
{
    return d->mainDirectory;
}

QString KTV_Configuration::get_mainInterfaceLangsDirectory() const
{
    return d->langsDirectory;
}

QString KTV_Configuration::get_mainInterfaceUserDataDirectory() const
{
    return d->userDataDirectory;
}

QString KTV_Configuration::get_UpdateDirecotry() const
{
    return d->updateDirectory;
}

QString KTV_Configuration::get_CurrentFirmwareDirectory() const
{
    return d->firmwareDirectory;
}

QString KTV_Configuration::get_SoundSampleDirectory() const
{
    return d->soundSampleDirectory;
}

QString KTV_Configuration::get_mainInterfaceUserHelpDirectory() const
{
    return d->helpDirectory;
}

QString KTV_Configuration::get_SerialNumber() const
{
    return d->serialNumber;
}

int KTV_Configuration::get_batteryAlarm1() const
{
    return d->batteryAlarm1;
}

int KTV_Configuration::get_batteryAlarm2() const
{
    return d->batteryAlarm2;
}

bool KTV_Configuration::get_SoundOff() const
{
    return d->soundOff;
}

bool KTV_Configuration::get_RebootOff() const
{
    return d->rebootOff;
}
