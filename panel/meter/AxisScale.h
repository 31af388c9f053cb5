#pragma once

#include "meter/Quantity.h"

#include <QString>

/** All numbers of an axis are written in one unit with one prefix. */
struct AxisScale
{
    double divisor = 1;
    QString unit; ///< "mΩ"

    /** @param magnitude of the largest value to be shown, in the base unit */
    static AxisScale ofValues(Quantity quantity, double magnitude);
};

/** The unit of a time axis; the page that shows the axis has the word for it. */
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

    /** @param seconds the highest time on the axis */
    static TimeScale of(double seconds);
};
