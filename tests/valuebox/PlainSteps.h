#pragma once

#include <QString>

/**
 * The text of a value made step by step with Qt's own functions: slow, and plain to read.
 * What the library does faster must come to the same text.
 */
namespace PlainSteps {

/** A number in fixed-point notation after the nudge of a tenth decimal of 5. */
QString rounded(double value, int digits);

/** A number scaled by a row's prefix and rounded to its decimals. */
QString scaledAndRounded(float value, int digits, int prefix);

/** The text of a value above the last row (@p isAbove: value is the row's maximum) or in a row. */
QString shown(float value, bool isAbove, bool isNegative, int digits, int prefix,
              const QString &unitWithPrefix);

/** A temperature in degrees of the given unit, without the unit's text. */
QString halfDegrees(float temperature);

} // namespace PlainSteps
