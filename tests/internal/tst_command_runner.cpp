#include "internal/CommandRunner_p.h"
#include "support/Meter.h"

#include <QtTest>

#include <cerrno>
#include <csignal>
#include <cstddef>
#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

using Internal::CommandResult;
using Internal::Waits;

Q_DECLARE_METATYPE(Internal::CommandResult::Outcome)

/** How far a command comes, which output is kept, and that no process is left. */
class TstCommandRunner : public QObject
{
    Q_OBJECT
private slots:
    void init();

    void outcomes_data();
    void outcomes();
    void argumentsAreNotChanged();
    void lateCommandIsKilledWithItsChildren();
    void stopFlagEndsTheWait_data();
    void stopFlagEndsTheWait();
    void stopFlagSetBefore();
    void stopDoesNotCallHandlersOfThisProcess();
    void endsInTimeDespiteAFlag();
    void detached();

    void toolHasNoInputAndNoErrorOutput();
    void toolHasNoDescriptorsOfOurs();
    void toolHasTheSignalsThatAShellGives();
    void withoutStandardStreams();
    void withoutPidfd();
    void withThreeDescriptorsLeft();
    void withSigchldIgnored();
    void printsTooMuch_data();
    void printsTooMuch();
    void killedWhileItStartsCommands();
    void toolsThatCannotBeKilled();

private:
    /**
     * Runs a command that never ends by itself, and sets the stop flag after the command has
     * printed that it runs.
     */
    CommandResult runAndStop(const QString &script);

    static QString notePath() { return QStringLiteral("/tmp/note"); }
    /** Runs a script without a time limit. */
    static QString output(const QString &script)
    {
        return Internal::runShell(script, {3000, Waits::Forever}).output;
    }
    static QByteArray note() { return Meter::readFile(notePath()); }
};

void TstCommandRunner::init()
{
    QFile::remove(notePath());
}

void TstCommandRunner::outcomes_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<bool>("inShell");
    QTest::addColumn<int>("start");
    QTest::addColumn<int>("finish");
    QTest::addColumn<CommandResult::Outcome>("outcome");
    QTest::addColumn<QString>("output");
    const int none = Waits::NoStartWait;
    const int ever = Waits::Forever;
    QTest::newRow("ends") << "echo a" << false << 3000 << 5000 << CommandResult::Finished << "a\n";
    QTest::newRow("ends, not awaited to start")
        << "echo a" << false << none << 5000 << CommandResult::Finished << "a\n";
    QTest::newRow("ends, no limit")
        << "echo a" << false << none << ever << CommandResult::Finished << "a\n";
    QTest::newRow("exit code does not count")
        << "echo a; exit 3" << true << 3000 << 5000 << CommandResult::Finished << "a\n";
    QTest::newRow("standard error is no output")
        << "echo a >&2" << true << 3000 << 5000 << CommandResult::Finished << "";
    QTest::newRow("pipeline") << "printf 'a\\nb\\n' | grep \"[b]\"" << true << 3000 << 5000
                              << CommandResult::Finished << "b\n";
    QTest::newRow("missing") << "no-such-program" << false << 3000 << 5000
                             << CommandResult::NotStarted << "";
    QTest::newRow("missing, not awaited to start")
        << "no-such-program" << false << none << 5000 << CommandResult::NotFinished << "";
    QTest::newRow("missing, no limit")
        << "no-such-program" << false << none << ever << CommandResult::NotFinished << "";
    QTest::newRow("no words at all")
        << " " << false << 3000 << 5000 << CommandResult::NotStarted << "";
    QTest::newRow("late, output kept")
        << "echo a; exec sleep 1000" << true << 3000 << 3000 << CommandResult::NotFinished << "a\n";
    QTest::newRow("quotation marks group words")
        << "printf %s| \"a b\" c" << false << 3000 << 5000 << CommandResult::Finished << "a b|c|";
}

void TstCommandRunner::outcomes()
{
    QFETCH(QString, line);
    QFETCH(bool, inShell);
    QFETCH(int, start);
    QFETCH(int, finish);
    const Waits waits {start, finish};
    const CommandResult result =
        inShell ? Internal::runShell(line, waits) : Internal::runDirect(line, waits);
    QTEST(result.outcome, "outcome");
    QTEST(result.output, "output");
    QCOMPARE(result.finished(), result.outcome == CommandResult::Finished);
}

