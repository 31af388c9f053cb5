#include "support/Ktvctl.h"
#include "support/Meter.h"
#include "support/Volume.h"

#include <configuration/KTV_InterfaceConfig.h>

#include <QDir>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <sys/syscall.h>

namespace {

const QString program = QStringLiteral(KTVCTL);
const QString userData = QStringLiteral("/media/sdcard/UserData/");
const QString clients = QStringLiteral("/media/sdcard/Clients/");
const QString logFiles = QStringLiteral("/media/sdcard/Log/");
const QString languages = QStringLiteral("/home/root/Langs/");
const QString helpPages = QStringLiteral("/home/root/Help/");
const QString settingsFile = userData + "interfaceConfig.db";

constexpr int wasKilled = -1;

/** ktvctl under strace. @return exit code, or wasKilled */
int traced(const QStringList &options, const QStringList &words)
{
    QProcess strace;
    auto environment = QProcessEnvironment::systemEnvironment();
    // The leak sanitizer does not work in a traced program, and would fail it.
    environment.insert("ASAN_OPTIONS", environment.value("ASAN_OPTIONS") + ":detect_leaks=0");
    strace.setProcessEnvironment(environment);
    strace.start("strace", QStringList {"-f", "-qq"} + options + QStringList(program) + words);
    if (!strace.waitForFinished(Meter::patience))
        qFatal("strace does not end");
    return strace.exitStatus() == QProcess::NormalExit ? strace.exitCode() : wasKilled;
}

/** The system call that removes a file: 64-bit ARM has only one of the two. */
#ifdef SYS_unlink
constexpr char removal[] = "unlink";
#else
constexpr char removal[] = "unlinkat";
#endif

/** Numbers, from 1, of those system calls of that name that ktvctl makes on the card. */
QVector<int> callsOnTheCard(const QString &call, const QStringList &words)
{
    const QTemporaryDir directory;
    const QString list = directory.filePath("list");
    if (traced({"-y", "-o", list, "-e", "trace=" + call}, words) != 0)
        qFatal("ktvctl cannot be traced");
    QVector<int> numbers;
    int number = 0;
    for (const QByteArray &line : Meter::readFile(list).split('\n')) {
        if (!line.contains(call.toLatin1() + '('))
            continue;
        ++number;
        if (line.contains("/media/sdcard/"))
            numbers += number;
    }
    return numbers;
}

/** A running watch and the lines that it has printed so far. */
class Watch
{
public:
    explicit Watch(const QStringList &words)
    {
        m_process.start(program, QStringList("watch") + words);
    }
    ~Watch()
    {
        m_process.kill();
        m_process.waitForFinished();
    }
    Q_DISABLE_COPY_MOVE(Watch)

    QString nextLine()
    {
        while (!m_process.canReadLine() && m_process.waitForReadyRead(Meter::patience)) { }
        return QString::fromUtf8(m_process.readLine()).trimmed();
    }
    void signal(int number) { ::kill(pid_t(m_process.processId()), number); }
    int end()
    {
        if (!m_process.waitForFinished(Meter::patience)
            || m_process.exitStatus() != QProcess::NormalExit)
            return -1;
        return m_process.exitCode();
    }

private:
    QProcess m_process;
};

QByteArray language(const QByteArray &title)
{
    return "<t><Lang><timeFormat value='hh'/></Lang><Main><title value='" + title
        + "'/><bare/></Main></t>";
}

} // namespace

/** Commands of ktvctl as a service engineer types them. */
class TstKtvctl : public QObject
{
    Q_OBJECT
private slots:
    void init();

    void calls_data();
    void calls();
    void json_data();
    void json();
    void helpOfEveryCommand();
    void verboseShowsTheLog();
    void answerThatCannotBeWritten();

    void settingsAreStored();
    void settingsOfADamagedFile();
    void settingsWithoutACard();
    void settingsFileIsAPipe();
    void languageIsStoredOnlyWhenItLoads();
    void countersAreStored();
    void countersWithoutACard();
    void firstStartIsReportedOnce();
    void readersLeaveOtherServicesAlone_data();
    void readersLeaveOtherServicesAlone();

    void pulledBattery_data();
    void pulledBattery();

