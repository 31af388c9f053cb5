#pragma once

#include "meter/Limit.h"
#include "meter/Reading.h"

/**
 * The result of comparing a reading with a limit, and the reason for it. A reading passes only if
 * it is known to be within its limit.
 */
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
        NoLimit, ///< no limit is chosen
        NothingMeasured, ///< the leads are open, or the meter has no rows for the current
        LeadsSwapped, ///< the reading is below zero, which is no fault of the object
        LimitUnreadable, ///< a bound is not a number
        LimitEmpty, ///< the limit has no bounds
        BeyondRange, ///< the reading is above the meter's range, and so may be the limit
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
