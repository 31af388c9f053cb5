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
 * Has @p stop called before the process ends: when the application object is destroyed or, without
 * one, when main() has returned or exit() is called. Both come before the global thread pool
 * waits for its threads. Each @p owner has one function; it may be called more than once.
 */
void stopBeforeLeaving(const void *owner, const std::function<void()> &stop);
/** For an owner that is destroyed before the process ends. */
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
 * A run leaves the pool as many threads as it had, for on one core there is only one. It can ask
 * for its own future from the beginning. It has ended when stop() returns, which is also called
 * before the process ends.
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

    /** True while stop() waits: a run has to end as soon as it can. */
    const std::atomic<bool> &isStopping() const { return m_isStopping; }
    /** Ends every run and waits for it; a run that has not begun never begins. */
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
