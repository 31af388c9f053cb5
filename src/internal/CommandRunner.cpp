#include "internal/CommandRunner_p.h"

#include <QProcess>

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

} // namespace

CommandResult runProgram(const QString &program, const QStringList &arguments, Waits waits)
{
    CommandResult result;
    GroupProcess process;
    process.start(program, arguments);
    if (waits.start != Waits::NoStartWait && !process.waitForStarted(waits.start))
        return result;
    result.outcome = process.waitForFinished(waits.finish) ? CommandResult::Finished
                                                           : CommandResult::NotFinished;
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
