#pragma once

#include <QLatin1String>

/** The unit of inductance, which the library's texts do not know. */
constexpr QLatin1String henry("H", 1);

/** What is measured. */
enum class Quantity
{
    Resistance, ///< in ohms
    Inductance, ///< in henries
    Temperature ///< in degrees Celsius
};
