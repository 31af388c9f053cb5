#pragma once

#include <QDebug>

namespace Internal {

/** One line of the debug log, without the quotes and spaces that qDebug() adds by default. */
inline QDebug log()
{
    return qDebug().noquote().nospace();
}

} // namespace Internal
