#include "internal/CommandRunner_p.h"

#include "internal/GroupProcess_p.h"

#include <QDeadlineTimer>

#include <algorithm>
#include <csignal>

namespace Internal {

namespace {

constexpr qint64 stopCheckInterval = 20; // ms
constexpr qint64 idleStopCheckInterval = 100; // ms; what has no end shall not keep the CPU awake
constexpr int tidyUpTime = 300; // ms from the polite signal to the other one

/** A stopped child gets the chance to silence the speaker or to close its line. */
void endPolitely(GroupProcess &process)
{
    // Until its program is loaded the child has this process's signal handlers, and would run
    // them: an interface that quits on SIGTERM would quit.
    if (!process.waitForStarted(tidyUpTime))
        return;
    process.signalGroup(SIGTERM);
    process.waitForFinished(tidyUpTime);
}

bool waitForFinished(GroupProcess &process, const Waits &waits)
{
    if (!waits.stop)
        return process.waitForFinished(waits.finish);
    const QDeadlineTimer deadline(waits.finish); // -1 never expires
    while (!*waits.stop) {
        const qint64 slice = deadline.isForever()
            ? idleStopCheckInterval
            : std::min(deadline.remainingTime(), stopCheckInterval);
        if (process.waitForFinished(int(slice)))
            return true;
        if (process.state() == QProcess::NotRunning || deadline.hasExpired())
            return false;
    }
    endPolitely(process);
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
    GroupProcess process;
    if (waits.stop)
        process.bindToThread();
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

bool startDetached(const QString &line)
{
    QStringList words = QProcess::splitCommand(line);
    if (words.isEmpty())
        return false;
    const QString program = words.takeFirst();
    return QProcess::startDetached(program, words);
}

} // namespace Internal
