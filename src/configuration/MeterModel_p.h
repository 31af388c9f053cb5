#pragma once

#include "configuration/KTV_Configuration.h"

#include <QLatin1String>

namespace Internal {

/** All models of one family round measured values in the same way. */
enum class RoundingFamily
{
    None,
    Ktv420,
    Ktv4200
};

/** Properties of one meter model. */
struct MeterModel
{
    KTV_Configuration::MeterModels model;
    QLatin1String name; ///< as users know it
    QLatin1String shortName; ///< as users type it
    QLatin1String serialPrefixes; ///< how its serial numbers begin, separated by spaces
    RoundingFamily rounding;
    QLatin1String helpFolder; ///< in the help directory; empty for the directory itself
    bool playsSamples; ///< plays signals as samples through an audio codec; other models beep
    QLatin1String languages; ///< the ones offered, separated by spaces; empty: all installed ones
};

/** Every model, the unknown one first. To add a model, add a row here. */
// clang-format off
inline const MeterModel meterModels[] = {
    {KTV_Configuration::MeterModels_NaN, QLatin1String("KTV-xxx"), QLatin1String(""),
     QLatin1String(""), RoundingFamily::None, QLatin1String(""), false, QLatin1String("")},
    {KTV_Configuration::KTV_410, QLatin1String("KTV-410"), QLatin1String("410"),
     QLatin1String("JD"), RoundingFamily::Ktv420, QLatin1String("KTV_410"), false, QLatin1String("")},
    {KTV_Configuration::KTV_420, QLatin1String("KTV-420"), QLatin1String("420"),
     QLatin1String("CH EL"), RoundingFamily::Ktv420, QLatin1String("KTV_420"), false, QLatin1String("")},
    {KTV_Configuration::KTV_4200, QLatin1String("KTV-4200"), QLatin1String("4200"),
     QLatin1String("DV"), RoundingFamily::Ktv4200, QLatin1String("KTV_4200"), true, QLatin1String("PL EN US")},
    {KTV_Configuration::KTV_4400, QLatin1String("KTV-4400"), QLatin1String("4400"),
     QLatin1String("DW"), RoundingFamily::Ktv4200, QLatin1String("KTV_4200"), true, QLatin1String("PL EN US")},
    {KTV_Configuration::PLX_420, QLatin1String("PLX-420"), QLatin1String("PLX"),
     QLatin1String("JB"), RoundingFamily::Ktv420, QLatin1String("KTV_420"), false, QLatin1String("")},
};
// clang-format on

/** Splits a column's text at its spaces. */
QStringList wordsOf(QLatin1String column);

/** The row of a model; the unknown model's row when there is none. */
const MeterModel &meterModel(KTV_Configuration::MeterModels model);
const MeterModel &meterModelOfName(const QString &name);
const MeterModel &meterModelOfSerialNumber(const QString &serial);

} // namespace Internal
