#include "internal/log_p.h"
#include "valuebox/FixedPoint_p.h"
#include "valuebox/NumericalValueBox.h"
#include "valuebox/NumericalValueBox_p.h"
#include "valuebox/TextParts_p.h"

#include <QStringBuilder>

#include <cmath>

namespace ValueBox {

using Internal::FixedPoint;
using Internal::log;
using Internal::scaled;
using Internal::TextParts;

namespace {

/** The text for a value that cannot be shown; takes no allocation. */
QString noValueText()
{
    return QStringLiteral("---");
}

const QLatin1String overRange("> ");
const QLatin1String underRange("< 0 ");

/** A value that rounds to zero is never shown as negative. */
void removeMinusOfZero(QString &text)
{
    bool ok = false;
    const double number = text.left(text.indexOf(QLatin1Char(' '))).toDouble(&ok);
    if (ok && number == 0)
        text.remove(QLatin1Char('-'));
}

} // namespace

} // namespace ValueBox

namespace Internal {

using ValueBox::DynamicRounding::RoundItem;

QString roundedText(float value, const RoundItem &row)
{
    if (const auto number = roundedNumber(value, row))
        return toText(*number);
    return ValueBox::NumericalValueBox::round(double(scaled(value, row.prefix)),
                                              quint32(row.digits));
}

} // namespace Internal

