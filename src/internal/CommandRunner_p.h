#pragma once

#include <QString>
#include <QStringList>

#include <atomic>

/**
 * The one place that starts a command and waits for it.
 *
 * The result says how far the command came; the caller decides what to log and what to do. A
 * command that does not end in time, or prints more than 1 MiB, is killed with everything it
 * started; one that does not end even then is abandoned after 500 ms. Its standard input is empty;
 * its standard error is discarded.
 */
namespace Internal {

struct CommandResult
{
    enum Outcome
    {
        NotStarted,
        NotFinished,
        Finished
    };
    Outcome outcome = NotStarted;
    QString output; ///< standard output that arrived, even if NotFinished
    bool lacksResources = false; ///< not started because descriptors, processes or memory ran out

    bool finished() const { return outcome == Finished; }
};

/** Limits in milliseconds. */
struct Waits
{
    /**
     * With NoStartWait a failed start is reported as NotFinished, with any other value as
     * NotStarted. The value is not a waiting time: starting always blocks until the program is
     * loaded or has failed to load, even if the file system does not answer.
     */
    int start = NoStartWait;
    int finish = Forever; ///< from the moment when the program is loaded
    /**
     * When another thread sets this flag, the command gets SIGTERM and 300 ms later SIGKILL, and
     * counts as not finished; if it is set already, nothing is started. May be null. A command with
     * such a flag also gets SIGTERM when this process dies.
     */
    const std::atomic<bool> *stop = nullptr;

    static constexpr int NoStartWait = -2; ///< a failed start then counts as not finished
    static constexpr int Forever = -1;
};

/** Runs @p program with exactly these @p arguments, without a shell. */
CommandResult runProgram(const QString &program, const QStringList &arguments, Waits waits);

/** Runs a command line without a shell; it is split at spaces as QProcess does it. */
CommandResult runDirect(const QString &line, Waits waits);

/** Runs a command line with `sh -c`. It must never contain text from a user. */
CommandResult runShell(const QString &line, Waits waits);

/**
 * Starts a command line, split at spaces, and does not wait for it: it may outlive this process.
 * @return whether it could be started
 */
bool startDetached(const QString &line);

} // namespace Internal
