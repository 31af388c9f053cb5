#include "internal/NamedDatabase_p.h"

#include "internal/DurableFile_p.h"
#include "internal/Guarded_p.h"
#include "internal/RegularFile_p.h"
#include "internal/log_p.h"

#include <QFileInfo>
#include <QtEndian>

#include <atomic>
#include <cerrno>
#include <mutex>
#include <set>
#include <utility>

namespace Internal {

namespace {

QString connectOptions()
{
    // kept: Qt's driver ignores the PRAGMA words
    return QStringLiteral("Version=3;Legacy Format=True; PRAGMA temp_store=memory;"
                          "PRAGMA synchronous = FULL;PRAGMA journal_mode = DELETE;"
                          "PRAGMA locking_mode=EXCLUSIVE;");
}

/** Whether a statement itself is wrong, as opposed to a failure of the card or of memory. */
bool isStatementsFault(const QSqlError &error)
{
    return error.nativeErrorCode() == QLatin1String("1"); // SQLITE_ERROR
}

/** Runs a statement. @return its error; invalid on success */
QSqlError failureOf(NamedDatabase &database, const QString &text)
{
    const Statement statement(database, text);
    return statement.isDone() ? QSqlError() : statement.lastError();
}

QString journalOf(const QString &path)
{
    return path + QStringLiteral("-journal");
}

/** Whether the journal of a database shows that the database was empty before the transaction. */
bool journalEmptiesDatabase(const QString &path)
{
    static constexpr char magic[] = "\xd9\xd5\x05\xf9\x20\xa1\x63\xd7";
    static constexpr int magicSize = 8;
    static constexpr int pageCountOffset = 16;
    RegularFile journal(journalOf(path));
    if (!journal.open(QIODevice::ReadOnly))
        return false;
    const QByteArray header = journal.read(pageCountOffset + int(sizeof(quint32)));
    return header.size() == pageCountOffset + int(sizeof(quint32))
        && header.startsWith(QByteArray::fromRawData(magic, magicSize))
        && qFromBigEndian<quint32>(header.constData() + pageCountOffset) == 0;
}

/** The registered connections, to be closed before Qt's registry of them is destroyed. */
class OpenDatabases
{
public:
    /** Never deleted, because a client's static objects may still use the library after main(). */
    static OpenDatabases &instance()
    {
        static auto *const databases = new OpenDatabases;
        return *databases;
    }

    void add(NamedDatabase *database)
    {
        // Static objects are destroyed in reverse order. First Qt's registry, and the objects that
        // Qt needs to free a query, are created; so they are destroyed after atExit.
        QSqlDatabase::connectionNames();
        const QSqlQuery query {QSqlDatabase()};
        static const AtExit atExit;
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_databases.insert(database);
    }

    void remove(NamedDatabase *database)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_databases.erase(database);
    }

    bool areClosed() const { return m_areClosed; }

private:
    struct AtExit
    {
        AtExit() = default;
        ~AtExit() { OpenDatabases::instance().closeAll(); }
        Q_DISABLE_COPY_MOVE(AtExit)
    };

    void closeAll()
    {
        m_areClosed = true;
        std::set<NamedDatabase *> databases;
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            databases = m_databases;
        }
        for (NamedDatabase *database : databases)
            database->release();
    }

    std::mutex m_mutex;
    std::set<NamedDatabase *> m_databases;
    std::atomic<bool> m_areClosed {false};
};

} // namespace

bool areDatabasesClosed()
{
    return OpenDatabases::instance().areClosed();
}

NamedDatabase::NamedDatabase(QString connectionName) : m_connectionName(std::move(connectionName))
{ }

NamedDatabase::~NamedDatabase()
{
    release();
}

bool NamedDatabase::open(const QString &path)
{
    release();
    if (areDatabasesClosed())
        return false;
    OpenDatabases::instance().add(this);
    m_isRegistered = true;
    m_db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connectionName);
    // SQLite would open a device as an empty database; a path below the device cannot be opened.
    m_db.setDatabaseName(isSpecialFile(path) ? path + QStringLiteral("/none") : path);
    // SQLite would wait for the other end of a named pipe; such a file is no journal.
    if (isSpecialFile(journalOf(path)))
        QFile::remove(journalOf(path));
    m_db.setConnectOptions(connectOptions());
    if (!m_db.open()) {
        m_lastError = m_db.lastError();
        return false;
    }
    m_directory.reset(openDirectoryOf(path));
    return true;
}

void NamedDatabase::close()
{
    m_inTransaction = false;
    m_kept.clear(); // they would keep the file open
    if (isOpen())
        m_db.close();
    m_directory.close();
}

bool NamedDatabase::release()
{
    close();
    if (!m_isRegistered)
        return false;
    OpenDatabases::instance().remove(this);
    m_isRegistered = false;
    const bool isOurs = m_db.isValid(); // false if another store has registered the same name since
    m_db = QSqlDatabase(); // Qt warns if a connection is removed while a handle exists
    if (isOurs)
        QSqlDatabase::removeDatabase(m_connectionName);
    return isOurs;
}

