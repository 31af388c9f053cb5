#include "datasource/KTV_DataSource.h"

#include "configuration/KTV_Configuration.h"
#include "configuration/KTV_InterfaceConfig.h"
#include "counters/KTV_Liczniki.h"
#include "datalist/KTV_DataList.h"
#include "internal/BackgroundWork_p.h"
#include "internal/Guarded_p.h"
#include "internal/RegularFile_p.h"
#include "language/LangSerwis.h"
#include "language/helpManager.h"
#include "platform/Pendrive.h"
#include "platform/PowerManager.h"
#include "platform/PrintOnSato.h"
#include "platform/Update.h"
#include "platform/skanerQR.h"
#include "tools/Tools.h"
#include "valuebox/NumericalValueBox.h"
#include "wifi/KTV_Connection.h"

#include <QFile>
#include <QTimer>

int currentFreeSpaceAlletr = 0;

namespace {

constexpr int diskCheckInterval = 60000; // ms
constexpr int factoryBrightness = 50; // percent

/** Alert level for the used part of a disk in percent. */
int alertLevel(qint64 usedPercent)
{
    constexpr qint64 firstLevelAbove = 70;
    constexpr qint64 secondLevelFrom = 81;
    if (usedPercent <= firstLevelAbove)
        return 0;
    return usedPercent < secondLevelFrom ? 1 : 2;
}

template <typename Service> void destroy(Service *&service)
{
    delete service;
    service = nullptr;
}

} // namespace

class KTV_DataSource::Private
{
public:
    void initialiseBuzzer() const
    {
        ::Buzzer::BuzzerClass::BuzzerClass_Initialiser(
            config->get_MeterModel(), config->get_SoundSampleDirectory(), config->get_SoundOff());
    }

    void createUpdate(KTV_DataSource *facade)
    {
        update = new Updater::Update(config->get_UpdateDirecotry(), config->get_MeterModel(),
                                     pendrive, facade);
    }

    LangSerwis *lang = nullptr;
    KTV_InterfaceConfig *interfaceConfig = nullptr;
    KTV_Configuration *config = nullptr;
    KTV_DataList *lists = nullptr;
    WiFi::KTV_Connection *connection = nullptr;
    QERNTools::helpManager *help = nullptr;
    QTimer *diskTimer = nullptr;
    Printing::PrintOnSato *printer = nullptr;
    QRReader::skanerQR *scanner = nullptr;
    KTV_Liczniki *counters = nullptr;
    Tools_Pendrive::Pendrive *pendrive = nullptr;
    Updater::Update *update = nullptr;
    PowerManager *power = nullptr;
};

KTV_DataSource::KTV_DataSource(QObject *parent) : QObject(parent), d(std::make_unique<Private>())
{
    d->config = new KTV_Configuration(this);
    d->interfaceConfig =
        new KTV_InterfaceConfig(d->config->get_mainInterfaceUserDataDirectory(), this);
    d->lang = new LangSerwis(d->config->get_mainInterfaceLangsDirectory(),
                             d->config->get_MeterModel(), this);
    // The KTV-420 for America; in everything else it is the same model as the others.
    const QString defaultLanguage = d->config->get_SerialNumber().startsWith(QLatin1String("EL"))
        ? QStringLiteral("US")
        : QStringLiteral("EN");
    d->lang->setLang(d->interfaceConfig->getValue(KTV_InterfaceConfig::MAIN_Lang, defaultLanguage));
    d->counters = new KTV_Liczniki(d->config->get_logDirectory(), this);
    d->lists = new KTV_DataList(d->config->get_mainInterfaceUserDataDirectory(),
                                d->config->get_mainInterfaceLangsDirectory(),
                                d->lang->getCurrentLang(), this);
    d->initialiseBuzzer();
    d->connection = new WiFi::KTV_Connection(d->config->get_mainInterfaceUserDataDirectory(), this);

    d->diskTimer = new QTimer(this);
    connect(d->diskTimer, &QTimer::timeout, this, &KTV_DataSource::updateTimeDisk);
    d->diskTimer->start(diskCheckInterval);

    d->printer = new Printing::PrintOnSato(this);
    d->scanner = new QRReader::skanerQR(this);
    d->pendrive = new Tools_Pendrive::Pendrive(d->config, this);
    d->createUpdate(this);
    d->power = new PowerManager(this);
}

KTV_DataSource::~KTV_DataSource()
{
    Internal::stopBackgroundWork(); // the bridge and tones end before the services are destroyed
    d->diskTimer->stop();
    destroy(d->diskTimer);
    destroy(d->connection);
    destroy(d->lists);
    destroy(d->lang);
    if (d->interfaceConfig)
        d->interfaceConfig->setValue(KTV_InterfaceConfig::MAIN_MeterSN,
                                     d->config->get_SerialNumber());
    destroy(d->interfaceConfig);
    destroy(d->help);
    destroy(d->printer);
    destroy(d->scanner);
    destroy(d->counters);
    destroy(d->update);
    destroy(d->pendrive);
    destroy(d->power);
    ::Buzzer::BuzzerClass::BuzzerClass_Free();
    destroy(d->config);
}

