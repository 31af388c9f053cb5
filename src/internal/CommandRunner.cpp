#include "internal/CommandRunner_p.h"

#include <QDeadlineTimer>
#include <QProcess>

#include <algorithm>
#include <csignal>
#include <unistd.h>

namespace Internal {

namespace {

/** A child that leads its own process group, so that it can be ended with its children. */
class GroupProcess : public QProcess
{
public:
    ~GroupProcess() override { end(); }

    void end()
    {
        if (state() == NotRunning)
            return;
        if (const auto id = static_cast<pid_t>(processId()); id > 0)
            ::kill(-id, SIGKILL);
        kill(); // covers a child that has not yet reached its own group
        waitForFinished(-1);
    }

protected:
    void setupChildProcess() override { ::setpgid(0, 0); }
};

constexpr qint64 stopCheckInterval = 20; // ms

bool waitForFinished(QProcess &process, const Waits &waits)
{
    if (!waits.stop)
        return process.waitForFinished(waits.finish);
    const QDeadlineTimer deadline(waits.finish); // -1 never expires
    while (!*waits.stop) {
        const qint64 left = deadline.isForever() ? stopCheckInterval : deadline.remainingTime();
        if (process.waitForFinished(int(std::min(left, stopCheckInterval))))
            return true;
        if (process.state() == QProcess::NotRunning || deadline.hasExpired())
            return false;
    }
    return false;
}

} // namespace

CommandResult runProgram(const QString &program, const QStringList &arguments, Waits waits)
{
    CommandResult result;
    GroupProcess process;
    process.start(program, arguments);
    if (waits.start != Waits::NoStartWait && !process.waitForStarted(waits.start))
        return result;
    result.outcome =
        waitForFinished(process, waits) ? CommandResult::Finished : CommandResult::NotFinished;
    result.output = QString::fromLocal8Bit(process.readAllStandardOutput());
    return result;
}

CommandResult runDirect(const QString &line, Waits waits)
{
    QStringList words = QProcess::splitCommand(line);
    if (words.isEmpty())
        return {};
    const QString program = words.takeFirst();
    return runProgram(program, words, waits);
}

CommandResult runShell(const QString &line, Waits waits)
{
    return runProgram(QStringLiteral("sh"), {QStringLiteral("-c"), line}, waits);
}

} // namespace Internal
