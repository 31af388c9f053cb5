#pragma once

#include "valuebox/ValueTypes.h"

namespace Internal {

/** Between degrees Celsius, in which temperatures are kept, and the unit that shows them. */
struct TemperatureScale
{
    double (*fromCelsius)(double);
    double (*toCelsius)(double);
};

/** Scale of a temperature unit; null while temperatures are shown as they are kept. */
const TemperatureScale *temperatureScale(ValueBox::TemperatureUnit unit);

} // namespace Internal
