#pragma once

/**
 * Makes it impossible to start processes, as when the limit of the system is reached. In a program
 * with NoProcesses.cpp the calls of the library and of Qt go through it. Threads can be started as
 * usual.
 */
namespace NoProcesses {

/** Whether processes fail to start with EAGAIN from now on. */
void set(bool isOn);

} // namespace NoProcesses
