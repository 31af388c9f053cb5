#pragma once

#include <QMutex>
#include <QStringList>
#include <QtGlobal>

/** Collects the log lines of all threads while this object exists. */
class LogCapture
{
public:
    LogCapture();
    ~LogCapture();
    Q_DISABLE_COPY_MOVE(LogCapture)

    QStringList lines() const;
    void clear();

private:
    static void handle(QtMsgType type, const QMessageLogContext &context, const QString &line);

    static LogCapture *s_current;
    QtMessageHandler m_previous;
    mutable QMutex m_mutex;
    QStringList m_lines;
};
