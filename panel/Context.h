#pragma once

#include "meter/Hardware.h"
#include "meter/Mixer.h"
#include "meter/Setup.h"
#include "touch/KeyboardPolicy.h"
#include "touch/Texts.h"

#include <sound/BuzzerClass.h>
#include <valuebox/ValueTypes.h>

#include <QObject>
#include <QString>

#include <memory>

class KTV_DataSource;
class QSettings;

/**
 * What every page is given: the library, the texts of the language in effect, the measurement
 * that is set up, and word of whatever changes.
 */
class Context : public Texts, public KeyboardPolicy
{
    Q_OBJECT
public:
    /** Starts the library as an interface does: serial number first, then the user's settings. */
    explicit Context(QObject *parent = nullptr);
    ~Context() override;

    KTV_DataSource &library() const { return *m_library; }
    Setup &setup() { return m_setup; }
    Hardware &hardware() { return m_hardware; }

    QString text(const Text &text) const override;
    bool isOnScreen() const override { return usesScreenKeyboard(); }
    QVector<QStringList> letters(bool isRegional, bool isBig) const override;
    QString regionalName() const override;
    QStringList units() const override;

    void setLanguage(const QString &code);
    /** As if the measuring hardware had reported another serial number. */
    void setSerialNumber(const QString &serial);
    ValueBox::TemperatureUnit temperatureUnit() const;
    void setTemperatureUnit(ValueBox::TemperatureUnit unit);
    bool isDark() const;
    void setDark(bool dark);
    /** Sounds a tone once, unless the user has switched the sounds off. */
    void sound(Buzzer::BuzzerClass::Tone tone);
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
    /** Factory reset of everything that a user can change, the panel's own settings included. */
    void restoreFactorySettings();

    /** Warning of a memory card that fills up, by the library's alert level; empty for none. */
    QString cardAlert() const;
    /** The last measured value as it was shown; empty before the first. */
    QString lastResult() const { return m_lastResult; }
    void setLastResult(const QString &text) { m_lastResult = text; }

signals:
    void meterChanged(); ///< Serial number, and with it perhaps the model.
    void listsChanged();
    void setupChanged();
    void themeChanged();

private:
    void takeTemperatureUnit() const;
    void takeTheme();
    void takeSounds();
    void takeBrightness();

    std::unique_ptr<KTV_DataSource> m_library;
    std::unique_ptr<QSettings> m_own; ///< what the library has no key for
    Setup m_setup;
    Hardware m_hardware;
    Mixer m_mixer;
    QString m_lastResult;
};
