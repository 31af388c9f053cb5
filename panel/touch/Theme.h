#pragma once

#include <QColor>
#include <QSize>
#include <QString>

/** The panel's few colours: greys, one accent, and red for what needs attention. */
struct Theme
{
    QColor background;
    QColor surface; ///< what can be touched, and what shows values
    QColor line;
    QColor text;
    QColor quiet; ///< captions
    QColor accent;
    QColor onAccent;
    QColor alarm;

    static const Theme &light();
    static const Theme &dark();
    static const Theme &current();
    /** Dresses the whole application. */
    static void use(const Theme &theme);

    /**
     * Sizes letters and what is touched for a window; call it before the widgets are made. All
     * lengths in the sources are pixels of a window of 800 x 480.
     */
    static void fit(const QSize &window);
    /** Whether the window is too small for everything at once. */
    static bool isCompact();
    /** A length in pixels of this window. */
    static int px(int length);
    /** The same for every length of a style sheet. */
    static QString scaled(const QString &unscaled);
    static int target() { return px(48); } ///< least height of what is touched
    static int margin() { return isCompact() ? px(10) : px(16); }
    static int gap() { return px(8); }
};
