#include "support/Ktvctl.h"
#include "support/Meter.h"

#include <QtTest>

#include <csignal>

/** The commands ktvctl usb, sound and beep. */
class TstKtvctlUsbSound : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void commands_data();
    void commands();
    void json();
    void portThatCannotBeSwitched();
    void lineHeldByAnotherProgram();
    void bridgeRunsUntilASignal_data();
    void bridgeRunsUntilASignal();
    void sampleIsHeard();
    void loopEndsByAStop();
    void loopEndsWithItsTerminal();
    void stopWithoutAPlayer();
    void toneOfTheModel_data();
    void toneOfTheModel();
    void soundOff_data();
    void soundOff();

private:
    static QStringList calls(const QString &program)
    {
        return Meter::journal().filter(QRegularExpression('^' + program + ' '));
    }
    const QString recording = QStringLiteral("/run/meter/audio/0001.raw"); ///< the first
    const QString description = QStringLiteral("/home/root/globalInfo.xml");
    const QByteArray deviceDescription = Meter::readFile(description);
};

void TstKtvctlUsbSound::init()
{
    QDir("/run/meter/audio").removeRecursively();
    QDir().mkpath("/run/meter/audio");
    Meter::recordProgram("aplay");
    QProcess::execute("modprobe-usb-gadget", {"g_ether"});
    Meter::clearJournal();
}

void TstKtvctlUsbSound::cleanup()
{
    Meter::writeFile(description, deviceDescription);
    Meter::setBehaviour("modprobe-usb-gadget", {});
    QProcess::execute("systemctl", {"stop", "busybox.getty@ttyGS0.service"});
    Meter::showProgram("aplay");
}

void TstKtvctlUsbSound::commands_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("out");
    QTest::addColumn<QString>("error");
    const auto row = [](const char *words, int code, const char *out, const char *error = "") {
        QTest::newRow(words) << code << out << error;
    };
    row("usb status", 0, "network\n");
    row("usb set network", 0, "network\n");
    row("usb set serial", 0, "serial, owned by nobody\n");
    row("usb set serial console", 0, "serial, owned by console\n");
    row("usb set serial calibration", 0, "serial, owned by calibration\n");
    row("usb set serial bridge --seconds 1", 0, "serial, owned by bridge\n");
    const char *mode = "ktvctl: a mode is 'serial' or 'network'\n";
    row("usb set none", 2, "", mode);
    row("usb set NETWORK", 0, "network\n");
    const char *owner =
        "ktvctl: a serial line is owned by 'nobody', 'bridge', 'calibration' or 'console'\n";
    row("usb set serial somebody", 2, "", owner);
    row("usb set network console", 2, "", owner);
    // The library would take the command line itself for that program.
    row("usb set serial mactool", 2, "", owner);
    const char *time = "ktvctl: a time is a number of seconds, 1 to 86400\n";
    row("usb set serial bridge --seconds 0", 2, "", time);
    row("sound play error_short", 0, "");
    row("sound play SOUND_ERROR_SHORT", 0, "");
    row("sound loop error_short --seconds 1", 0, "");
    row("sound play none", 1, "", "ktvctl: no sample 'none'\n");
    row("sound play empty", 1, "", "ktvctl: no sample 'empty'\n");
    row("sound loop intro --seconds x", 2, "", time);
    row("sound stop", 0, "");
    row("sound volume 30", 0, "");
    const char *volume = "ktvctl: a volume is a number of percent, 0 to 100\n";
    for (const char *words : {"sound volume loud", "sound volume 101", "sound volume -1"})
        row(words, 2, "", volume);
    row("beep 1", 0, "");
    row("beep 0", 0, "");
    row("beep 1 --loop --seconds 1", 0, "");
    row("beep 15", 2, "", "ktvctl: a tone is a number, 0 to 14\n");
    row("beep x", 2, "", "ktvctl: a tone is a number, 0 to 14\n");
    row("beep 1 --seconds -1", 2, "", time);
}

void TstKtvctlUsbSound::commands()
{
    const Answer answer = typed(QTest::currentDataTag());
    QTEST(answer.out, "out");
    // The programs print errors, too.
    QFETCH(QString, error);
    QVERIFY2(answer.error.contains(error), qPrintable(answer.error));
    QFETCH(int, code);
    QVERIFY2(answer.code == code, qPrintable(answer.error));
}

void TstKtvctlUsbSound::json()
{
    QCOMPARE(typed("usb status --json").out, "{\"mode\":\"network\"}\n");
    QCOMPARE(typed("usb set serial --json").out, "{\"mode\":\"serial\",\"owner\":\"nobody\"}\n");
    QVERIFY(typed("sound list --json").out.startsWith("[\"SOUND_DELETED_BANK\",\"SOUND_ERROR\""));
}

void TstKtvctlUsbSound::portThatCannotBeSwitched()
{
    Meter::setBehaviour("modprobe-usb-gadget", "noise=careful");
    const Answer answer = typed("usb set serial");
    QCOMPARE(answer.code, 1);
    QVERIFY(answer.error.contains("ktvctl: the port is not as it should be"));
}

