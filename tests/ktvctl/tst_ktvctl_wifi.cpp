#include "support/Ktvctl.h"
#include "support/Meter.h"

#include <QtTest>

#include <algorithm>
#include <csignal>

/** The commands ktvctl wifi, with access points in reach. */
class TstKtvctlWifi : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void calls_data();
    void calls();
    void withoutInterface_data();
    void withoutInterface();
    void scanToolThatDoesNotAnswer();
    void scanThatFindsNothing_data();
    void scanThatFindsNothing();

    void networksAreKept();
    void passPhraseFromInput();
    void statusWaitsForAConnection();
    void statusTimesOut();
    void power();
    void powerOffStays();
    void readingLeavesAnAdapterOff_data();
    void readingLeavesAnAdapterOff();
    void readingLeavesADamagedFile();
    void watchPrintsSignals_data();
    void watchPrintsSignals();
    void watchPrintsTheFirstState();
    void watchEndsByItself();

private:
    static Answer wifi(const QStringList &words, const QByteArray &input = {})
    {
        return ktvctl(QStringList("wifi") + words, input);
    }
    /** The same for arguments without spaces. @return standard output; empty after a failure */
    static QString output(const QString &words);
    /** A watch that is ended by a signal when it has printed all these texts. */
    static Answer watchUntil(const QStringList &options, const QList<QByteArray> &texts);
    static QByteArray preferred();
};

QString TstKtvctlWifi::output(const QString &words)
{
    const Answer answer = wifi(words.split(' '));
    return answer.code == 0 && answer.error.isEmpty() ? answer.out : QString();
}

Answer TstKtvctlWifi::watchUntil(const QStringList &options, const QList<QByteArray> &texts)
{
    QProcess watch;
    watch.start(KTVCTL, QStringList({"wifi", "watch"}) + options);
    QByteArray out;
    const bool hasPrinted = QTest::qWaitFor(
        [&] {
            out += watch.readAllStandardOutput();
            return std::all_of(texts.begin(), texts.end(),
                               [&out](const QByteArray &text) { return out.contains(text); });
        },
        Meter::patience);
    ::kill(pid_t(watch.processId()), SIGTERM);
    Answer answer;
    if (watch.waitForFinished(Meter::patience) && watch.exitStatus() == QProcess::NormalExit
        && hasPrinted)
        answer.code = watch.exitCode();
    answer.out = QString::fromUtf8(out + watch.readAllStandardOutput());
    return answer;
}

/** The line before the preference in the supplicant's file, if there is one. */
QByteArray TstKtvctlWifi::preferred()
{
    const QList<QByteArray> lines =
        Meter::readFile("/etc/wpa_supplicant/wpa_supplicant-wlan0.conf").split('\n');
    const auto line = lines.indexOf("\tpriority=100");
    return line < 0 ? QByteArray() : lines.at(line - 1);
}

void TstKtvctlWifi::init()
{
    QFile::remove("/media/sdcard/UserData/wifi.db");
    QProcess::execute("ifconfig", {"wlan0", "up"});
    Meter::writeFile("/run/meter/behaviour/wpa_supplicant", "associate=0.1\naddress=0.1\n");
    Meter::writeFile("/run/meter/radio",
                     "-45\tLab\tohm-law-1827\tsubnet=10.20.30\n"
                     "-75\tGuest\t-\tsubnet=10.9.8\n");
}

void TstKtvctlWifi::cleanup()
{
    Meter::setBehaviour("ls", {});
    Meter::setBehaviour("iwlist", {});
    Meter::showProgram("ls");
}

