#pragma once

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QStringList>
#include <QVariant>

namespace Internal {

/**
 * One named QSQLITE connection of a store and the order in which it is given back.
 *
 * Policy stays with the stores: what is logged, what a failed open leads to, which tables
 * a new file gets. Queries on the connection must not outlive release().
 */
class NamedDatabase
{
public:
    explicit NamedDatabase(QString connectionName);
    ~NamedDatabase();
    Q_DISABLE_COPY_MOVE(NamedDatabase)

    /** Registers the connection anew for the file and opens it. @return success */
    bool open(const QString &path);
    bool isOpen() const { return m_db.isOpen(); }
    /** Closes the file; the registration stays. */
    void close();
    /** Closes the file and removes the connection from the driver's registry. */
    void release();

    QSqlDatabase handle() const { return m_db; }
    /** Why the last open() or commit() that failed did so. */
    QSqlError lastError() const { return m_lastError; }
    QSqlQuery query() const { return QSqlQuery(m_db); }

    /** Begins a transaction unless this object has one open already. @return whether it did */
    bool begin();
    /** Ends the open transaction, if any; one that cannot be written is rolled back. */
    bool commit();
    void rollback();

private:
    const QString m_connectionName;
    QSqlDatabase m_db;
    QSqlError m_lastError;
    bool m_inTransaction = false;
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
 * Prepares and runs a statement, its placeholders filled in their order. After a failure the
 * query's last error is that of the step that failed.
 */
bool execute(QSqlQuery &query, const QString &statement, const QVariantList &values = {});

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