    void factoryReset();
    void factoryResetWithoutACard();
    void watchPrintsAlerts();
    void watchTakesTheStoredSerialNumber();
    void watchEndsCleanly_data();
    void watchEndsCleanly();
};

void TstKtvctl::init()
{
    for (const QString &path : {userData, clients, logFiles, languages, helpPages}) {
        QDir(path).removeRecursively();
        QDir().mkpath(path);
    }
    QFile::remove("/home/root/globalInfo.xml");
    Meter::writeFile("/etc/version", "2.0.1\n");
    Meter::writeFile(languages + "EN/EN.xml", language("Title"));
    Meter::writeFile(languages + "PL/PL.xml", language("Tytuł"));
    Meter::writeFile(languages + "XX/XX.xml", "<broken");
    Meter::writeFile(helpPages + "KTV_420/Main/b_EN.html", "x");
    Meter::writeFile(helpPages + "KTV_420/Main/a_EN.html", "x");
    Meter::writeFile(helpPages + "KTV_420/Other/a_PL.html", "x");
    Meter::writeFile(helpPages + "KTV_4200/Third/a_EN.html", "x");
    Meter::writeFile(clients + "report.pdf", "x");
}

void TstKtvctl::calls_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("out");
    QTest::addColumn<QString>("error");
    const auto row = [](const char *words, int code, const QString &out, const QString &error) {
        QTest::newRow(words) << QProcess::splitCommand(QString(words)) << code << out << error;
    };
    const auto usage = QStringLiteral("ktvctl: usage: ktvctl ");
    row("nonsense", 2, "", "ktvctl: no command 'nonsense'; see ktvctl --help\n");
    row("settings nonsense", 2, "",
        "ktvctl: no command 'settings nonsense'; see ktvctl settings --help\n");
    row("settings get", 2, "", usage + "settings get KEY [DEFAULT]\n");
    row("settings get MAIN_Pin a b", 2, "", usage + "settings get KEY [DEFAULT]\n");
    row("settings set MAIN_Pin", 2, "", usage + "settings set KEY VALUE\n");
    row("settings delete", 2, "", usage + "settings delete KEY...\n");
    row("settings list --nonsense", 2, "", "ktvctl: Unknown option 'nonsense'.\n");
    row("info x", 2, "", usage + "info\n");

    row("settings get MAIN_Pin", 1, "", "ktvctl: MAIN_Pin is not set\n");
    row("settings get MAIN_Pin none", 0, "none\n", "");
    row("settings list", 0, "", "");
    row("settings set MAIN_Pin -- -1", 0, "", "");
    row("settings set MAIN_Pin -1", 0, "", "");
    row("settings set MAIN_Pin -x", 2, "", "ktvctl: Unknown option 'x'.\n");
    row("--json settings get MAIN_Pin none", 0, "\"none\"\n", "");
    row("--nonsense settings list", 2, "", "ktvctl: no command '--nonsense'; see ktvctl --help\n");
    row("--version", 0, "ktvctl " KTV_VERSION "\n", "");
    row("settings delete MAIN_Pin Power_Time1", 0, "", "");
    row("settings reset", 0, "", "");

    row("lang list", 0, "EN\nPL\nXX\n", "");
    row("lang list --serial DV1", 0, "PL\nEN\nUS\n", "");
    row("lang text Main title", 0, "Title\n", "");
    row("lang text Main title --lang PL", 0, QStringLiteral("Tytuł\n"), "");
    row("lang text Main nothing", 1, "", "ktvctl: EN has no text 'nothing' in section 'Main'\n");
    row("lang text Main nothing default", 0, "default\n", "");
    row("lang text Main title --lang DE", 1, "",
        "ktvctl: language 'DE' cannot be loaded; --verbose tells more\n");
    row("lang text Main title --lang XX", 1, "",
        "ktvctl: language 'XX' cannot be loaded; --verbose tells more\n");
    row("lang section Main", 0, "bare:  bare\ntitle: Title\n", "");
    row("lang section Nothing", 1, "", "ktvctl: EN has no section 'Nothing'\n");
    row("lang set DE", 1, "", "ktvctl: language 'DE' cannot be loaded; --verbose tells more\n");

    const QString folder = helpPages + "KTV_420/";
    row("help topics --serial CH1", 0, "Main\n", "");
    row("help topics --serial CH1 --lang PL", 0, "Other\n", "");
    row("help topics --serial DW1", 0, "Third\n", "");
    const QString noModel = "ktvctl: the meter has no serial number yet; give --serial\n";
    row("help topics", 2, "", noModel);
    row("help list Main", 2, "", noModel);
    row("help list Main --serial CH1", 0, folder + "Main/a_EN.html\n" + folder + "Main/b_EN.html\n",
        "");
    row("help list Other --serial CH1", 1, "", "ktvctl: no help page on 'Other'\n");

    row("counters up Demagnetyzacja", 0, "1\n", "");
    row("counters up Nothing", 2, "",
        "ktvctl: no counter 'Nothing'; the names are those of 'counters show'\n");
    row("filename valid a/b:c", 0, "a_b_c\n", "");
    row("filename free /media/sdcard/Clients report.pdf", 0, "report_1.pdf\n", "");
    row("filename free /media/sdcard/Clients/ report pdf", 0, "report_1.pdf\n", "");
    row("filename free /media/sdcard/Clients new .pdf", 0, "new.pdf\n", "");
    row("disk /no/such/path", 1, "", "ktvctl: no volume holds '/no/such/path'\n");
    row("disk /proc", 0,
        "Path:        /proc\nFree:        0 B\nUsed:        0 B (0 %)\nTotal:       0 B\n"
        "Memory card: ok\n",
        "");
    for (const char *time : {"0", "-1", "x", "86401", "1.5", "99999999999"})
        row(qPrintable(QStringLiteral("watch --seconds=%1").arg(time)), 2, "",
            "ktvctl: a time is a number of seconds, 1 to 86400\n");
    row("watch --check=0", 2, "", "ktvctl: a time is a number of seconds, 1 to 86400\n");
}

