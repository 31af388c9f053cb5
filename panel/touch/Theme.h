#pragma once

#include <QColor>

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

    static constexpr int target = 48; ///< least height of what is touched, in pixels
    static constexpr int margin = 16;
    static constexpr int gap = 8;
};
