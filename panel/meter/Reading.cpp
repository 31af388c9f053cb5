#include "meter/Reading.h"

#include <valuebox/NumericalValueBox.h>

#include <cmath>

using ValueBox::NumericalValueBox;

namespace {

/** Adds the unit of inductance to a text that ends in a prefix, or in a number. */
QString withHenry(const QString &text)
{
    const QString bare = text.trimmed();
    const bool hasPrefix = bare.section(QLatin1Char(' '), -1).at(0).isLetter()
        || bare.endsWith(NumericalValueBox::getUnitPrefix(ValueBox::Prefix_u));
    return hasPrefix ? bare + henry : bare + QLatin1Char(' ') + henry;
}

Reading::Range rangeOf(const QString &text, float value, float shown)
{
    if (std::isnan(value) || std::isnan(shown))
        return Reading::Missing;
    if (text.startsWith(QLatin1Char('<')))
        return Reading::Below;
    return text.startsWith(QLatin1Char('>')) ? Reading::Above : Reading::Inside;
}

} // namespace

QString testCurrentText(ValueBox::testI current)
{
    return NumericalValueBox::formatIinduction(NumericalValueBox::ConvertTestI_ToFlota(current));
}

QString ReadingFormat::currentText() const
{
    return quantity == Quantity::Temperature ? QString() : testCurrentText(current);
}

Reading::Reading(float measured, const ReadingFormat &format) : value(measured)
{
    if (format.quantity == Quantity::Temperature) {
        text = NumericalValueBox::formatTemperature(value);
        shown = NumericalValueBox::getValue(text);
    } else {
        const bool isResistance = format.quantity == Quantity::Resistance;
        NumericalValueBox box(isResistance ? ValueBox::Unit_Ohm : ValueBox::Unit_None,
                              format.method);
        box.setRealValue(value, format.current);
        text = box.toString();
        shown = box.getRealFormatedValue();
        if (!isResistance)
            text = withHenry(text);
    }
    range = rangeOf(text, value, shown);
}
