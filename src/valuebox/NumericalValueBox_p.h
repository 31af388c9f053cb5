#pragma once

#include "valuebox/FixedPoint_p.h"
#include "valuebox/NumericalValueBox.h"

#include <limits>
#include <optional>

namespace ValueBox {

class NumericalValueBox::Private
{
public:
    explicit Private(Units unitOfValue = Unit_None, RoundMetods roundMethod = Round_Static)
        : unit(unitOfValue)
        , method(roundMethod)
    { }

    /** Gives the own row set its single row. */
    void makeOwnRow(int digits, int prefix);
    /** Puts the own row set to use. It is made only now: most objects live by a table. */
    void useOwnRow();
    void setValue(float newValue, testI current);
    /** Chooses the rows for a current from the method's table. */
    void chooseRows(testI current);

    int rowCount() const { return active ? active->items.size() : 0; }
    /** The row of an index as findBestRange() gives it; null without rows. */
    const DynamicRounding::RoundItem *rowAt(int rangeIndex) const;

    /** Text of a number shown with a row, after a marker. */
    QString rowText(QLatin1String marker, float number, const DynamicRounding::RoundItem &row,
                    bool isMinusShown) const;
    /** "< 0 mΩ" in the prefix of the lowest row. */
    QString belowZeroText(const DynamicRounding::RoundItem &row) const;
    /** The shown text of a value that is a number. */
    QString text(const NumericalValueBox &box) const;

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

/** Text of a unit or prefix; empty when the texts lack it. Valid until they change. */
template <typename Key> QStringView textOf(const QHash<Key, QString> &texts, Key key)
{
    const auto found = texts.constFind(key);
    return found == texts.constEnd() ? QStringView() : QStringView(*found);
}

/** What a text says, as NumericalValueBox::parse() hands it out. */
struct ParsedText
{
    bool isNumber = false;
    float value = std::numeric_limits<float>::quiet_NaN();
    int precision = 0;
    bool hasUnit = false;
    ValueBox::Units unit = ValueBox::Unit_None;
    bool hasPrefix = false;
    ValueBox::UnitPrefixs prefix = ValueBox::Prefix_None;
};

ParsedText parsed(QStringView text);

/** A value in a row's prefix, rounded to its decimals; nothing when that takes round(). */
std::optional<FixedPoint> roundedNumber(float value,
                                        const ValueBox::DynamicRounding::RoundItem &row);
/** The same as text, for every value. */
QString roundedText(float value, const ValueBox::DynamicRounding::RoundItem &row);

} // namespace Internal
