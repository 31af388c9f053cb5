/**
 * @file
 * Tells the thread sanitizer how Qt's thread pool and futures order what threads do.
 *
 * Qt is not built with the sanitizer's instrumentation and waits with futexes directly. So the
 * sanitizer does not see that a task runs after it was started, or that waiting for it ends after
 * the task, and reports races in correct programs. Linked into a test program, these functions
 * replace those of Qt with the same name: each reports the order to the sanitizer and then calls
 * Qt's function. They report only the order that Qt guarantees, so races in our own code are still
 * found.
 */

#include <dlfcn.h>

extern "C" void __tsan_acquire(void *address);
extern "C" void __tsan_release(void *address);

namespace {

/**
 * The state that all copies of a future share: the member after the pointer to the virtual table.
 */
void *sharedState(const void *future)
{
    return static_cast<void *const *>(future)[1];
}

/** Its address stands for all pools: a task ends before waiting for all tasks ends. */
int endedTasks;

template <typename Function> Function *qtFunction(const char *name)
{
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

} // namespace

// Declares a pointer to Qt's own function: RESULT NAME(ARGUMENTS).
#define QT_FUNCTION(name, result, ...)                                                             \
    static auto *const qt = qtFunction<result(__VA_ARGS__)>(#name)

extern "C" {

// QThreadPool::start(QRunnable *, int)
void _ZN11QThreadPool5startEP9QRunnablei(void *pool, void *task, int priority)
{
    QT_FUNCTION(_ZN11QThreadPool5startEP9QRunnablei, void, void *, void *, int);
    __tsan_release(task);
    qt(pool, task, priority);
}

// QThreadPool::waitForDone(int)
bool _ZN11QThreadPool11waitForDoneEi(void *pool, int milliseconds)
{
    QT_FUNCTION(_ZN11QThreadPool11waitForDoneEi, bool, void *, int);
    const bool isDone = qt(pool, milliseconds);
    if (isDone)
        __tsan_acquire(&endedTasks);
    return isDone;
}

// QRunnable::~QRunnable(): the last call of a task, on the thread that ran it
void _ZN9QRunnableD2Ev(void *task)
{
    QT_FUNCTION(_ZN9QRunnableD2Ev, void, void *);
    __tsan_release(&endedTasks);
    qt(task);
}

// QFutureInterfaceBase::reportStarted(): a task is given to the pool
void _ZN20QFutureInterfaceBase13reportStartedEv(void *future)
{
    QT_FUNCTION(_ZN20QFutureInterfaceBase13reportStartedEv, void, void *);
    __tsan_release(sharedState(future));
    qt(future);
}

// QFutureInterfaceBase::isCanceled(): the first call of a task
bool _ZNK20QFutureInterfaceBase10isCanceledEv(const void *future)
{
    QT_FUNCTION(_ZNK20QFutureInterfaceBase10isCanceledEv, bool, const void *);
    const bool isCanceled = qt(future);
    __tsan_acquire(sharedState(future));
    return isCanceled;
}

// QFutureInterfaceBase::reportFinished()
void _ZN20QFutureInterfaceBase14reportFinishedEv(void *future)
{
    QT_FUNCTION(_ZN20QFutureInterfaceBase14reportFinishedEv, void, void *);
    __tsan_release(sharedState(future));
    qt(future);
}

// QFutureInterfaceBase::isFinished()
bool _ZNK20QFutureInterfaceBase10isFinishedEv(const void *future)
{
    QT_FUNCTION(_ZNK20QFutureInterfaceBase10isFinishedEv, bool, const void *);
    const bool isFinished = qt(future);
    if (isFinished)
        __tsan_acquire(sharedState(future));
    return isFinished;
}

// QFutureInterfaceBase::waitForFinished()
void _ZN20QFutureInterfaceBase15waitForFinishedEv(void *future)
{
    QT_FUNCTION(_ZN20QFutureInterfaceBase15waitForFinishedEv, void, void *);
    qt(future);
    __tsan_acquire(sharedState(future));
}

// QFutureInterfaceBase::derefT(): the last one deletes the results
bool _ZNK20QFutureInterfaceBase6derefTEv(const void *future)
{
    QT_FUNCTION(_ZNK20QFutureInterfaceBase6derefTEv, bool, const void *);
    __tsan_release(sharedState(future));
    const bool isStillUsed = qt(future);
    if (!isStillUsed)
        __tsan_acquire(sharedState(future));
    return isStillUsed;
}

} // extern "C"
