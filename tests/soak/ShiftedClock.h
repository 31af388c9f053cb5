#pragma once

#include <ctime>

/**
 * A wall clock that can be set forward or back: in a program with ShiftedClock.cpp the library and
 * Qt get the time from it. The monotonic clock is not changed.
 */
namespace ShiftedClock {

void set(std::time_t seconds);

} // namespace ShiftedClock
