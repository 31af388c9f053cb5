#pragma once

#include "meter/Series.h"

#include <QByteArray>
#include <QDate>
#include <QString>

/** Saves a series as a file on the memory card. */
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
    QString path; ///< path of the new file
};

/**
 * The conditions of the series, one per line. Uses the library's texts, so it must be called on the
 * interface's thread.
 */
QByteArray head(const Series &series);

/**
 * The head, an empty line, a heading and the readings. Values are in the base unit, which the head
 * names; texts are as they were shown. May be called on any thread if all texts of the series
 * exist.
 */
QByteArray csv(const QByteArray &head, const Series &series);

/**
 * Writes a series into the client's folder; the file is named after the day and the first free
 * number. It is written completely or not at all. Blocks until it has been flushed to the card; for
 * threads see csv().
 * @param directory directory of the clients; ends in "/"
 * @param client name as it was entered; characters that a path cannot contain are replaced
 */
Result save(const QByteArray &head, const Series &series, const QString &directory,
            const QString &client, const QDate &day);

} // namespace SeriesFile
