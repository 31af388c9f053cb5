#pragma once

#include <valuebox/ValueTypes.h>

#include <QString>

/**
 * Reads the texts of limits strictly: a number, or a number followed by one space, a prefix and the
 * expected unit. The lists store any text, and the library's parser reads "5 Ohm" as 5 milliohms;
 * no value may pass because of a bound that was misread. Used by ktvctl as well.
 */
namespace LimitText {

/** Why values cannot be compared with a pair of bounds. */
enum class Problem
{
    None,
    LowIsNoNumber,
    HighIsNoNumber,
    BoundsMissing,
    LowAboveHigh
};

/** Replaces the characters for ohm and micro that keyboards have by those that the meter shows. */
QString asShown(QString text);

/**
 * The value of a bound from the lists. A temperature may have the sign of any unit: the lists keep
 * the sign of the unit in which it was entered, even though its number has been converted.
 * @param unit the expected unit: Unit_Ohm or Unit_Temperature
 * @return in ohms or in the current unit of temperature; NaN when it cannot be read
 */
float number(ValueBox::Units unit, const QString &text);

/**
 * Checks two bounds that a user has entered. Either may be empty; temperatures are in the current
 * unit.
 */
Problem problemOf(ValueBox::Units unit, const QString &low, const QString &high);

} // namespace LimitText
