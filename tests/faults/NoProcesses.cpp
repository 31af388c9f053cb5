#include "NoProcesses.h"

#include <atomic>
#include <cerrno>
#include <cstdarg>

#include <dlfcn.h>
#include <sched.h>
#include <sys/syscall.h>
#include <sys/types.h>

namespace {

std::atomic<bool> isRefused {false};

template <typename Function> Function next(const char *name)
{
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

bool refuses()
{
    if (isRefused)
        errno = EAGAIN;
    return isRefused;
}

} // namespace

void NoProcesses::set(bool isOn)
{
    isRefused = isOn;
}

extern "C" {

pid_t fork() noexcept
{
    static const auto real = next<pid_t (*)()>("fork");
    return refuses() ? -1 : real();
}

/** Qt 6 starts children with this, and has the descriptor of the child written to the first of the
 * rest. */
int clone(int (*function)(void *), void *stack, int flags, void *argument, ...) noexcept
{
    using Clone = int (*)(int (*)(void *), void *, int, void *, void *, void *, void *);
    static const auto real = next<Clone>("clone");
    va_list rest;
    va_start(rest, argument);
    void *words[3];
    for (void *&word : words)
        word = va_arg(rest, void *);
    va_end(rest);
    return refuses() ? -1 : real(function, stack, flags, argument, words[0], words[1], words[2]);
}

/** Qt 5 starts children with this. */
long syscall(long number, ...) noexcept
{
    using Call = long (*)(long, long, long, long, long, long, long);
    static const auto real = next<Call>("syscall");
    va_list rest;
    va_start(rest, number);
    long words[6];
    for (long &word : words)
        word = va_arg(rest, long);
    va_end(rest);
    if (number == SYS_clone && refuses())
        return -1;
    return real(number, words[0], words[1], words[2], words[3], words[4], words[5]);
}

} // extern "C"
