#pragma once

#include <QtGlobal>

/** Marks what the platform library offers to the rest of the device. */
#define KTV_PLATFORM_EXPORT Q_DECL_EXPORT
