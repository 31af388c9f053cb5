#include "SlowClock.h"

#include "support/Meter.h"

#include <atomic>
#include <ctime>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr qint64 nanoseconds = 1000000000; // a second
constexpr qint64 slowness = Meter::patience / 1000;
std::atomic<qint64> s_slowSince {0}; // ns

qint64 now(clockid_t clock)
{
    timespec time {};
    ::syscall(SYS_clock_gettime, clock, &time);
    return time.tv_sec * nanoseconds + time.tv_nsec;
}

} // namespace

SlowClock::SlowClock()
{
    s_slowSince = now(CLOCK_MONOTONIC);
}

SlowClock::~SlowClock()
{
    s_slowSince = 0;
}

bool SlowClock::isSecondOver()
{
    return now(CLOCK_MONOTONIC) - s_slowSince >= slowness * nanoseconds;
}

/** Replaces the function of the C library, also for Qt. */
extern "C" int clock_gettime(clockid_t clock, timespec *time) noexcept
{
    const auto result = int(::syscall(SYS_clock_gettime, clock, time));
    const qint64 since = s_slowSince;
    const bool isWorker = ::syscall(SYS_gettid) != ::getpid();
    if (since == 0 || clock != CLOCK_MONOTONIC || !isWorker)
        return result;
    const qint64 slow = since + (now(clock) - since) / slowness;
    *time = {slow / nanoseconds, slow % nanoseconds};
    return result;
}
