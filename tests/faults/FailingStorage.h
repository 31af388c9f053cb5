#pragma once

/**
 * Storage that fails on request. In a program with FailingStorage.cpp these calls of the C library,
 * including those by Qt and SQLite, go through it. Calls on files of the meter are counted, and one
 * call, or all from that one on, can be made to fail.
 */
namespace FailingStorage {

enum Call
{
    Open,
    Write,
    Flush, ///< fsync, fdatasync
    Rename, ///< and the naming of a file that has had no name
    Unlink,
    Truncate
};
constexpr int callCount = Truncate + 1;

/** Resets the count to 0; no call fails any more. */
void reset();
/** Number of calls since then. */
int count(Call call);
/** Whether a call has been made to fail since then. */
bool hasFailed();
/** Makes the call with this @p number from now on, counted from 1, fail with @p error; with @p
 * lasting also all calls after it.
 */
void failAt(Call call, int number, int error, bool lasting);

} // namespace FailingStorage