void TstKtvctlWifi::calls_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("out");
    QTest::addColumn<QString>("error");
    const auto row = [](const QStringList &words, int code, const char *out,
                        const char *error = "") {
        QTest::newRow(qPrintable(words.join(' '))) << words << code << out << error;
    };
    row({"status"}, 0, "Interface: wlan0\nState:     ON\n");
    row({"status", "--json"}, 0,
        "{\"address\":\"\",\"broadcast\":\"\",\"interface\":\"wlan0\",\"mask\":\"\","
        "\"name\":\"\",\"state\":2,\"stateName\":\"ON\"}\n");
    row({"scan"}, 0, "##     open       Guest\n#####  protected  Lab\n");
    row({"scan", "--json"}, 0,
        "[{\"name\":\"Guest\",\"protected\":false,\"state\":5},"
        "{\"name\":\"Lab\",\"protected\":true,\"state\":8}]\n");
    row({"list"}, 0, "");
    row({"list", "--json"}, 0, "[]\n");
    row({"add", "Lab", "12345678"}, 0, "");
    row({"add", "Guest", "--open"}, 0, "");
    const char *unknown = "ktvctl: no network 'Lab' is known; see ktvctl wifi list\n";
    row({"delete", "Lab"}, 1, "", unknown);
    row({"prefer", "Lab"}, 1, "", unknown);
    row({"add", ""}, 2, "", "ktvctl: a network has a name\n");
    const char *passPhrase = "ktvctl: a pass phrase has 8 to 63 characters\n";
    row({"add", "Lab", "1234567"}, 2, "", passPhrase);
    row({"add", "Lab", ""}, 2, "", passPhrase);
    const char *openOrNot = "ktvctl: a network has a pass phrase, or is --open\n";
    row({"add", "Lab"}, 2, "", openOrNot);
    row({"add", "Lab", "12345678", "--open"}, 2, "", openOrNot);
    row({"add", "Lab", QString(64, 'k')}, 2, "", passPhrase);
    row({"power", "ON"}, 2, "", "ktvctl: power is switched on or off\n");
    const char *time = "ktvctl: a time is a number of seconds, 1 to 86400\n";
    row({"status", "--wait", "0"}, 2, "", time);
    row({"watch", "--seconds", "x"}, 2, "", time);
}

void TstKtvctlWifi::calls()
{
    QFETCH(QStringList, words);
    const Answer answer = wifi(words);
    QTEST(answer.error, "error");
    QTEST(answer.out, "out");
    QTEST(answer.code, "code");
}

void TstKtvctlWifi::withoutInterface_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("out");
    for (const char *words : {"scan", "power on", "watch"})
        QTest::newRow(words) << QString(words).split(' ') << 1 << "";
    QTest::newRow("status") << QStringList("status") << 0 << "State: NAN\n";
    QTest::newRow("add") << QStringList({"add", "Guest", "--open"}) << 0 << "";
}

void TstKtvctlWifi::withoutInterface()
{
    Meter::recordProgram("ls");
    Meter::setBehaviour("ls", "stdout=eth0");
    QFETCH(QStringList, words);
    QFETCH(int, code);
    const Answer answer = wifi(words);
    QCOMPARE(answer.error, QString(code == 0 ? "" : "ktvctl: there is no WiFi interface\n"));
    QTEST(answer.out, "out");
    QCOMPARE(answer.code, code);
}

void TstKtvctlWifi::scanToolThatDoesNotAnswer()
{
    Meter::setBehaviour("iwlist", "hang=1");
    const Answer answer = wifi({"scan"});
    QCOMPARE(answer.error,
             "ktvctl: the scan took longer than 5 s; scanning again\n"
             "ktvctl: the scan tool does not answer\n");
    QCOMPARE(answer.out, QString());
    QCOMPARE(answer.code, 1);
}

void TstKtvctlWifi::scanThatFindsNothing_data()
{
    QTest::addColumn<QByteArray>("calls"); // what the tool does at its first, second ... call
    QTest::addColumn<QString>("remarks");
    const QString nothing = "ktvctl: no network was heard; scanning again\n";
    const QString slow = "ktvctl: the scan took longer than 5 s; scanning again\n";
    QTest::newRow("coincides with a scan of the supplicant") << QByteArray("exit") << nothing;
    // The adapter goes on scanning after the tool has been ended, and is busy for some more
    // seconds.
    QTest::newRow("is slow, then finds the adapter busy")
        << QByteArray("exec sleep 60;exit;exit") << slow + nothing + nothing;
}

