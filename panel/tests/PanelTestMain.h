#pragma once

#include "support/Meter.h"

#include <QApplication>

#ifdef __SANITIZE_ADDRESS__
/**
 * Ignores what Qt itself never deletes: the screen of its offscreen platform, and some bytes for
 * each scroller.
 */
extern "C" const char *__lsan_default_suppressions()
{
    return "leak:QScreen::QScreen\nleak:QPlatformScreen\nleak:handleScreenAdded\n"
           "leak:libqoffscreen\nleak:QScroller::grabGesture\n";
}
#endif

/** main() of a test program of the panel. */
#define KTV_PANEL_TEST_MAIN(TestClass) KTV_METER_TEST_MAIN_OF(QApplication, TestClass)
