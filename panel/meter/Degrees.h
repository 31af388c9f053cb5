#pragma once

/** Temperatures in the unit in effect. */
namespace Degrees {

double fromCelsius(double celsius);
/** To the hundredth: the lists keep no more of what is entered in another unit. */
double toCelsius(double degrees);

} // namespace Degrees
