#include "meter/Preferences.h"

#include <configuration/KTV_InterfaceConfig.h>
#include <datasource/KTV_DataSource.h>
#include <sound/Sound.h>
#include <valuebox/NumericalValueBox.h>

namespace {

const QLatin1String darkKey("dark");
const QLatin1String volumeKey("volume");
constexpr int factoryVolume = 70; // percent
const QLatin1String brightnessKey("brightness");
constexpr int factoryBrightness = 50; // percent, as the library's factory reset sets it

} // namespace

Preferences::Preferences(KTV_InterfaceConfig &settings, const QString &file, QObject *parent)
    : QObject(parent)
    , m_settings(settings)
    , m_own(file, QSettings::IniFormat)
{
    applyUnit();
    applySound();
}

ValueBox::TemperatureUnit Preferences::temperatureUnit() const
{
    return ValueBox::TemperatureUnit(
        m_settings.getValue(KTV_InterfaceConfig::MAIN_TemperatureUnit, ValueBox::Temp_Celsius));
}

void Preferences::setTemperatureUnit(ValueBox::TemperatureUnit unit)
{
    m_settings.setValue(KTV_InterfaceConfig::MAIN_TemperatureUnit, int(unit));
    applyUnit();
    emit temperatureUnitChanged();
}

bool Preferences::isDark() const
{
    return m_own.value(darkKey, false).toBool();
}

void Preferences::setDark(bool dark)
{
    m_own.setValue(darkKey, dark);
    emit appearanceChanged();
}

bool Preferences::isSoundOn() const
{
    return m_settings.getValue(KTV_InterfaceConfig::MAIN_OffSound, 0) == 0;
}

void Preferences::setSoundOn(bool on)
{
    m_settings.setValue(KTV_InterfaceConfig::MAIN_OffSound, on ? 0 : 1);
    applySound();
    emit soundChanged();
}

int Preferences::volume() const
{
    return m_own.value(volumeKey, factoryVolume).toInt();
}

void Preferences::setVolume(int percent)
{
    m_own.setValue(volumeKey, percent);
    emit soundChanged();
}

int Preferences::brightness() const
{
    return m_own.value(brightnessKey, factoryBrightness).toInt();
}

void Preferences::setBrightness(int percent)
{
    m_own.setValue(brightnessKey, percent);
    emit brightnessChanged();
}

bool Preferences::usesScreenKeyboard() const
{
    return m_settings.getValue(KTV_InterfaceConfig::MAIN_UseScreenKeyboard,
                               KTV_DataSource::TouchScreenEnable() ? 1 : 0)
        != 0;
}

void Preferences::setUsesScreenKeyboard(bool used)
{
    m_settings.setValue(KTV_InterfaceConfig::MAIN_UseScreenKeyboard, used ? 1 : 0);
    emit keyboardChanged();
}

void Preferences::restoreFactorySettings()
{
    m_own.clear();
    applyUnit();
    applySound();
    emit temperatureUnitChanged();
    emit appearanceChanged();
    emit soundChanged();
    emit brightnessChanged();
    emit keyboardChanged();
}

void Preferences::applyUnit() const
{
    ValueBox::NumericalValueBox::prepareStaticDefaultValue(temperatureUnit());
}

void Preferences::applySound() const
{
    SoundNamespace::Sound::SoundEnable = isSoundOn();
}
