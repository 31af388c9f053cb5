#pragma once

/** Temperatures in the current unit. */
namespace Degrees {

double fromCelsius(double celsius);
/** Rounded to hundredths of a degree, as the lists store temperatures of other units. */
double toCelsius(double degrees);

} // namespace Degrees
