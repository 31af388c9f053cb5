#include "meter/Measurement.h"

#include "meter/Setup.h"
#include "meter/Tones.h"

#include <counters/KTV_Liczniki.h>

#include <cmath>
#include <numeric>

using Buzzer::BuzzerClass;

namespace {

constexpr int readingInterval = 150; // ms
constexpr int readingsOfResult = 6;

/** Indexed by Quantity. */
void (KTV_Liczniki::*const counts[])() = {
    &KTV_Liczniki::Up_Licznik_PomiarObiektowRezystancyjnych,
    &KTV_Liczniki::Up_Licznik_PomiarObiektowIndukcyjnych,
    &KTV_Liczniki::Up_Licznik_PomiarTemperaturySilnika,
};

} // namespace

QString Measurement::Result::label(const QString &meter, const QString &time) const
{
    QStringList lines {meter, time, Setup::objectText(objectType, objectName), text};
    lines.removeAll(QString());
    return lines.join(QLatin1Char('\n')) + QLatin1Char('\n');
}

Measurement::Measurement(Setup &setup, Hardware &hardware, KTV_Liczniki &counters, Tones &tones,
                         QObject *parent)
    : QObject(parent)
    , m_setup(setup)
    , m_hardware(hardware)
    , m_counters(counters)
    , m_tones(tones)
{
    connect(&setup, &Setup::changed, this, &Measurement::forget);
    setValue(std::numeric_limits<float>::quiet_NaN());
}

void Measurement::start()
{
    if (m_hardware.start(readingInterval, *this))
        forget();
}

void Measurement::stop()
{
    if (isRunning())
        m_hardware.stop();
}

void Measurement::receive(float value)
{
    m_readings += value;
    setValue(std::accumulate(m_readings.cbegin(), m_readings.cend(), 0.F)
             / float(m_readings.size()));
    if (m_readings.size() == readingsOfResult)
        finish();
    else
        emit changed();
}

void Measurement::finish()
{
    (m_counters.*counts[int(m_setup.quantity())])();
    m_lastResult = {m_reading.text, m_setup.objectType(), m_setup.objectName()};
    if (std::isnan(m_reading.value))
        m_tones.play(BuzzerClass::Tone_Error_Measure);
    else if (m_verdict.outcome() != Verdict::None)
        m_tones.play(m_verdict.outcome() == Verdict::Pass ? BuzzerClass::Tone_Measure_Pass
                                                          : BuzzerClass::Tone_Measure_Fail);
    m_hardware.stop();
}

void Measurement::forget()
{
    m_readings.clear();
    setValue(std::numeric_limits<float>::quiet_NaN());
    emit changed();
}

void Measurement::refresh()
{
    setValue(m_reading.value);
    emit changed();
}

void Measurement::setValue(float value)
{
    m_reading = Reading(value, m_setup.format());
    m_verdict = m_setup.canJudge() ? Verdict(m_reading, m_setup.quantity(), m_setup.limit())
                                   : Verdict(m_reading, m_setup.quantity(), Limit());
}
