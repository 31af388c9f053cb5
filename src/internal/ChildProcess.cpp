#include "internal/ChildProcess_p.h"

#include <QFile>
#include <QStandardPaths>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <memory>
#include <mutex>
#include <poll.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#ifndef SYS_pidfd_open
#define SYS_pidfd_open 434 // younger than the headers
#endif

#if defined(__SANITIZE_THREAD__)
// The sanitizer's own would note what the child does in the memory that it shares with us: that
// this process is a copy, and that its signal handlers are gone.
extern "C" int __clone(int (*function)(void *), void *stack, int flags, void *argument, ...);
extern "C" int __sigaction(int signal, const struct sigaction *next, struct sigaction *before);
#define CHILD_CALL(name) ::__##name
#else
#define CHILD_CALL(name) ::name
#endif

namespace Internal {

namespace {

constexpr int longestCheckInterval = 20; // ms, where the kernel does not tell of a child's end
constexpr int failedStart = 127; // exit code
constexpr int killTime = 500; // ms that a killed child has to end

/** The words of a command line, as exec takes them. */
class Words
{
public:
    Words(const QString &program, const QStringList &arguments)
    {
        const QString file = QStandardPaths::findExecutable(program);
        m_texts.reserve(std::size_t(arguments.size()) + 1);
        m_texts.push_back(QFile::encodeName(file.isEmpty() ? program : file));
        for (const QString &argument : arguments)
            m_texts.push_back(QFile::encodeName(argument));
        for (QByteArray &text : m_texts)
            m_pointers.push_back(text.data());
        m_pointers.push_back(nullptr);
    }

    char *const *pointers() const { return m_pointers.data(); }

private:
    std::vector<QByteArray> m_texts;
    std::vector<char *> m_pointers;
};

/** Keeps every signal from this thread, and so from the child while it shares our memory. */
class NoSignals
{
public:
    NoSignals()
    {
        sigset_t all;
        ::sigfillset(&all);
        ::pthread_sigmask(SIG_SETMASK, &all, &m_before);
    }
    ~NoSignals() { ::pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    Q_DISABLE_COPY_MOVE(NoSignals)

    const sigset_t &before() const { return m_before; }

private:
    sigset_t m_before {};
};

/** What a child is to do before its program is loaded. */
struct Orders
{
    char *const *words;
    const sigset_t *signalMask;
    int output = -1; ///< becomes standard output; -1: all streams stay this process's
    bool isBound = false;
    pid_t parent = ::getpid();
    int error = 0; ///< the child's answer, in the shared memory
};

// The child shares this process's memory and has a stack of its own, on which this thread's
// sanitizers have no say; this thread stands still until the program is loaded. So: plain system
// calls only, and nothing of this process's memory is changed but the orders' answer.
#define IN_CHILD __attribute__((no_sanitize("address", "thread", "undefined")))

using ChildFunction = int (*)(void *);

/** _exit() without what a sanitizer does at the end of a process: this process goes on. */
[[noreturn]] IN_CHILD void leave(int code)
{
    for (;;)
        ::syscall(SYS_exit_group, code);
}

constexpr std::size_t stackSize = 32768;

/** Runs @p function in a child. @return its id once its program is loaded or it has ended */
IN_CHILD pid_t runInChild(ChildFunction function, Orders &orders, char *stackEnd)
{
    return CHILD_CALL(clone)(function, stackEnd, CLONE_VM | CLONE_VFORK | SIGCHLD, &orders);
}

/** This process's handlers are none of the child's, which sees SIGPIPE as a shell has it. */
IN_CHILD void restoreSignals(const sigset_t &mask)
{
    for (int signal = 1; signal < NSIG; ++signal) {
        struct sigaction action = {};
        if (CHILD_CALL(sigaction)(signal, nullptr, &action) != 0 || action.sa_handler == SIG_DFL)
            continue;
        if (action.sa_handler == SIG_IGN && signal != SIGPIPE)
            continue;
        action = {};
        CHILD_CALL(sigaction)(signal, &action, nullptr);
    }
    ::sigprocmask(SIG_SETMASK, &mask, nullptr);
}

/** The same file under a number that is no standard stream's. */
IN_CHILD int besideStreams(int descriptor)
{
    return descriptor < 0 || descriptor > STDERR_FILENO
        ? descriptor
        : ::fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
}

/** Nothing to read, output to the pipe, complaints to nobody. */
IN_CHILD bool connectStreams(int output)
{
    output = besideStreams(output);
    if (output < 0)
        return false;
    const int nothing = besideStreams(::open("/dev/null", O_RDWR | O_CLOEXEC));
    return nothing >= 0 && ::dup2(nothing, STDIN_FILENO) >= 0 && ::dup2(output, STDOUT_FILENO) >= 0
        && ::dup2(nothing, STDERR_FILENO) >= 0;
}

IN_CHILD int load(void *data)
{
    auto &orders = *static_cast<Orders *>(data);
    restoreSignals(*orders.signalMask);
    ::execvp(orders.words[0], orders.words);
    orders.error = errno;
    leave(failedStart);
}

IN_CHILD int runGroup(void *data)
{
    auto &orders = *static_cast<Orders *>(data);
    ::setpgid(0, 0);
    if (orders.isBound) {
        ::prctl(PR_SET_PDEATHSIG, SIGTERM);
        if (::getppid() != orders.parent) // died before the signal was asked for
            leave(0);
    }
    if (connectStreams(orders.output))
        load(data);
    orders.error = errno;
    leave(failedStart);
}

/** The child's child is nobody's when the child ends. */
IN_CHILD int runDetached(void *data)
{
    auto &orders = *static_cast<Orders *>(data);
    ::setsid();
    alignas(16) std::array<char, stackSize> stack;
    if (runInChild(load, orders, stack.data() + stack.size()) < 0)
        orders.error = errno;
    leave(0);
}

/** @return id of the child; -1, errno and nothing left of it when its program is not loaded */
pid_t start(ChildFunction function, Orders &orders)
{
    constexpr std::size_t size = 2 * stackSize; // a detached one has one more on it
    const auto stack = std::make_unique<char[]>(size); // NOLINT(modernize-avoid-c-arrays)
    pid_t id = 0;
    {
        const NoSignals noSignals;
        orders.signalMask = &noSignals.before();
        id = runInChild(function, orders, stack.get() + size);
    }
    if (id > 0 && orders.error != 0) {
        while (::waitpid(id, nullptr, 0) < 0 && errno == EINTR) { }
        errno = orders.error;
        return -1;
    }
    return id;
}

/** Children that could not be killed, until they have ended after all. */
class LeftChildren
{
public:
    /** Never deleted: a client's static objects may still use the library after main(). */
    static LeftChildren &instance()
    {
        static auto *const children = new LeftChildren;
        return *children;
    }

