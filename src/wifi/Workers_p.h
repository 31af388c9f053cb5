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
 * A timer goes on while a tool hangs, and on a device with one core the pool has one thread, so
 * unfinished workers would queue up for as long as the interface is left on. Therefore no more
 * than two polls of a kind, running or waiting, are ever outstanding: a tick that finds two is
 * skipped, and the next one that finds room starts a worker again. Pool and memory thus hold at
 * most two of each kind; of tools that cannot be killed, ChildProcess leaves four at most.
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

    /** Starts a worker unless two of its kind are outstanding, or no thread can begin. */
    void poll(Kind kind, Work work);
    /** Starts a worker in any case, as soon as a thread can begin. */
    void start(Kind kind, Work work);
    /**
     * Sets the flag, carries out what still waits for a thread, and waits for every worker. One
     * that the pool has not begun is run here, finds that it is to end, and ends; so a busy pool
     * does not hold up this thread.
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
    std::vector<std::pair<Kind, Work>> m_waiting; ///< for a thread that can begin
};

/**
 * The requests for the interface's power in their order, handed to one worker at a time without a
 * lock. Of more than 30 that wait the oldest are dropped.
 */
class PowerRequests
{
public:
    /** Notes a request. @return whether a worker must be started for it */
    bool add(bool on);
    /** The oldest request that waits; there is one. */
    bool takeOldest();
    /** The latest request that waits; the others are dropped. */
    bool takeLatest() { return (m_state.exchange(Busy) & 1U) != 0; }
    /** @return false when more requests wait */
    bool finish()
    {
        std::uint32_t busy = Busy;
        return m_state.compare_exchange_strong(busy, Idle);
    }

private:
    /** A bit for each request that waits, the latest one lowest, below a bit that marks the end. */
    enum : std::uint32_t
    {
        Idle = 0, ///< no worker
        Busy = 1, ///< a worker, and nothing waits
        Full = 1U << 30U
    };
    std::atomic<std::uint32_t> m_state {Idle};
};

/** A value that any thread may read and replace; a reader keeps the one that it took. */
template <typename Value> class Shared
{
public:
    using Pointer = std::shared_ptr<const Value>;

    Pointer get() const { return std::atomic_load(&m_value); }
    void set(Value value)
    {
        std::atomic_store(&m_value, Pointer(std::make_shared<Value>(std::move(value))));
    }
    /** Replaces @p expected; if another thread was first, @p expected is what it has put. */
    bool replace(Pointer &expected, const Pointer &value)
    {
        return std::atomic_compare_exchange_strong(&m_value, &expected, value);
    }

private:
    Pointer m_value = std::make_shared<Value>();
};

} // namespace Internal
