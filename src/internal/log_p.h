#pragma once

#include <QDebug>

namespace Internal {

/** One line of the debug log: every text and what follows it stand exactly as streamed. */
inline QDebug log()
{
    return qDebug().noquote().nospace();
}

} // namespace Internal
