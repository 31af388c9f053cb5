#include "support/LogCapture.h"

#include <QMutexLocker>

LogCapture *LogCapture::s_current = nullptr;

LogCapture::LogCapture()
{
    s_current = this;
    m_previous = qInstallMessageHandler(handle);
}

LogCapture::~LogCapture()
{
    qInstallMessageHandler(m_previous);
    s_current = nullptr;
}

QStringList LogCapture::lines() const
{
    const QMutexLocker locker(&m_mutex);
    return m_lines;
}

void LogCapture::clear()
{
    const QMutexLocker locker(&m_mutex);
    m_lines.clear();
}

void LogCapture::handle(QtMsgType, const QMessageLogContext &, const QString &line)
{
    const QMutexLocker locker(&s_current->m_mutex);
    s_current->m_lines += line;
}
