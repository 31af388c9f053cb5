#pragma once

#include <QString>
#include <QStringList>

/**
 * Watches what the SQLite library of this process is asked to do, and what it does to the card.
 *
 * The program's own functions of the same names come before those of the libraries. For that the
 * program must export its symbols.
 */
namespace SqliteWatch {

/** Statements that SQLite began or refused since the last clear(), in their order. */
QStringList statements();
/** Statements that SQLite had to prepare since the last clear(). */
int preparations();
/** Waits for the card since the last clear(). */
int syncs();
void clear();

/** How long a statement on a locked file was to wait, in milliseconds; here it does not wait. */
int lockWait();

/** Statements that contain @p part throw from now on; empty: none. */
void throwOn(const QString &part);

/** Statements that contain @p part find the card full from now on; empty: none. */
void fillCardOn(const QString &part);

/** Reads of files fail after @p n more; below zero: they do not. */
void failReadsAfter(int n);
/** Whether reads of files throw from now on, as if memory had run out on the way. */
void throwOnReads(bool on);

/** The process kills itself before its @p n-th change of a file from now on; 0: never. */
void killBeforeChange(int n);
/** Changes of files since the last clear(): writes, cuts, deletions and waits for the card. */
int changes();

} // namespace SqliteWatch
