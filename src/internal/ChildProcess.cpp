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
#define SYS_pidfd_open 434 // newer than the system headers
#endif

#if defined(__SANITIZE_THREAD__)
// The sanitizer intercepts these functions. Called in the child, which shares our memory, its
// versions would record that this process is a copy and has lost its signal handlers.
extern "C" int __clone(int (*function)(void *), void *stack, int flags, void *argument, ...);
extern "C" int __sigaction(int signal, const struct sigaction *next, struct sigaction *before);
#define CHILD_CALL(name) ::__##name
#else
#define CHILD_CALL(name) ::name
#endif

namespace Internal {

namespace {

constexpr int longestCheckInterval = 20; // ms, if the kernel has no pidfd to report a child's end
constexpr int failedStart = 127; // exit code

/** The words of a command line in the form that exec needs. */
class CommandWords
{
public:
    CommandWords(const QString &program, const QStringList &arguments)
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

/** Blocks every signal in this thread, and so in the child while it shares our memory. */
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

/** What a child has to do before its program is loaded. */
struct ChildSetup
{
    char *const *words;
    const sigset_t *signalMask;
    int output = -1; ///< becomes standard output; -1: the child keeps all streams of this process
    bool isBound = false;
    pid_t parent = ::getpid();
    int error = 0; ///< errno, set by the child in the shared memory
};

// The child shares this process's memory but has its own stack, of which sanitizers are not aware;
// the calling thread is suspended until the program is loaded. Therefore these functions make plain
// system calls only, are not instrumented, and change nothing in memory except ChildSetup::error.
#define IN_CHILD __attribute__((no_sanitize("address", "thread", "undefined")))

using ChildFunction = int (*)(void *);

/**
 * _exit(), but without a sanitizer's work at the end of a process, because this process goes on.
 */
[[noreturn]] IN_CHILD void exitChild(int code)
{
    for (;;)
        ::syscall(SYS_exit_group, code);
}

constexpr std::size_t stackSize = 32768;

/** Runs @p function in a child. @return its id once its program is loaded or it has ended */
IN_CHILD pid_t runInChild(ChildFunction function, ChildSetup &setup, char *stackEnd)
{
    return CHILD_CALL(clone)(function, stackEnd, CLONE_VM | CLONE_VFORK | SIGCHLD, &setup);
}

/** Removes this process's signal handlers in the child, and sets SIGPIPE to its default. */
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

/** Returns the descriptor, or a duplicate if its number is that of a standard stream. */
IN_CHILD int aboveStandardStreams(int descriptor)
{
    return descriptor < 0 || descriptor > STDERR_FILENO
        ? descriptor
        : ::fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
}

/** Standard input is empty, output goes to the pipe, errors are discarded. */
IN_CHILD bool connectStreams(int output)
{
    output = aboveStandardStreams(output);
    if (output < 0)
        return false;
    const int nothing = aboveStandardStreams(::open("/dev/null", O_RDWR | O_CLOEXEC));
    return nothing >= 0 && ::dup2(nothing, STDIN_FILENO) >= 0 && ::dup2(output, STDOUT_FILENO) >= 0
        && ::dup2(nothing, STDERR_FILENO) >= 0;
}

IN_CHILD int load(void *data)
{
    auto &setup = *static_cast<ChildSetup *>(data);
    restoreSignals(*setup.signalMask);
    ::execvp(setup.words[0], setup.words);
    setup.error = errno;
    exitChild(failedStart);
}

IN_CHILD int runGroup(void *data)
{
    auto &setup = *static_cast<ChildSetup *>(data);
    ::setpgid(0, 0);
    if (setup.isBound) {
        ::prctl(PR_SET_PDEATHSIG, SIGTERM);
        if (::getppid() != setup.parent) // the parent died before prctl()
            exitChild(0);
    }
    if (connectStreams(setup.output))
        load(data);
    setup.error = errno;
    exitChild(failedStart);
}

/**
 * Starts the program as a child of this child, so that it has no parent here when this child ends.
 */
IN_CHILD int runDetached(void *data)
{
    auto &setup = *static_cast<ChildSetup *>(data);
    ::setsid();
    alignas(16) std::array<char, stackSize> stack;
    if (runInChild(load, setup, stack.data() + stack.size()) < 0)
        setup.error = errno;
    exitChild(0);
}

/**
 * @return id of the child; -1 and errno if its program was not loaded, and then no child is left
 */
pid_t start(ChildFunction function, ChildSetup &setup)
{
    constexpr std::size_t size = 2 * stackSize; // runDetached() has a second stack on this one
    const auto stack = std::make_unique<char[]>(size); // NOLINT(modernize-avoid-c-arrays)
    pid_t id = 0;
    {
        const NoSignals noSignals;
        setup.signalMask = &noSignals.before();
        id = runInChild(function, setup, stack.get() + size);
    }
    if (id > 0 && setup.error != 0) {
        while (::waitpid(id, nullptr, 0) < 0 && errno == EINTR) { }
        errno = setup.error;
        return -1;
    }
    return id;
}

/** Never deleted: a client's static objects may still use the library after main(). */
struct AbandonedIds
{
    std::mutex mutex;
    std::vector<pid_t> ids;
};

AbandonedIds &abandoned()
{
    static auto *const instance = new AbandonedIds;
    return *instance;
}

} // namespace

void AbandonedChildren::add(pid_t id)
{
    AbandonedIds &all = abandoned();
    const std::lock_guard<std::mutex> lock(all.mutex);
    all.ids.push_back(id);
}

bool AbandonedChildren::areTooMany()
{
    constexpr std::size_t most = 4;
    AbandonedIds &all = abandoned();
    const std::lock_guard<std::mutex> lock(all.mutex);
    all.ids.erase(std::remove_if(all.ids.begin(), all.ids.end(),
                                 [](pid_t id) { return ::waitpid(id, nullptr, WNOHANG) != 0; }),
                  all.ids.end());
    return all.ids.size() >= most;
}

ChildProcess::ChildProcess(const QString &program, const QStringList &arguments, Lifetime lifetime)
{
    if (AbandonedChildren::areTooMany()) {
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
    const CommandWords words(program, arguments);
    ChildSetup setup;
    setup.words = words.pointers();
    setup.output = childsEnd.number();
    setup.isBound = lifetime == BoundToThread;
    m_id = start(runGroup, setup);
    m_startError = isStarted() ? 0 : errno;
    childsEnd.close();
    if (isStarted())
        m_pidfd.reset(int(::syscall(SYS_pidfd_open, m_id, 0)));
}

ChildProcess::~ChildProcess()
{
    if (!isStarted())
        return;
    if (!m_isFinished)
        signalGroup(SIGKILL);
    if (!reap(QDeadlineTimer(AbandonedChildren::killTime)))
        AbandonedChildren::add(m_id);
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

/**
 * Does not reap the child: as long as it is not reaped, no other process can get its id, which is
 * also the id of its group.
 */
bool ChildProcess::hasEnded() const
{
    siginfo_t state {};
    const int result = ::waitid(P_PID, id_t(m_id), &state, WEXITED | WNOHANG | WNOWAIT);
    return result == 0 ? state.si_pid == m_id : errno == ECHILD;
}

/** Waits for the child's end and reaps it. @return whether it has ended in time */
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

/**
 * Waits for output or for the child's end, and collects output. @return whether there was output
 */
bool ChildProcess::waitForOutput(int milliseconds)
{
    std::array<pollfd, 2> sources {{{m_pipe.number(), POLLIN, 0}, {m_pidfd.number(), POLLIN, 0}}};
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
    int checkInterval = 1; // ms; short at first, because most tools end together with their output
    while (!hasEnded()) {
        if (hasPrintedTooMuch() || deadline.hasExpired())
            return false;
        const qint64 left = deadline.isForever() ? -1 : deadline.remainingTime();
        if (m_pidfd.isOpen()) {
            waitForOutput(int(left));
        } else {
            waitForOutput(left < 0 ? checkInterval : int(std::min<qint64>(left, checkInterval)));
            checkInterval = std::min(2 * checkInterval, longestCheckInterval);
        }
    }
    while (!hasPrintedTooMuch() && waitForOutput(0)) { }
    m_isFinished = !hasPrintedTooMuch();
    return m_isFinished;
}

bool startDetachedProcess(const QString &program, const QStringList &arguments)
{
    const CommandWords words(program, arguments);
    ChildSetup setup;
    setup.words = words.pointers();
    const pid_t id = start(runDetached, setup);
    if (id > 0)
        while (::waitpid(id, nullptr, 0) < 0 && errno == EINTR) { }
    return id > 0;
}

} // namespace Internal
