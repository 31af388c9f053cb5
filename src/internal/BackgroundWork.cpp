#include "internal/BackgroundWork_p.h"

#include "internal/Descriptor_p.h"
#include "internal/log_p.h"

#include <QCoreApplication>
#include <QThread>
#include <QThreadPool>
#include <QtConcurrentRun>

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <sys/eventfd.h>
#include <utility>

namespace Internal {

namespace {

/** The functions that stop background work before the process ends. */
class StopRegistry
{
public:
    /** Never deleted, because a client's static objects may still use the library after main(). */
    static StopRegistry &instance()
    {
        static auto *const list = new StopRegistry;
        return *list;
    }

    void add(const void *owner, const std::function<void()> &stop)
    {
        callAtExit();
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_stops[owner] = stop;
        if (m_isPostRoutine)
            return;
        m_isPostRoutine = true;
        qAddPostRoutine(applicationIsDestroyed);
    }

    void remove(const void *owner)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_stops.erase(owner);
    }

    void stopAll()
    {
        std::map<const void *, std::function<void()>> stops;
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            stops = m_stops;
        }
        for (const auto &stop : stops)
            stop.second();
    }

private:
    struct AtExit
    {
        ~AtExit() { StopRegistry::instance().stopAll(); }
    };

    /**
     * Static objects are destroyed in reverse order: this one is created after the pool, so it is
     * destroyed before it.
     */
    static void callAtExit()
    {
        QThreadPool::globalInstance();
        static const AtExit atExit;
    }

    static void applicationIsDestroyed()
    {
        StopRegistry &list = instance();
        {
            const std::lock_guard<std::mutex> lock(list.m_mutex);
            list.m_isPostRoutine = false; // Qt drops its post routines with each application object
        }
        list.stopAll();
    }

    std::mutex m_mutex;
    std::map<const void *, std::function<void()>> m_stops;
    bool m_isPostRoutine = false;
};

/** Adds a thread to the global pool for the lifetime of this object. */
class ExtraThread
{
public:
    ExtraThread() { QThreadPool::globalInstance()->releaseThread(); }
    ~ExtraThread()
    {
        if (QThreadPool *const pool = QThreadPool::globalInstance())
            pool->reserveThread();
    }
    Q_DISABLE_COPY_MOVE(ExtraThread)
};

} // namespace

void stopBeforeExit(const void *owner, const std::function<void()> &stop)
{
    StopRegistry::instance().add(owner, stop);
}

void forgetStopBeforeExit(const void *owner)
{
    StopRegistry::instance().remove(owner);
}

void stopBackgroundWork()
{
    StopRegistry::instance().stopAll();
}

bool canStartThread()
{
    // Enough also for threads that are starting at this moment, and for a command in each.
    constexpr std::size_t enough = 16;
    std::array<Descriptor, enough> spare;
    return std::all_of(spare.begin(), spare.end(), [](Descriptor &one) {
        one.reset(::eventfd(0, EFD_CLOEXEC));
        return one.isOpen();
    });
}

EndlessWork::EndlessWork(QFuture<void> &handle, std::function<void()> beforeStop)
    : m_handle(handle)
    , m_beforeStop(std::move(beforeStop))
{ }

EndlessWork::~EndlessWork()
{
    stop();
    forgetStopBeforeExit(this);
}

void EndlessWork::start(const std::function<void()> &work)
{
    if (!canStartThread()) {
        log() << "EndlessWork::start: too few file descriptors are left";
        return;
    }
    stopBeforeExit(this, [this] { stop(); });
    const auto thread = std::make_shared<ExtraThread>();
    // Locked until the future is stored. A run that calls handle() waits until then; otherwise it
    // could get an empty future, which counts as cancelled.
    const std::lock_guard<std::mutex> gate(m_handOver);
    dropFinished(m_runs);
    m_handle = QtConcurrent::run([thread, work] { work(); });
    m_runs.push_back(m_handle);
}

QFuture<void> EndlessWork::handle() const
{
    const std::lock_guard<std::mutex> gate(m_handOver);
    return m_handle;
}

void EndlessWork::stop()
{
    if (m_beforeStop)
        m_beforeStop();
    std::vector<QFuture<void>> runs;
    {
        const std::lock_guard<std::mutex> gate(m_handOver);
        runs = m_runs;
    }
    m_isStopping = true;
    for (QFuture<void> &run : runs)
        run.cancel();
    for (QFuture<void> &run : runs)
        run.waitForFinished();
    m_isStopping = false;
}

void EndlessWork::sleepUntil(const QDeadlineTimer &end, const std::function<bool()> &isOver) const
{
    constexpr int step = 20; // ms
    while (!end.hasExpired() && !m_isStopping && !isOver())
        QThread::msleep(step);
}

} // namespace Internal