void TstKtvctl::calls()
{
    QFETCH(QStringList, words);
    QFETCH(int, code);
    QFETCH(QString, out);
    QFETCH(QString, error);
    const Answer answer = ktvctl(words);
    QCOMPARE(answer.error, error);
    QCOMPARE(answer.out, out);
    QCOMPARE(answer.code, code);
}

void TstKtvctl::json_data()
{
    QTest::addColumn<QString>("words");
    QTest::addColumn<QByteArray>("value");
    QTest::newRow("text") << "lang text Main title --lang PL" << QByteArray("\"Tytuł\"");
    QTest::newRow("list") << "lang list" << QByteArray("[\"EN\",\"PL\",\"XX\"]");
    QTest::newRow("section") << "lang section Main"
                             << QByteArray(R"({"bare":"bare","title":"Title"})");
    QTest::newRow("no topics") << "help topics --serial DV1 --lang PL" << QByteArray("[]");
    QTest::newRow("topics") << "help topics --serial CH1" << QByteArray("[\"Main\"]");
    QTest::newRow("no settings") << "settings list" << QByteArray("{}");
    QTest::newRow("counter") << "counters up Demagnetyzacja" << QByteArray("1");
    QTest::newRow("name") << "filename valid a/\"\"\"b" << QByteArray("\"a__b\"");
    QTest::newRow("identity") << "info --serial DW77"
                              << QByteArray(R"({"serialNumber":"DW77","model":"KTV-4400",
            "fullName":"QERN KTV-4400","interfaceVersion":"0.0.0.0 - 2.0.1",
            "systemVersion":"2.0.1","batteryAlarms":[10,3],"soundOff":false,"rebootOff":false,
            "touchScreen":true,"directories":{"clients":"/media/sdcard/Clients/",
            "log":"/media/sdcard/Log/","update":"/media/sdcard/Update",
            "firmware":"/home/root/Firmware/","main":"/home/root/",
            "languages":"/home/root/Langs/","userData":"/media/sdcard/UserData/",
            "help":"/home/root/Help/","soundSamples":""}})");
    QTest::newRow("disk") << "disk /proc" << QByteArray(R"({"path":"/proc","freeBytes":0,
            "freeText":"0 B","usedText":"0 B","totalText":"0 B","usedPercent":0,
            "memoryCardOk":true})");
}

void TstKtvctl::json()
{
    QFETCH(QString, words);
    QFETCH(QByteArray, value);
    const Answer answer = typed(words + " --json");
    QCOMPARE(answer.code, 0);
    QCOMPARE(answer.out.count('\n'), 1); // one line for a machine to read
    QCOMPARE(parsed(answer.out), parsed(QString::fromUtf8(value)));
    QCOMPARE(answer.error, QString());
}

