#pragma once

#include <QString>
#include <QStringList>

#include <atomic>

/**
 * The one place that starts a command and waits for it.
 *
 * The result tells how far the command came; the caller chooses the text to log and the
 * consequence. A command that does not end in time, or prints more than 1 MiB, is killed with
 * everything it started; one that the kernel does not let go is left after 500 ms. Its standard
 * input is empty; its standard error is discarded.
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
    bool lacksResources = false; ///< Not started for want of descriptors, processes or memory.

    bool finished() const { return outcome == Finished; }
};

/** Limits in milliseconds. */
struct Waits
{
    /**
     * Whether a failed start is told apart: any other value than NoStartWait. No time is waited
     * for it: when a start returns, the program is loaded, or is not to be had. A file system that
     * does not answer holds the caller until it does.
     */
    int start = NoStartWait;
    int finish = Forever; ///< counted from the loaded program
    /**
     * When another thread sets it, the command gets SIGTERM, 300 ms later SIGKILL, and counts as
     * not finished; when it is set already, nothing is started. May be null. A command with such
     * a flag also ends when this process dies.
     */
    const std::atomic<bool> *stop = nullptr;

    static constexpr int NoStartWait = -2; ///< a failed start then counts as not finished
    static constexpr int Forever = -1;
};

/** Runs @p program with @p arguments as they stand; no shell sees them. */
CommandResult runProgram(const QString &program, const QStringList &arguments, Waits waits);

/** Runs a command line split at its blanks, as QProcess splits it; no shell sees it. */
CommandResult runDirect(const QString &line, Waits waits);

/** Runs a command line with `sh -c`. User text never belongs in it. */
CommandResult runShell(const QString &line, Waits waits);

/**
 * Starts a command line split at its blanks and leaves it to itself: it may outlive this process.
 * @return whether it could be started
 */
bool startDetached(const QString &line);

} // namespace Internal
