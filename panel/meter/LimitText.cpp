#include "meter/LimitText.h"

#include <valuebox/NumericalValueBox.h>

#include <cmath>
#include <limits>

using ValueBox::NumericalValueBox;

namespace {

constexpr float unreadable = std::numeric_limits<float>::quiet_NaN();

/**
 * @return NaN unless @p text is a number, or a number, a space and a unit that @p isMeant accepts
 */
template <typename Accept> float read(const QString &text, Accept isMeant)
{
    const QString shown = LimitText::asShown(text.trimmed());
    const auto blank = shown.indexOf(QLatin1Char(' '));
    const QString unitText = blank < 0 ? QString() : shown.mid(blank + 1);
    float value = unreadable;
    int decimals = 0;
    auto unit = ValueBox::Unit_None;
    auto prefix = ValueBox::Prefix_None;
    const bool isRead = NumericalValueBox::parse(shown, value, decimals, unit, prefix)
        && (blank < 0 || isMeant(unitText, prefix));
    return isRead && std::isfinite(value) ? value : unreadable;
}

/** The value of a bound that a user has entered. */
float entered(ValueBox::Units unit, const QString &text)
{
    return read(text, [unit](const QString &unitText, ValueBox::UnitPrefixs prefix) {
        const bool isPrefixed = prefix != ValueBox::Prefix_None;
        return unitText
            == NumericalValueBox::getUnitPrefix(prefix) + NumericalValueBox::getUnit(unit)
            && !(isPrefixed && unit == ValueBox::Unit_Temperature);
    });
}

} // namespace

QString LimitText::asShown(QString text)
{
    const QChar greekOmega(0x03A9);
    const QChar ohmSign(0x2126);
    const QChar microSign(0x00B5);
    const QChar greekMu(0x03BC);
    return text.replace(greekOmega, ohmSign).replace(microSign, greekMu);
}

float LimitText::number(ValueBox::Units unit, const QString &text)
{
    const float value = entered(unit, text);
    if (unit != ValueBox::Unit_Temperature || !std::isnan(value))
        return value;
    return read(text, [](const QString &sign, ValueBox::UnitPrefixs) {
        return sign == QStringLiteral("\u00B0C") || sign == QStringLiteral("\u00B0F")
            || sign == QLatin1String("K");
    });
}

LimitText::Problem LimitText::problemOf(ValueBox::Units unit, const QString &low,
                                        const QString &high)
{
    if (low.isEmpty() && high.isEmpty())
        return Problem::BoundsMissing;
    const float lowest = entered(unit, low);
    const float highest = entered(unit, high);
    if (!low.isEmpty() && std::isnan(lowest))
        return Problem::LowIsNoNumber;
    if (!high.isEmpty() && std::isnan(highest))
        return Problem::HighIsNoNumber;
    return lowest > highest ? Problem::LowAboveHigh : Problem::None; // false for NaN
}
