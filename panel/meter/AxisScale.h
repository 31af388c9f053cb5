#pragma once

#include "meter/Quantity.h"

#include <QString>

/** How the numbers of an axis are written: in one unit, with one prefix. */
struct AxisScale
{
    double divisor = 1;
    QString unit; ///< "mΩ"

    /** @param magnitude of the largest value to be shown, in the base unit */
    static AxisScale ofValues(Quantity quantity, double magnitude);
};

/** How the numbers of a time axis are written; the screen has the word for the unit. */
struct TimeScale
{
    enum Unit
    {
        Seconds,
        Minutes,
        Hours
    };

    Unit unit = Seconds;
    double divisor = 1; ///< seconds of one unit

    /** @param seconds that the axis reaches to */
    static TimeScale of(double seconds);
};
