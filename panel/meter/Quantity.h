#pragma once

#include <QLatin1String>

/** The unit of inductance, for which the library has no text. */
constexpr QLatin1String henry("H", 1);

/** What is measured. */
enum class Quantity
{
    Resistance, ///< in ohms
    Inductance, ///< in henries
    Temperature ///< in degrees Celsius
};
