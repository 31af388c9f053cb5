#include "common/Words.h"

#include "touch/Texts.h"

#include <datasource/KTV_DataSource.h>
#include <valuebox/NumericalValueBox.h>

using ValueBox::NumericalValueBox;

namespace {

/** Indexed by Verdict::Reason. The texts of NoLimit and Within are those of the result. */
const Text reasons[] = {
    Text {"Panel", "done", "Done"},
    Text {"Measure", "leadOpen", "Current lead is open"},
    Text {"Panel", "leadsSwapped", "The leads are swapped"},
    Text {"Panel", "limitUnreadable", "The limit is not a number"},
    Text {"Panel", "limitEmpty", "The limit has no bounds"},
    Text {"Panel", "beyondRange", "Above the range of the meter"},
    Text {"Measure", "pass", "Pass"},
    Text {"Panel", "tooHigh", "Above the high limit"},
    Text {"Panel", "tooLow", "Below the low limit"},
};

/** Indexed by Quantity. */
const Text quantities[] = {
    Text {"Measure", "resistance", "Resistance"},
    Text {"Panel", "inductance", "Inductance"},
    Text {"Panel", "temperature", "Temperature"},
};

/** Indexed by the library's alert level - 1. */
const Text cardAlerts[] = {
    Text {"Panel", "cardFilling", "The memory card is filling up"},
    Text {"Main", "cardFull", "The memory card is almost full"},
};

} // namespace

Words::VerdictWords Words::verdict(const Texts &texts, const Verdict &verdict, bool hasLimit)
{
    const QString reason = texts.text(reasons[verdict.reason()]);
    if (verdict.outcome() == Verdict::Pass)
        return {reason, QString(), ValueDisplay::Passed};
    if (verdict.outcome() == Verdict::Fail)
        return {texts.text(Text {"Measure", "fail", "Fail"}), reason, ValueDisplay::Failed};
    if (verdict.reason() == Verdict::NoLimit)
        return {reason, QString(), ValueDisplay::Idle};
    if (!hasLimit)
        return {reason, QString(), ValueDisplay::Unjudged};
    return {texts.text(Text {"Panel", "noVerdict", "No verdict"}), reason, ValueDisplay::Unjudged};
}

QString Words::bounds(const Texts &texts, const QString &low, const QString &high)
{
    if (!low.isEmpty() && !high.isEmpty())
        return low + QStringLiteral(" \u2026 ") + high;
    if (!low.isEmpty())
        return texts.text(Text {"Lists", "low", "Low"}) + QLatin1Char(' ') + low;
    return high.isEmpty() ? QString()
                          : texts.text(Text {"Lists", "high", "High"}) + QLatin1Char(' ') + high;
}

QString Words::bounds(const Texts &texts, Quantity quantity, const Limit &limit)
{
    return bounds(texts, Limit::text(quantity, limit.low), Limit::text(quantity, limit.high));
}

QString Words::quantity(const Texts &texts, Quantity quantity)
{
    return texts.text(quantities[int(quantity)]);
}

QString Words::seconds(const Texts &texts, int milliseconds)
{
    return NumericalValueBox::autoFormat(float(milliseconds) / 1000, ValueBox::Unit_None,
                                         ValueBox::Prefix_None, 1, true)
        + texts.text(Text {"Units", "second", "s"});
}

QString Words::cardAlert(const Texts &texts, const KTV_DataSource &library)
{
    const int level = library.getFreeSpaceAlert();
    return level > 0 ? texts.text(cardAlerts[level - 1]) : QString();
}
