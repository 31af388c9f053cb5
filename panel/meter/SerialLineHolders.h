#pragma once

#include <QStringList>

/**
 * The processes that have the USB port's serial line open, each as "login (212)". The gadget cannot
 * be unloaded while there is one, so the port stays a serial line. Reads all of /proc; any thread.
 */
QStringList serialLineHolders();