void TstCommandRunner::argumentsAreNotChanged()
{
    const QStringList arguments {"%s|", "a b", "", "\"", "$HOME", "*"};
    QCOMPARE(Internal::runProgram("printf", arguments, {3000, 5000}).output, "a b||\"|$HOME|*|");
}

void TstCommandRunner::lateCommandIsKilledWithItsChildren()
{
    const CommandResult result = Internal::runShell("sleep 1000 & echo $!; wait", {3000, 3000});
    QCOMPARE(result.outcome, CommandResult::NotFinished);
    const auto child = result.output.toInt();
    QVERIFY(child > 0);
    QTRY_VERIFY(::kill(child, 0) != 0 && errno == ESRCH);
}

CommandResult TstCommandRunner::runAndStop(const QString &script)
{
    std::atomic<bool> stop {false};
    std::thread stopper([&stop] {
        while (note().isEmpty())
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        stop = true;
    });
    CommandResult result = Internal::runShell(script, {Waits::NoStartWait, Waits::Forever, &stop});
    stopper.join();
    return result;
}

void TstCommandRunner::stopFlagEndsTheWait_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QByteArray>("note");
    QTest::newRow("SIGTERM first, so that it can clean up")
        << "trap 'echo tidy >/tmp/note; exit' TERM; echo run >/tmp/note; while :; do sleep 0.01; "
           "done"
        << QByteArray("tidy\n");
    QTest::newRow("killed when it ignores SIGTERM")
        << "trap '' TERM; echo run >/tmp/note; while :; do sleep 0.01; done" << QByteArray("run\n");
}

void TstCommandRunner::stopFlagEndsTheWait()
{
    QFETCH(QString, script);
    QFETCH(QByteArray, note);
    // The shell has 300 ms for its trap, which a busy machine may not give it at the first try.
    QByteArray written;
    for (int left = 3; left > 0 && written != note; --left) {
        QFile::remove(notePath());
        QCOMPARE(runAndStop(script).outcome, CommandResult::NotFinished);
        written = TstCommandRunner::note();
    }
    QCOMPARE(written, note);
}

void TstCommandRunner::stopFlagSetBefore()
{
    const std::atomic<bool> stop {true};
    QCOMPARE(Internal::runDirect("sleep 1000", {3000, Waits::Forever, &stop}).outcome,
             CommandResult::NotFinished);
}

void TstCommandRunner::stopDoesNotCallHandlersOfThisProcess()
{
    // A handler such as that of an interface that quits on SIGTERM: it writes into a pipe that a
    // forked child shares.
    static int ends[2];
    QVERIFY(::pipe2(ends, O_NONBLOCK) == 0);
    const auto previous = std::signal(
        SIGTERM, [](int) { [[maybe_unused]] const auto written = ::write(ends[1], "x", 1); });
    for (int i = 0; i < 100; ++i) {
        std::atomic<bool> stop {false};
        std::thread stopper([&stop, i] {
            std::this_thread::sleep_for(std::chrono::microseconds(20 * i)); // while it starts
            stop = true;
        });
        Internal::runDirect("sleep 1000", {Waits::NoStartWait, 5000, &stop});
        stopper.join();
    }
    std::signal(SIGTERM, previous);
    char byte = 0;
    QCOMPARE(::read(ends[0], &byte, 1), ssize_t(-1));
    ::close(ends[0]);
    ::close(ends[1]);
}

void TstCommandRunner::endsInTimeDespiteAFlag()
{
    const std::atomic<bool> stop {false};
    QCOMPARE(Internal::runDirect("echo a", {3000, 5000, &stop}).output, "a\n");
    QCOMPARE(Internal::runDirect("sleep 1000", {3000, 100, &stop}).outcome,
             CommandResult::NotFinished);
    QCOMPARE(
        Internal::runDirect("no-such-program", {Waits::NoStartWait, Waits::Forever, &stop}).outcome,
        CommandResult::NotFinished);
}

void TstCommandRunner::detached()
{
    QVERIFY(Internal::startDetached("touch /tmp/note"));
    QTRY_VERIFY(QFile::exists(notePath()));
    QVERIFY(!Internal::startDetached("no-such-program at all"));
    QVERIFY(!Internal::startDetached(""));
}