namespace ValueBox {

using DynamicRounding::RoundItem;

QString NumericalValueBox::round(double value, unsigned int digits)
{
    constexpr int tenthDecimal = 10;
    const QString longText = QString::number(value, 'f', tenthDecimal);
    if (longText.endsWith(QLatin1Char('5')) && longText.contains(QLatin1Char('.')))
        value = double((longText + QLatin1Char('1')).toFloat());
    return QString::number(value, 'f', int(digits));
}

namespace {

/** Text such as "< 0 mΩ", with the prefix of the lowest row. */
QString belowZeroText(const RoundItem &row, Units unit)
{
    const QString text = underRange % NumericalValueBox::getUnitPrefix(UnitPrefixs(row.prefix))
        % NumericalValueBox::getUnit(unit);
    return text.contains(noValueText()) ? noValueText() : text.simplified();
}

/** The same as rowText(), but for any number and any text of unit and prefix. */
QString anyRowText(QLatin1String marker, bool isNegative, float number, const RoundItem &row,
                   Units unit)
{
    QString text = marker + Internal::roundedText(number, row) + QLatin1Char(' ')
        + NumericalValueBox::getUnitPrefix(UnitPrefixs(row.prefix))
        + NumericalValueBox::getUnit(unit);
    if (isNegative)
        text.prepend(QLatin1Char('-'));
    if (text.contains(noValueText()))
        return noValueText();
    removeMinusOfZero(text);
    return text.simplified();
}

/** Text of a number, scaled and rounded by a row, after a marker such as "> ". */
inline QString rowText(QLatin1String marker, bool isNegative, float number, const RoundItem &row,
                       Units unit)
{
    const auto &prefix = Internal::prefixTexts.text(UnitPrefixs(row.prefix));
    const auto &unitText = Internal::unitTexts.text(unit);
    const float shown = scaled(number, row.prefix);
    if (Q_UNLIKELY(!FixedPoint::fits(shown, row.digits) || shown < 0 || !prefix.isPlain()
                   || !unitText.isPlain()))
        return anyRowText(marker, isNegative, number, row, unit);
    const FixedPoint fixed(shown, row.digits);
    const bool hasMinus = isNegative && fixed.digits() != 0;
    const bool hasBlank = prefix.view().size() + unitText.view().size() != 0;
    return TextParts {marker, hasMinus, fixed, hasBlank, prefix.view(), unitText.view()}.toString();
}

// Rare; not inlined, to keep the code short that runs for every value.
Q_NEVER_INLINE QString overRangeText(const RoundItem &row, Units unit)
{
    return rowText(overRange, false, row.maximum, row, unit);
}

} // namespace

QString NumericalValueBox::toString() const
{
    if (Q_UNLIKELY(m_debug))
        logBeforeText();
    QString text = shownText();
    if (Q_UNLIKELY(m_debug))
        logText(text);
    return text;
}

void NumericalValueBox::logBeforeText() const
{
    log() << "NumericalValueBox::toString()";
    if (std::isnan(m_value))
        log() << "NumericalValueBox::toString()= --- (" << double(m_value) << ")";
    else if (!m_active)
        log() << "NumericalValueBox::toString()= --- [2] (" << double(m_value) << ")";
}

void NumericalValueBox::logText(const QString &text) const
{
    if (!std::isnan(m_value))
        log() << "NumericalValueBox::toString()= " << text;
}

inline QString NumericalValueBox::shownText() const
{
    if (Q_UNLIKELY(std::isnan(m_value)))
        return QLatin1String("--- ") % getUnit(m_unit);
    if (Q_UNLIKELY(!m_active || m_active->items.isEmpty()))
        return noValueText();
    const auto &rows = m_active->items;
    const bool isNegative = m_value < 0;
    if (Q_UNLIKELY(isNegative && !m_negativeAllowed))
        return belowZeroText(*rows.first(), m_unit);
    const float magnitude = isNegative ? -m_value : m_value;
    const int index = Internal::firstRowFor(magnitude, rows);
    if (Q_UNLIKELY(index == rows.size()))
        return overRangeText(*rows.last(), m_unit);
    return rowText({}, isNegative, magnitude, *rows.at(index), m_unit);
}

QString NumericalValueBox::autoFormat(float value, Units unit, UnitPrefixs prefix, int digits,
                                      bool trimZeros)
{
    const float shown = scaled(value, prefix);
    const QStringView prefixText = Internal::prefixTexts.text(prefix).view();
    const QStringView unitText = Internal::unitTexts.text(unit).view();
    if (auto number = FixedPoint::of(shown, digits)) {
        if (trimZeros)
            number->trimZeros();
        return TextParts {{}, number->isNegative(), *number, true, prefixText, unitText}.toString();
    }
    QString text = QString::number(double(shown), 'f', digits);
    if (trimZeros && text.contains(QLatin1Char('.'))) {
        while (text.endsWith(QLatin1Char('0')))
            text.chop(1);
        if (text.endsWith(QLatin1Char('.')))
            text.chop(1);
    }
    return text + QLatin1Char(' ') + prefixText.toString() + unitText.toString();
}

namespace {

struct CurrentRange
{
    double upTo; ///< amperes, included
    float factor;
    int decimals;
    const char *unit;
};

constexpr CurrentRange inductionRanges[] = {
    {0.001, 1000.F, 2, " mA"}, {0.01, 1000.F, 1, " mA"}, {0.1, 1000.F, 0, " mA"},
    {1., 1.F, 2, " A"},        {100., 1.F, 1, " A"},     {200., 1.F, 0, " A"},
};

} // namespace

QString NumericalValueBox::formatIinduction(float amperes)
{
    // A float is compared with double bounds: 0.001F and 0.1F are above them, so in the next range.
    for (const CurrentRange &range : inductionRanges) {
        if (double(amperes) <= range.upTo) {
            const float shown = amperes * range.factor;
            return Internal::fixedText(shown, range.decimals) + QLatin1String(range.unit);
        }
    }
    return noValueText();
}

namespace {

struct VoltageRange
{
    double below; ///< volts, not included
    UnitPrefixs prefix;
    int decimals;
};

struct VoltageRanges
{
    std::initializer_list<VoltageRange> ranges;
    const char *overRange;
    UnitPrefixs overRangePrefix;
};

// kept: the upper limits differ on purpose
constexpr VoltageRanges unlimited = {
    {{0.019, Prefix_m, 3}, {0.19999, Prefix_m, 2}, {1.9999, Prefix_None, 4}, {10., Prefix_None, 3}},
    "> 10.000 ",
    Prefix_None};
constexpr VoltageRanges unlimitedUpTo1A = {
    {{1.9999, Prefix_None, 4}, {10., Prefix_None, 3}}, "> 10.000 ", Prefix_None};
constexpr VoltageRanges limitedAt10A = {
    {{0.019, Prefix_m, 3}, {0.19999, Prefix_m, 2}, {1.9999, Prefix_None, 4}},
    "> 1.9999 ",
    Prefix_None};
constexpr VoltageRanges limitedUpTo1A = {{{2.5, Prefix_None, 4}}, "> 2.5 ", Prefix_None};
constexpr VoltageRanges limitedElsewhere = {{{0.19999, Prefix_m, 2}}, "> 199.99 ", Prefix_m};

const VoltageRanges &voltageRanges(testI current, bool limited)
{
    const bool isUpTo1A = current >= testI_1mA && current <= testI_1A;
    if (isUpTo1A)
        return limited ? limitedUpTo1A : unlimitedUpTo1A;
    if (!limited)
        return unlimited;
    return current == testI_10A ? limitedAt10A : limitedElsewhere;
}

} // namespace

QString NumericalValueBox::formatDeltaU(float u, testI current, bool limited)
{
    if (u < 0)
        return underRange % getUnit(Unit_V);
    const VoltageRanges &table = voltageRanges(current, limited);
    for (const VoltageRange &range : table.ranges) {
        if (double(u) < range.below)
            return autoFormat(u, Unit_V, range.prefix, range.decimals, false);
    }
    const QString prefix =
        table.overRangePrefix == Prefix_None ? QString() : getUnitPrefix(table.overRangePrefix);
    return QLatin1String(table.overRange) % prefix % getUnit(Unit_V);
}

} // namespace ValueBox
