#include "Context.h"

#include "touch/Theme.h"

#include <configuration/KTV_Configuration.h>
#include <configuration/KTV_InterfaceConfig.h>
#include <datasource/KTV_DataSource.h>
#include <language/LangSerwis.h>
#include <platform/PowerManager.h>
#include <sound/Sound.h>
#include <valuebox/NumericalValueBox.h>

#include <QSettings>

using ValueBox::NumericalValueBox;

namespace {

/** The measuring hardware that is simulated until somebody chooses another one. */
const QLatin1String firstSerialNumber("CH20417");

const QLatin1String darkKey("dark");
const QLatin1String volumeKey("volume");
constexpr int factoryVolume = 70; // percent
const QLatin1String brightnessKey("brightness");
constexpr int factoryBrightness = 50; // percent, as the library's factory reset sets it

/** Prefixes offered behind a number of ohms. */
constexpr ValueBox::UnitPrefixs ohmPrefixes[] = {ValueBox::Prefix_u, ValueBox::Prefix_m,
                                                 ValueBox::Prefix_None, ValueBox::Prefix_k};

/** By the library's alert level, less one. */
const Text cardAlerts[] = {
    Text {"Panel", "cardFilling", "The memory card is filling up"},
    Text {"Main", "cardFull", "The memory card is almost full"},
};

} // namespace

Context::Context(QObject *parent)
    : Texts(parent)
    , m_library(std::make_unique<KTV_DataSource>())
    , m_own(std::make_unique<QSettings>(
          m_library->getMainConfig()->get_mainInterfaceUserDataDirectory()
              + QStringLiteral("panel.ini"),
          QSettings::IniFormat))
    , m_setup(*m_library)
    , m_hardware(m_setup)
{
    m_library->setMeterSerialName(m_library->get_InterfaceConfig()->getValue(
        KTV_InterfaceConfig::MAIN_MeterSN, firstSerialNumber));
    if (m_library->getMainConfig()->get_MeterModel() == KTV_Configuration::MeterModels_NaN)
        m_library->setMeterSerialName(firstSerialNumber); // nothing can be measured without one
    takeTemperatureUnit();
    takeTheme();
    takeSounds();
    takeBrightness();
    m_setup.load();
    connect(this, &Context::meterChanged, &m_hardware, &Hardware::stop);
}

Context::~Context() = default;

QString Context::text(const Text &text) const
{
    return m_library->get_Lang()->getText(QLatin1String(text.section), QLatin1String(text.key),
                                          QString::fromUtf8(text.english));
}

QVector<QStringList> Context::letters(bool isRegional, bool isBig) const
{
    const LangSerwis *language = m_library->get_Lang();
    const QString layout = isRegional
        ? (isBig ? language->getRegionalBigKeyboard() : language->getRegionalSmallKeyboard())
        : (isBig ? language->getBigKeyboard() : language->getSmallKeyboard());
    QVector<QStringList> rows;
    for (const QString &row : layout.split(QLatin1Char('|')))
        rows += row.split(QString(), Qt::SkipEmptyParts);
    return rows;
}

QString Context::regionalName() const
{
    return m_library->get_Lang()->getCurrentLang();
}

QStringList Context::units() const
{
    QStringList units;
    for (const ValueBox::UnitPrefixs prefix : ohmPrefixes)
        units += NumericalValueBox::getUnitPrefix(prefix)
            + NumericalValueBox::getUnit(ValueBox::Unit_Ohm);
    return units;
}

void Context::setLanguage(const QString &code)
{
    m_library->SetLang(code);
    m_library->get_InterfaceConfig()->setValue(KTV_InterfaceConfig::MAIN_Lang, code);
    emit textsChanged();
    emit listsChanged();
}

void Context::setSerialNumber(const QString &serial)
{
    m_library->setMeterSerialName(serial);
    emit meterChanged();
    emit setupChanged();
}

ValueBox::TemperatureUnit Context::temperatureUnit() const
{
    return static_cast<ValueBox::TemperatureUnit>(m_library->get_InterfaceConfig()->getValue(
        KTV_InterfaceConfig::MAIN_TemperatureUnit, ValueBox::Temp_Celsius));
}

void Context::setTemperatureUnit(ValueBox::TemperatureUnit unit)
{
    m_library->get_InterfaceConfig()->setValue(KTV_InterfaceConfig::MAIN_TemperatureUnit,
                                               static_cast<int>(unit));
    takeTemperatureUnit();
    m_setup.refreshLimit();
    emit textsChanged();
    emit listsChanged();
    emit setupChanged();
}

bool Context::isDark() const
{
    return m_own->value(darkKey, false).toBool();
}

void Context::setDark(bool dark)
{
    m_own->setValue(darkKey, dark);
    takeTheme();
}

void Context::sound(Buzzer::BuzzerClass::Tone tone)
{
    if (isSoundOn())
        m_library->Buzzer(tone, false);
}

bool Context::isSoundOn() const
{
    return m_library->get_InterfaceConfig()->getValue(KTV_InterfaceConfig::MAIN_OffSound, 0) == 0;
}

void Context::setSoundOn(bool on)
{
    m_library->get_InterfaceConfig()->setValue(KTV_InterfaceConfig::MAIN_OffSound, on ? 0 : 1);
    takeSounds();
}

int Context::volume() const
{
    return m_own->value(volumeKey, factoryVolume).toInt();
}

void Context::setVolume(int percent)
{
    m_own->setValue(volumeKey, percent);
    takeSounds();
}

int Context::brightness() const
{
    return m_own->value(brightnessKey, factoryBrightness).toInt();
}

void Context::setBrightness(int percent)
{
    m_own->setValue(brightnessKey, percent);
    takeBrightness();
}

bool Context::usesScreenKeyboard() const
{
    return m_library->get_InterfaceConfig()->getValue(KTV_InterfaceConfig::MAIN_UseScreenKeyboard,
                                                      KTV_DataSource::TouchScreenEnable() ? 1 : 0)
        != 0;
}

void Context::setUsesScreenKeyboard(bool used)
{
    m_library->get_InterfaceConfig()->setValue(KTV_InterfaceConfig::MAIN_UseScreenKeyboard,
                                               used ? 1 : 0);
}

void Context::restoreFactorySettings()
{
    m_library->ClearToDefault();
    m_own->clear();
    takeTemperatureUnit();
    takeTheme();
    takeSounds();
    m_setup.load();
    emit textsChanged();
    emit listsChanged();
    emit setupChanged();
}

QString Context::cardAlert() const
{
    const int level = m_library->getFreeSpaceAlert();
    return level > 0 ? text(cardAlerts[level - 1]) : QString();
}

void Context::takeTemperatureUnit() const
{
    NumericalValueBox::prepareStaticDefaultValue(temperatureUnit());
}

void Context::takeTheme()
{
    Theme::use(isDark() ? Theme::dark() : Theme::light());
    emit themeChanged();
}

void Context::takeSounds()
{
    SoundNamespace::Sound::SoundEnable = isSoundOn();
    m_mixer.setVolume(volume());
}

void Context::takeBrightness()
{
    m_library->getPowerManager()->SetBrightness(brightness());
}
