#include "valuebox/NumericalValueBox.h"
#include "valuebox/NumericalValueBox_p.h"
#include "valuebox/Temperature_p.h"
#include "valuebox/TextParts_p.h"

#include <QStringBuilder>

#include <cmath>

namespace ValueBox {

using Internal::FixedPoint;
using Internal::TextParts;

namespace {

/** A temperature converted from degrees Celsius to a unit. */
float converted(float celsius, TemperatureUnit unit)
{
    const auto *scale = Internal::temperatureScale(unit);
    return scale ? float(scale->fromCelsius(double(celsius))) : celsius;
}

/**
 * A temperature rounded to one decimal, then down to half a degree; below zero to a whole one,
 * because the remainder of a negative number is negative. Nothing for very large ones.
 */
std::optional<FixedPoint> halfDegrees(float temperature)
{
    constexpr quint32 degree = 10;
    constexpr quint32 half = degree / 2;
    const auto tenths = FixedPoint::of(temperature, 1);
    if (!tenths)
        return std::nullopt;
    const bool isNegative = tenths->isNegative() && tenths->digits() != 0;
    const quint32 step = isNegative ? degree : half;
    const quint32 up = isNegative ? degree - 1 : 0;
    return FixedPoint((tenths->digits() + up) / step * step, 1, isNegative);
}

/** The same, step by step, for numbers that do not fit into FixedPoint. */
QString longHalfDegrees(float temperature)
{
    const float rounded = QString::number(double(temperature), 'f', 1).toFloat();
    const bool isWhole = std::fmod(double(rounded), 1.) < 0.5;
    return QString::number(double(std::floor(rounded)), 'f', 0)
        + QLatin1String(isWhole ? ".0" : ".5");
}

} // namespace

QString NumericalValueBox::formatTemperature(float celsius)
{
    if (!std::isfinite(celsius))
        return QLatin1String("--- ") % getUnit(Unit_Temperature);
    prepareStaticDefaultValue(_tUnit);
    const float temperature = converted(celsius, _tUnit);
    const QStringView unit = Internal::unitTexts.text(Unit_Temperature).view();
    if (const auto number = halfDegrees(temperature))
        return TextParts {{}, number->isNegative(), *number, true, {}, unit}.toString();
    return longHalfDegrees(temperature) + QLatin1Char(' ') + unit.toString();
}

} // namespace ValueBox

namespace Internal {

namespace {

constexpr double kelvinOfZeroCelsius = 273.15;
constexpr double fahrenheitOfZeroCelsius = 32;

constexpr TemperatureScale fahrenheit {
    [](double celsius) { return celsius * 1.8 + fahrenheitOfZeroCelsius; },
    [](double value) { return (value - fahrenheitOfZeroCelsius) * 0.5555555555555556; }};
constexpr TemperatureScale kelvin {[](double celsius) { return celsius + kelvinOfZeroCelsius; },
                                   [](double value) { return value - kelvinOfZeroCelsius; }};

} // namespace

const TemperatureScale *temperatureScale(ValueBox::TemperatureUnit unit)
{
    switch (unit) {
    case ValueBox::Temp_Fahrenheit:
        return &fahrenheit;
    case ValueBox::Temp_Kelvin:
        return &kelvin;
    default:
        return nullptr;
    }
}

} // namespace Internal