void TstKtvctlWifi::scanThatFindsNothing()
{
    QFETCH(QByteArray, calls);
    QFETCH(QString, remarks);
    QByteArray script = "echo >>/tmp/calls\ncase $(wc -l </tmp/calls) in\n";
    int number = 0;
    for (const QByteArray &call : calls.split(';'))
        script += QByteArray::number(++number) + ") " + call + " ;;\n";
    script += "esac\nprintf 'Cell 01\nESSID:\"Lab\"\nEncryption key:on\n"
              "Quality=1 Signal level=-45 dBm\n'";
    QFile::remove("/tmp/calls");
    Meter::replaceProgram("iwlist", script);
    const Answer answer = wifi({"scan"});
    Meter::showProgram("iwlist");
    QCOMPARE(answer.error, remarks);
    QCOMPARE(answer.out, "#####  protected  Lab\n");
    QCOMPARE(answer.code, 0);
}

void TstKtvctlWifi::networksAreKept()
{
    QCOMPARE(wifi({"add", "Guest", "--open"}).code, 0);
    QCOMPARE(preferred(), QByteArray("\tkey_mgmt=NONE"));
    QCOMPARE(wifi({"add", "Lab", "ohm-law-1827"}).code, 0);
    QVERIFY(preferred().startsWith("\tpsk="));
    QCOMPARE(output("list"), "open       Guest\nprotected  Lab\n");
    QCOMPARE(output("list --json"),
             "[{\"name\":\"Guest\",\"protected\":false},{\"name\":\"Lab\",\"protected\":true}]\n");
    QCOMPARE(preferred(), QByteArray()); // a preference lasts only until the next command
    QCOMPARE(wifi({"prefer", "Guest"}).code, 0);
    QCOMPARE(preferred(), QByteArray("\tkey_mgmt=NONE"));
    QCOMPARE(wifi({"delete", "Guest"}).code, 0);
    QCOMPARE(output("list"), "protected  Lab\n");
}

void TstKtvctlWifi::passPhraseFromInput()
{
    for (const char *line : {"1234567\n", "\n", ""}) {
        QCOMPARE(wifi({"add", "Lab", "-"}, line).code, 2);
        QCOMPARE(output("list"), QString()); // not stored as an open network
    }
    QCOMPARE(wifi({"add", "Lab", "-"}, "ohm-law-1827\nmore\n").code, 0);
    QVERIFY(output("status --wait 20").contains("Network:   Lab\n"));
}

void TstKtvctlWifi::statusWaitsForAConnection()
{
    QCOMPARE(wifi({"add", "Guest", "--open"}).code, 0);
    QCOMPARE(output("status --wait 20"),
             "Interface: wlan0\nState:     Connect_1\nNetwork:   Guest\nAddress:   10.9.8.100\n"
             "Mask:      255.255.255.0\nBroadcast: 10.9.8.255\n");
}

void TstKtvctlWifi::statusTimesOut()
{
    const Answer answer = wifi({"status", "--wait", "1"});
    QCOMPARE(answer.out, "Interface: wlan0\nState:     ON\n");
    QCOMPARE(answer.error, QString());
    QCOMPARE(answer.code, 3);
}

void TstKtvctlWifi::power()
{
    QCOMPARE(output("power off"), "OFF\n");
    QCOMPARE(output("power on"), "ON\n");
}

