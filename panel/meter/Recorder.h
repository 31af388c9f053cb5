#pragma once

#include "meter/Hardware.h"
#include "meter/Series.h"
#include "meter/SeriesFile.h"

#include <QElapsedTimer>
#include <QFutureWatcher>
#include <QObject>
#include <QTimer>

class KTV_Configuration;
class KTV_InterfaceConfig;
class KTV_Liczniki;
class Setup;

/**
 * Records series and saves them. A series is kept until the next one is started; a caller asks the
 * user before it discards an unsaved one in this way. The conditions of a series do not change when
 * the setup does.
 */
class Recorder : public QObject, private Hardware::Receiver
{
    Q_OBJECT
public:
    Recorder(KTV_InterfaceConfig &settings, const KTV_Configuration &meter, const Setup &setup,
             Hardware &hardware, KTV_Liczniki &counters, QObject *parent = nullptr);
    /** Waits until a series that is being saved is on the card. */
    ~Recorder() override;

    QString client() const { return m_client; } ///< in whose folder a series is saved; may be empty
    void setClient(const QString &client);
    int interval() const { return m_interval; } ///< between readings, in ms
    void setInterval(int milliseconds);
    int wanted() const { return m_wanted; } ///< number of readings of the next series
    void setWanted(int count);

    /** Discards the present series and records a new one. */
    void start();
    void stop();
    bool isRunning() const { return m_hardware.serves(*this); }

    const Series &series() const { return m_series; }
    bool isUnsaved() const { return !m_isSaved && !m_series.isEmpty(); }

    /** Saves the series for the client, on another thread; saved() has the result. */
    void save();
    bool isSaving() const { return m_isSaving; }

    /** Reads the last setting. */
    void load();
    /**
     * To be called after a change of the unit of temperature: the texts of temperatures are made
     * again.
     */
    void refreshTexts();

signals:
    void settingsChanged();
    void stateChanged(); ///< A series was started, stopped or saved, or its texts have changed.
    void added(); ///< The series has one more reading.
    void saved(const SeriesFile::Result &result);

private:
    void receive(float value) override;
    void end() override;
    void keep();
    void makeTexts();
    void write();

    KTV_InterfaceConfig &m_settings;
    const KTV_Configuration &m_meter;
    const Setup &m_setup;
    Hardware &m_hardware;
    KTV_Liczniki &m_counters;
    QString m_client;
    int m_interval = 0;
    int m_wanted = 0;
    Series m_series;
    QElapsedTimer m_clock;
    bool m_isSaved = true;
    bool m_isSaving = false;
    QTimer m_texts; ///< runs until the series to be saved has all its texts
    QFutureWatcher<SeriesFile::Result> m_saving;
};
