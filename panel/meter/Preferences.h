#pragma once

#include <valuebox/ValueTypes.h>

#include <QObject>
#include <QSettings>

class KTV_InterfaceConfig;

/**
 * The user's preferences, stored in the library's settings or, if these have no key for them, in a
 * file of the panel. The unit of temperature and the sound switch take effect in the library at
 * once.
 */
class Preferences : public QObject
{
    Q_OBJECT
public:
    /** @param file the panel's own file, created when something is first stored in it */
    Preferences(KTV_InterfaceConfig &settings, const QString &file, QObject *parent = nullptr);

    ValueBox::TemperatureUnit temperatureUnit() const;
    void setTemperatureUnit(ValueBox::TemperatureUnit unit);
    bool isDark() const;
    void setDark(bool dark);
    bool isSoundOn() const;
    void setSoundOn(bool on);
    /** Output volume in percent, as last set: the library cannot read it. */
    int volume() const;
    void setVolume(int percent);
    /** Brightness of the display in percent, as last set: the library cannot read it. */
    int brightness() const;
    void setBrightness(int percent);
    bool usesScreenKeyboard() const;
    void setUsesScreenKeyboard(bool used);

    /**
     * Clears the panel's own file, and applies the defaults; the library's settings must have been
     * reset.
     */
    void restoreFactorySettings();

signals:
    void temperatureUnitChanged();
    void appearanceChanged();
    void soundChanged(); ///< The switch or the volume.
    void brightnessChanged();
    void keyboardChanged();

private:
    void applyUnit() const;
    void applySound() const;

    KTV_InterfaceConfig &m_settings;
    QSettings m_own;
};
