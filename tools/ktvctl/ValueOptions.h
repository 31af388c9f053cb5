#pragma once

#include "Command.h"
#include "Words.h"

#include <valuebox/NumericalValueBox.h>

inline constexpr Word<KTV_Configuration::MeterModels> modelWords[] = {
    {"410", KTV_Configuration::KTV_410},   {"420", KTV_Configuration::KTV_420},
    {"4200", KTV_Configuration::KTV_4200}, {"4400", KTV_Configuration::KTV_4400},
    {"PLX", KTV_Configuration::PLX_420},
};

inline constexpr Word<ValueBox::RoundMetods> methodWords[] = {
    {"R", ValueBox::Round_R},
    {"L", ValueBox::Round_L},
    {"RC", ValueBox::Round_R_TempCompensation},
    {"LC", ValueBox::Round_L_TempCompensation},
};

using RowSets = QList<ValueBox::DynamicRounding::Round_Current_I *>;

/** Table of a method; the method has one. */
const RowSets &tableOf(ValueBox::RoundMetods method);

/** "20 A"; unlike its label, which says mA. */
QString currentName(ValueBox::testI current);

/**
 * Fills the tables of the model of --model, else of the stored serial number, and takes the
 * default texts. @return why not; empty when done
 */
QString prepareTables(const Call &call);

/** Draws how fine a method's values are shown: the `plot` command. */
int plotValues(const Call &call);