void TstKtvctl::helpOfEveryCommand()
{
    const Answer all = ktvctl({"--help"});
    QCOMPARE(all.code, 0);
    QCOMPARE(ktvctl({}).code, 2);
    int commands = 0;
    QHash<QString, Answer> families;
    for (const QString &line : all.out.split('\n')) {
        if (!line.startsWith("  ktvctl "))
            continue;
        ++commands;
        QStringList words;
        const QStringList usage = line.simplified().split(' ').mid(1);
        for (const QString &word : usage) {
            if (word != word.toLower() || word.startsWith('['))
                break;
            words += word;
        }
        // After a command without arguments comes its summary.
        const Answer one = ktvctl(words.mid(0, 2) + QStringList("--help"));
        if (!families.contains(words.first()))
            families.insert(words.first(), ktvctl({words.first(), "--help"}));
        const Answer family = families.value(words.first());
        QVERIFY2(one.code == 0 || family.code == 0, qPrintable(line));
        QVERIFY2(family.out.contains("unwise", Qt::CaseInsensitive)
                     || family.out.contains("safe at any time", Qt::CaseInsensitive),
                 qPrintable(line + '\n' + family.out));
    }
    QVERIFY(commands >= 19);
    const Answer verb = ktvctl({"settings", "reset", "--help"});
    QVERIFY(verb.out.startsWith("Usage: ktvctl settings reset [options]\n"));
    QVERIFY(verb.out.contains("unwise while the interface runs"));
}

void TstKtvctl::verboseShowsTheLog()
{
    const QStringList words {"lang", "text", "Main", "title", "--lang", "DE"};
    const Answer answer = ktvctl(words + QStringList("--verbose"));
    QCOMPARE(answer.code, 1);
    QVERIFY(answer.error.contains("LangSerwis::setLang(DE): No such file or directory: "
                                  "/home/root/Langs/DE/DE.xml\n"));
    QCOMPARE(ktvctl(QStringList("--verbose") + words).error, answer.error);
    QVERIFY(!ktvctl(words).error.contains("LangSerwis"));
}

void TstKtvctl::answerThatCannotBeWritten()
{
    QProcess process;
    process.setStandardOutputFile("/dev/full");
    process.start(program, {"info"});
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitCode(), 1);
    QCOMPARE(process.readAllStandardError(), QByteArray("ktvctl: the answer cannot be written\n"));
}

void TstKtvctl::settingsAreStored()
{
    const auto text = QStringLiteral(" '); DROP TABLE x;--\"%1 żółć\n日本 ");
    QCOMPARE(ktvctl({"settings", "set", "PRINT_Customer_Label", text}).code, 0);
    QCOMPARE(ktvctl({"settings", "set", "Power_Time1", "5"}).code, 0);
    QCOMPARE(ktvctl({"settings", "set", "Power_Time1", "7"}).code, 0);
    for (const char *number : {"-5", "-.5"}) {
        QCOMPARE(ktvctl({"settings", "set", "Power_Time2", number}).code, 0);
        QCOMPARE(ktvctl({"settings", "get", "Power_Time2"}).out, number + QStringLiteral("\n"));
    }
    QCOMPARE(ktvctl({"settings", "delete", "Power_Time2"}).code, 0);
    QCOMPARE(ktvctl({"settings", "set", "MAIN_Pin", ""}).code, 0);
    QCOMPARE(ktvctl({"settings", "get", "PRINT_Customer_Label"}).out, text + '\n');
    QCOMPARE(ktvctl({"settings", "get", "MAIN_Pin", "default"}).out, QStringLiteral("\n"));
    QCOMPARE(ktvctl({"settings", "get", "Power_Time2", ""}).out, QStringLiteral("\n"));
    QCOMPARE(
        parsed(ktvctl({"settings", "list", "--json"}).out).toObject(),
        (QJsonObject {{"PRINT_Customer_Label", text}, {"Power_Time1", "7"}, {"MAIN_Pin", ""}}));
    QCOMPARE(ktvctl({"settings", "delete", "PRINT_Customer_Label", "MAIN_Pin"}).code, 0);
    QCOMPARE(ktvctl({"settings", "list"}).out, QStringLiteral("Power_Time1: 7\n"));
    QCOMPARE(ktvctl({"settings", "reset"}).code, 0);
    QCOMPARE(ktvctl({"settings", "list"}).out, QString());

    const Answer answer = ktvctl({"settings", "delete", "Power_Time1", "Nothing"});
    QCOMPARE(answer.code, 2);
    QVERIFY(answer.error.startsWith(
        "ktvctl: no setting 'Nothing'; the names are: MAIN_Lang MAIN_UseScreenKeyboard "));
    QVERIFY(answer.error.endsWith(" Power_Time1 Power_Time2\n"));
    QCOMPARE(ktvctl({"settings", "get", "0"}).code, 2);
    QCOMPARE(ktvctl({"settings", "get", "MAIN_Lang|MAIN_Pin"}).code, 2);
}