void TstKtvctlWifi::powerOffStays()
{
    // A real supplicant takes its time, and then switches the adapter on.
    Meter::replaceProgram("systemctl",
                          ". /opt/meter/lib/radio.sh\n"
                          "(while interface_up wlan0; do pause 0.01; done\n"
                          " ip link set wlan0 up; echo >/tmp/up) >/dev/null 2>&1 &");
    QCOMPARE(output("power off"), "OFF\n");
    QVERIFY(QFile::exists("/tmp/up"));
    QCOMPARE(output("status"), "Interface: wlan0\nState:     OFF\n");
    Meter::showProgram("systemctl");
}

void TstKtvctlWifi::readingLeavesAnAdapterOff_data()
{
    QTest::addColumn<QString>("words");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("out");
    QTest::newRow("status") << "status" << 0 << "Interface: wlan0\nState:     OFF\n";
    for (const char *words : {"status --wait 5", "scan", "list", "watch --seconds 5"})
        QTest::newRow(words) << words << 1 << "";
}

void TstKtvctlWifi::readingLeavesAnAdapterOff()
{
    QCOMPARE(wifi({"add", "Guest", "--open"}).code, 0);
    QCOMPARE(output("power off"), "OFF\n");
    Meter::clearJournal();
    QFETCH(QString, words);
    const Answer answer = wifi(words.split(' '));
    QTEST(answer.out, "out");
    QTEST(answer.code, "code");
    QCOMPARE(answer.error,
             answer.code == 0
                 ? QString()
                 : QStringLiteral("ktvctl: the adapter is off, and this would switch it "
                                  "on; see ktvctl wifi power\n"));
    QCOMPARE(Meter::journal(), QStringList());
    QCOMPARE(output("status"), "Interface: wlan0\nState:     OFF\n");
}

void TstKtvctlWifi::readingLeavesADamagedFile()
{
    const QString file = QStringLiteral("/media/sdcard/UserData/wifi.db");
    Meter::writeFile(file, "no database");
    const Answer answer = wifi({"list"});
    QCOMPARE(answer.code, 1);
    QCOMPARE(answer.error, "ktvctl: '" + file + "' cannot be read: it is no database\n");
    QCOMPARE(Meter::readFile(file), QByteArray("no database"));
}

void TstKtvctlWifi::watchPrintsSignals_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QByteArray>("scan");
    QTest::addColumn<QByteArray>("detail");
    QTest::newRow("text") << QStringList() << QByteArray("scan    2 networks in reach\n")
                          << QByteArray("detail  Connect_4  Lab  10.20.30.100\n");
    QTest::newRow("JSON") << QStringList("--json")
                          << QByteArray("{\"event\":\"scan\",\"networks\":[{\"name\":\"Guest\",")
                          << QByteArray("{\"address\":\"10.20.30.100\",");
}

void TstKtvctlWifi::watchPrintsSignals()
{
    QFETCH(QStringList, options);
    QFETCH(QByteArray, scan);
    QFETCH(QByteArray, detail);
    QCOMPARE(wifi({"add", "Lab", "ohm-law-1827"}).code, 0);
    const Answer answer = watchUntil(QStringList("--scan") + options, {scan, detail});
    QVERIFY2(answer.out.contains(scan) && answer.out.contains(detail), qPrintable(answer.out));
    QCOMPARE(answer.code, 0);
}

void TstKtvctlWifi::watchPrintsTheFirstState()
{
    const Answer answer = watchUntil({}, {"detail  ON\n"});
    QCOMPARE(answer.out, "state   ON\ndetail  ON\n");
    QCOMPARE(answer.code, 0);
}

void TstKtvctlWifi::watchEndsByItself()
{
    const Answer answer = wifi({"watch", "--seconds", "1"});
    QVERIFY2(QByteArray("state   ON\ndetail  ON\n").startsWith(answer.out.toUtf8()),
             qPrintable(answer.out));
    QCOMPARE(answer.error, QString());
    QCOMPARE(answer.code, 0);
}

KTV_METER_TEST_MAIN(TstKtvctlWifi)
#include "tst_ktvctl_wifi.moc"
