#include "internal/CommandRunner_p.h"
#include "support/Meter.h"

#include <QtTest>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <thread>
#include <unistd.h>

using Internal::CommandResult;
using Internal::Waits;

Q_DECLARE_METATYPE(Internal::CommandResult::Outcome)

/** How far a command comes, what is kept of it, and what is left of it. */
class TstCommandRunner : public QObject
{
    Q_OBJECT
private slots:
    void init();

    void howFar_data();
    void howFar();
    void argumentsStandAsGiven();
    void lateCommandIsKilledWithItsChildren();
    void stopFlagEndsTheWait_data();
    void stopFlagEndsTheWait();
    void stopFlagSetBefore();
    void stopReachesNoHandlerOfThisProcess();
    void endsInTimeDespiteAFlag();
    void detached();

private:
    /** Runs what never ends by itself, and sets the flag once it has said that it runs. */
    CommandResult runAndStop(const QString &script);

    static QString notePath() { return QStringLiteral("/tmp/note"); }
    static QByteArray note() { return Meter::readFile(notePath()); }
};

void TstCommandRunner::init()
{
    QFile::remove(notePath());
}

void TstCommandRunner::howFar_data()
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
        << "echo a; exec sleep 1000" << true << 3000 << 200 << CommandResult::NotFinished << "a\n";
    QTest::newRow("quotation marks group words")
        << "printf %s| \"a b\" c" << false << 3000 << 5000 << CommandResult::Finished << "a b|c|";
}

void TstCommandRunner::howFar()
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

void TstCommandRunner::argumentsStandAsGiven()
{
    const QStringList arguments {"%s|", "a b", "", "\"", "$HOME", "*"};
    QCOMPARE(Internal::runProgram("printf", arguments, {3000, 5000}).output, "a b||\"|$HOME|*|");
}

void TstCommandRunner::lateCommandIsKilledWithItsChildren()
{
    const CommandResult result = Internal::runShell("sleep 1000 & echo $!; wait", {3000, 300});
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
    QTest::newRow("asked first, so that it can tidy up")
        << "trap 'echo tidy >/tmp/note; exit' TERM; echo run >/tmp/note; while :; do sleep 0.01; "
           "done"
        << QByteArray("tidy\n");
    QTest::newRow("killed when it does not listen")
        << "trap '' TERM; echo run >/tmp/note; while :; do sleep 0.01; done" << QByteArray("run\n");
}

void TstCommandRunner::stopFlagEndsTheWait()
{
    QFETCH(QString, script);
    QCOMPARE(runAndStop(script).outcome, CommandResult::NotFinished);
    QTEST(note(), "note");
}

void TstCommandRunner::stopFlagSetBefore()
{
    const std::atomic<bool> stop {true};
    QCOMPARE(Internal::runDirect("sleep 1000", {3000, Waits::Forever, &stop}).outcome,
             CommandResult::NotFinished);
}

void TstCommandRunner::stopReachesNoHandlerOfThisProcess()
{
    // A handler as of an interface that quits on SIGTERM: a forked child shares its pipe.
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

KTV_METER_TEST_MAIN(TstCommandRunner)
#include "tst_command_runner.moc"
