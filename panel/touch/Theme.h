#pragma once

#include <QColor>
#include <QSize>
#include <QString>

/** The panel's few colours: greys, one accent, and red for what needs attention. */
struct Theme
{
    QColor background;
    QColor surface; ///< of buttons, and of widgets that show values
    QColor line;
    QColor text;
    QColor quiet; ///< captions
    QColor accent;
    QColor onAccent;
    QColor alarm;

    static const Theme &light();
    static const Theme &dark();
    static const Theme &current();
    /** Applies the theme to the whole application. */
    static void use(const Theme &theme);

    /**
     * Sets the scale for a window of this size; to be called before widgets are created. All
     * lengths in the sources are pixels of a window of 800 x 480.
     */
    static void fit(const QSize &window);
    /** Whether the window is too small to show a rail and whole pages. */
    static bool isCompact();
    /** Scales a length to pixels of this window. */
    static int px(int length);
    /** Scales every length in a style sheet. */
    static QString scaled(const QString &unscaled);
    static int target() { return px(48); } ///< the smallest height of a widget that is touched
    static int margin() { return isCompact() ? px(10) : px(16); }
    static int gap() { return px(8); }
};