void TstKtvctl::settingsOfADamagedFile()
{
    Meter::writeFile(settingsFile, QByteArray(4096, 'x'));
    const auto reason =
        "ktvctl: the settings in '" + userData + "' cannot be used; --verbose tells more\n";
    const Answer answer = ktvctl({"settings", "set", "MAIN_Pin", "1"});
    QCOMPARE(answer.code, 1);
    QCOMPARE(answer.error, reason);
    QCOMPARE(Meter::readFile(settingsFile), QByteArray(4096, 'x'));
    QCOMPARE(ktvctl({"lang", "set", "PL"}).error, reason);
    for (const char *words : {"settings get MAIN_Pin", "settings list"}) {
        const Answer read = typed(words);
        QCOMPARE(read.code, 1);
        QCOMPARE(read.error, "ktvctl: '" + settingsFile + "' cannot be read: it is no database\n");
    }
    QCOMPARE(Meter::readFile(settingsFile), QByteArray(4096, 'x'));
    QCOMPARE(ktvctl({"settings", "reset"}).code, 0);
    QCOMPARE(ktvctl({"settings", "set", "MAIN_Pin", "1"}).code, 0);
}

void TstKtvctl::settingsWithoutACard()
{
    QDir(userData).removeRecursively();
    Meter::writeFile("/media/sdcard/UserData", "in the way");
    for (const char *words :
         {"settings set MAIN_Pin 1", "settings delete MAIN_Pin", "settings reset", "lang set PL"}) {
        const Answer answer = typed(words);
        QCOMPARE(answer.code, 1);
        QCOMPARE(answer.out, QString());
        QVERIFY(answer.error.contains("cannot be used"));
    }
    QCOMPARE(ktvctl({"lang", "text", "Main", "title"}).out, QStringLiteral("Title\n"));
    QFile::remove("/media/sdcard/UserData");
}

void TstKtvctl::settingsFileIsAPipe()
{
    // The library would replace it by an empty file.
    QProcess::execute("mkfifo", {settingsFile});
    const Answer answer = typed("settings get MAIN_Pin");
    QCOMPARE(answer.code, 1);
    QCOMPARE(answer.error, "ktvctl: '" + settingsFile + "' cannot be read: it is no file\n");
    QVERIFY(!QFileInfo(settingsFile).isFile());
    QFile::remove(settingsFile);
}

void TstKtvctl::languageIsStoredOnlyWhenItLoads()
{
    QCOMPARE(ktvctl({"lang", "set", "PL"}).code, 0);
    QCOMPARE(ktvctl({"settings", "get", "MAIN_Lang"}).out, QStringLiteral("PL\n"));
    QCOMPARE(ktvctl({"lang", "text", "Main", "title"}).out, QStringLiteral("Tytuł\n"));
    for (const char *code : {"DE", "XX", "pl", ""})
        QCOMPARE(ktvctl({"lang", "set", code}).code, 1);
    QCOMPARE(ktvctl({"settings", "get", "MAIN_Lang"}).out, QStringLiteral("PL\n"));
}

