#pragma once

#include "meter/Quantity.h"

#include <valuebox/ValueTypes.h>

#include <QString>

#include <limits>

/** What decides how a reading is shown. */
struct Form
{
    Quantity quantity = Quantity::Resistance;
    ValueBox::RoundMetods method = ValueBox::Round_R;
    ValueBox::testI current = ValueBox::testI_10A;

    /** The test current as it is shown; empty where none flows. */
    QString currentText() const;
};

/** "10.0 A" */
QString testCurrentText(ValueBox::testI current);

/** A reading as it is shown. The library rounds and words it, and reads its text back. */
struct Reading
{
    enum Range
    {
        Missing, ///< nothing was measured, or nothing can be shown
        Inside,
        Below, ///< less than nothing: the voltage leads are swapped
        Above ///< more than the meter measures
    };

    Reading() = default;
    /** @param value in ohms, henries or degrees Celsius; NaN for none */
    Reading(float measured, const Form &form);

    float value = std::numeric_limits<float>::quiet_NaN(); ///< as it was measured
    QString text; ///< "1.2347 mΩ"
    /** What the text says, in ohms, henries or the unit of temperatures in effect. */
    float shown = std::numeric_limits<float>::quiet_NaN();
    Range range = Missing;
};