void TstKtvctlUsbSound::lineHeldByAnotherProgram()
{
    QCOMPARE(typed("usb set serial").code, 0);
    QProcess stranger;
    stranger.start("sh", {"-c", "exec 3<>/dev/ttyGS0 && echo held && read word"});
    QVERIFY(stranger.waitForReadyRead(Meter::patience));
    // The kernel does not unload a gadget that is in use, and ktvctl prints why.
    Meter::setBehaviour("modprobe-usb-gadget", "stdout=in use");
    const Answer answer = typed("usb set network");
    Meter::setBehaviour("modprobe-usb-gadget", {});
    QCOMPARE(answer.code, 1);
    QCOMPARE(answer.out, QStringLiteral("serial, owned by nobody\n"));
    QVERIFY2(answer.error.contains(": its line is held by "), qPrintable(answer.error));
    const QString holder = QStringLiteral("sh (%1)").arg(stranger.processId());
    QVERIFY2(answer.error.contains(holder), qPrintable(answer.error));
    stranger.closeWriteChannel();
    QVERIFY(stranger.waitForFinished());
}

void TstKtvctlUsbSound::bridgeRunsUntilASignal_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("the connection drops") << SIGHUP;
}

void TstKtvctlUsbSound::bridgeRunsUntilASignal()
{
    QFETCH(int, number);
    QProcess bridge;
    bridge.start(KTVCTL, {"usb", "set", "serial", "bridge"});
    QVERIFY(bridge.waitForReadyRead(Meter::patience));
    QCOMPARE(bridge.readAllStandardOutput(), QByteArray("serial, owned by bridge\n"));
    QCOMPARE(Meter::processes("socat").size(), 1);
    ::kill(pid_t(bridge.processId()), number);
    QVERIFY(bridge.waitForFinished());
    QCOMPARE(bridge.exitStatus(), QProcess::NormalExit);
    QCOMPARE(bridge.exitCode(), 0);
    QCOMPARE(Meter::processes("socat"), QStringList());
}

void TstKtvctlUsbSound::sampleIsHeard()
{
    QCOMPARE(typed("sound play set_accept").code, 0);
    const QByteArray sample = Meter::readFile("/etc/wav/SOUND_SET_ACCEPT.raw");
    QCOMPARE(Meter::readFile(recording).left(sample.size()), sample);
}

void TstKtvctlUsbSound::loopEndsByAStop()
{
    QProcess loop;
    loop.start(KTVCTL, {"sound", "loop", "intro"});
    QTRY_VERIFY(QFile::exists(recording));
    QCOMPARE(typed("sound stop").code, 0);
    QTRY_COMPARE(Meter::processes("aplay"), QStringList());
    ::kill(pid_t(loop.processId()), SIGINT); // its shell may not be found: see "sound stop"
    QVERIFY(loop.waitForFinished());
    QTRY_COMPARE(Meter::processes("cat"), QStringList());
}

void TstKtvctlUsbSound::loopEndsWithItsTerminal()
{
    QProcess loop;
    loop.start(KTVCTL, {"sound", "loop", "intro"});
    QTRY_VERIFY(QFile::exists(recording));
    ::kill(pid_t(loop.processId()), SIGHUP);
    QVERIFY(loop.waitForFinished());
    QCOMPARE(loop.exitCode(), 0);
    QTRY_COMPARE(Meter::processes("aplay"), QStringList());
    QTRY_COMPARE(Meter::processes("cat"), QStringList());
}

void TstKtvctlUsbSound::stopWithoutAPlayer()
{
    const Answer answer = typed("sound stop");
    QCOMPARE(answer.code, 0);
    QCOMPARE(answer.out, QString());
    QCOMPARE(answer.error, QString());
}

void TstKtvctlUsbSound::toneOfTheModel_data()
{
    QTest::addColumn<QString>("serial");
    QTest::addColumn<QStringList>("beeps");
    QTest::addColumn<QStringList>("samples");
    QTest::newRow("beeps") << "CH1" << QStringList("beep -f 1400 -l 100 -d 0 -r 1")
                           << QStringList();
    QTest::newRow("samples") << "DV1" << QStringList()
                             << QStringList("aplay -t raw -f S16_LE -r 44100 "
                                            "/etc/wav/SOUND_SET_DECLINE.raw");
}

void TstKtvctlUsbSound::toneOfTheModel()
{
    QFETCH(QString, serial);
    QCOMPARE(typed("beep 1 --serial " + serial).code, 0);
    QTEST(calls("beep"), "beeps");
    QTEST(calls("aplay"), "samples");
}

void TstKtvctlUsbSound::soundOff_data()
{
    QTest::addColumn<QString>("words");
    for (const char *words : {"beep 1", "sound play intro", "sound loop intro"})
        QTest::newRow(words) << words;
}

void TstKtvctlUsbSound::soundOff()
{
    QFETCH(QString, words);
    Meter::writeFile(description, "<info><_soundOff Value=\"true\"/></info>");
    const Answer answer = typed(words);
    QCOMPARE(answer.code, 1);
    QCOMPARE(answer.error, "ktvctl: the device has its sound switched off\n");
    QCOMPARE(Meter::journal(), QStringList());
}

KTV_METER_TEST_MAIN(TstKtvctlUsbSound)
#include "tst_ktvctl_usb_sound.moc"
