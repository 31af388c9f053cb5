#include "meter/Limit.h"

#include "meter/Degrees.h"
#include "meter/LimitText.h"

#include <valuebox/NumericalValueBox.h>

#include <cmath>

using ValueBox::NumericalValueBox;

namespace {

double rounded(double celsius)
{
    return std::round(celsius * 100) / 100;
}

QString trimmedZeros(QString number)
{
    while (number.contains(QLatin1Char('.'))
           && (number.endsWith(QLatin1Char('0')) || number.endsWith(QLatin1Char('.'))))
        number.chop(1);
    return number;
}

/**
 * The shortest number in the current unit that the lists would store as this temperature. For 80 °F
 * they store 26.67 °C, which is 80.006 °F; the user must see the 80 that was entered.
 */
QString degreesText(double celsius)
{
    if (NumericalValueBox::getTempUnit() == ValueBox::Temp_Celsius)
        return QString::number(celsius, 'g', 7);
    constexpr int maxDigits = 2;
    const double degrees = Degrees::fromCelsius(celsius);
    for (int digits = 0; digits < maxDigits; ++digits) {
        const double scale = std::pow(10, digits);
        const double shorter = std::round(degrees * scale) / scale + 0.; // adding 0 turns -0 into 0
        if (std::abs(Degrees::toCelsius(shorter) - rounded(celsius)) < 0.001)
            return QString::number(shorter, 'f', digits);
    }
    return trimmedZeros(QString::number(degrees, 'f', maxDigits));
}

float read(Quantity quantity, const QString &text)
{
    return LimitText::number(Limit::unit(quantity), text);
}

} // namespace

ValueBox::Units Limit::unit(Quantity quantity)
{
    return quantity == Quantity::Temperature ? ValueBox::Unit_Temperature : ValueBox::Unit_Ohm;
}

QString Limit::kept(Quantity quantity, const QString &listed)
{
    const float value = read(quantity, listed);
    if (quantity != Quantity::Temperature || std::isnan(value))
        return listed;
    return QString::number(Degrees::toCelsius(double(value)), 'g', 7);
}

float Limit::number(Quantity quantity, const QString &kept)
{
    const float value = read(quantity, kept);
    if (quantity != Quantity::Temperature || std::isnan(value))
        return value;
    return degreesText(double(value)).toFloat();
}

QString Limit::plainText(Quantity quantity, const QString &kept)
{
    const float value = read(quantity, kept);
    if (quantity != Quantity::Temperature || std::isnan(value))
        return kept;
    return degreesText(kept.toDouble());
}

QString Limit::text(Quantity quantity, const QString &kept)
{
    QString plain = plainText(quantity, kept);
    if (quantity != Quantity::Temperature || std::isnan(read(quantity, kept)))
        return plain;
    return plain + QLatin1Char(' ') + NumericalValueBox::getUnit(ValueBox::Unit_Temperature);
}
