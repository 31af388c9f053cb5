#pragma once

#include "Command.h"
#include "Words.h"

#include <valuebox/NumericalValueBox.h>

inline constexpr Word<ValueBox::RoundMetods> methodWords[] = {
    {"R", ValueBox::Round_R},
    {"L", ValueBox::Round_L},
    {"RC", ValueBox::Round_R_TempCompensation},
    {"LC", ValueBox::Round_L_TempCompensation},
};

using RowSets = QList<ValueBox::DynamicRounding::Round_Current_I *>;

/** Table of a method, which must have one. */
const RowSets &tableOf(ValueBox::RoundMetods method);

/** Name of a current such as "20 A"; the library's label for it says mA. */
QString currentName(ValueBox::testI current);

/**
 * Fills the tables for the model given by --model, else for that of the stored serial number, and
 * sets the default texts. @return why it has failed; empty on success
 */
QString prepareTables(const Call &call);

/** The `plot` command: shows to how many decimals a method's values are shown. */
int plotValues(const Call &call);
