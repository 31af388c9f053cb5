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
 * Whether the process is exiting, so that no database can be opened any more: main() has returned
 * or exit() was called, and every connection has been closed.
 */
bool areDatabasesClosed();

/**
 * The named QSQLITE connection of a store, which it removes in the order that Qt requires.
 *
 * The stores decide what is logged, what follows a failed open, and which tables a new file gets.
 * Statements on the connection must be destroyed before release().
 *
 * A change that has succeeded has been flushed to the card. SQLite alone does not ensure that: a
 * transaction ends with the deletion of its journal, and if the battery is pulled before the
 * directory is flushed, the journal is there again and undoes the change. "PRAGMA synchronous =
 * EXTRA" would flush it, but it reads the file first, so opening a locked file would wait for the
 * lock.
 */
class NamedDatabase
{
public:
    explicit NamedDatabase(QString connectionName);
    ~NamedDatabase();
    Q_DISABLE_COPY_MOVE(NamedDatabase)

    /**
     * Registers the connection for this file and opens it. It is released at the latest when the
     * process exits, because a client's static store may outlive Qt's registry of connections.
     * @return success
     */
    bool open(const QString &path);
    bool isOpen() const { return m_isRegistered && m_db.isOpen(); }
    /** Closes the file; the connection stays registered. */
    void close();
    /**
     * Closes the file and removes the connection from the driver's registry. @return whether it was
     * there; another store may have registered the same name since
     */
    bool release();

    QSqlDatabase handle() const { return m_db; }
    /** Why the latest failed open() or commit() has failed. */
    QSqlError lastError() const { return m_lastError; }

    /** Begins a transaction unless this object has one open already. @return whether it did */
    bool begin();
    /**
     * Ends the open transaction, if any; one that cannot be written is rolled back. @return whether
     * it has been flushed to the card
     */
    bool commit();
    void rollback();

private:
    friend class Statement;

    /** The prepared statement that is kept for this text, or a new one that is not prepared yet. */
    QSqlQuery statement(const QString &text) const;
    void keep(const QString &text, const QSqlQuery &query);

    /**
     * To be called after a statement has changed something: outside a transaction it flushes the
     * change.
     */
    QSqlError noteChange();
    /** Flushes the end of a transaction to the card. */
    QSqlError flush();

    const QString m_connectionName;
    QSqlDatabase m_db;
    /** Opened with the file, so that commits can be flushed even when no descriptor is left. */
    Descriptor m_directory;
    QSqlError m_lastError;
    QHash<QString, QSqlQuery> m_kept; ///< prepared statements, by their text
    bool m_isRegistered = false;
    bool m_inTransaction = false;
    bool m_hasRun = false; ///< a statement has run since the transaction began
    bool m_hasChanges = false; ///< a statement has changed something since then
};

/**
 * A transaction, which is rolled back unless it is committed.
 *
 * One that starts while another is open becomes part of it: its commit and its destructor do
 * nothing, and the owner of the outer one decides what a failure inside means.
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

    /**
     * @return whether everything has been written; always true for a part of another transaction
     */
    bool commit() { return !m_isOutermost || m_database.commit(); }

private:
    NamedDatabase &m_database;
    const bool m_isOutermost;
};

/**
 * An SQL statement. The constructor prepares it, binds the values to its placeholders in order and
 * runs it; the destructor ends it. Outside a transaction each change is a transaction by itself,
 * and has been flushed to the card when the constructor returns.
 */
class Statement
{
public:
    /** Whether the prepared statement is kept. */
    enum Use
    {
        Once, ///< not kept: the text may never be used again
        Often ///< kept, so that it is prepared only once: for the few texts that a store uses again
              ///< and again
    };

    Statement(NamedDatabase &database, const QString &text, const QVariantList &values = {},
              Use use = Once);

    bool isDone() const { return m_isDone; }
    /** Why it failed, or why next() found no further row; invalid at the end of the rows. */
    QSqlError lastError() const { return m_error.isValid() ? m_error : m_run.query.lastError(); }
    /** Whether it failed because a constraint or a trigger of the database refuses the row. */
    bool isRefused() const;

    /** Moves to the next row; the first call to the first row. @return whether there is one */
    bool next() { return m_run.query.next(); }
    QVariant value(int column) const { return m_run.query.value(column); }
    QVariant value(const QString &column) const { return m_run.query.value(column); }

private:
    /**
     * Ends the statement when it is destroyed: a kept statement that is still running would keep
     * its lock on the file.
     */
    struct Run
    {
        QSqlQuery query;
        explicit Run(const QSqlQuery &one) : query(one) { }
        ~Run() { query.finish(); }
        Q_DISABLE_COPY_MOVE(Run)
    };

    bool run(NamedDatabase &database, const QString &text, const QVariantList &values, Use use);
    /**
     * The error with which a new statement would have failed instead of a kept one; none if it is
     * the same. Log lines must not depend on whether a statement was kept.
     */
    static QSqlError failureOfFresh(const NamedDatabase &database, const QString &text);

    Run m_run;
    QSqlError m_error;
    bool m_isDone = false;
};

/** The first statements of every store's schema: a table with its version. */
QStringList versionTable(int version);

/**
 * Runs the statements of a new file in one transaction, so that a battery pulled meanwhile, or a
 * full card, leaves a file that still counts as missing. A failing statement is logged with the
 * driver's text, and the next one is run all the same.
 */
void createSchema(NamedDatabase &database, const QStringList &statements);

/**
 * Whether a store's file must be created: it is missing or empty, or its creation was interrupted,
 * so that its journal would empty it again.
 */
bool isMissing(const QString &path);

} // namespace Internal
