#pragma once

#include <QString>
#include <QVector>

/** Something in an image that is not as the library needs it. */
struct Finding
{
    enum Level
    {
        Warning, ///< works, but not as somebody will have meant it
        Error ///< does not work
    };
    Level level;
    QString file; ///< path on the device
    int line; ///< 0: the file as a whole, or its absence
    QString text;
};

/** What the checks of an image have found, in their order. */
class Report
{
public:
    void error(const QString &file, int line, const QString &text)
    {
        m_findings.append({Finding::Error, file, line, text});
    }
    void error(const QString &file, const QString &text) { error(file, 0, text); }
    void warning(const QString &file, int line, const QString &text)
    {
        m_findings.append({Finding::Warning, file, line, text});
    }
    void warning(const QString &file, const QString &text) { warning(file, 0, text); }

    const QVector<Finding> &findings() const { return m_findings; }

private:
    QVector<Finding> m_findings;
};
