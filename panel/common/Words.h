#pragma once

#include "meter/Verdict.h"
#include "touch/Indicators.h"

#include <QString>

class KTV_DataSource;
class Texts;

/** Texts that several pages use. */
namespace Words {

struct VerdictWords
{
    QString headline; ///< "Pass", "No verdict"
    QString reason; ///< shown in smaller letters; may be empty
    ValueDisplay::State state = ValueDisplay::Idle;
};

VerdictWords verdict(const Texts &texts, const Verdict &verdict, bool hasLimit);
/** Two bounds, "1 mΩ … 2 mΩ", or one with its name, "High 2 mΩ". */
QString bounds(const Texts &texts, const QString &low, const QString &high);
/** The bounds of a limit, in the current unit. */
QString bounds(const Texts &texts, Quantity quantity, const Limit &limit);
QString quantity(const Texts &texts, Quantity quantity);
QString seconds(const Texts &texts, int milliseconds);
/** Warning that the memory card is filling up; empty if it is not. */
QString cardAlert(const Texts &texts, const KTV_DataSource &library);

} // namespace Words
