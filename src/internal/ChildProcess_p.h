#pragma once

#include "internal/Descriptor_p.h"

#include <QByteArray>
#include <QDeadlineTimer>
#include <QString>
#include <QStringList>

#include <sys/types.h>

namespace Internal {

/**
 * A child process that leads a process group of its own, so that it can be ended with everything
 * that it has started; its standard output is collected here.
 *
 * It is started without a copy of this process, whose size therefore does not count, and without
 * an event dispatcher, so that any thread may use one. Nothing here waits for SIGCHLD, and only
 * this child is waited for: other children of the process are none of its business.
 */
class ChildProcess
{
public:
    enum Lifetime
    {
        Independent,
        /** It ends with the thread that starts it, even after a crash: SIGTERM, to tidy up. */
        BoundToThread
    };
    /** In bytes; no tool of a device prints as much: one that does is taken for endless. */
    static constexpr int mostOutput = 1024 * 1024;

    /**
     * Starts @p program, looked for on the PATH, and waits until it is loaded, which has no limit:
     * a file system that does not answer holds its callers. While four children are left that could
     * not be killed, none is started.
     */
    ChildProcess(const QString &program, const QStringList &arguments, Lifetime lifetime);
    /**
     * Kills what still runs, with everything that it has started. Blocks until the child has ended,
     * 500 ms at most: one that the kernel holds, so that not even SIGKILL ends it, is left.
     */
    ~ChildProcess();
    Q_DISABLE_COPY_MOVE(ChildProcess)

    bool isStarted() const { return m_id > 0; }
    /** Whether it was not started for want of descriptors, processes or memory. */
    bool lacksResources() const;
    /**
     * Collects the output until the child ends. @return whether it has ended; false as well, and
     * at once, when it has printed more than mostOutput
     */
    bool waitForFinished(const QDeadlineTimer &deadline);
    bool hasPrintedTooMuch() const { return m_output.size() > mostOutput; }
    /** What has arrived, mostOutput at most. */
    QByteArray output() const { return m_output.left(mostOutput); }
    /** Sends @p signal to the child and to everything that it has started. */
    void signalGroup(int signal) const;

private:
    bool hasEnded() const;
    bool reap(const QDeadlineTimer &deadline) const;
    bool waitForNews(int milliseconds);

    pid_t m_id = -1;
    int m_startError = 0; ///< errno, unless it was started
    Descriptor m_pipe; ///< of its standard output; closed when nobody writes any more
    Descriptor m_end; ///< readable when the child has ended; none where the kernel has no such
    QByteArray m_output;
    bool m_isFinished = false;
};

/**
 * Starts a program that is nobody's child any more and may outlive this process; it shares this
 * process's standard streams. @return whether it could be started
 */
bool startDetachedProcess(const QString &program, const QStringList &arguments);

} // namespace Internal
