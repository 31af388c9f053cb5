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
    /** @param seconds that the axis reaches to */
    static AxisScale ofTime(double seconds);
};
