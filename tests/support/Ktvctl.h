#pragma once

#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QStringList>

/** What came of a call of ktvctl. */
struct Answer
{
    int code = -1; ///< exit code; -1 when it has not ended by itself
    QString out;
    QString error;
};

/** Calls ktvctl and types @p input; ktv_add_test(... KTVCTL) says where it is. */
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

/** The same for a line as a user types it. */
inline Answer typed(const QString &line)
{
    return ktvctl(QProcess::splitCommand(line));
}

/** The value that a line of JSON holds. */
inline QJsonValue parsed(const QString &line)
{
    return QJsonDocument::fromJson('[' + line.toUtf8() + ']').array().at(0);
}
