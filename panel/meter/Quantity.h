#pragma once

/** What is measured. */
enum class Quantity
{
    Resistance, ///< in ohms
    Inductance, ///< in henries
    Temperature ///< in degrees Celsius
};
