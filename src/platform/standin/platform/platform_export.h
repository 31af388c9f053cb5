#pragma once

#include <QtGlobal>

/** Marks what the platform library exports. */
#define KTV_PLATFORM_EXPORT Q_DECL_EXPORT