void TstCommandRunner::toolHasNoInputAndNoErrorOutput()
{
    QCOMPARE(Internal::runDirect("cat", {3000, 5000}).outcome, CommandResult::Finished);
    // More errors than fit into a pipe.
    QCOMPARE(output("head -c 3000000 /dev/zero >&2; echo done"), "done\n");
}

/** How many descriptors a program has when this process starts it, and then opens one. */
static int inheritedDescriptors()
{
    int count = 1;
    for (int descriptor = STDERR_FILENO + 1; descriptor < 1024; ++descriptor) {
        const int flags = ::fcntl(descriptor, F_GETFD);
        count += flags >= 0 && (flags & FD_CLOEXEC) == 0 ? 1 : 0;
    }
    return count + STDERR_FILENO + 1;
}

void TstCommandRunner::toolHasNoDescriptorsOfOurs()
{
    const int expected = inheritedDescriptors();
    std::thread neighbour([] { Internal::runDirect("sleep 0.5", Waits()); });
    for (int i = 0; i < 50; ++i) {
        const QString listed = Internal::runDirect("ls /proc/self/fd", {3000, 5000}).output;
        QVERIFY2(listed.count('\n') == expected, qPrintable(listed));
    }
    neighbour.join();
}

void TstCommandRunner::toolHasTheSignalsThatAShellGives()
{
    const auto pipe = std::signal(SIGPIPE, SIG_IGN);
    const auto user = std::signal(SIGUSR1, SIG_IGN);
    const QString signals_ = Internal::runDirect("grep Sig /proc/self/status", {3000, 5000}).output;
    std::signal(SIGPIPE, pipe);
    std::signal(SIGUSR1, user);
    QVERIFY2(signals_.contains("SigBlk:\t0000000000000000"), qPrintable(signals_));
    const auto ignored = QRegularExpression("SigIgn:\t(\\w+)").match(signals_).captured(1);
    QCOMPARE(ignored.toULongLong(nullptr, 16) & (1U << (SIGPIPE - 1)), 0ULL);
    QVERIFY(ignored.toULongLong(nullptr, 16) & (1U << (SIGUSR1 - 1)));
}

void TstCommandRunner::withoutStandardStreams()
{
    int kept[3];
    for (const int stream : {0, 1, 2}) { // files that are opened now get these numbers
        kept[stream] = ::fcntl(stream, F_DUPFD_CLOEXEC, 10);
        ::close(stream);
    }
    const QString all = output("cat; echo a >&2; echo b");
    const QString listed = Internal::runDirect("ls /proc/self/fd", {3000, 5000}).output;
    for (const int stream : {0, 1, 2}) {
        ::dup2(kept[stream], stream);
        ::close(kept[stream]);
    }
    QCOMPARE(all, "b\n");
    QVERIFY2(listed.count('\n') == inheritedDescriptors(), qPrintable(listed));
}

