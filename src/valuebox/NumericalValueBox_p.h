#pragma once

#include "valuebox/FixedPoint_p.h"
#include "valuebox/NumericalValueBox.h"
#include "valuebox/TextIndex_p.h"

#include <limits>

namespace Internal {

constexpr int noRows = -2; ///< index of a row while no row set is in use
constexpr int belowZero = -1; ///< index of a row for negative values

/**
 * Index of the first row whose maximum is not below a value; the number of rows if there is none,
 * and for NaN.
 */
inline int firstRowFor(float value, const QList<ValueBox::DynamicRounding::RoundItem *> &rows)
{
    const int count = int(rows.size());
    int index = 0;
    while (index < count && !(rows.at(index)->maximum >= value))
        ++index;
    return index;
}

/** Result of findBestRange() for a value and a row set, which may be null. */
inline int rangeOf(float value, const ValueBox::DynamicRounding::Round_Current_I *set)
{
    if (!set)
        return noRows;
    return value < 0 ? belowZero : firstRowFor(value, set->items);
}

/** The row for such an index, or else the nearest one; null without rows. */
inline const ValueBox::DynamicRounding::RoundItem *
rowAt(int rangeIndex, const ValueBox::DynamicRounding::Round_Current_I *set)
{
    if (!set || set->items.isEmpty() || rangeIndex == noRows)
        return nullptr;
    return set->items.at(qBound(0, rangeIndex, set->items.size() - 1));
}

using UnitIndex = TextIndex<ValueBox::Units, ValueBox::Unit_None, ValueBox::Unit_Ohm>;
using PrefixIndex = TextIndex<ValueBox::UnitPrefixs, ValueBox::Prefix_n, ValueBox::Prefix_G>;
extern UnitIndex unitTexts; ///< of NumericalValueBox::unitString
extern PrefixIndex prefixTexts; ///< of NumericalValueBox::prefixString

/** Result of parsing a text, for NumericalValueBox::parse(). */
struct ParsedText
{
    bool isNumber = false;
    bool hasUnit = false;
    bool hasPrefix = false;
    float value = std::numeric_limits<float>::quiet_NaN();
    int precision = 0;
    ValueBox::Units unit = ValueBox::Unit_None;
    ValueBox::UnitPrefixs prefix = ValueBox::Prefix_None;
};

ParsedText parsed(QStringView text);

/** A value scaled and rounded by a row; nothing if only NumericalValueBox::round() can do it. */
inline std::optional<FixedPoint> roundedNumber(float value,
                                               const ValueBox::DynamicRounding::RoundItem &row)
{
    // That round() first rounds a 5 in the tenth decimal up can change the ninth decimal of a
    // float, never the eighth.
    static_assert(FixedPoint::maxDecimals <= 8);
    return FixedPoint::of(scaled(value, row.prefix), row.digits);
}

/** The same as text, for any value. */
QString roundedText(float value, const ValueBox::DynamicRounding::RoundItem &row);

} // namespace Internal
