#pragma once

/**
 * Storage that fails when it is told to. The program that holds FailingStorage.cpp has these calls
 * of the C library go through it, those of Qt and SQLite included; what concerns the files of the
 * meter is counted, and one call, or all from that one on, can be made to fail.
 */
namespace FailingStorage {

enum Call
{
    Open,
    Write,
    Flush, ///< fsync, fdatasync
    Rename,
    Unlink,
    Truncate
};
constexpr int callCount = Truncate + 1;

/** Counts from 0 again; nothing fails any more. */
void reset();
/** How many calls there were since then. */
int count(Call call);
/** Whether a call was made to fail since then. */
bool hasFailed();
/** The @p number th call from now on, from 1, fails with @p error, and with @p lasting all after.
 */
void failAt(Call call, int number, int error, bool lasting);

} // namespace FailingStorage