bool NamedDatabase::begin()
{
    if (m_inTransaction)
        return false;
    m_inTransaction = m_db.transaction();
    m_hasRun = false;
    m_hasChanges = false;
    return m_inTransaction;
}

bool NamedDatabase::commit()
{
    if (!m_inTransaction)
        return true;
    if (!m_db.commit()) {
        m_lastError = m_db.lastError(); // saved, because rollback() may set another error
        rollback();
        return false;
    }
    m_inTransaction = false;
    m_lastError = m_hasChanges ? flush() : QSqlError();
    return !m_lastError.isValid();
}

void NamedDatabase::rollback()
{
    if (!m_inTransaction)
        return;
    m_inTransaction = false;
    guarded([this] { m_db.rollback(); }); // the caller may be handling an exception already
}

QSqlError NamedDatabase::noteChange()
{
    m_hasChanges = true;
    return m_inTransaction ? QSqlError() : flush();
}

QSqlError NamedDatabase::flush()
{
    if (!m_directory.isOpen()) // no descriptor was left when the file was opened
        m_directory.reset(openDirectoryOf(m_db.databaseName()));
    if (m_directory.isOpen() && flushFile(m_directory.number()))
        return {};
    return {QStringLiteral("Unable to flush the directory"), qt_error_string(errno),
            QSqlError::TransactionError};
}

QSqlQuery NamedDatabase::statement(const QString &text) const
{
    const auto kept = m_kept.find(text);
    if (kept != m_kept.end())
        return *kept;
    QSqlQuery query(m_db);
    query.setForwardOnly(true);
    return query;
}

void NamedDatabase::keep(const QString &text, const QSqlQuery &query)
{
    constexpr int most = 64; // more than a store needs, unless the language is changed often
    if (m_kept.size() >= most)
        m_kept.clear();
    m_kept.insert(text, query);
}

Statement::Statement(NamedDatabase &database, const QString &text, const QVariantList &values,
                     Use use)
    : m_run(database.statement(text))
    , m_isDone(run(database, text, values, use))
{
    // After a failure all statements are prepared again: one that was prepared before another
    // program changed the tables would report the next failure with another text.
    if (!m_isDone)
        database.m_kept.clear();
    database.m_hasRun = true;
}

bool Statement::isRefused() const
{
    constexpr int constraint = 19; // SQLITE_CONSTRAINT; the higher bytes say which one
    return !m_isDone && (lastError().nativeErrorCode().toInt() & 0xff) == constraint;
}

bool Statement::run(NamedDatabase &database, const QString &text, const QVariantList &values,
                    Use use)
{
    QSqlQuery &query = m_run.query;
    const bool isKept = !query.lastQuery().isEmpty();
    if (!isKept) {
        // Not run after a failed preparation, because that would replace the error.
        if (!query.prepare(text))
            return false;
        if (use == Often)
            database.keep(text, query);
    }
    for (int i = 0; i < values.size(); ++i)
        query.bindValue(i, values.at(i));
    if (!query.exec()) {
        if (isKept && isStatementsFault(query.lastError()))
            m_error = failureOfFresh(database, text);
        return false;
    }
    if (!query.isSelect())
        m_error = database.noteChange();
    return !m_error.isValid();
}

QSqlError Statement::failureOfFresh(const NamedDatabase &database, const QString &text)
{
    // Another program has changed the tables. Outside a transaction, or as its first statement, a
    // new statement would be prepared with the old tables and fail when it is run, as the kept one
    // did. Later in a transaction the new tables are known, and it would fail when it is prepared.
    if (!database.m_inTransaction || !database.m_hasRun)
        return {};
    QSqlQuery fresh(database.m_db);
    return fresh.prepare(text) ? QSqlError() : fresh.lastError();
}

QStringList versionTable(int version)
{
    return {
        QStringLiteral("CREATE TABLE IF NOT EXISTS Setting (SETk_1_ID INTEGER UNIQUE PRIMARY KEY,"
                       "SET_Key VARCHAR(255),SET_Value VARCHAR(255))"),
        QStringLiteral("INSERT INTO Setting (SET_Key, SET_Value) VALUES ('Version',")
            + QString::number(version) + QLatin1Char(')'),
    };
}

void createSchema(NamedDatabase &database, const QStringList &statements)
{
    bool canBeKept = true;
    Transaction transaction(database);
    for (const QString &statement : statements) {
        const QSqlError error = failureOf(database, statement);
        if (!error.isValid())
            continue;
        log() << error.text();
        if (isStatementsFault(error))
            continue;
        // A full card may have ended the transaction; the following statements must not be
        // committed without the earlier ones.
        canBeKept = false;
        database.rollback();
        database.begin();
    }
    if (canBeKept && !transaction.commit())
        log() << database.lastError().text();
}

bool isMissing(const QString &path)
{
    const QFileInfo file(path);
    return !file.exists() || (file.isFile() && file.size() == 0) || journalEmptiesDatabase(path);
}

} // namespace Internal
