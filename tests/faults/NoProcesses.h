#pragma once

/**
 * Lets no process begin, as when the system has no room for another: the program that holds
 * NoProcesses.cpp has the library's calls, and Qt's, go through it. Threads begin as always.
 */
namespace NoProcesses {

/** From now on, processes fail to begin with EAGAIN, or begin again. */
void set(bool isOn);

} // namespace NoProcesses
