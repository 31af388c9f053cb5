#pragma once

#include "meter/Hardware.h"
#include "meter/Lists.h"
#include "meter/Measurement.h"
#include "meter/Networks.h"
#include "meter/Preferences.h"
#include "meter/Recorder.h"
#include "meter/Setup.h"
#include "meter/Tones.h"
#include "meter/UsbPort.h"

#include <QObject>
#include <QString>

#include <memory>

class KTV_DataSource;

/**
 * The panel without its screen: the library, and the objects through which the panel uses it. Each
 * object owns its state: changes are made by calling it, and it emits a signal after each change.
 */
class Session : public QObject
{
    Q_OBJECT
public:
    /** Starts the library as an interface does: serial number first, then the user's settings. */
    explicit Session(QObject *parent = nullptr);
    ~Session() override;

    KTV_DataSource &library() const { return *m_library; }
    Preferences &preferences() { return m_preferences; }
    Tones &tones() { return m_tones; }
    Lists &lists() { return m_lists; }
    Setup &setup() { return m_setup; }
    Hardware &hardware() { return m_hardware; }
    Measurement &measurement() { return m_measurement; }
    Recorder &recorder() { return m_recorder; }
    Networks &networks() { return m_networks; }
    UsbPort &usbPort() { return m_usbPort; }

    void setLanguage(const QString &code); ///< Blocks when a language is used for the first time.
    /** Acts as if the measuring hardware had reported another serial number. */
    void setSerialNumber(const QString &serial);
    /** False while a series is recorded: the reset would change its settings. */
    bool canRestoreFactorySettings() const { return !m_recorder.isRunning(); }
    /**
     * Factory reset of everything that a user can change, including the panel's own settings. Does
     * nothing unless canRestoreFactorySettings(). Blocks.
     */
    void restoreFactorySettings();

signals:
    void languageChanged();
    void meterChanged(); ///< The serial number has changed, and with it perhaps the model.

private:
    void startMeter();
    void applyBrightness() const;

    std::unique_ptr<KTV_DataSource> m_library;
    Preferences m_preferences;
    Tones m_tones;
    Lists m_lists;
    Setup m_setup;
    Hardware m_hardware;
    Measurement m_measurement;
    Recorder m_recorder;
    Networks m_networks;
    UsbPort m_usbPort;
};
