#include "wifi/Workers_p.h"

#include "internal/BackgroundWork_p.h"
#include "wifi/KTV_Connection.h"

#include <QTimer>
#include <QtConcurrent>

#include <utility>

using WiFi::KTV_Connection;

namespace Internal {

namespace {

constexpr int maxOutstanding = 2;
constexpr int retryInterval = 1000; // ms

} // namespace

Workers::Workers(KTV_Connection *connection)
    : m_connection(connection)
    , m_stopping(std::make_shared<std::atomic<bool>>(false))
{
    // A hanging tool must neither delay the end of the process nor outlive it.
    stopBeforeExit(this, [this] { stop(); });
}

Workers::~Workers()
{
    forgetStopBeforeExit(this);
    stop();
}

void Workers::poll(Kind kind, Work work)
{
    if (m_outstanding.at(kind) < maxOutstanding && canStartThread())
        run(kind, work);
}

void Workers::start(Kind kind, Work work)
{
    if (canStartThread()) {
        run(kind, work);
        return;
    }
    m_waiting.emplace_back(kind, work);
    QTimer::singleShot(retryInterval, m_connection, [this] { startWaiting(); });
}

void Workers::startWaiting()
{
    for (const auto &[kind, work] : std::exchange(m_waiting, {}))
        start(kind, work);
}

void Workers::run(Kind kind, Work work)
{
    dropFinished(m_futures);
    *m_stopping = false; // stop() may have been called before, without the process ending
    ++m_outstanding.at(kind);
    m_futures.append(QtConcurrent::run(perform, this, kind, work));
}

void Workers::stop()
{
    *m_stopping = true;
    for (const auto &[kind, work] : std::exchange(m_waiting, {})) {
        ++m_outstanding.at(kind);
        perform(this, kind, work);
    }
    for (QFuture<void> &future : m_futures)
        future.waitForFinished();
    m_futures.clear();
}

void Workers::perform(Workers *workers, Kind kind, Work work)
{
    work(workers->m_connection);
    --workers->m_outstanding.at(kind);
}

bool PowerRequests::add(bool on)
{
    std::uint32_t state = m_state;
    std::uint32_t next = 0;
    do {
        const std::uint32_t waiting = state == Idle ? Busy : state;
        next = (waiting << 1U) | (on ? 1U : 0U);
        if (waiting >= Full)
            next = Full | (next & (Full - 1U));
    } while (!m_state.compare_exchange_weak(state, next));
    return state == Idle;
}

bool PowerRequests::takeOldest()
{
    std::uint32_t state = m_state;
    std::uint32_t oldest = 0;
    std::uint32_t next = 0;
    do {
        std::uint32_t end = Busy;
        while ((end << 1U) <= state)
            end <<= 1U;
        oldest = end >> 1U;
        next = oldest | (state & (oldest - 1U));
    } while (!m_state.compare_exchange_weak(state, next));
    return (state & oldest) != 0;
}

} // namespace Internal
