#pragma once

#include <QStringList>
#include <QVector>

/** Round numbers along an axis, with as many decimals as are needed to tell them apart. */
struct Ticks
{
    /** @param most steps between the two ends, at least 1 */
    static Ticks between(double low, double high, int most);

    QVector<double> values;
    QStringList labels; ///< of each value
};