    void add(pid_t id)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_ids.push_back(id);
    }

    /** Collects those that have ended. @return whether there are too many others */
    bool areTooMany()
    {
        constexpr std::size_t most = 4;
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_ids.erase(std::remove_if(m_ids.begin(), m_ids.end(),
                                   [](pid_t id) { return ::waitpid(id, nullptr, WNOHANG) != 0; }),
                    m_ids.end());
        return m_ids.size() >= most;
    }

private:
    std::mutex m_mutex;
    std::vector<pid_t> m_ids;
};

} // namespace

ChildProcess::ChildProcess(const QString &program, const QStringList &arguments, Lifetime lifetime)
{
    if (LeftChildren::instance().areTooMany()) {
        m_startError = EAGAIN;
        return;
    }
    std::array<int, 2> ends {};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        m_startError = errno;
        return;
    }
    m_pipe.reset(ends[0]);
    Descriptor childsEnd(ends[1]);
    const Words words(program, arguments);
    Orders orders;
    orders.words = words.pointers();
    orders.output = childsEnd.number();
    orders.isBound = lifetime == BoundToThread;
    m_id = start(runGroup, orders);
    m_startError = isStarted() ? 0 : errno;
    childsEnd.close();
    if (isStarted())
        m_end.reset(int(::syscall(SYS_pidfd_open, m_id, 0)));
}

ChildProcess::~ChildProcess()
{
    if (!isStarted())
        return;
    if (!m_isFinished)
        signalGroup(SIGKILL);
    if (!reap(QDeadlineTimer(killTime)))
        LeftChildren::instance().add(m_id);
}

bool ChildProcess::lacksResources() const
{
    static constexpr std::array<int, 4> reasons {EMFILE, ENFILE, EAGAIN, ENOMEM};
    return std::find(reasons.begin(), reasons.end(), m_startError) != reasons.end();
}

void ChildProcess::signalGroup(int signal) const
{
    if (isStarted())
        ::kill(-m_id, signal);
}

/** It is not reaped yet: until then its id, which is its group's, is nobody else's. */
bool ChildProcess::hasEnded() const
{
    siginfo_t state {};
    const int result = ::waitid(P_PID, id_t(m_id), &state, WEXITED | WNOHANG | WNOWAIT);
    return result == 0 ? state.si_pid == m_id : errno == ECHILD;
}

/** Lets the kernel forget the child when it has ended. @return whether it has, in time */
bool ChildProcess::reap(const QDeadlineTimer &deadline) const
{
    int checkInterval = 1; // ms
    while (::waitpid(m_id, nullptr, WNOHANG) == 0) {
        if (deadline.hasExpired())
            return false;
        ::poll(nullptr, 0, checkInterval);
        checkInterval = std::min(2 * checkInterval, longestCheckInterval);
    }
    return true;
}

/** Waits for output or the child's end and takes what has come. @return whether output has */
bool ChildProcess::waitForNews(int milliseconds)
{
    std::array<pollfd, 2> sources {{{m_pipe.number(), POLLIN, 0}, {m_end.number(), POLLIN, 0}}};
    if (::poll(sources.data(), sources.size(), milliseconds) <= 0 || sources[0].revents == 0)
        return false;
    std::array<char, 4096> part; // NOLINT(cppcoreguidelines-pro-type-member-init)
    const ssize_t size = ::read(m_pipe.number(), part.data(), part.size());
    if (size > 0)
        m_output.append(part.data(), int(size));
    else if (size == 0 || errno != EINTR)
        m_pipe.close();
    return size > 0;
}

bool ChildProcess::waitForFinished(const QDeadlineTimer &deadline)
{
    if (!isStarted())
        return false;
    int checkInterval = 1; // ms; a tool mostly ends together with its output
    while (!hasEnded()) {
        if (hasPrintedTooMuch() || deadline.hasExpired())
            return false;
        const qint64 left = deadline.isForever() ? -1 : deadline.remainingTime();
        if (m_end.isOpen()) {
            waitForNews(int(left));
        } else {
            waitForNews(left < 0 ? checkInterval : int(std::min<qint64>(left, checkInterval)));
            checkInterval = std::min(2 * checkInterval, longestCheckInterval);
        }
    }
    while (!hasPrintedTooMuch() && waitForNews(0)) { }
    m_isFinished = !hasPrintedTooMuch();
    return m_isFinished;
}

bool startDetachedProcess(const QString &program, const QStringList &arguments)
{
    const Words words(program, arguments);
    Orders orders;
    orders.words = words.pointers();
    const pid_t id = start(runDetached, orders);
    if (id > 0)
        while (::waitpid(id, nullptr, 0) < 0 && errno == EINTR) { }
    return id > 0;
}

} // namespace Internal