void KTV_DataSource::setMeterSerialName(const QString &serial)
{
    d->config->set_SerialNumber(serial);
    ValueBox::NumericalValueBox::SetCurrentMeter(d->config->get_MeterModel());
    d->initialiseBuzzer();
    destroy(d->update);
    d->createUpdate(this);
    // The earlier help manager stays a child of the facade: an open help page may still use it.
    d->help =
        new QERNTools::helpManager(d->config->get_mainInterfaceUserHelpDirectory(),
                                   d->config->get_MeterModel(), d->lang->getCurrentLang(), this);
    d->lang->updateMeterModel(d->config->get_MeterModel());
}

void KTV_DataSource::SetLang(const QString &code)
{
    d->lang->setLang(code);
    d->lists->SetLang(d->lang->getCurrentLang());
    d->help->SetLang(code); // the requested code, even if the texts have fallen back to another one
}

void KTV_DataSource::ClearToDefault()
{
    d->interfaceConfig->RestoreFabricalSetting();
    d->lists->RestoreFabricalSetting();
    d->connection->RestoreFabricalSetting();
    d->power->SetBrightness(factoryBrightness);
}

void KTV_DataSource::updateTimeDisk()
{
    const int level =
        alertLevel(QERNTools::Tools::getUsedSpacePercent(d->config->get_clientsDirectory()));
    if (level == currentFreeSpaceAlletr)
        return;
    currentFreeSpaceAlletr = level;
    emit changeFreeSpaceAlert();
}

bool KTV_DataSource::SetUSBMode(QERNTools::Tools::USB_Mode mode,
                                QERNTools::Tools::RS232_Function function) const
{
    return QERNTools::Tools::SetUSBMode(mode, function);
}

QERNTools::Tools::USB_Mode KTV_DataSource::getUSB_Mode() const
{
    return QERNTools::Tools::getCurrentMode();
}

QERNTools::Tools::RS232_Function KTV_DataSource::getRS_Mode() const
{
    return QERNTools::Tools::getRS232_Function();
}

void KTV_DataSource::Buzzer(::Buzzer::BuzzerClass::Tone tone, bool loop) const
{
    ::Buzzer::BuzzerClass::Beep(tone, loop);
}

QERNTools::DiskInfo *KTV_DataSource::getDiskInfo() const
{
    return QERNTools::Tools::getDiskInfo(d->config->get_clientsDirectory());
}

int KTV_DataSource::getFreeSpaceAlert() const
{
    return currentFreeSpaceAlletr;
}

bool KTV_DataSource::FirstStart()
{
    return Internal::guarded("KTV_DataSource::FirstStart(): ", [] {
        const QString path = QStringLiteral("/etc/korva/system-boot.status");
        Internal::RegularFile marker(path);
        if (!marker.exists() || !marker.open(QIODevice::ReadOnly))
            return false;
        const bool isFirst = QString::fromUtf8(marker.readAll()).startsWith(QLatin1Char('1'));
        marker.close();
        if (isFirst)
            QFile::remove(path);
        return isFirst;
    });
}

bool KTV_DataSource::TouchScreenEnable()
{
    return QFile::exists(QStringLiteral("/dev/input/touchscreen0"));
}

LangSerwis *KTV_DataSource::get_Lang() const
{
    return d->lang;
}

KTV_InterfaceConfig *KTV_DataSource::get_InterfaceConfig() const
{
    return d->interfaceConfig;
}

KTV_Configuration *KTV_DataSource::getMainConfig() const
{
    return d->config;
}

KTV_DataList *KTV_DataSource::get_DataList() const
{
    return d->lists;
}

WiFi::KTV_Connection *KTV_DataSource::getConnection() const
{
    return d->connection;
}

QERNTools::helpManager *KTV_DataSource::getHelpManager() const
{
    return d->help;
}

Printing::PrintOnSato *KTV_DataSource::getPrinter() const
{
    return d->printer;
}

QRReader::skanerQR *KTV_DataSource::getSkaner() const
{
    return d->scanner;
}

KTV_Liczniki *KTV_DataSource::getLiczniki() const
{
    return d->counters;
}

Tools_Pendrive::Pendrive *KTV_DataSource::getPendrive() const
{
    return d->pendrive;
}

Updater::Update *KTV_DataSource::getUpdate() const
{
    return d->update;
}

PowerManager *KTV_DataSource::getPowerManager() const
{
    return d->power;
}
