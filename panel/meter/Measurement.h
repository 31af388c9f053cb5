#pragma once

#include "meter/Hardware.h"
#include "meter/Reading.h"
#include "meter/Verdict.h"

#include <QObject>
#include <QVector>

class KTV_Liczniki;
class Setup;
class Tones;

/**
 * One measurement: the mean of a fixed number of readings. When it is complete it is counted,
 * compared with the limit, and a tone is played.
 */
class Measurement : public QObject, private Hardware::Receiver
{
    Q_OBJECT
public:
    /** The result of a measurement, and the measured object. */
    struct Result
    {
        QString text; ///< as it was shown; empty before the first measurement
        QString objectType;
        QString objectName;

        /** Text for the label printer. */
        QString label(const QString &meter, const QString &time) const;
    };

    Measurement(Setup &setup, Hardware &hardware, KTV_Liczniki &counters, Tones &tones,
                QObject *parent = nullptr);

    void start();
    void stop();
    bool isRunning() const { return m_hardware.serves(*this); }
    /** Whether a measurement has ended and its result is still shown. */
    bool isDone() const { return !isRunning() && !m_readings.isEmpty(); }
    /** The mean of the readings so far. */
    const Reading &reading() const { return m_reading; }
    const Verdict &verdict() const { return m_verdict; }
    const Result &lastResult() const { return m_lastResult; }

    /** To be called after a change of the unit of temperature: makes the reading's text again. */
    void refresh();

signals:
    void changed();

private:
    void receive(float value) override;
    void end() override { emit changed(); }
    void finish();
    void forget();
    void setValue(float value);

    Setup &m_setup;
    Hardware &m_hardware;
    KTV_Liczniki &m_counters;
    Tones &m_tones;
    QVector<float> m_readings;
    Reading m_reading;
    Verdict m_verdict;
    Result m_lastResult;
};
