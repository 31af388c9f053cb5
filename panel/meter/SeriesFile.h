#pragma once

#include "meter/Series.h"

#include <QByteArray>
#include <QDate>
#include <QString>

/** A series on the memory card. */
namespace SeriesFile {

enum class Outcome
{
    Saved,
    CardFull,
    Failed
};

struct Result
{
    Outcome outcome = Outcome::Failed;
    QString path; ///< of the new file
};

/**
 * What it was recorded of and with, a line each. It is worded by the library, and so belongs to the
 * interface's thread.
 */
QByteArray head(const Series &series);

/**
 * The head, then an empty line, a heading and the readings. Values are in the base unit, which the
 * head names; texts are as they were shown. May be called on any thread when the series has them
 * all.
 */
QByteArray csv(const QByteArray &head, const Series &series);

/**
 * Writes a series into the client's folder, under the day and a number that is free. The file is
 * there whole, or not at all. Blocks until the card has it; threads as for csv().
 * @param directory of the clients; ends in "/"
 * @param client as it was entered: what a path cannot have is replaced
 */
Result save(const QByteArray &head, const Series &series, const QString &directory,
            const QString &client, const QDate &day);

} // namespace SeriesFile
