#pragma once

#include "meter/Quantity.h"

#include <valuebox/ValueTypes.h>

#include <QString>

#include <limits>

/** What decides how a reading is shown. */
struct ReadingFormat
{
    Quantity quantity = Quantity::Resistance;
    ValueBox::RoundMetods method = ValueBox::Round_R;
    ValueBox::testI current = ValueBox::testI_10A;

    /** The test current as it is shown; empty for temperatures, which need none. */
    QString currentText() const;
};

/** A test current as it is shown, such as "10.0 A". */
QString testCurrentText(ValueBox::testI current);

/** A reading as it is shown: the library rounds it, makes its text, and reads that back. */
struct Reading
{
    enum Range
    {
        Missing, ///< nothing was measured, or nothing can be shown
        Inside,
        Below, ///< below zero: the voltage leads are swapped
        Above ///< above the range of the meter
    };

    Reading() = default;
    /** @param value in ohms, henries or degrees Celsius; NaN for none */
    Reading(float measured, const ReadingFormat &format);

    float value = std::numeric_limits<float>::quiet_NaN(); ///< as it was measured
    QString text; ///< "1.2347 mΩ"
    /** The value of the text, in ohms, henries or the current unit of temperature. */
    float shown = std::numeric_limits<float>::quiet_NaN();
    Range range = Missing;
};
