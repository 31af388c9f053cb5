#pragma once

#include "internal/Descriptor_p.h"

#include <QHash>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QStringList>
#include <QVariant>

namespace Internal {

/**
 * Whether it is too late in the process's life to open a database: main() has returned or exit()
 * was called, and every connection has been closed.
 */
bool hasGivenUpDatabases();

/**
 * One named QSQLITE connection of a store and the order in which it is given back.
 *
 * Policy stays with the stores: what is logged, what a failed open leads to, which tables
 * a new file gets. Statements on the connection must not outlive release().
 *
 * A change that has succeeded is on the card. SQLite alone does not see to that: a transaction
 * ends with the deletion of its journal, and a battery pulled before the directory is flushed
 * brings the journal back, which then undoes the change. "PRAGMA synchronous = EXTRA" would flush
 * it, but reads the file first: to open one that is locked would wait for the lock.
 */
class NamedDatabase
{
public:
    explicit NamedDatabase(QString connectionName);
    ~NamedDatabase();
    Q_DISABLE_COPY_MOVE(NamedDatabase)

    /**
     * Registers the connection anew for the file and opens it. It is released at the latest as
     * the process leaves, for a client's static store may outlive Qt's registry of connections.
     * @return success
     */
    bool open(const QString &path);
    bool isOpen() const { return m_isRegistered && m_db.isOpen(); }
    /** Closes the file; the registration stays. */
    void close();
    /** Closes the file and removes the connection from the driver's registry. */
    void release();

    QSqlDatabase handle() const { return m_db; }
    /** Why the last open() or commit() that failed did so. */
    QSqlError lastError() const { return m_lastError; }

    /** Begins a transaction unless this object has one open already. @return whether it did */
    bool begin();
    /**
     * Ends the open transaction, if any; one that cannot be written is rolled back.
     * @return whether the card has it
     */
    bool commit();
    void rollback();

private:
    friend class Statement;

    /** A statement of that text, not yet prepared, unless it has been kept. */
    QSqlQuery statement(const QString &text) const;
    void keep(const QString &text, const QSqlQuery &query);

    /** A statement has changed something: outside of a transaction it is flushed at once. */
    QSqlError noteChange();
    /** Flushes the end of a transaction to the card. */
    QSqlError flush();

    const QString m_connectionName;
    QSqlDatabase m_db;
    /** Open with the file: what SQLite has committed is flushed when no descriptor is left, too. */
    Descriptor m_directory;
    QSqlError m_lastError;
    QHash<QString, QSqlQuery> m_kept; ///< prepared statements by their text; none is running
    bool m_isRegistered = false;
    bool m_inTransaction = false;
    bool m_hasRun = false; ///< a statement, since the transaction began
    bool m_hasChanges = false; ///< since the transaction began
};

/**
 * Rolls back unless committed.
 *
 * One that starts while another is open becomes part of it: neither its commit nor its end
 * touches the file, and the owner of the outer one decides what a failure inside means.
 */
class Transaction
{
public:
    explicit Transaction(NamedDatabase &database)
        : m_database(database)
        , m_isOutermost(database.begin())
    { }
    ~Transaction()
    {
        if (m_isOutermost)
            m_database.rollback();
    }
    Q_DISABLE_COPY_MOVE(Transaction)

    /** @return whether the file has it all; part of another transaction: true */
    bool commit() { return !m_isOutermost || m_database.commit(); }

private:
    NamedDatabase &m_database;
    const bool m_isOutermost;
};

/**
 * A statement. The constructor prepares it, binds the values to its placeholders in their order
 * and runs it; the destructor ends it. Outside of a transaction a change is a transaction by
 * itself: it has been flushed to the card when the constructor returns.
 */
class Statement
{
public:
    /** What becomes of the prepared statement. */
    enum Use
    {
        Once, ///< its text may never come again
        Often ///< it is kept, and prepared only once: for texts of which a store has few
    };

    Statement(NamedDatabase &database, const QString &text, const QVariantList &values = {},
              Use use = Once);

    bool isDone() const { return m_isDone; }
    /** Why it was not done, or why next() found no more row: invalid at the end of the rows. */
    QSqlError lastError() const { return m_error.isValid() ? m_error : m_run.query.lastError(); }

    /** Goes on to the next row, the first one at first. @return whether there is one */
    bool next() { return m_run.query.next(); }
    QVariant value(int column) const { return m_run.query.value(column); }
    QVariant value(const QString &column) const { return m_run.query.value(column); }

private:
    /** A kept statement that goes on running would hold its lock on the file. */
    struct Run
    {
        QSqlQuery query;
        explicit Run(const QSqlQuery &one) : query(one) { }
        ~Run() { query.finish(); }
        Q_DISABLE_COPY_MOVE(Run)
    };

    bool run(NamedDatabase &database, const QString &text, const QVariantList &values, Use use);
    /** Why a fresh statement would have failed in a kept one's place; no error: as that one did. */
    static QSqlError failureOfFresh(const NamedDatabase &database, const QString &text);

    Run m_run;
    QSqlError m_error;
    bool m_isDone = false;
};

/** The statements that every store's schema begins with: a table that holds its version. */
QStringList versionTable(int version);

/**
 * Runs the statements of a new file in one transaction, so that a battery pulled meanwhile, or a
 * card that fills up, leaves a file that still counts as missing. A failing statement is logged
 * with the driver's text, and the next one still runs.
 */
void createSchema(NamedDatabase &database, const QStringList &statements);

/**
 * Whether a store's file must be created: it is missing, holds nothing, or its creation was
 * cut short (its journal would empty it again).
 */
bool isMissing(const QString &path);

} // namespace Internal
