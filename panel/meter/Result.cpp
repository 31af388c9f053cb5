#include "meter/Result.h"

#include "Context.h"

#include <valuebox/NumericalValueBox.h>

#include <cmath>

using ValueBox::NumericalValueBox;

namespace {

/** The library's texts know no henry: it goes behind the prefix, or behind the number. */
QString withHenry(const QString &text, const QString &henry)
{
    const QString bare = text.trimmed();
    const bool hasPrefix = bare.section(QLatin1Char(' '), -1).at(0).isLetter()
        || bare.endsWith(NumericalValueBox::getUnitPrefix(ValueBox::Prefix_u));
    return hasPrefix ? bare + henry : bare + QLatin1Char(' ') + henry;
}

bool isAbove(float value, const QString &limit)
{
    return !limit.isEmpty() && value > NumericalValueBox::getValue(limit);
}

bool isBelow(float value, const QString &limit)
{
    return !limit.isEmpty() && value < NumericalValueBox::getValue(limit);
}

} // namespace

Result::Result(Context &context, float value)
{
    const Setup &setup = context.setup();
    float shown = value;
    bool isOutside = false;
    if (setup.kind() == Setup::Temperature) {
        text = NumericalValueBox::formatTemperature(value);
        shown = NumericalValueBox::getValue(text);
    } else {
        const bool isResistance = setup.kind() == Setup::Resistance;
        NumericalValueBox box(isResistance ? ValueBox::Unit_Ohm : ValueBox::Unit_None,
                              setup.roundingMethod());
        box.setRealValue(value, setup.current);
        text = box.toString();
        shown = box.getRealFormatedValue();
        isOutside = text.startsWith(QLatin1Char('<')) || text.startsWith(QLatin1Char('>'));
        if (!isResistance)
            text = withHenry(text, context.text(Text {"Units", "henry", "H"}));
    }
    if (setup.limitName.isEmpty() || std::isnan(value) || std::isnan(shown))
        return;
    // What lies outside of the meter's range is proof of nothing good.
    verdict = isOutside || isAbove(shown, setup.highLimit) || isBelow(shown, setup.lowLimit) ? Fail
                                                                                             : Pass;
}

QString Result::limitText(Context &context)
{
    const Setup &setup = context.setup();
    if (setup.limitName.isEmpty())
        return {};
    QString text;
    if (!setup.lowLimit.isEmpty())
        text += QStringLiteral("\u2265 ") + setup.lowLimit;
    if (!setup.lowLimit.isEmpty() && !setup.highLimit.isEmpty())
        text += QStringLiteral("   ");
    if (!setup.highLimit.isEmpty())
        text += QStringLiteral("\u2264 ") + setup.highLimit;
    return text;
}
