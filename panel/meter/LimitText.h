#pragma once

#include <valuebox/ValueTypes.h>

#include <QString>

/**
 * The texts of limits, read by the strictest rule: a number, and behind one blank nothing but a
 * prefix and the unit that is meant. The lists take any text, and the library's parser reads what
 * it can of one, "5 Ohm" as 5 milliohms; nothing may pass by such a bound. Used by ktvctl as well.
 */
namespace LimitText {

/** What keeps a pair of bounds from being one that can be judged by. */
enum class Problem
{
    None,
    LowIsNoNumber,
    HighIsNoNumber,
    BoundsMissing,
    LowAboveHigh
};

/** A typed text with the ohm and micro signs that the meter shows: keyboards have others. */
QString asShown(QString text);

/**
 * A bound as the lists hand it out. A temperature may have the sign of any unit: the one in which
 * it was entered stays, whatever its number has become.
 * @param unit that is meant: Unit_Ohm or Unit_Temperature
 * @return in ohms or in the unit of temperatures in effect; NaN when it cannot be read
 */
float number(ValueBox::Units unit, const QString &text);

/** Of a pair as somebody enters it, each of which may be empty; a temperature in the unit in
 * effect. */
Problem problemOf(ValueBox::Units unit, const QString &low, const QString &high);

} // namespace LimitText
