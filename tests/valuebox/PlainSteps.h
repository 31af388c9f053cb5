#pragma once

#include <QString>

/**
 * Makes the text of a value step by step with Qt's own functions: slow but easy to read. The
 * library's faster way must give the same text.
 */
namespace PlainSteps {

/** A number in fixed-point notation, after a 5 in its tenth decimal was rounded up. */
QString rounded(double value, int digits);

/** A number scaled by a row's prefix and rounded to its decimals. */
QString scaledAndRounded(float value, int digits, int prefix);

/** The text of a value above the last row (@p isAbove: value is the row's maximum) or in a row. */
QString shown(float value, bool isAbove, bool isNegative, int digits, int prefix,
              const QString &unitWithPrefix);

/** A temperature in degrees of the given unit, without the unit's text. */
QString halfDegrees(float temperature);

} // namespace PlainSteps
