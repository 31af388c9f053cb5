#pragma once

#include "configuration/MeterModel_p.h"

#include <QStringList>

#include <functional>
#include <optional>

// The library's table of models, as ktvctl needs it: a new model needs no change here.

/** The short names of the models, for --model. */
QStringList modelWords();
/** The model of a short name, in any letter case; no value for an unknown one. */
std::optional<KTV_Configuration::MeterModels> modelOfWord(const QString &word);

/** The names of the models with a property: "KTV-4200 and KTV-4400". */
QString modelsThat(const std::function<bool(const Internal::MeterModel &)> &have);
/** The names of those that play signals as samples. */
QString modelsThatPlaySamples();
