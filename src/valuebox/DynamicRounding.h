#pragma once

#include "valuebox/ValueTypes.h"

#include <ktv_datasource_export.h>

#include <QList>

/** Rounding rows: with which prefix and decimals a value of some magnitude is shown. */
namespace ValueBox::DynamicRounding {

/** One row of a rounding table. */
struct RoundItem
{
    /** A row with maximum 0, no decimals and no prefix. */
    constexpr RoundItem() = default;
    /** A row with these values. */
    constexpr RoundItem(float maximumValue, qint32 decimals, qint32 powerOfTen)
        : maximum(maximumValue)
        , digits(decimals)
        , prefix(powerOfTen)
    { }

    /** Highest value that the row applies to, in ohms or henries; this value itself is included. */
    float maximum = 0;
    /** Decimals shown after scaling. */
    qint32 digits = 0;
    /** Power of ten by which the value is divided; a value of UnitPrefixs. */
    qint32 prefix = 0;
};

/** The rows for one test current. */
class KTV_DATASOURCE_EXPORT Round_Current_I
{
public:
    /** Copies the current and every row of @p other; null counts as no current and no rows. */
    explicit Round_Current_I(Round_Current_I *other);
    /** Sets the current and copies every row of @p base; null counts as no rows. */
    Round_Current_I(ValueBox::testI testCurrent, Round_Current_I *base);
    /** Deletes the rows. */
    ~Round_Current_I();
    Q_DISABLE_COPY_MOVE(Round_Current_I)

    /** Test current of the set; testI_None when it is for no particular current. */
    testI current;
    /** Rows by ascending maximum, owned by the set. */
    QList<RoundItem *> items;
};

} // namespace ValueBox::DynamicRounding
