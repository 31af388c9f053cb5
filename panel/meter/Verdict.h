#pragma once

#include "meter/Limit.h"
#include "meter/Reading.h"

/** What is to be said of a reading, and why. Only what is known to be within its limit passes. */
class Verdict
{
public:
    enum Outcome
    {
        None,
        Pass,
        Fail
    };
    enum Reason
    {
        NoLimit, ///< nobody has asked
        NothingMeasured, ///< the leads are open, or the meter has no rows for the current
        LeadsSwapped, ///< no fault of the object
        LimitUnreadable, ///< a bound is no number
        LimitEmpty, ///< a limit without bounds
        BeyondRange, ///< above what the meter measures, and the limit may be there, too
        Within,
        TooHigh,
        TooLow
    };

    Verdict() = default;
    Verdict(const Reading &reading, Quantity quantity, const Limit &limit);

    Outcome outcome() const;
    Reason reason() const { return m_reason; }

private:
    Reason m_reason = NoLimit;
};
