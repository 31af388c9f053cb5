#pragma once

#include "support/Meter.h"

#include <QApplication>

#ifdef __SANITIZE_ADDRESS__
/** What Qt itself never deletes: its offscreen platform's screen, and a few bytes a scroller. */
extern "C" const char *__lsan_default_suppressions()
{
    return "leak:QScreen::QScreen\nleak:QPlatformScreen\nleak:handleScreenAdded\n"
           "leak:libqoffscreen\nleak:QScroller::grabGesture\n";
}
#endif

/** main() of a test program of the panel. */
#define KTV_PANEL_TEST_MAIN(TestClass) KTV_METER_TEST_MAIN_OF(QApplication, TestClass)
