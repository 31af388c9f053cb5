#include "HangingCommand.h"

#include <QFile>

#include <atomic>
#include <csignal>
#include <ctime>
#include <dlfcn.h>
#include <mutex>
#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr qint64 nanoseconds = 1000000000; // a second
constexpr qint64 perMillisecond = 1000000;
constexpr int longest = 600000; // ms

struct Wait
{
    pid_t child;
    int time; // ms
};

std::mutex s_mutex; // for the command and the waits
QByteArray s_command;
QList<Wait> s_waits;
std::atomic<qint64> s_now {0}; // ns; 0: the clock runs
std::atomic<int> s_limitOfStart {0}; // ms

template <typename Function> Function next(const char *name)
{
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

qint64 toNanoseconds(const timespec &time)
{
    return time.tv_sec * nanoseconds + time.tv_nsec;
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/** The process that a descriptor stands for; 0 if it is not a pidfd. */
pid_t processOf(int pidfd)
{
    const QByteArray info = readFile(QStringLiteral("/proc/self/fdinfo/%1").arg(pidfd));
    for (const QByteArray &line : info.split('\n')) {
        if (line.startsWith("Pid:"))
            return line.mid(4).trimmed().toInt();
    }
    return 0;
}

bool hasEnded(int pidfd)
{
    pollfd source {pidfd, POLLIN, 0};
    return ::poll(&source, 1, 0) != 0;
}

/** The command line of a process; empty if it has ended. */
QByteArray commandOf(pid_t process, int pidfd)
{
    QByteArray line;
    do // it is empty for a moment while the program is loaded
        line = readFile(QStringLiteral("/proc/%1/cmdline").arg(process));
    while (line.isEmpty() && !hasEnded(pidfd));
    return line.replace('\0', ' ');
}

/** Lets the time of a wait for the command pass. @return false if it is another process */
bool letTimePass(int pidfd, int timeout)
{
    const pid_t child = processOf(pidfd);
    const std::lock_guard<std::mutex> lock(s_mutex);
    if (child <= 0 || !commandOf(child, pidfd).contains(s_command))
        return false;
    if (s_waits.isEmpty() || s_waits.last().child != child)
        s_waits += {child, 0};
    Wait &wait = s_waits.last();
    if (timeout < 0 || wait.time > longest) {
        wait.time = HangingCommand::withoutLimit;
        ::kill(-child, SIGKILL);
        return false;
    }
    wait.time += timeout;
    s_now += timeout * perMillisecond;
    return true;
}

} // namespace

// They replace the functions of the C library, also for Qt.
extern "C" {

int clock_gettime(clockid_t clock, timespec *time) noexcept
{
    const qint64 now = s_now;
    if (now == 0 || clock != CLOCK_MONOTONIC)
        return int(::syscall(SYS_clock_gettime, clock, time));
    *time = {now / nanoseconds, now % nanoseconds};
    return 0;
}

int nanosleep(const timespec *time, timespec *left)
{
    static const auto original = next<decltype(&nanosleep)>("nanosleep");
    if (s_now == 0)
        return original(time, left);
    s_now += toNanoseconds(*time);
    return 0;
}

int poll(pollfd *sources, nfds_t count, int timeout)
{
    static const auto original = next<decltype(&poll)>("poll");
    constexpr nfds_t outputAndEnd = 2; // the library waits for both
    if (s_now != 0 && count == outputAndEnd && timeout != 0 && letTimePass(sources[1].fd, timeout))
        return 0;
    return original(sources, count, timeout);
}

/** Qt waits with this function. */
int ppoll(pollfd *sources, nfds_t count, const timespec *timeout, const sigset_t *signalMask)
{
    static const auto original = next<decltype(&ppoll)>("ppoll");
    if (s_now != 0 && timeout && s_limitOfStart == 0)
        s_limitOfStart = int(toNanoseconds(*timeout) / perMillisecond);
    return original(sources, count, timeout, signalMask);
}

} // extern "C"

HangingCommand::HangingCommand(const QString &part)
{
    timespec now {};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    const std::lock_guard<std::mutex> lock(s_mutex);
    s_command = part.toUtf8();
    s_waits.clear();
    s_limitOfStart = 0;
    s_now = toNanoseconds(now);
}

HangingCommand::~HangingCommand()
{
    s_now = 0;
}

QList<int> HangingCommand::waits() const
{
    const std::lock_guard<std::mutex> lock(s_mutex);
    QList<int> result;
    for (const Wait &wait : s_waits) {
        if (result.isEmpty() || result.last() != wait.time)
            result += wait.time;
    }
    return result;
}

int HangingCommand::limitOfStart()
{
    return s_limitOfStart;
}
