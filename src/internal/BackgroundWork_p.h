#pragma once

#include <QDeadlineTimer>
#include <QFuture>

#include <algorithm>
#include <atomic>
#include <functional>
#include <mutex>
#include <vector>

namespace Internal {

/**
 * Registers @p stop to be called before the process ends: when the application object is destroyed
 * or, without one, when main() has returned or exit() is called. In either case that is before the
 * global thread pool waits for its threads. Each @p owner has one such function, which may be
 * called more than once.
 */
void stopBeforeExit(const void *owner, const std::function<void()> &stop);
/** Removes the function of @p owner, which is about to be destroyed. */
void forgetStopBeforeExit(const void *owner);

/** Calls every registered function now, in the calling thread. */
void stopBackgroundWork();

/**
 * Whether the global pool may start another thread. Each thread of Qt first creates its own event
 * dispatcher; when no file descriptor is left for that, Qt ends the whole process.
 */
bool canStartThread();

/** Removes finished futures from a container. */
template <typename Futures> void dropFinished(Futures &futures)
{
    futures.erase(std::remove_if(futures.begin(), futures.end(),
                                 [](const QFuture<void> &one) { return one.isFinished(); }),
                  futures.end());
}

/**
 * Work on the global thread pool that may go on without end: a bridge, a repeating tone.
 *
 * A run does not reduce the number of threads in the pool, because on one core there is only one. A
 * run can get its own future with handle() from the beginning. stop() returns when every run has
 * ended; it is also called before the process ends.
 */
class EndlessWork
{
public:
    /**
     * @param handle where the future of the latest run is kept; outlives this object
     * @param beforeStop called first by stop(), in its thread
     */
    explicit EndlessWork(QFuture<void> &handle, std::function<void()> beforeStop = {});
    /** Stops what runs. */
    ~EndlessWork();
    Q_DISABLE_COPY_MOVE(EndlessWork)

    /** Starts a run, unless canStartThread() is false, which is logged. One thread at a time. */
    void start(const std::function<void()> &work);
    /**
     * The future of the latest run. May be called on any thread; waits while start() stores a
     * future.
     */
    QFuture<void> handle() const;

    /** True while stop() waits: a run must then end as soon as it can. */
    const std::atomic<bool> &isStopping() const { return m_isStopping; }
    /** Ends every run and waits for it; a run that has not started yet never starts. */
    void stop();

    /**
     * Sleeps until @p end, but ends early when @p isOver returns true or stop() is called. For a
     * run whose work has failed and is not to be repeated at once.
     */
    void sleepUntil(const QDeadlineTimer &end, const std::function<bool()> &isOver) const;

private:
    QFuture<void> &m_handle;
    const std::function<void()> m_beforeStop;
    mutable std::mutex m_handOver; ///< held while the futures are stored or copied
    std::vector<QFuture<void>> m_runs; ///< the latest one and those that may not have ended
    std::atomic<bool> m_isStopping {false};
};

} // namespace Internal
