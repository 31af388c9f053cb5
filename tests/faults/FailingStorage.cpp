#include "FailingStorage.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <iterator>
#include <string_view>

#include <fcntl.h>
#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>

// Calls the kernel directly, because the functions below replace those of the C library.

namespace FailingStorage {

namespace {

constexpr std::string_view watched[] = {"/media/sdcard/", "/etc/wpa_supplicant/", "/home/root/"};

struct Plan
{
    std::atomic<int> call {-1};
    std::atomic<int> number {0};
    std::atomic<int> error {0};
    std::atomic<bool> lasting {false};
};

Plan plan;
std::array<std::atomic<int>, callCount> counts {};
std::atomic<bool> failed {false};
/** Whether the file of each descriptor is watched. */
std::array<std::atomic<bool>, 1024> watchedFiles {};

bool isWatched(std::string_view path)
{
    return std::any_of(std::begin(watched), std::end(watched), [path](std::string_view prefix) {
        // The folder itself is included, because it is opened to be flushed.
        return path.substr(0, prefix.size()) == prefix
            || path == prefix.substr(0, prefix.size() - 1);
    });
}

/** Whether this call on a file of the meter must fail; sets errno then. */
bool fails(Call call)
{
    const int number = ++counts.at(size_t(call));
    if (plan.call != call || number < plan.number || (number > plan.number && !plan.lasting))
        return false;
    failed = true;
    errno = plan.error;
    return true;
}

bool fails(Call call, const char *path)
{
    return path && isWatched(path) && fails(call);
}

bool fails(Call call, int descriptor)
{
    return descriptor >= 0 && size_t(descriptor) < watchedFiles.size()
        && watchedFiles.at(size_t(descriptor)) && fails(call);
}

} // namespace

void reset()
{
    plan.call = -1;
    failed = false;
    for (auto &count : counts)
        count = 0;
}

int count(Call call)
{
    return counts.at(size_t(call));
}

bool hasFailed()
{
    return failed;
}

void failAt(Call call, int number, int error, bool lasting)
{
    reset();
    plan.number = number;
    plan.error = error;
    plan.lasting = lasting;
    plan.call = call;
}

} // namespace FailingStorage

using namespace FailingStorage;

namespace {

int openAt(int folder, const char *path, int flags, mode_t mode)
{
    if (fails(Open, path))
        return -1;
    const auto file = int(::syscall(SYS_openat, folder, path, flags, mode));
    if (file >= 0 && size_t(file) < watchedFiles.size())
        watchedFiles.at(size_t(file)) = isWatched(path);
    return file;
}

/** The mode among the last arguments of a call, if there is one. */
#define MODE_OF(flags)                                                                             \
    mode_t mode = 0;                                                                               \
    if (((flags) & (O_CREAT | O_TMPFILE)) != 0) {                                                  \
        va_list rest;                                                                              \
        va_start(rest, flags);                                                                     \
        mode = mode_t(va_arg(rest, int));                                                          \
        va_end(rest);                                                                              \
    }

} // namespace

extern "C" {

int open(const char *path, int flags, ...)
{
    MODE_OF(flags)
    return openAt(AT_FDCWD, path, flags, mode);
}

int open64(const char *path, int flags, ...)
{
    MODE_OF(flags)
    return openAt(AT_FDCWD, path, flags, mode);
}

int openat(int folder, const char *path, int flags, ...)
{
    MODE_OF(flags)
    return openAt(folder, path, flags, mode);
}

int openat64(int folder, const char *path, int flags, ...)
{
    MODE_OF(flags)
    return openAt(folder, path, flags, mode);
}

int close(int descriptor)
{
    if (descriptor >= 0 && size_t(descriptor) < watchedFiles.size())
        watchedFiles.at(size_t(descriptor)) = false;
    return int(::syscall(SYS_close, descriptor));
}

ssize_t write(int descriptor, const void *bytes, size_t size)
{
    return fails(Write, descriptor) ? -1 : ::syscall(SYS_write, descriptor, bytes, size);
}

ssize_t pwrite(int descriptor, const void *bytes, size_t size, off_t offset)
{
    return fails(Write, descriptor) ? -1 : ::syscall(SYS_pwrite64, descriptor, bytes, size, offset);
}

ssize_t pwrite64(int descriptor, const void *bytes, size_t size, off64_t offset)
{
    return fails(Write, descriptor) ? -1 : ::syscall(SYS_pwrite64, descriptor, bytes, size, offset);
}

int fsync(int descriptor)
{
    return fails(Flush, descriptor) ? -1 : int(::syscall(SYS_fsync, descriptor));
}

int fdatasync(int descriptor)
{
    return fails(Flush, descriptor) ? -1 : int(::syscall(SYS_fdatasync, descriptor));
}

int rename(const char *from, const char *to) noexcept
{
    return fails(Rename, to) ? -1 : int(::syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0));
}

int renameat2(int fromFolder, const char *from, int toFolder, const char *to,
              unsigned int flags) noexcept
{
    return fails(Rename, to) ? -1
                             : int(::syscall(SYS_renameat2, fromFolder, from, toFolder, to, flags));
}

/** Qt gives a name to a temporary file with this. */
int linkat(int fromFolder, const char *from, int toFolder, const char *to, int flags) noexcept
{
    return fails(Rename, to) ? -1
                             : int(::syscall(SYS_linkat, fromFolder, from, toFolder, to, flags));
}

int unlink(const char *path) noexcept
{
    return fails(Unlink, path) ? -1 : int(::syscall(SYS_unlinkat, AT_FDCWD, path, 0));
}

int ftruncate(int descriptor, off_t size) noexcept
{
    return fails(Truncate, descriptor) ? -1 : int(::syscall(SYS_ftruncate, descriptor, size));
}

int ftruncate64(int descriptor, off64_t size) noexcept
{
    return fails(Truncate, descriptor) ? -1 : int(::syscall(SYS_ftruncate, descriptor, size));
}

} // extern "C"
