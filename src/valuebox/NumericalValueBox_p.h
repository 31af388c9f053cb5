#pragma once

#include "valuebox/FixedPoint_p.h"
#include "valuebox/NumericalValueBox.h"
#include "valuebox/TextIndex_p.h"

#include <limits>

namespace ValueBox {

class KTV_DATASOURCE_NO_EXPORT NumericalValueBox::Private
{
public:
    static constexpr int noRows = -2;
    static constexpr int belowZero = -1;

    Private(Units unitOfValue, RoundMetods roundMethod) : unit(unitOfValue), method(roundMethod) { }

    /** Gives the own row set its single row. */
    void makeOwnRow(int digits, int prefix);
    /** Puts the own row set to use. It is made only now: most objects live by a table. */
    void useOwnRow();
    /** Stores a value and, where its current asks for others, chooses the rows. */
    void setValue(float newValue, testI current);
    /** Chooses the rows for a current from the method's table. */
    void chooseRows(testI current);

    int rowCount() const { return active ? active->items.size() : 0; }
    /** Index of the row that fits a value, as findBestRange() hands it out. */
    int rangeOf(float number) const
    {
        if (!active)
            return noRows;
        if (number < 0)
            return belowZero;
        const auto &rows = active->items;
        const int count = rows.size();
        int index = 0;
        while (index < count && !(rows.at(index)->maximum >= number)) // NaN fits no row
            ++index;
        return index;
    }
    /** The row of such an index; null without rows. */
    const DynamicRounding::RoundItem *rowAt(int rangeIndex) const
    {
        const int count = rowCount();
        if (count == 0 || rangeIndex == noRows)
            return nullptr;
        return active->items.at(qBound(0, rangeIndex, count - 1));
    }

    /** The shown text of a value that is a number. */
    QString text() const;
    /** "< 0 mΩ" in the prefix of the lowest row. */
    QString belowZeroText(const DynamicRounding::RoundItem &row) const;
    /** Text of a number shown with a row, after a marker. */
    QString rowText(QLatin1String marker, float number, const DynamicRounding::RoundItem &row,
                    bool isMinusShown) const;
    /** The same with unit and prefix of any content, and with any number. */
    QString simplifiedRowText(QLatin1String marker, float number,
                              const DynamicRounding::RoundItem &row, bool isMinusShown) const;

    bool negativeAllowed = false;
    bool debug = false;
    float value = std::numeric_limits<float>::quiet_NaN();
    Units unit;
    RoundMetods method;
    const DynamicRounding::Round_Current_I *active = nullptr; ///< rows in use; null for none
    DynamicRounding::RoundItem ownRow;
    std::unique_ptr<DynamicRounding::Round_Current_I> ownSet;
};

} // namespace ValueBox

namespace Internal {

using UnitIndex = TextIndex<ValueBox::Units, ValueBox::Unit_None, ValueBox::Unit_Ohm>;
using PrefixIndex = TextIndex<ValueBox::UnitPrefixs, ValueBox::Prefix_n, ValueBox::Prefix_G>;
extern UnitIndex unitTexts; ///< of NumericalValueBox::unitString
extern PrefixIndex prefixTexts; ///< of NumericalValueBox::prefixString

/** What a text says, as NumericalValueBox::parse() hands it out. */
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

/** A value in a row's prefix, rounded to its decimals; nothing when that takes round(). */
inline std::optional<FixedPoint> roundedNumber(float value,
                                               const ValueBox::DynamicRounding::RoundItem &row)
{
    // A nudge of the tenth decimal can reach the ninth of a float, never the eighth.
    constexpr int untouchedDecimals = 8;
    if (row.digits > untouchedDecimals)
        return std::nullopt;
    return FixedPoint::of(scaled(value, row.prefix), row.digits);
}

/** The same as text, for every value. */
QString roundedText(float value, const ValueBox::DynamicRounding::RoundItem &row);

} // namespace Internal
