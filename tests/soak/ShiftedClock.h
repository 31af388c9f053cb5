#pragma once

#include <ctime>

/**
 * The clock of the day, set forth or back: the program that holds ShiftedClock.cpp has the
 * library's and Qt's questions for the time go through it. Time that only passes is not changed.
 */
namespace ShiftedClock {

void set(std::time_t seconds);

} // namespace ShiftedClock
