#include "internal/CommandRunner_p.h"

#include "internal/ChildProcess_p.h"

#include <QDeadlineTimer>
#include <QProcess>

#include <algorithm>
#include <csignal>

namespace Internal {

namespace {

constexpr qint64 stopCheckInterval = 20; // ms
constexpr qint64 idleStopCheckInterval = 100; // ms; longer, for commands without a time limit
constexpr int tidyUpTime = 300; // ms from SIGTERM to SIGKILL

bool waitForFinished(ChildProcess &process, const Waits &waits)
{
    const QDeadlineTimer deadline(waits.finish); // -1 never expires
    if (!waits.stop)
        return process.waitForFinished(deadline);
    const qint64 interval = deadline.isForever() ? idleStopCheckInterval : stopCheckInterval;
    while (!*waits.stop) {
        const QDeadlineTimer nextLook(interval);
        if (process.waitForFinished(std::min(deadline, nextLook)))
            return true;
        if (process.hasPrintedTooMuch() || deadline.hasExpired())
            return false;
    }
    process.signalGroup(SIGTERM); // so that it can silence the speaker or close its serial line
    process.waitForFinished(QDeadlineTimer(tidyUpTime));
    return false;
}

} // namespace

CommandResult runProgram(const QString &program, const QStringList &arguments, Waits waits)
{
    CommandResult result;
    if (waits.stop && *waits.stop) {
        result.outcome = CommandResult::NotFinished;
        return result;
    }
    ChildProcess process(program, arguments,
                         waits.stop ? ChildProcess::BoundToThread : ChildProcess::Independent);
    if (!process.isStarted()) {
        result.lacksResources = process.lacksResources();
        if (waits.start == Waits::NoStartWait)
            result.outcome = CommandResult::NotFinished;
        return result;
    }
    result.outcome =
        waitForFinished(process, waits) ? CommandResult::Finished : CommandResult::NotFinished;
    result.output = QString::fromLocal8Bit(process.output());
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

bool startDetached(const QString &line)
{
    QStringList words = QProcess::splitCommand(line);
    if (words.isEmpty())
        return false;
    const QString program = words.takeFirst();
    return startDetachedProcess(program, words);
}

} // namespace Internal
