#include "ShiftedClock.h"

#include <atomic>

#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

namespace {

std::atomic<std::time_t> shift {0};

} // namespace

void ShiftedClock::set(std::time_t seconds)
{
    shift = seconds;
}

extern "C" {

int clock_gettime(clockid_t clock, timespec *time) noexcept
{
    const auto result = int(::syscall(SYS_clock_gettime, clock, time));
    if (result == 0 && (clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE))
        time->tv_sec += shift;
    return result;
}

int gettimeofday(timeval *time, void *zone) noexcept
{
    timespec now {};
    ::clock_gettime(CLOCK_REALTIME, &now);
    *time = {now.tv_sec, now.tv_nsec / 1000};
    return zone ? int(::syscall(SYS_gettimeofday, nullptr, zone)) : 0;
}

std::time_t time(std::time_t *result) noexcept
{
    timespec now {};
    ::clock_gettime(CLOCK_REALTIME, &now);
    if (result)
        *result = now.tv_sec;
    return now.tv_sec;
}

} // extern "C"
