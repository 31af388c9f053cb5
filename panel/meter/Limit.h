#pragma once

#include "meter/Quantity.h"

#include <valuebox/ValueTypes.h>

#include <QString>

/**
 * A pair of bounds, as the panel keeps it: those of resistance as they stand in the lists, those of
 * temperature as a number of degrees Celsius. The lists take any text; one that cannot be read is
 * kept as it is.
 */
struct Limit
{
    QString name; ///< empty: there is no limit
    QString low; ///< empty: no lower bound
    QString high; ///< empty: no upper bound

    /** The unit of a bound, without its prefix. */
    static ValueBox::Units unit(Quantity quantity);
    /** @p listed as the lists hand it out, in the unit of temperatures in effect. */
    static QString kept(Quantity quantity, const QString &listed);
    /**
     * The bound as a number to compare with what is shown: in ohms, or in the unit of temperatures
     * in effect. NaN for none, and for one that cannot be read.
     */
    static float number(Quantity quantity, const QString &kept);
    /** The number and, of temperatures, no unit: "1.5 mΩ", "80"; what cannot be read as it is. */
    static QString plainText(Quantity quantity, const QString &kept);
    /** The bound as it is shown, in the unit in effect: "1.5 mΩ", "80 °F". */
    static QString text(Quantity quantity, const QString &kept);
};
