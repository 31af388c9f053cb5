#pragma once

#include <QByteArray>

/** XML files that nobody would write, but that a damaged card may have. */
namespace Hostile {

/** Nested elements, all closed. */
inline QByteArray nested(int levels)
{
    return QByteArray("<x>").repeated(levels) + QByteArray("</x>").repeated(levels);
}

/** A kilobyte of entities that expand to gigabytes. */
inline QByteArray entityBomb()
{
    QByteArray text = "<?xml version=\"1.0\"?><!DOCTYPE x [<!ENTITY e0 \"lollollol\">";
    for (int i = 1; i < 20; ++i) {
        const QByteArray before = "&e" + QByteArray::number(i - 1) + ';';
        text += "<!ENTITY e" + QByteArray::number(i) + " \"" + before.repeated(10) + "\">";
    }
    return text + "]><x>&e19;</x>";
}

/** Well-formed, and far larger than any file of a device. */
inline QByteArray huge()
{
    return "<x>" + QByteArray("<y z='1'/>").repeated(1024 * 1024) + "</x>";
}

} // namespace Hostile
