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
 * Records series, and saves them. A series is kept until the next one is started, which the caller
 * does not do before the owner of an unsaved one has been asked. It keeps what it was recorded with
 * and of, whatever is set up meanwhile.
 */
class Recorder : public QObject, private Hardware::Taker
{
    Q_OBJECT
public:
    Recorder(KTV_InterfaceConfig &settings, const KTV_Configuration &meter, const Setup &setup,
             Hardware &hardware, KTV_Liczniki &counters, QObject *parent = nullptr);
    /** Waits until what is being saved is on the card. */
    ~Recorder() override;

    QString client() const { return m_client; } ///< whose folder a series goes to; may be empty
    void setClient(const QString &client);
    int interval() const { return m_interval; } ///< between readings, in ms
    void setInterval(int milliseconds);
    int wanted() const { return m_wanted; } ///< readings after which the next one ends by itself
    void setWanted(int count);

    /** Drops the series that is there, and records a new one. */
    void start();
    void stop();
    bool isRunning() const { return m_hardware.serves(*this); }

    const Series &series() const { return m_series; }
    bool isUnsaved() const { return !m_isSaved && !m_series.isEmpty(); }

    /** Saves the series for the client, off this thread; saved() tells how it went. */
    void save();
    bool isSaving() const { return m_isSaving; }

    /** Takes the last setting. */
    void load();
    /** Words a series of temperatures anew: their unit has changed. */
    void takeUnit();

signals:
    void settingsChanged();
    void stateChanged(); ///< Started, stopped, saved, or worded anew.
    void added(); ///< One more reading.
    void saved(const SeriesFile::Result &result);

private:
    void take(float value) override;
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
    QTimer m_texts; ///< runs until what is to be saved has all its texts
    QFutureWatcher<SeriesFile::Result> m_saving;
};
