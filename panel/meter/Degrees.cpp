#include "meter/Degrees.h"

#include <valuebox/NumericalValueBox.h>

#include <cmath>

using ValueBox::NumericalValueBox;

double Degrees::fromCelsius(double celsius)
{
    switch (NumericalValueBox::getTempUnit()) {
    case ValueBox::Temp_Fahrenheit:
        return celsius * 1.8 + 32;
    case ValueBox::Temp_Kelvin:
        return celsius + 273.15;
    case ValueBox::Temp_Celsius:
        break;
    }
    return celsius;
}

double Degrees::toCelsius(double degrees)
{
    switch (NumericalValueBox::getTempUnit()) {
    case ValueBox::Temp_Fahrenheit:
        return std::round((degrees - 32) / 1.8 * 100) / 100;
    case ValueBox::Temp_Kelvin:
        return std::round((degrees - 273.15) * 100) / 100;
    case ValueBox::Temp_Celsius:
        break;
    }
    return degrees;
}
