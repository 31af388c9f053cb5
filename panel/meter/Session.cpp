#include "meter/Session.h"

#include <configuration/KTV_Configuration.h>
#include <configuration/KTV_InterfaceConfig.h>
#include <datasource/KTV_DataSource.h>
#include <platform/PowerManager.h>

namespace {

/** The meter that is simulated until the user chooses another one. */
const QLatin1String firstSerialNumber("CH20417");

} // namespace

Session::Session(QObject *parent)
    : QObject(parent)
    , m_library(std::make_unique<KTV_DataSource>())
    , m_preferences(*m_library->get_InterfaceConfig(),
                    m_library->getMainConfig()->get_mainInterfaceUserDataDirectory()
                        + QStringLiteral("panel.ini"))
    , m_tones(m_preferences)
    , m_lists(*m_library->get_DataList())
    , m_setup(*m_library->get_InterfaceConfig())
    , m_hardware(m_setup)
    , m_measurement(m_setup, m_hardware, *m_library->getLiczniki(), m_tones)
    , m_recorder(*m_library->get_InterfaceConfig(), *m_library->getMainConfig(), m_setup,
                 m_hardware, *m_library->getLiczniki())
    , m_networks(*m_library->getConnection())
{
    startMeter();
    m_setup.load();
    m_tones.setVolume(m_preferences.volume());
    applyBrightness();
    connect(&m_preferences, &Preferences::soundChanged, this,
            [this] { m_tones.setVolume(m_preferences.volume()); });
    connect(&m_preferences, &Preferences::brightnessChanged, this, &Session::applyBrightness);
    connect(&m_preferences, &Preferences::temperatureUnitChanged, this, [this] {
        m_measurement.refresh();
        m_recorder.refreshTexts();
        m_lists.refresh();
    });
    connect(&m_recorder, &Recorder::saved, m_library.get(), &KTV_DataSource::updateTimeDisk);
}

Session::~Session() = default;

void Session::startMeter()
{
    m_library->setMeterSerialName(m_library->get_InterfaceConfig()->getValue(
        KTV_InterfaceConfig::MAIN_MeterSN, firstSerialNumber));
    if (m_library->getMainConfig()->get_MeterModel() == KTV_Configuration::MeterModels_NaN)
        m_library->setMeterSerialName(firstSerialNumber); // nothing can be measured without a model
}

void Session::applyBrightness() const
{
    m_library->getPowerManager()->SetBrightness(m_preferences.brightness());
}

void Session::setLanguage(const QString &code)
{
    m_library->SetLang(code);
    m_library->get_InterfaceConfig()->setValue(KTV_InterfaceConfig::MAIN_Lang, code);
    emit languageChanged();
    m_lists.refresh();
}

void Session::setSerialNumber(const QString &serial)
{
    m_hardware.stop();
    m_library->setMeterSerialName(serial);
    emit meterChanged();
    m_setup.adaptToModel();
}

void Session::restoreFactorySettings()
{
    if (!canRestoreFactorySettings())
        return;
    m_library->ClearToDefault();
    m_preferences.restoreFactorySettings();
    m_setup.load();
    m_recorder.load();
    m_lists.refresh();
}
