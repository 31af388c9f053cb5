#pragma once

#include "meter/Hardware.h"
#include "meter/Reading.h"
#include "meter/Verdict.h"

#include <QObject>
#include <QVector>

class KTV_Liczniki;
class Setup;
class Tones;

/** One measurement: readings until their mean has settled; then it is counted, judged and heard. */
class Measurement : public QObject, private Hardware::Taker
{
    Q_OBJECT
public:
    /** What a measurement has come to, and of what. */
    struct Result
    {
        QString text; ///< as it was shown; empty before the first
        QString objectType;
        QString objectName;

        /** What is to be printed of it. */
        QString label(const QString &meter, const QString &time) const;
    };

    Measurement(Setup &setup, Hardware &hardware, KTV_Liczniki &counters, Tones &tones,
                QObject *parent = nullptr);

    void start();
    void stop();
    bool isRunning() const { return m_hardware.serves(*this); }
    /** Whether a measurement has ended, and is still shown. */
    bool isDone() const { return !isRunning() && !m_readings.isEmpty(); }
    /** The mean of the readings so far. */
    const Reading &reading() const { return m_reading; }
    const Verdict &verdict() const { return m_verdict; }
    const Result &lastResult() const { return m_lastResult; }

    /** Words the reading anew: the unit of temperatures has changed. */
    void refresh();

signals:
    void changed();

private:
    void take(float value) override;
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
