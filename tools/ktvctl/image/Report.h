#pragma once

#include <QString>
#include <QVector>

/** A fault in an image. */
struct Finding
{
    enum Level
    {
        Warning, ///< works, but probably not as intended
        Error ///< does not work
    };
    Level level;
    QString file; ///< path on the device
    int line; ///< 0: the whole file, or that it is missing
    QString text;
};

/** The faults that the checks of an image have found, in order. */
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
