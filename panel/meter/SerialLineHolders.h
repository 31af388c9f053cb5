#pragma once

#include <QStringList>

/**
 * The processes that have the USB port's serial line open, each as "login (212)". While there is
 * one, the gadget cannot be unloaded, so the port stays a serial line. Reads all of /proc. May be
 * called on any thread.
 */
QStringList serialLineHolders();
