#pragma once

#include "meter/Verdict.h"
#include "touch/Indicators.h"

#include <QString>

class KTV_DataSource;
class Texts;

/** What several pages say in the same words. */
namespace Words {

struct VerdictWords
{
    QString headline; ///< "Pass", "No verdict"
    QString reason; ///< in smaller letters; may be empty
    ValueDisplay::State state = ValueDisplay::Idle;
};

VerdictWords verdict(const Texts &texts, const Verdict &verdict, bool hasLimit);
/** "1 mΩ … 2 mΩ"; a bound that is alone says which one it is. */
QString bounds(const Texts &texts, const QString &low, const QString &high);
/** The bounds of a limit, in the unit in effect. */
QString bounds(const Texts &texts, Quantity quantity, const Limit &limit);
QString quantity(const Texts &texts, Quantity quantity);
QString seconds(const Texts &texts, int milliseconds);
/** Warning of a memory card that fills up; empty for none. */
QString cardAlert(const Texts &texts, const KTV_DataSource &library);

} // namespace Words
