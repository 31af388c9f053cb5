#include "support/Meter.h"

#include <configuration/KTV_InterfaceConfig.h>

#include <QtTest>

#include <memory>
#include <vector>

/** A client that exits while the library is working: it ends, and no process of it is left. */
class TstLeaving : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void leaves_data();
    void leaves();
    void leavesWifi_data();
    void leavesWifi();
    void leavesStores_data();
    void leavesStores();
    void isKilled();
    void canStartAgain();

private:
    static std::unique_ptr<QProcess> start(const QString &what, const QString &how);
    static QStringList leftBehind();
};

void TstLeaving::initTestCase()
{
    QProcess::execute("modprobe-usb-gadget", {"g_serial"});
    Meter::setBehaviour("beep", "hang=1"); // a tone whose first step never ends
}

std::unique_ptr<QProcess> TstLeaving::start(const QString &what, const QString &how)
{
    auto leaver = std::make_unique<QProcess>();
    leaver->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    leaver->start(LEAVER, {what, how});
    return leaver;
}

QStringList TstLeaving::leftBehind()
{
    QStringList all;
    for (const char *program : {"leaver", "socat", "beep", "aplay", "cat", "ls"})
        all += Meter::processes(program);
    return all;
}

void TstLeaving::leaves_data()
{
    QTest::addColumn<QString>("how");
    for (const char *how : {"application deleted", "application kept", "without an application",
                            "exit", "facade deleted", "facade is the application's"})
        QTest::newRow(how) << how;
}

void TstLeaving::leaves()
{
    QFETCH(QString, how);
    std::vector<std::unique_ptr<QProcess>> leavers;
    for (const char *what : {"bridge", "tone", "melody", "sample", "loop"}) {
        leavers.push_back(start(what, how));
        if (how.startsWith("facade"))
            // Only one process at a time can use the databases.
            leavers.back()->waitForFinished(Meter::patience);
    }
    for (const auto &leaver : leavers) {
        const bool isOver =
            leaver->state() == QProcess::NotRunning || leaver->waitForFinished(Meter::patience);
        QVERIFY2(isOver, qPrintable(leaver->arguments().first()));
        QCOMPARE(leaver->exitStatus(), QProcess::NormalExit);
        QVERIFY2(leaver->exitCode() == 0, qPrintable(leaver->arguments().first()));
    }
    // The loudspeaker program notices the end of its player by itself.
    QTRY_COMPARE(leftBehind(), QStringList());
}

void TstLeaving::leavesWifi_data()
{
    QTest::addColumn<QString>("how");
    for (const char *how : {"application deleted", "application kept", "exit"})
        QTest::newRow(how) << how;
}

void TstLeaving::leavesWifi()
{
    QFETCH(QString, how);
    Meter::recordProgram("ls");
    Meter::setBehaviour("ls", "stdout=eth0"); // no interface: each poll looks for one
    const auto leaver = start("wifi", how);
    const bool isOver = leaver->waitForFinished(Meter::patience);
    leaver->kill();
    Meter::setBehaviour("ls", "");
    Meter::showProgram("ls");
    QVERIFY(isOver);
    QCOMPARE(leaver->exitStatus(), QProcess::NormalExit);
    QCOMPARE(leaver->exitCode(), 0);
    QTRY_COMPARE(leftBehind(), QStringList());
}

void TstLeaving::leavesStores_data()
{
    QTest::addColumn<QString>("how");
    for (const char *how :
         {"application deleted", "application kept", "without an application", "exit"})
        QTest::newRow(how) << how;
}

void TstLeaving::leavesStores()
{
    QFETCH(QString, how);
    const auto leaver = start("stores", how);
    QVERIFY(leaver->waitForFinished(30000));
    QCOMPARE(leaver->exitStatus(), QProcess::NormalExit);
    QCOMPARE(leaver->exitCode(), 0);
    // The files have not been deleted because they could not be opened any more.
    KTV_InterfaceConfig config(QStringLiteral("/media/sdcard/UserData/"));
    QCOMPARE(config.getValue(KTV_InterfaceConfig::MAIN_Pin, 0), 4711);
}

void TstLeaving::isKilled()
{
    for (const char *what : {"bridge", "tone"}) {
        const auto leaver = start(what, "killed");
        QVERIFY(leaver->waitForFinished(Meter::patience));
        QCOMPARE(leaver->exitStatus(), QProcess::CrashExit);
    }
    QTRY_COMPARE(leftBehind(), QStringList());
}

void TstLeaving::canStartAgain()
{
    const auto leaver = start("bridge", "application deleted");
    QVERIFY(leaver->waitForFinished(Meter::patience));
    QCOMPARE(leaver->exitCode(), 0);
}

KTV_METER_TEST_MAIN(TstLeaving)
#include "tst_leaving.moc"
