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
 * Has @p stop called before the process leaves: when the application object goes or, without
 * one, when main() has returned or exit() is called. Both come before the global thread pool
 * waits for its threads. @p owner counts once; @p stop may be called more than once.
 */
void stopBeforeLeaving(const void *owner, const std::function<void()> &stop);
/** For an owner that goes before the process does. */
void forgetBeforeLeaving(const void *owner);

/** Calls every registered stop at once, in the calling thread. */
void stopBackgroundWork();

/**
 * Whether the global pool may begin another thread. Each thread of Qt's makes an event dispatcher
 * of its own first, and where no descriptor is left for that, Qt ends the whole process.
 */
bool canBeginThread();

/** Drops the futures of what has ended from a container. */
template <typename Futures> void dropFinished(Futures &futures)
{
    futures.erase(std::remove_if(futures.begin(), futures.end(),
                                 [](const QFuture<void> &one) { return one.isFinished(); }),
                  futures.end());
}

/**
 * Work on the global thread pool that may go on without end: a bridge, a repeating tone.
 *
 * A run takes no slot of the pool from anyone else, for on one core there is only one; it
 * learns its future only when that has been stored; and it is over when stop() returns, which
 * also happens before the process leaves.
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

    /** Starts a run, unless canBeginThread() says no, which is logged. One thread at a time. */
    void start(const std::function<void()> &work);
    /** The future of the latest run; from any thread, never one that is just being stored. */
    QFuture<void> handle() const;

    /** True while a run has to end as soon as it can. */
    const std::atomic<bool> &isStopping() const { return m_isStopping; }
    /** Ends every run and waits for that; those that have not begun do not begin any more. */
    void stop();

    /**
     * For a run that has failed too soon to be repeated at once: sleeps until @p end, or until
     * @p isOver or stop() has it end.
     */
    void rest(const QDeadlineTimer &end, const std::function<bool()> &isOver) const;

private:
    QFuture<void> &m_handle;
    const std::function<void()> m_beforeStop;
    mutable std::mutex m_handOver; ///< of the futures, while they are stored and copied
    std::vector<QFuture<void>> m_runs; ///< the latest one and those that may not have ended
    std::atomic<bool> m_isStopping {false};
};

} // namespace Internal
