#include "internal/BackgroundWork_p.h"

#include <QCoreApplication>
#include <QThreadPool>
#include <QtConcurrentRun>

#include <map>
#include <memory>
#include <utility>

namespace Internal {

namespace {

/** What is to be stopped before the process leaves. */
class LeavingList
{
public:
    /** Never deleted: a client's static objects may still use the library after main(). */
    static LeavingList &instance()
    {
        static auto *const list = new LeavingList;
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
        qAddPostRoutine(applicationGoes);
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
        ~AtExit() { LeavingList::instance().stopAll(); }
    };

    /** Static objects go in the reverse order: this one before the pool, which is older. */
    static void callAtExit()
    {
        QThreadPool::globalInstance();
        static const AtExit atExit;
    }

    static void applicationGoes()
    {
        LeavingList &list = instance();
        {
            const std::lock_guard<std::mutex> lock(list.m_mutex);
            list.m_isPostRoutine = false; // Qt forgets its routines with each application
        }
        list.stopAll();
    }

    std::mutex m_mutex;
    std::map<const void *, std::function<void()>> m_stops;
    bool m_isPostRoutine = false;
};

/** One more thread for the global pool, for as long as this lives. */
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

void stopBeforeLeaving(const void *owner, const std::function<void()> &stop)
{
    LeavingList::instance().add(owner, stop);
}

void forgetBeforeLeaving(const void *owner)
{
    LeavingList::instance().remove(owner);
}

void stopBackgroundWork()
{
    LeavingList::instance().stopAll();
}

/** Counts a run from its begin to its end, however it ends. */
class EndlessWork::Run
{
public:
    Run(EndlessWork &work, int generation) : m_work(work)
    {
        const std::lock_guard<std::mutex> lock(m_work.m_mutex);
        m_hasBegun = generation == m_work.m_generation;
        m_work.m_running += m_hasBegun;
    }
    ~Run()
    {
        const std::lock_guard<std::mutex> lock(m_work.m_mutex);
        m_work.m_running -= m_hasBegun;
        m_work.m_isOver.notify_all();
    }
    Q_DISABLE_COPY_MOVE(Run)

    bool hasBegun() const { return m_hasBegun; }

private:
    EndlessWork &m_work;
    bool m_hasBegun;
};

EndlessWork::EndlessWork(QFuture<void> &handle, std::function<void()> beforeStop)
    : m_handle(handle)
    , m_beforeStop(std::move(beforeStop))
{ }

EndlessWork::~EndlessWork()
{
    stop();
    forgetBeforeLeaving(this);
}

void EndlessWork::start(const std::function<void()> &work)
{
    stopBeforeLeaving(this, [this] { stop(); });
    const auto thread = std::make_shared<ExtraThread>();
    // Held until the future is stored: a run that asks for it waits so long, for it would take
    // the empty one that may still be in its place for a cancelled one.
    const std::lock_guard<std::mutex> gate(m_handOver);
    int generation = 0;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        generation = m_generation;
    }
    m_handle = QtConcurrent::run([this, thread, work, generation] {
        const Run run(*this, generation);
        if (run.hasBegun())
            work();
    });
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
    QFuture<void> latest = handle();
    latest.cancel();
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        ++m_generation;
        m_isStopping = true;
        m_isOver.wait(lock, [this] { return m_running == 0; });
        m_isStopping = false;
    }
    latest.waitForFinished();
}

} // namespace Internal
