#pragma once

#include <QString>
#include <QStringList>

/**
 * Watches the statements that SQLite runs in this process, and its writes and flushes.
 *
 * The program's own functions replace those of the libraries with the same name. For that the
 * program must export its symbols.
 */
namespace SqliteWatch {

/** Statements that SQLite has run or refused since the last clear(), in order. */
QStringList statements();
/** Statements that SQLite had to prepare since the last clear(). */
int preparations();
/** Number of flushes (fsync, fdatasync) since the last clear(). */
int syncs();
void clear();

/** How long a statement on a locked file would wait, in milliseconds; here it does not wait. */
int lockWait();

/** Statements that contain @p part throw from now on; empty: none. */
void throwOn(const QString &part);

/** Statements that contain @p part fail from now on because the card is full; empty: none. */
void fillCardOn(const QString &part);

/** Reads of files fail after @p n more reads; below zero: they do not fail. */
void failReadsAfter(int n);
/** Whether reads of files throw from now on, as if memory had run out. */
void throwOnReads(bool on);

/** The process kills itself before its @p n-th change of a file from now on; 0: never. */
void killBeforeChange(int n);
/**
 * Number of changes of files since the last clear(): writes, truncations, deletions and flushes.
 */
int changes();

} // namespace SqliteWatch