/** Imitates an older kernel: in this thread the system call fails as unknown. */
static bool hideCall(unsigned number)
{
    sock_filter filter[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, number, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | ENOSYS),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog program {4, filter};
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0
        && ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

void TstCommandRunner::withoutPidfd()
{
    bool isHidden = false;
    CommandResult ends;
    CommandResult isLate;
    CommandResult leavesSomebodyBehind;
    std::thread([&] {
        isHidden = hideCall(SYS_pidfd_open) && ::syscall(SYS_pidfd_open, ::getpid(), 0) < 0;
        ends = Internal::runShell("echo a; exec >/dev/null; sleep 0.1", {3000, 5000});
        isLate = Internal::runShell("echo b; exec sleep 1000", {3000, 3000});
        leavesSomebodyBehind = Internal::runShell("sleep 1000 & echo c", {3000, 3000});
    }).join();
    QVERIFY(isHidden);
    QCOMPARE(ends.outcome, CommandResult::Finished);
    QCOMPARE(ends.output, "a\n");
    QCOMPARE(isLate.outcome, CommandResult::NotFinished);
    QCOMPARE(isLate.output, "b\n");
    QCOMPARE(leavesSomebodyBehind.outcome, CommandResult::Finished);
    QCOMPARE(leavesSomebodyBehind.output, "c\n");
}

void TstCommandRunner::withThreeDescriptorsLeft()
{
    rlimit before {};
    QCOMPARE(::getrlimit(RLIMIT_NOFILE, &before), 0);
    rlimit few = before;
    few.rlim_cur = 64;
    QCOMPARE(::setrlimit(RLIMIT_NOFILE, &few), 0);
    std::vector<int> taken;
    for (int one = ::dup(0); one >= 0; one = ::dup(0))
        taken.push_back(one);
    CommandResult results[4];
    for (CommandResult &result : results) {
        result = Internal::runDirect("echo a", {3000, 5000});
        ::close(taken.back());
        taken.pop_back();
    }
    for (const int one : taken)
        ::close(one);
    ::setrlimit(RLIMIT_NOFILE, &before);
    for (const int left : {0, 1, 2})
        QCOMPARE(results[left].outcome, CommandResult::NotStarted);
    QCOMPARE(results[3].output, "a\n");
}

void TstCommandRunner::withSigchldIgnored()
{
    const auto before = std::signal(SIGCHLD, SIG_IGN); // the kernel reaps children by itself
    const CommandResult ends = Internal::runDirect("echo a", {3000, 5000});
    const CommandResult isLate = Internal::runDirect("sleep 1000", {3000, 100});
    std::signal(SIGCHLD, before);
    QCOMPARE(ends.outcome, CommandResult::Finished);
    QCOMPARE(ends.output, "a\n");
    QCOMPARE(isLate.outcome, CommandResult::NotFinished);
}

void TstCommandRunner::printsTooMuch_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<CommandResult::Outcome>("outcome");
    QTest::newRow("exactly the limit")
        << "head -c 1048576 /dev/zero | tr '\\0' x" << CommandResult::Finished;
    QTest::newRow("one byte more")
        << "head -c 1048577 /dev/zero | tr '\\0' x" << CommandResult::NotFinished;
    QTest::newRow("without end") << "tr '\\0' x </dev/zero" << CommandResult::NotFinished;
    QTest::newRow("without end, by one that it has started")
        << "tr '\\0' x </dev/zero & wait" << CommandResult::NotFinished;
}

void TstCommandRunner::printsTooMuch()
{
    QFETCH(QString, script);
    const CommandResult result = Internal::runShell(script, {3000, Waits::Forever});
    QTEST(result.outcome, "outcome");
    QCOMPARE(result.output, QString(1048576, 'x'));
    QTRY_COMPARE(Meter::processes("tr"), QStringList());
}

void TstCommandRunner::killedWhileItStartsCommands()
{
    for (int i = 0; i < 300; ++i) {
        const pid_t victim = ::fork();
        if (victim == 0) {
            ::prctl(PR_SET_NAME, "victim");
            for (;;)
                Internal::runDirect("true", Waits());
        }
        std::this_thread::sleep_for(std::chrono::microseconds(300 + 13 * i));
        ::kill(victim, SIGKILL);
        ::waitpid(victim, nullptr, 0);
    }
    QTRY_COMPARE(Meter::processes("victim"), QStringList()); // no hanging copy is left
}

void TstCommandRunner::toolsThatCannotBeKilled()
{
    QStringList ids;
    CommandResult result;
    for (int i = 0; i < 4; ++i) {
        QFile::remove(notePath());
        result = runAndStop(UNKILLABLE " /tmp/note");
        QCOMPARE(result.outcome, CommandResult::NotFinished);
        ids += QString::fromLatin1(note()).trimmed();
        // The program still runs although the call has returned.
        QVERIFY(QFile::exists("/proc/" + ids.last()));
    }
    result = Internal::runDirect("true", Waits());
    QCOMPARE(result.outcome, CommandResult::NotFinished);
    QVERIFY(result.lacksResources); // no further one is started
    Meter::killProcesses("unkillable");
    QTRY_VERIFY(Internal::runDirect("true", Waits()).finished());
    for (const QString &id : std::as_const(ids))
        QTRY_VERIFY(Internal::runDirect("true", Waits()).finished()
                    && !QFile::exists("/proc/" + id));
}

KTV_METER_TEST_MAIN(TstCommandRunner)
#include "tst_command_runner.moc"
