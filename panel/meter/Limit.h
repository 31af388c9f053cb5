#pragma once

#include "meter/Quantity.h"

#include <valuebox/ValueTypes.h>

#include <QString>

/**
 * A pair of bounds. Bounds of resistance are the texts of the lists; bounds of temperature are
 * numbers of degrees Celsius, as text. A text of the lists that cannot be read is kept unchanged.
 */
struct Limit
{
    QString name; ///< empty: no limit is chosen
    QString low; ///< empty: no lower bound
    QString high; ///< empty: no upper bound

    /** The unit of a bound, without its prefix. */
    static ValueBox::Units unit(Quantity quantity);
    /**
     * The form in which the panel keeps a bound.
     * @param listed text of the lists, temperatures in the current unit
     */
    static QString kept(Quantity quantity, const QString &listed);
    /**
     * The bound as a number that a shown value can be compared with: in ohms, or in the current
     * unit of temperature. NaN if it is empty or cannot be read.
     */
    static float number(Quantity quantity, const QString &kept);
    /**
     * The bound as a user would enter it, temperatures without their unit: "1.5 mΩ", "80". A text
     * that cannot be read is returned unchanged.
     */
    static QString plainText(Quantity quantity, const QString &kept);
    /** The bound as it is shown: "1.5 mΩ", or "80 °F" in the current unit. */
    static QString text(Quantity quantity, const QString &kept);
};
