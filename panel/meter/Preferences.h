#pragma once

#include <valuebox/ValueTypes.h>

#include <QObject>
#include <QSettings>

class KTV_InterfaceConfig;

/**
 * What the user has chosen for good: in the library's settings, or, where these have no key, in a
 * file of the panel's own. The unit of temperatures and the switch of the sounds take effect in the
 * library at once.
 */
class Preferences : public QObject
{
    Q_OBJECT
public:
    /** @param file of the panel's own, created with the first choice */
    Preferences(KTV_InterfaceConfig &settings, const QString &file, QObject *parent = nullptr);

    ValueBox::TemperatureUnit temperatureUnit() const;
    void setTemperatureUnit(ValueBox::TemperatureUnit unit);
    bool isDark() const;
    void setDark(bool dark);
    bool isSoundOn() const;
    void setSoundOn(bool on);
    /** Output volume in percent; the library sets it and cannot tell it. */
    int volume() const;
    void setVolume(int percent);
    /** Brightness of the display in percent; the library sets it and cannot tell it. */
    int brightness() const;
    void setBrightness(int percent);
    bool usesScreenKeyboard() const;
    void setUsesScreenKeyboard(bool used);

    /** Forgets the panel's own, once the library has forgotten its settings. */
    void restoreFactorySettings();

signals:
    void temperatureUnitChanged();
    void appearanceChanged();
    void soundChanged(); ///< On or off, or the volume.
    void brightnessChanged();
    void keyboardChanged();

private:
    void takeUnit() const;
    void takeSound() const;

    KTV_InterfaceConfig &m_settings;
    QSettings m_own;
};