void TstKtvctl::countersAreStored()
{
    QCOMPARE(ktvctl({"counters", "up", "Demagnetyzacja"}).out, QStringLiteral("1\n"));
    QCOMPARE(ktvctl({"counters", "up", "Demagnetyzacja"}).out, QStringLiteral("2\n"));
    const auto counters = parsed(ktvctl({"counters", "show", "--json"}).out).toObject();
    QCOMPARE(counters.size(), 7);
    QCOMPARE(counters.value("Demagnetyzacja").toInt(), 2);
    QCOMPARE(counters.value("AutomatycznyDoborMetody").toInt(-1), 0);
    QCOMPARE(Meter::readFile(logFiles + "liczniki.bin").mid(16, 8),
             QByteArray::fromHex("0000000000000002"));
}

void TstKtvctl::countersWithoutACard()
{
    QDir(logFiles).removeRecursively();
    Meter::writeFile("/media/sdcard/Log", "in the way");
    const Answer answer = ktvctl({"counters", "up", "Demagnetyzacja"});
    QCOMPARE(answer.code, 1);
    QCOMPARE(answer.out, QString());
    QCOMPARE(answer.error,
             QStringLiteral("ktvctl: the counters in '/media/sdcard/Log/' cannot be written; "
                            "--verbose tells more\n"));
    QFile::remove("/media/sdcard/Log");
}

void TstKtvctl::firstStartIsReportedOnce()
{
    Meter::writeFile("/etc/korva/system-boot.status", "1\n");
    QCOMPARE(ktvctl({"first-start"}).out, QStringLiteral("yes\n"));
    QCOMPARE(ktvctl({"first-start"}).out, QStringLiteral("no\n"));
    QCOMPARE(ktvctl({"first-start", "--json"}).out, QStringLiteral("false\n"));
}

void TstKtvctl::readersLeaveOtherServicesAlone_data()
{
    QTest::addColumn<QString>("words");
    for (const char *words :
         {"info", "info --json", "disk", "filename valid x", "filename free /tmp x", "lang list",
          "lang text Main title", "lang section Main", "help topics --serial CH1", "counters show",
          "settings list", "settings get MAIN_Pin none", "value currents", "wifi list"})
        QTest::newRow(words) << words;
}

void TstKtvctl::readersLeaveOtherServicesAlone()
{
    QFETCH(QString, words);
    Meter::clearJournal();
    QCOMPARE(typed(words).code, 0);
    QCOMPARE(QDir(userData).entryList(QDir::Files), QStringList());
    QCOMPARE(QDir(logFiles).entryList(QDir::Files), QStringList());
    QCOMPARE(Meter::journal(), QStringList()); // no system tool was run
}

void TstKtvctl::pulledBattery_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<QString>("call");
    const QStringList set {"settings", "set", "MAIN_Pin", "4321"};
    const QStringList up {"counters", "up", "Demagnetyzacja"};
    for (const char *call : {"openat", "pwrite64", "fdatasync", removal})
        QTest::addRow("settings are created: %s", call) << set << call;
    for (const char *call : {"openat", "write", "fsync"})
        QTest::addRow("counters are saved: %s", call) << up << call;
}

void TstKtvctl::pulledBattery()
{
    QFETCH(QStringList, words);
    QFETCH(QString, call);
    const QString counters = logFiles + "liczniki.bin";
    ktvctl({"counters", "up", "Demagnetyzacja"});
    const QByteArray old = Meter::readFile(counters);
    const auto putBack = [&] {
        QFile::remove(settingsFile);
        QFile::remove(settingsFile + "-journal");
        Meter::writeFile(counters, old);
    };
    putBack();
    const QVector<int> numbers = callsOnTheCard(call, words);
    QVERIFY(!numbers.isEmpty());
    for (const int number : numbers) {
        putBack();
        QCOMPARE(traced({"-o", "/dev/null", "-e", "trace=" + call, "-e",
                         "inject=" + call + ":signal=KILL:when=" + QString::number(number)},
                        words),
                 wasKilled);
        if (words.first() == "settings") {
            KTV_InterfaceConfig settings(userData);
            const QString pin = settings.getValue(KTV_InterfaceConfig::MAIN_Pin, "none");
            QVERIFY(pin == "none" || pin == "4321");
            settings.setValue(KTV_InterfaceConfig::MAIN_Pin, "1");
            QCOMPARE(settings.getValue(KTV_InterfaceConfig::MAIN_Pin, "none"), QStringLiteral("1"));
        } else {
            const QByteArray now = Meter::readFile(counters);
            QCOMPARE(now.size(), 64);
            QVERIFY(now == old || now.mid(16, 8) == QByteArray::fromHex("0000000000000002"));
        }
    }
}

