#pragma once

#include "valuebox/ValueTypes.h"

namespace Internal {

/** Converts between degrees Celsius, in which temperatures are stored, and another unit. */
struct TemperatureScale
{
    double (*fromCelsius)(double);
    double (*toCelsius)(double);
};

/** Scale of a temperature unit; null for Celsius. */
const TemperatureScale *temperatureScale(ValueBox::TemperatureUnit unit);

} // namespace Internal
