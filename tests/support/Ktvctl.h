#pragma once

#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QStringList>

/** Result of a call of ktvctl. */
struct Answer
{
    int code = -1; ///< exit code; -1 if it has not ended by itself
    QString out;
    QString error;
};

/** Calls ktvctl with @p input on standard input; ktv_add_test(... KTVCTL) gives its path. */
inline Answer ktvctl(const QStringList &words, const QByteArray &input = {})
{
    QProcess process;
    process.start(QStringLiteral(KTVCTL), words);
    process.write(input);
    process.closeWriteChannel();
    Answer answer;
    if (process.waitForFinished(30000) && process.exitStatus() == QProcess::NormalExit)
        answer.code = process.exitCode();
    answer.out = QString::fromUtf8(process.readAllStandardOutput());
    answer.error = QString::fromUtf8(process.readAllStandardError());
    return answer;
}

/** The same for a command line as a user types it. */
inline Answer typed(const QString &line)
{
    return ktvctl(QProcess::splitCommand(line));
}

/** The value in a line of JSON. */
inline QJsonValue parsed(const QString &line)
{
    return QJsonDocument::fromJson('[' + line.toUtf8() + ']').array().at(0);
}
