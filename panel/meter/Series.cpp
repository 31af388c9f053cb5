#include "meter/Series.h"

#include "meter/Degrees.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

/** The verdict with the highest weight is that of the series. */
int weight(const Verdict &verdict)
{
    static constexpr int weights[] = {1, 0, 2}; // indexed by Verdict::Outcome
    return weights[verdict.outcome()];
}

} // namespace

Series::Series(SeriesConditions conditions) : m_conditions(std::move(conditions))
{ }

void Series::add(qint64 msSinceStart, float value)
{
    m_figures.reset();
    if (m_firstMissing == count())
        ++m_firstMissing; // the new reading has its text
    const Reading reading(value, m_conditions.format);
    const Verdict verdict(reading, m_conditions.format.quantity, m_conditions.limit);
    if (isEmpty() || weight(verdict) > weight(m_verdict))
        m_verdict = verdict;
    m_values += value;
    m_times += msSinceStart;
    m_verdicts += verdict;
    m_texts += reading.text;
    m_failed += verdict.outcome() == Verdict::Fail ? 1 : 0;
    if (std::isnan(value))
        return;
    ++m_present;
    m_minimum = std::fmin(m_minimum, value);
    m_maximum = std::fmax(m_maximum, value);
    // Welford's algorithm: loses no digits if the values hardly differ.
    const double distance = double(value) - m_mean;
    m_mean += distance / m_present;
    m_squares += distance * (double(value) - m_mean);
}

double Series::shown(int index) const
{
    const auto value = double(m_values.at(index));
    return m_conditions.format.quantity == Quantity::Temperature ? Degrees::fromCelsius(value)
                                                                 : value;
}

const QString &Series::text(int index) const
{
    if (m_texts.at(index).isNull())
        m_texts[index] = Reading(m_values.at(index), m_conditions.format).text;
    return m_texts.at(index);
}

float Series::mean() const
{
    return m_present > 0 ? float(m_mean) : std::numeric_limits<float>::quiet_NaN();
}

float Series::standardDeviation() const
{
    return m_present > 1 ? float(std::sqrt(m_squares / (m_present - 1)))
                         : std::numeric_limits<float>::quiet_NaN();
}

AxisScale Series::valueScale() const
{
    const float magnitude = std::fmax(std::abs(m_minimum), std::abs(m_maximum));
    return AxisScale::ofValues(m_conditions.format.quantity, double(magnitude));
}

TimeScale Series::timeScale() const
{
    return TimeScale::of(isEmpty() ? 0 : seconds(count() - 1));
}

int Series::nearest(double seconds) const
{
    const auto ms = qint64(seconds * 1000);
    const auto later = std::lower_bound(m_times.cbegin(), m_times.cend(), ms);
    const int index = int(later - m_times.cbegin());
    if (index == 0)
        return isEmpty() ? -1 : 0;
    if (later == m_times.cend() || ms - m_times.at(index - 1) <= *later - ms)
        return index - 1;
    return index;
}

const SeriesFigures &Series::figures() const
{
    if (m_figures)
        return *m_figures;
    m_figures.emplace();
    if (isEmpty())
        return *m_figures;
    const auto textOf = [this](float value) { return Reading(value, m_conditions.format).text; };
    *m_figures = {QString::number(m_present), textOf(m_minimum), textOf(m_maximum), textOf(mean()),
                  deviationText()};
    return *m_figures;
}

QString Series::deviationText() const
{
    if (std::isnan(standardDeviation()))
        return {};
    const Quantity quantity = m_conditions.format.quantity;
    auto deviation = double(standardDeviation());
    if (quantity == Quantity::Temperature)
        deviation = Degrees::fromCelsius(deviation) - Degrees::fromCelsius(0);
    const AxisScale scale = AxisScale::ofValues(quantity, deviation);
    return QString::number(deviation / scale.divisor, 'g', 3) + QLatin1Char(' ') + scale.unit;
}

void Series::refreshTexts()
{
    if (m_conditions.format.quantity != Quantity::Temperature)
        return;
    m_texts.fill(QString());
    m_firstMissing = 0;
    m_figures.reset();
}

bool Series::makeTexts(int most) const
{
    const int end = std::min(count(), m_firstMissing + most);
    while (m_firstMissing < end)
        text(m_firstMissing++);
    return m_firstMissing == count();
}
