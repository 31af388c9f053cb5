#include "meter/Series.h"

#include <algorithm>
#include <cmath>
#include <utility>

Series::Series(SeriesConditions conditions) : m_conditions(std::move(conditions))
{ }

void Series::add(qint64 msSinceStart, float value)
{
    const Reading reading(value, m_conditions.form);
    const Verdict verdict(reading, m_conditions.form.quantity, m_conditions.limit);
    m_values += value;
    m_times += msSinceStart;
    m_verdicts += verdict;
    m_texts += reading.text;
    m_passed += verdict.outcome() == Verdict::Pass ? 1 : 0;
    m_failed += verdict.outcome() == Verdict::Fail ? 1 : 0;
    if (std::isnan(value))
        return;
    ++m_present;
    m_minimum = std::fmin(m_minimum, value);
    m_maximum = std::fmax(m_maximum, value);
    // Welford's way: no digits are lost where values differ little.
    const double distance = static_cast<double>(value) - m_mean;
    m_mean += distance / m_present;
    m_squares += distance * (static_cast<double>(value) - m_mean);
}

const QString &Series::text(int index) const
{
    QString &text = m_texts[index];
    if (text.isNull())
        text = Reading(m_values.at(index), m_conditions.form).text;
    return text;
}

float Series::mean() const
{
    return m_present > 0 ? static_cast<float>(m_mean) : std::numeric_limits<float>::quiet_NaN();
}

float Series::standardDeviation() const
{
    return m_present > 1 ? static_cast<float>(std::sqrt(m_squares / (m_present - 1)))
                         : std::numeric_limits<float>::quiet_NaN();
}

Verdict::Outcome Series::outcome() const
{
    if (m_failed > 0)
        return Verdict::Fail;
    return m_passed > 0 && m_passed == count() ? Verdict::Pass : Verdict::None;
}

int Series::nearest(double seconds) const
{
    const auto ms = static_cast<qint64>(seconds * 1000);
    const auto later = std::lower_bound(m_times.cbegin(), m_times.cend(), ms);
    const int index = static_cast<int>(later - m_times.cbegin());
    if (index == 0)
        return isEmpty() ? -1 : 0;
    if (later == m_times.cend() || ms - m_times.at(index - 1) <= *later - ms)
        return index - 1;
    return index;
}

void Series::forgetTexts()
{
    m_texts.fill(QString());
}

void Series::makeTexts() const
{
    for (int index = 0; index < count(); ++index)
        text(index);
}
