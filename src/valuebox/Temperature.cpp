#include "valuebox/FixedPoint_p.h"
#include "valuebox/NumericalValueBox.h"
#include "valuebox/NumericalValueBox_p.h"

#include <cmath>

namespace ValueBox {

namespace {

float converted(float celsius, TemperatureUnit unit)
{
    constexpr double fahrenheitPerCelsius = 1.8;
    constexpr double fahrenheitAtFreezing = 32;
    constexpr double kelvinAtFreezing = 273.15;
    switch (unit) {
    case Temp_Fahrenheit:
        return float(double(celsius) * fahrenheitPerCelsius + fahrenheitAtFreezing);
    case Temp_Kelvin:
        return float(double(celsius) + kelvinAtFreezing);
    default:
        return celsius;
    }
}

/** A temperature rounded to one decimal, then down to half a degree. */
QString halfDegrees(float temperature)
{
    const float rounded = Internal::fixedText(temperature, 1).toFloat();
    // The remainder of a negative number is negative: all of them go down to a whole degree.
    const bool isWhole = std::fmod(double(rounded), 1.) < 0.5;
    return Internal::fixedText(std::floor(rounded), 0) + QLatin1String(isWhole ? ".0" : ".5");
}

} // namespace

QString NumericalValueBox::formatTemperature(float celsius)
{
    if (!std::isfinite(celsius))
        return QLatin1String("--- ") + getUnit(Unit_Temperature);
    prepareStaticDefaultValue(_tUnit);
    return halfDegrees(converted(celsius, _tUnit)) + QLatin1Char(' ') + getUnit(Unit_Temperature);
}

} // namespace ValueBox
