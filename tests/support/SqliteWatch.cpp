#include "support/SqliteWatch.h"

#include <QScopedValueRollback>

#include <cerrno>
#include <csignal>
#include <dlfcn.h>
#include <sqlite3.h>
#include <stdexcept>
#include <unistd.h>

namespace {

QStringList s_statements;
int s_preparations = 0;
bool s_isInner = false;
QString s_throwOn;
QString s_fillCardOn;
int s_syncs = 0;
int s_changes = 0;
int s_killAt = 0;
int s_readsLeft = -1;
bool s_readsThrow = false;
int s_lockWait = -1;

/** The libraries' own function of that name. */
template <typename Function> Function next(const char *name)
{
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

void countChange()
{
    if (++s_changes == s_killAt)
        ::kill(::getpid(), SIGKILL);
}

} // namespace

namespace SqliteWatch {

QStringList statements()
{
    return s_statements;
}

int preparations()
{
    return s_preparations;
}

int syncs()
{
    return s_syncs;
}

int changes()
{
    return s_changes;
}

void clear()
{
    s_statements.clear();
    s_preparations = 0;
    s_syncs = 0;
    s_changes = 0;
}

int lockWait()
{
    return s_lockWait;
}

void throwOn(const QString &part)
{
    s_throwOn = part;
}

void fillCardOn(const QString &part)
{
    s_fillCardOn = part;
}

void failReadsAfter(int n)
{
    s_readsLeft = n;
}

void throwOnReads(bool on)
{
    s_readsThrow = on;
}

void killBeforeChange(int n)
{
    s_killAt = n == 0 ? 0 : s_changes + n;
}

} // namespace SqliteWatch

extern "C" {

int sqlite3_prepare16_v2(sqlite3 *database, const void *text, int bytes, sqlite3_stmt **statement,
                         const void **tail)
{
    static const auto original = next<decltype(&sqlite3_prepare16_v2)>("sqlite3_prepare16_v2");
    // SQLite reads the names of the tables here; that must not count as a statement.
    const QScopedValueRollback<bool> inner(s_isInner, true);
    ++s_preparations;
    const int result = original(database, text, bytes, statement, tail);
    if (result != SQLITE_OK)
        s_statements += QString::fromUtf16(static_cast<const char16_t *>(text));
    return result;
}

int sqlite3_step(sqlite3_stmt *statement)
{
    static const auto original = next<decltype(&sqlite3_step)>("sqlite3_step");
    const bool isOfSqlite = s_isInner;
    const QScopedValueRollback<bool> inner(s_isInner, true);
    if (isOfSqlite || sqlite3_stmt_busy(statement) != 0)
        return original(statement);
    s_statements += QString::fromUtf8(sqlite3_sql(statement));
    if (!s_throwOn.isEmpty() && s_statements.last().contains(s_throwOn))
        throw std::runtime_error("thrown by the driver: %1 %s");
    if (!s_fillCardOn.isEmpty() && s_statements.last().contains(s_fillCardOn)) {
        // As SQLite does it: the transaction and its changes are lost.
        sqlite3_exec(sqlite3_db_handle(statement), "ROLLBACK", nullptr, nullptr, nullptr);
        return SQLITE_FULL;
    }
    return original(statement);
}

int sqlite3_busy_timeout(sqlite3 *database, int milliseconds)
{
    static const auto original = next<decltype(&sqlite3_busy_timeout)>("sqlite3_busy_timeout");
    s_lockWait = milliseconds;
    return original(database, 0);
}

ssize_t read(int file, void *bytes, size_t size)
{
    static const auto original = next<decltype(&read)>("read");
    if (s_readsThrow)
        throw std::runtime_error("thrown by a read");
    if (s_readsLeft == 0) {
        errno = EIO;
        return -1;
    }
    s_readsLeft -= s_readsLeft > 0;
    return original(file, bytes, size);
}

int fdatasync(int file)
{
    static const auto original = next<decltype(&fdatasync)>("fdatasync");
    ++s_syncs;
    countChange();
    return original(file);
}

int fsync(int file)
{
    static const auto original = next<decltype(&fsync)>("fsync");
    ++s_syncs;
    countChange();
    return original(file);
}

ssize_t pwrite64(int file, const void *bytes, size_t size, off64_t offset)
{
    static const auto original = next<decltype(&pwrite64)>("pwrite64");
    countChange();
    return original(file, bytes, size, offset);
}

int ftruncate64(int file, off64_t size) noexcept
{
    static const auto original = next<decltype(&ftruncate64)>("ftruncate64");
    countChange();
    return original(file, size);
}

int unlink(const char *path) noexcept
{
    static const auto original = next<decltype(&unlink)>("unlink");
    countChange();
    return original(path);
}

} // extern "C"
