#pragma once

#include "internal/Descriptor_p.h"

#include <QByteArray>
#include <QDeadlineTimer>
#include <QString>
#include <QStringList>

#include <sys/types.h>

namespace Internal {

/** Children that were killed but have not ended, because they wait in the kernel. */
namespace AbandonedChildren {

/** How long a killed child has to end before it is abandoned, in milliseconds. */
constexpr int killTime = 500;

/** Adds a child that nobody waits for any more; it is reaped later. From any thread. */
void add(pid_t id);
/** Reaps those that have ended. @return whether so many are left that no child must be started */
bool areTooMany();

} // namespace AbandonedChildren

/**
 * A child process with its own process group, so that it can be ended together with everything that
 * it has started; its standard output is collected here.
 *
 * It is started without copying this process, so starting takes the same time however large this
 * process is, and without an event dispatcher, so any thread may start one. Nothing here depends on
 * SIGCHLD, and only this child is waited for, never other children of the process.
 */
class ChildProcess
{
public:
    enum Lifetime
    {
        Independent,
        /** The kernel sends it SIGTERM when the thread that started it ends, even after a crash. */
        BoundToThread
    };
    /**
     * In bytes. No tool of a device prints this much; one that does is treated as if it never
     * ended.
     */
    static constexpr int maxOutput = 1024 * 1024;

    /**
     * Starts @p program, found through PATH, and waits until it is loaded. There is no time limit
     * for this: a file system that does not answer blocks the caller. While four children exist
     * that could not be killed, no other is started.
     */
    ChildProcess(const QString &program, const QStringList &arguments, Lifetime lifetime);
    /**
     * Kills what still runs, with everything that it has started. Blocks until the child has ended,
     * 500 ms at most: a child that even SIGKILL does not end, because it waits in the kernel, is
     * abandoned.
     */
    ~ChildProcess();
    Q_DISABLE_COPY_MOVE(ChildProcess)

    bool isStarted() const { return m_id > 0; }
    /** Whether it could not be started because descriptors, processes or memory ran out. */
    bool lacksResources() const;
    /**
     * Collects the output until the child ends. @return whether it has ended; false at once when it
     * has printed more than maxOutput
     */
    bool waitForFinished(const QDeadlineTimer &deadline);
    bool hasPrintedTooMuch() const { return m_output.size() > maxOutput; }
    /** The output so far, maxOutput at most. */
    QByteArray output() const { return m_output.left(maxOutput); }
    /** Sends @p signal to the child and to everything that it has started. */
    void signalGroup(int signal) const;

private:
    bool hasEnded() const;
    bool reap(const QDeadlineTimer &deadline) const;
    bool waitForOutput(int milliseconds);

    pid_t m_id = -1;
    int m_startError = 0; ///< errno if it could not be started
    Descriptor m_pipe; ///< its standard output; closed when every writer has closed it
    Descriptor m_pidfd; ///< pidfd: readable when the child has ended; not open if the kernel does
                        ///< not support it
    QByteArray m_output;
    bool m_isFinished = false;
};

/**
 * Starts a program that is not a child of this process and may outlive it; it shares this process's
 * standard streams. @return whether it could be started
 */
bool startDetachedProcess(const QString &program, const QStringList &arguments);

} // namespace Internal
