#include "meter/Verdict.h"

#include <cmath>

namespace {

Verdict::Reason reasonOf(const Reading &reading, Quantity quantity, const Limit &limit)
{
    if (reading.range == Reading::Missing)
        return Verdict::NothingMeasured;
    if (reading.range == Reading::Below)
        return Verdict::LeadsSwapped;
    if (limit.name.isEmpty())
        return Verdict::NoLimit;
    if (limit.low.isEmpty() && limit.high.isEmpty())
        return Verdict::LimitEmpty;
    const float low = Limit::number(quantity, limit.low);
    const float high = Limit::number(quantity, limit.high);
    if ((!limit.low.isEmpty() && std::isnan(low)) || (!limit.high.isEmpty() && std::isnan(high)))
        return Verdict::LimitUnreadable;
    if (!limit.high.isEmpty() && reading.shown > high)
        return Verdict::TooHigh;
    if (reading.range == Reading::Above)
        return Verdict::BeyondRange;
    return !limit.low.isEmpty() && reading.shown < low ? Verdict::TooLow : Verdict::Within;
}

} // namespace

Verdict::Verdict(const Reading &reading, Quantity quantity, const Limit &limit)
    : m_reason(reasonOf(reading, quantity, limit))
{ }

Verdict::Outcome Verdict::outcome() const
{
    if (m_reason == Within)
        return Pass;
    return m_reason == TooHigh || m_reason == TooLow ? Fail : None;
}
