#include "meter/AxisScale.h"

#include <valuebox/NumericalValueBox.h>

#include <cmath>

using ValueBox::NumericalValueBox;

AxisScale AxisScale::ofValues(Quantity quantity, double magnitude)
{
    if (quantity == Quantity::Temperature)
        return {1, NumericalValueBox::getUnit(ValueBox::Unit_Temperature)};
    const QString unit = quantity == Quantity::Resistance
        ? NumericalValueBox::getUnit(ValueBox::Unit_Ohm)
        : QString(henry);
    for (const ValueBox::UnitPrefixs prefix :
         {ValueBox::Prefix_k, ValueBox::Prefix_None, ValueBox::Prefix_m}) {
        const double divisor = std::pow(10, int(prefix));
        if (std::abs(magnitude) >= divisor
            || (std::isnan(magnitude) && prefix == ValueBox::Prefix_None))
            return {divisor, NumericalValueBox::getUnitPrefix(prefix) + unit};
    }
    return {1e-6, NumericalValueBox::getUnitPrefix(ValueBox::Prefix_u) + unit};
}

TimeScale TimeScale::of(double seconds)
{
    constexpr double minute = 60;
    constexpr double hour = 60 * minute;
    if (seconds >= 2 * hour)
        return {Hours, hour};
    if (seconds >= 2 * minute)
        return {Minutes, minute};
    return {Seconds, 1};
}
