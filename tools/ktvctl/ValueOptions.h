#pragma once

#include "Command.h"

#include <valuebox/NumericalValueBox.h>

#include <optional>

/** A word of the command line and what it stands for. */
template <typename Value> struct Word
{
    const char *word;
    Value value;
};

/** Names of the options' words, as help shows them: "R, L, RC, LC". */
template <typename Value, std::size_t Size> QString wordList(const Word<Value> (&words)[Size])
{
    QStringList names;
    for (const auto &entry : words)
        names += QLatin1String(entry.word);
    return names.join(QLatin1String(", "));
}

/** What a word stands for, upper or lower case; nothing for an unknown one. */
template <typename Value, std::size_t Size>
std::optional<Value> valueOf(const Word<Value> (&words)[Size], const QString &name)
{
    for (const auto &entry : words) {
        if (name.compare(QLatin1String(entry.word), Qt::CaseInsensitive) == 0)
            return entry.value;
    }
    return std::nullopt;
}

/** The word of a value; empty for one without. */
template <typename Value, std::size_t Size>
QString wordOf(const Word<Value> (&words)[Size], Value value)
{
    for (const auto &entry : words) {
        if (entry.value == value)
            return QLatin1String(entry.word);
    }
    return {};
}

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
