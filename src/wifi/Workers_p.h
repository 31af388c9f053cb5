#pragma once

#include <QFuture>
#include <QList>

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace WiFi {
class KTV_Connection;
} // namespace WiFi

namespace Internal {

/** Set when a manager is destroyed or the process is about to end; outlives the manager. */
using StopFlag = std::shared_ptr<std::atomic<bool>>;

/**
 * The workers of a manager on the global thread pool. Belongs to the manager's thread.
 *
 * The timers go on while a tool hangs, and on a device with one core the pool has one thread, so
 * unfinished workers would queue up for as long as the interface is on. Therefore at most two polls
 * of a kind, running or waiting, are outstanding at any time; while there are two, ticks of the
 * timer are skipped. Of tools that cannot be killed, ChildProcess leaves four at most.
 */
class Workers
{
public:
    enum Kind
    {
        Status,
        Detail,
        Scan,
        Power
    };
    using Work = void (*)(WiFi::KTV_Connection *);

    explicit Workers(WiFi::KTV_Connection *connection);
    ~Workers();
    Q_DISABLE_COPY_MOVE(Workers)

    /** Starts a worker, unless two of its kind are outstanding or no thread can be started. */
    void poll(Kind kind, Work work);
    /** Starts a worker in any case, as soon as a thread can be started. */
    void start(Kind kind, Work work);
    /**
     * Sets the flag stopping(), runs the workers that still wait for a thread, and waits for all
     * others. Those that the pool has not started yet are run here, too; they see the flag and end.
     * So a busy pool does not delay this thread.
     */
    void stop();

    /** Any thread may read it. */
    StopFlag stopping() const { return m_stopping; }

private:
    void run(Kind kind, Work work);
    void startWaiting();
    static void perform(Workers *workers, Kind kind, Work work);

    WiFi::KTV_Connection *const m_connection;
    const StopFlag m_stopping;
    std::array<std::atomic<int>, Power + 1> m_outstanding {}; ///< by kind
    QList<QFuture<void>> m_futures;
    std::vector<std::pair<Kind, Work>> m_waiting; ///< until a thread can be started
};

/**
 * The requests to switch the interface on or off, in order, passed to one worker at a time without
 * a lock. When more than 30 wait, the oldest are dropped.
 */
class PowerRequests
{
public:
    /** Adds a request. @return whether a worker must be started for it */
    bool add(bool on);
    /** Removes and returns the oldest waiting request. At least one must be waiting. */
    bool takeOldest();
    /** Removes all waiting requests and returns the latest. */
    bool takeLatest() { return (m_state.exchange(Busy) & 1U) != 0; }
    /** @return false when more requests wait */
    bool finish()
    {
        std::uint32_t busy = Busy;
        return m_state.compare_exchange_strong(busy, Idle);
    }

private:
    /**
     * One bit for each waiting request, the latest one lowest; the bit above them is always set.
     */
    enum : std::uint32_t
    {
        Idle = 0, ///< no worker
        Busy = 1, ///< a worker, and nothing waits
        Full = 1U << 30U
    };
    std::atomic<std::uint32_t> m_state {Idle};
};

/** A value that any thread may read and replace; a reader can go on using the value that it got. */
template <typename Value> class Shared
{
public:
    using Pointer = std::shared_ptr<const Value>;

    Pointer get() const { return std::atomic_load(&m_value); }
    void set(Value value)
    {
        std::atomic_store(&m_value, Pointer(std::make_shared<Value>(std::move(value))));
    }
    /**
     * Replaces @p expected. If another thread has replaced it before, fails and sets @p expected to
     * that value.
     */
    bool replace(Pointer &expected, const Pointer &value)
    {
        return std::atomic_compare_exchange_strong(&m_value, &expected, value);
    }

private:
    Pointer m_value = std::make_shared<Value>();
};

} // namespace Internal