void TstKtvctl::factoryReset()
{
    for (const char *words :
         {"settings set MAIN_MeterSN DV0001", "settings set MAIN_Pin 1234", "wifi add --open Guest",
          "lists names add Pump", "counters up Demagnetyzacja"})
        QCOMPARE(typed(words).code, 0);
    const Answer answer = ktvctl({"factory-reset"});
    QCOMPARE(answer.code, 0);
    QCOMPARE(answer.out + answer.error, QString());
    QCOMPARE(typed("settings list").out.simplified(), QStringLiteral("MAIN_MeterSN: DV0001"));
    QCOMPARE(typed("wifi list").out, QString());
    QVERIFY(!typed("lists names list").out.contains("Pump"));
    QCOMPARE(parsed(typed("counters show --json").out).toObject().value("Demagnetyzacja").toInt(),
             1);
}

void TstKtvctl::factoryResetWithoutACard()
{
    QDir(userData).removeRecursively();
    Meter::writeFile("/media/sdcard/UserData", "in the way");
    const Answer answer = ktvctl({"factory-reset"});
    QFile::remove("/media/sdcard/UserData");
    QCOMPARE(answer.code, 1);
    QCOMPARE(answer.error,
             QStringLiteral("ktvctl: not everything could be reset; --verbose tells more\n"));
}

void TstKtvctl::watchPrintsAlerts()
{
    Volume card(clients);
    card.fill(50);
    Watch watch({"--json", "--check", "1", "--serial", "DV1"});
    QCOMPARE(parsed(watch.nextLine()).toObject(),
             (QJsonObject {{"event", "started"}, {"meter", "QERN KTV-4200"}, {"language", "EN"}}));
    const QVector<QPair<int, int>> steps {{71, 1}, {81, 2}, {75, 1}, {10, 0}};
    for (const auto &step : steps) {
        watch.signal(SIGSTOP); // does not see a card that is half filled
        card.fill(step.first);
        watch.signal(SIGCONT);
        const auto event = parsed(watch.nextLine()).toObject();
        QCOMPARE(event.value("event").toString(), QStringLiteral("freeSpaceAlert"));
        QCOMPARE(event.value("level").toInt(), step.second);
        QCOMPARE(event.value("usedPercent").toInt(), step.first);
    }
    watch.signal(SIGTERM);
    QCOMPARE(watch.nextLine(), QStringLiteral("{\"event\":\"stopped\"}"));
    QCOMPARE(watch.end(), 0);
}

void TstKtvctl::watchTakesTheStoredSerialNumber()
{
    QCOMPARE(ktvctl({"settings", "set", "MAIN_MeterSN", "DW77"}).code, 0);
    Watch watch({"--seconds", "1"});
    QCOMPARE(watch.nextLine(), QStringLiteral("watching QERN KTV-4400, language EN"));
    QCOMPARE(watch.nextLine(), QStringLiteral("stopped"));
    QCOMPARE(watch.end(), 0);
    QCOMPARE(ktvctl({"settings", "get", "MAIN_MeterSN"}).out, QStringLiteral("DW77\n"));
}

void TstKtvctl::watchEndsCleanly_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGHUP") << SIGHUP;
    QTest::newRow("by itself") << 0;
}

void TstKtvctl::watchEndsCleanly()
{
    QFETCH(int, number);
    Watch watch(number == 0 ? QStringList {"--seconds", "1"} : QStringList());
    QCOMPARE(watch.nextLine(), QStringLiteral("watching QERN KTV-xxx, language EN"));
    QVERIFY(!QFile::exists(logFiles + "liczniki.bin"));
    if (number != 0)
        watch.signal(number);
    QCOMPARE(watch.nextLine(), QStringLiteral("stopped"));
    QCOMPARE(watch.end(), 0);
    QVERIFY(QFile::exists(logFiles + "liczniki.bin")); // the services were destroyed in order
    QCOMPARE(ktvctl({"settings", "get", "MAIN_MeterSN"}).out, QStringLiteral("AA0000\n"));
}

KTV_METER_TEST_MAIN(TstKtvctl)
#include "tst_ktvctl.moc"
