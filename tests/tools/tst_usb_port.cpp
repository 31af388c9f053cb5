#include "support/LogCapture.h"
#include "support/Meter.h"

#include <tools/Tools.h>

#include <QtTest>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

using QERNTools::Tools;

namespace {

/**
 * Calls of the library on a terminal line, in order; a pseudo terminal would not show all of them.
 */
struct LineCall
{
    QByteArray name;
    int action = 0;
    termios settings {};
};
QVector<LineCall> lineCalls;

const QString listBridge =
    QStringLiteral("sh -c ps | grep \"[s]ocat /dev/ttyGS0 /dev/ttycommunication\"");
const QString listTool = QStringLiteral("sh -c ps | grep \"[m]actool\"");
const QString consoleStatus = QStringLiteral("sh -c systemctl status busybox.getty@ttyGS0.service");
const QString consoleStart = QStringLiteral("sh -c systemctl start busybox.getty@ttyGS0.service");
const QString consoleStop = QStringLiteral("sh -c systemctl stop busybox.getty@ttyGS0.service");
const QString loadSerial = QStringLiteral("modprobe-usb-gadget g_serial");
const QString loadNetwork = QStringLiteral("modprobe-usb-gadget g_ether");
const QString networkUp = QStringLiteral("ifconfig usb0 up");

const QStringList detection {listBridge, listTool, consoleStatus};

} // namespace

extern "C" int tcsetattr(int line, int action, const termios *settings)
{
    lineCalls += {"tcsetattr", action, *settings};
    using Function = int (*)(int, int, const termios *);
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, "tcsetattr"))(line, action, settings);
}

extern "C" int tcflush(int line, int queue)
{
    lineCalls += {"tcflush", queue, {}};
    using Function = int (*)(int, int);
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, "tcflush"))(line, queue);
}

/** The modes of the USB port and the owners of its line, except the bridge. */
class TstUsbPort : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();

    void codes();

    void modeIsFoundInTheFileSystem();
    void ownerWithoutSerialLine();
    void ownerIsFound_data();
    void ownerIsFound();
    void ownerWithoutShell();
    void ownerWithHangingCommands();

    void serialGadget();
    void serialGadgetFails_data();
    void serialGadgetFails();
    void networkGadget();
    void networkGadgetFails_data();
    void networkGadgetFails();
    void lineSettings();
    void lineDoesNotBecomeTheControllingTerminal();
    void lineSettingsWithoutLine();

    void console();
    void consoleFails_data();
    void consoleFails();
    void consoleHangs();
    void calibrationTool();
    void calibrationToolDoesNotStart();
    void calibrationToolIsNotListedInTime();
    void calibrationToolDoesNotEnd();
    void incompleteListOfCalibrationToolsDecides();
    void calibrationToolWithoutKillall();

    void nothingToSwitch();
    void switchMode_data();
    void switchMode();
    void switchWithoutAnyGadget();
    void switchOwner();
    void ownerThatStaysKeepsTheLine();
    void stopAllLogsWhatItCouldNotStop();

private:
    /** Sets the mode of the port without the library, and without entries in the journal. */
    void setUp(Tools::USB_Mode mode);
    /** Calls of programs so far, without those between stand-ins. */
    static QStringList calls();
    static QStringList listCalls();

    const QStringList recorded {"sh", "ifconfig", "killall"};
    const QByteArray searchPath = qgetenv("PATH");
};

void TstUsbPort::initTestCase()
{
    for (const QString &program : recorded)
        Meter::recordProgram(program);
}

void TstUsbPort::init()
{
    setUp(Tools::USB_None);
}

void TstUsbPort::cleanup()
{
    qputenv("PATH", searchPath);
    for (const char *program :
         {"ps", "grep", "modprobe-usb-gadget", "systemctl", "mactool", "ifconfig", "killall"})
        Meter::showProgram(program);
    for (const char *program : {"ps", "modprobe-usb-gadget", "systemctl", "ifconfig", "killall"})
        Meter::setBehaviour(program, {});
    QProcess::execute("systemctl", {"stop", "busybox.getty@ttyGS0.service"});
    QProcess::execute("busybox", {"killall", "-q", "-KILL", "mactool"});
    for (const QString &program : recorded)
        Meter::recordProgram(program);
}

void TstUsbPort::setUp(Tools::USB_Mode mode)
{
    QFileInfo line("/dev/ttyGS0");
    if (line.isDir() && !line.isSymLink())
        QDir().rmdir("/dev/ttyGS0");
    QProcess::execute("modprobe-usb-gadget", {"g_ether"});
    if (mode == Tools::USB_RS232)
        QProcess::execute("modprobe-usb-gadget", {"g_serial"});
    if (mode == Tools::USB_None)
        QProcess::execute("/usr/bin/ip", {"link", "delete", "usb0"});
    Meter::clearJournal();
    lineCalls.clear();
}

QStringList TstUsbPort::calls()
{
    QStringList found = Meter::journal();
    for (auto call = found.begin(); call != found.end();) {
        // These are started by a shell whose line is recorded, which is enough.
        const bool isInner = call->startsWith("ps") || call->startsWith("systemctl");
        call = isInner ? found.erase(call) : call + 1;
    }
    return found;
}

QStringList TstUsbPort::listCalls()
{
    return calls().filter(listTool);
}

void TstUsbPort::codes()
{
    QCOMPARE(int(Tools::USB_None), 0);
    QCOMPARE(int(Tools::USB_RS232), 1);
    QCOMPARE(int(Tools::USB_RNDIS), 2);
    QCOMPARE(int(Tools::RS232_None), 0);
    QCOMPARE(int(Tools::RS232_HardwareCalibration), 1);
    QCOMPARE(int(Tools::RS232_SystemCalibration), 2);
    QCOMPARE(int(Tools::RS232_Console), 3);
    QVERIFY(!Tools::isCalibrationModeActive);
    QVERIFY(Tools::asyncSocatRuner.isFinished());
}

void TstUsbPort::modeIsFoundInTheFileSystem()
{
    QCOMPARE(Tools::detectCurrentMode(), Tools::USB_None);
    Meter::writeFile("/dev/ttyGS0", {});
    QCOMPARE(Tools::detectCurrentMode(), Tools::USB_RS232);
    QCOMPARE(Tools::getCurrentMode(), Tools::USB_RS232);
    setUp(Tools::USB_RNDIS);
    QCOMPARE(Tools::detectCurrentMode(), Tools::USB_RNDIS);
    Meter::writeFile("/dev/ttyGS0", {});
    QCOMPARE(Tools::getCurrentMode(), Tools::USB_RNDIS); // the network is detected first
    QFile::remove("/dev/ttyGS0");
    QCOMPARE(calls(), QStringList());
}

void TstUsbPort::ownerWithoutSerialLine()
{
    const LogCapture log;
    QCOMPARE(Tools::getRS232_Function(), Tools::RS232_None);
    setUp(Tools::USB_RNDIS);
    Meter::writeFile("/dev/ttyGS0", {}); // ignored while there is a network interface
    QCOMPARE(Tools::getRS232_Function(), Tools::RS232_None);
    QVERIFY(Tools::StopAllRS232Function());
    QFile::remove("/dev/ttyGS0");
    QCOMPARE(calls(), QStringList());
    QCOMPARE(log.lines(), QStringList());
}

void TstUsbPort::ownerIsFound_data()
{
    QTest::addColumn<QByteArray>("ps");
    QTest::addColumn<QByteArray>("systemctl");
    QTest::addColumn<Tools::RS232_Function>("owner");
    QTest::addColumn<int>("commands");
    const QByteArray none = "stdout=    1 root      0:00 init";
    const QByteArray bridge = "stdout=   12 root      0:00 socat /dev/ttyGS0 /dev/ttycommunication";
    const QByteArray tool = "stdout=   13 root      0:00 mactool";
    const QByteArray both = bridge + "\\n   13 root      0:00 mactool";
    const QByteArray active = "stdout=     Active: active (running) since today";
    const QByteArray inactive = "stdout=     Active: inactive (dead)";
    QTest::newRow("nobody") << none << inactive << Tools::RS232_None << 3;
    QTest::newRow("bridge") << bridge << inactive << Tools::RS232_HardwareCalibration << 1;
    QTest::newRow("tool") << tool << inactive << Tools::RS232_SystemCalibration << 2;
    QTest::newRow("console") << none << active << Tools::RS232_Console << 3;
    QTest::newRow("bridge before all") << both << active << Tools::RS232_HardwareCalibration << 1;
    QTest::newRow("tool before console") << tool << active << Tools::RS232_SystemCalibration << 2;
    QTest::newRow("another bridge is none")
        << QByteArray("stdout=   12 root      0:00 socat /dev/ttyGS1 /dev/ttycommunication")
        << inactive << Tools::RS232_None << 3;
    QTest::newRow("the blank before Active counts")
        << none << QByteArray("stdout=Active: active (running)") << Tools::RS232_None << 3;
    QTest::newRow("an ended console")
        << none << QByteArray("stdout= Active: active (exited)") << Tools::RS232_None << 3;
    QTest::newRow("case counts") << none << QByteArray("stdout= Active: Active (running)")
                                 << Tools::RS232_None << 3;
    QTest::newRow("no program prints anything")
        << QByteArray("silent=1") << QByteArray("silent=1") << Tools::RS232_None << 3;
}

void TstUsbPort::ownerIsFound()
{
    QFETCH(QByteArray, ps);
    QFETCH(QByteArray, systemctl);
    QFETCH(int, commands);
    setUp(Tools::USB_RS232);
    Meter::recordProgram("ps");
    Meter::setBehaviour("ps", ps);
    Meter::setBehaviour("systemctl", systemctl);
    const LogCapture log;
    QTEST(Tools::getRS232_Function(), "owner");
    QCOMPARE(calls(), detection.mid(0, commands));
    QCOMPARE(log.lines(), QStringList());
}

void TstUsbPort::ownerWithoutShell()
{
    setUp(Tools::USB_RS232);
    qputenv("PATH", "/nowhere");
    const LogCapture log;
    QCOMPARE(Tools::getRS232_Function(), Tools::RS232_None);
    QCOMPARE(log.lines(),
             QStringList({"Tools::detectCurrentMode(): ps socat no started!",
                          "Tools::detectCurrentMode(): ps mactool no started!",
                          "Tools::detectCurrentMode(): systemctl status no started!"}));
}

void TstUsbPort::ownerWithHangingCommands()
{
    setUp(Tools::USB_RS232);
    // Output before the hang is ignored.
    Meter::replaceProgram("ps",
                          "echo socat /dev/ttyGS0 /dev/ttycommunication mactool; "
                          "wait_for_ever");
    Meter::replaceProgram("systemctl", "echo ' Active: active (running)'; wait_for_ever");
    const LogCapture log;
    QCOMPARE(Tools::getRS232_Function(), Tools::RS232_None);
    QCOMPARE(log.lines(),
             QStringList({"Tools::detectCurrentMode(): ps socat no finished!",
                          "Tools::detectCurrentMode(): ps mactool no finished!",
                          "Tools::detectCurrentMode(): systemctl status no finished!"}));
}

void TstUsbPort::serialGadget()
{
    const LogCapture log;
    QVERIFY(Tools::StartRS232());
    QCOMPARE(calls(), QStringList(loadSerial));
    QCOMPARE(Tools::getCurrentMode(), Tools::USB_RS232);
    QCOMPARE(lineCalls.size(), 2);
    QCOMPARE(log.lines(), QStringList());
}

void TstUsbPort::serialGadgetFails_data()
{
    QTest::addColumn<QByteArray>("modprobe");
    QTest::addColumn<QStringList>("lines");
    QTest::newRow("prints something")
        << QByteArray("echo 'modprobe: careful'; exit 0")
        << QStringList("Tools::StartRS232(): modprobe-usb-gadget:modprobe: careful\n");
    QTest::newRow("hangs") << QByteArray("wait_for_ever")
                           << QStringList(
                                  "Tools::StartRS232(): modprobe-usb-gadget g_serial no finished!");
    QTest::newRow("no line appears") << QByteArray("exit 0") << QStringList();
    QTest::newRow("line cannot be opened")
        << QByteArray("mkdir /dev/ttyGS0") << QStringList("Tools::StartRS232(): ConfigurePort");
    QTest::newRow("missing")
        << QByteArray()
        << QStringList("Tools::StartRS232(): modprobe-usb-gadget g_serial no started!");
}

void TstUsbPort::serialGadgetFails()
{
    QFETCH(QByteArray, modprobe);
    if (modprobe.isEmpty())
        Meter::hideProgram("modprobe-usb-gadget");
    else
        Meter::replaceProgram("modprobe-usb-gadget", modprobe);
    const LogCapture log;
    QVERIFY(!Tools::StartRS232());
    QTEST(log.lines(), "lines");
}

void TstUsbPort::networkGadget()
{
    const LogCapture log;
    QVERIFY(Tools::StartRNDIS());
    QCOMPARE(calls(), QStringList({loadNetwork, networkUp}));
    QCOMPARE(Tools::getCurrentMode(), Tools::USB_RNDIS);
    QVERIFY(Meter::readFile("/sys/class/net/usb0/flags").trimmed().endsWith('3')); // up
    QCOMPARE(log.lines(), QStringList());
}

void TstUsbPort::networkGadgetFails_data()
{
    QTest::addColumn<QByteArray>("modprobe");
    QTest::addColumn<QByteArray>("ifconfig");
    QTest::addColumn<QStringList>("commands");
    QTest::addColumn<QStringList>("lines");
    QTest::newRow("gadget is noisy")
        << QByteArray("noise=careful") << QByteArray() << QStringList(loadNetwork) << QStringList();
    QTest::newRow("gadget hangs")
        << QByteArray("hang=1") << QByteArray() << QStringList(loadNetwork)
        << QStringList("Tools::StartRNDIS(): modprobe-usb-gadget g_ether no finished!");
    QTest::newRow("interface is noisy") << QByteArray() << QByteArray("noise=careful")
                                        << QStringList({loadNetwork, networkUp}) << QStringList();
    QTest::newRow("interface hangs")
        << QByteArray() << QByteArray("hang=1") << QStringList({loadNetwork, networkUp})
        << QStringList("Tools::StartRNDIS(): ifconfig usb0 up no finished!");
    QTest::newRow("interface's program is missing")
        << QByteArray() << QByteArray("missing") << QStringList(loadNetwork)
        << QStringList("Tools::StartRNDIS(): ifconfig usb0 up no finished!");
    QTest::newRow("no interface appears") << QByteArray("nothing") << QByteArray()
                                          << QStringList({loadNetwork, networkUp}) << QStringList();
    QTest::newRow("gadget is missing")
        << QByteArray("missing") << QByteArray() << QStringList()
        << QStringList("Tools::StartRNDIS(): modprobe-usb-gadget g_ether no started!");
}

void TstUsbPort::networkGadgetFails()
{
    QFETCH(QByteArray, modprobe);
    QFETCH(QByteArray, ifconfig);
    if (modprobe == "missing")
        Meter::hideProgram("modprobe-usb-gadget");
    else if (modprobe == "nothing")
        Meter::replaceProgram("modprobe-usb-gadget", "exit 0");
    else
        Meter::setBehaviour("modprobe-usb-gadget", modprobe);
    if (ifconfig == "missing")
        Meter::hideProgram("ifconfig");
    else
        Meter::setBehaviour("ifconfig", ifconfig);
    const LogCapture log;
    QVERIFY(!Tools::StartRNDIS());
    QTEST(calls(), "commands");
    QTEST(log.lines(), "lines");
}

void TstUsbPort::lineSettings()
{
    setUp(Tools::USB_RS232);
    const int host = ::open("/run/meter/usb-host", O_RDWR | O_NOCTTY);
    QVERIFY(host >= 0);
    QVERIFY(Tools::ConfigurePort());
    ::close(host);
    QCOMPARE(lineCalls.size(), 2);
    QCOMPARE(lineCalls[0].name, QByteArray("tcflush"));
    QCOMPARE(lineCalls[0].action, TCIFLUSH);
    QCOMPARE(lineCalls[1].name, QByteArray("tcsetattr"));
    QCOMPARE(lineCalls[1].action, TCSANOW);
    const termios &settings = lineCalls[1].settings;
    QCOMPARE(settings.c_cflag, tcflag_t(0x9BE));
    QCOMPARE(settings.c_iflag, tcflag_t(0));
    QCOMPARE(settings.c_oflag, tcflag_t(0));
    QCOMPARE(settings.c_lflag, tcflag_t(0));
    for (int i = 0; i < NCCS; ++i)
        QCOMPARE(int(settings.c_cc[i]), i == VMIN ? 1 : 0);

    // The line itself has them, too; a pseudo terminal drops the parity.
    const int line = ::open("/dev/ttyGS0", O_RDWR | O_NOCTTY);
    termios present {};
    QCOMPARE(::tcgetattr(line, &present), 0);
    ::close(line);
    QCOMPARE(present.c_cflag | PARENB, tcflag_t(0x9BE));
    QCOMPARE(present.c_lflag, tcflag_t(0));
}

void TstUsbPort::lineDoesNotBecomeTheControllingTerminal()
{
    setUp(Tools::USB_RS232);
    const pid_t child = ::fork();
    if (child == 0) {
        ::setsid(); // otherwise the terminal would become its controlling one, and a hang-up would
                    // end it
        const bool isOpen = Tools::ConfigurePort();
        ::_exit(isOpen && ::open("/dev/tty", O_RDWR) < 0 ? 0 : 1);
    }
    int status = -1;
    QCOMPARE(::waitpid(child, &status, 0), child);
    QCOMPARE(status, 0);
}

void TstUsbPort::lineSettingsWithoutLine()
{
    QVERIFY(!Tools::ConfigurePort());
    QVERIFY(!Tools::StartRS232Console());
    QVERIFY(!Tools::StartSystemCalibrationMode());
    QCOMPARE(calls(), QStringList());

    Meter::writeFile("/dev/ttyGS0", {});
    QVERIFY(Tools::ConfigurePort()); // true even for a file, which has no terminal settings
    QFile::remove("/dev/ttyGS0");
}

void TstUsbPort::console()
{
    setUp(Tools::USB_RS232);
    const LogCapture log;
    QVERIFY(Tools::StartRS232Console());
    QCOMPARE(lineCalls.size(), 2);
    QCOMPARE(calls(), QStringList(consoleStart));
    QCOMPARE(Tools::getRS232_Function(), Tools::RS232_Console);
    Meter::clearJournal();
    QVERIFY(Tools::StopRS232Console());
    QCOMPARE(lineCalls.size(), 2);
    QCOMPARE(calls(), QStringList(consoleStop));
    QCOMPARE(Tools::getRS232_Function(), Tools::RS232_None);
    QCOMPARE(log.lines(), QStringList());
}

void TstUsbPort::consoleFails_data()
{
    QTest::addColumn<QByteArray>("systemctl");
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QStringList>("lines");
    QTest::newRow("noise") << QByteArray("noise=Warning: unit changed") << searchPath
                           << QStringList({"Tools::StartRS232Console(): systemctl start:"
                                           "Warning: unit changed\n",
                                           "Tools::StopRS232Console(): systemctl stop:"
                                           "Warning: unit changed\n"});
    QTest::newRow("no shell") << QByteArray() << QByteArray("/nowhere")
                              << QStringList({"Tools::StartRS232Console(): systemctl start no "
                                              "started!",
                                              "Tools::StopRS232Console(): systemctl stop no "
                                              "started!"});
}

void TstUsbPort::consoleFails()
{
    QFETCH(QByteArray, systemctl);
    QFETCH(QByteArray, path);
    setUp(Tools::USB_RS232);
    Meter::setBehaviour("systemctl", systemctl);
    qputenv("PATH", path);
    const LogCapture log;
    QVERIFY(!Tools::StartRS232Console());
    QVERIFY(!Tools::StopRS232Console());
    QTEST(log.lines(), "lines");
}

void TstUsbPort::consoleHangs()
{
    setUp(Tools::USB_RS232);
    Meter::setBehaviour("systemctl", "hang=1");
    const LogCapture log;
    QVERIFY(!Tools::StartRS232Console());
    QVERIFY(!Tools::StopRS232Console());
    QCOMPARE(log.lines(),
             QStringList({"Tools::StartRS232Console(): systemctl start no finished!",
                          "Tools::StopRS232Console(): systemctl stop no finished!"}));
}

void TstUsbPort::calibrationTool()
{
    setUp(Tools::USB_RS232);
    const LogCapture log;
    QElapsedTimer pause;
    pause.start();
    QVERIFY(Tools::StartSystemCalibrationMode());
    QVERIFY(pause.elapsed() >= 3000); // the time that the tool has to start
    QCOMPARE(lineCalls.size(), 2);
    QCOMPARE(calls(), QStringList({"mactool", listTool}));
    QCOMPARE(Tools::getRS232_Function(), Tools::RS232_SystemCalibration);
    Meter::clearJournal();
    QVERIFY(Tools::StopSystemsCalibrationMode());
    QCOMPARE(calls(), QStringList({"killall mactool", listTool}));
    QCOMPARE(Tools::getRS232_Function(), Tools::RS232_None);
    QCOMPARE(log.lines(), QStringList());
}

void TstUsbPort::calibrationToolDoesNotStart()
{
    setUp(Tools::USB_RS232);
    Meter::hideProgram("mactool");
    const LogCapture log;
    QVERIFY(!Tools::StartSystemCalibrationMode());
    QCOMPARE(log.lines(), QStringList());
}

void TstUsbPort::calibrationToolIsNotListedInTime()
{
    setUp(Tools::USB_RS232);
    Meter::replaceProgram("ps", "echo mactool; wait_for_ever");
    const LogCapture log;
    QVERIFY(!Tools::StartSystemCalibrationMode());
    QCOMPARE(log.lines(),
             QStringList("Tools::StartSystemCalibrationMode():ps mactool no finished!"));
}

void TstUsbPort::calibrationToolDoesNotEnd()
{
    Meter::replaceProgram("ps", "echo '  99 root      0:00 mactool'");
    const LogCapture log;
    QElapsedTimer pause;
    pause.start();
    QVERIFY(!Tools::StopSystemsCalibrationMode());
    QVERIFY(pause.elapsed() >= 2000 + 6 * 500);
    QCOMPARE(listCalls().size(), 7);
    QCOMPARE(log.lines(), QStringList());
}

void TstUsbPort::incompleteListOfCalibrationToolsDecides()
{
    // At first the tool is in the list, although that is incomplete; then nothing is printed within
    // a second, which counts as the end of the tool.
    Meter::replaceProgram("grep",
                          "[ ! -e /tmp/asked ] || pause 3\n"
                          "echo mactool\n"
                          "[ -e /tmp/asked ] || { : >/tmp/asked; wait_for_ever; }");
    const LogCapture log;
    QVERIFY(Tools::StopSystemsCalibrationMode());
    QVERIFY(QFile::remove("/tmp/asked"));
    QCOMPARE(listCalls().size(), 2);
    QCOMPARE(log.lines(), QStringList());
}

void TstUsbPort::calibrationToolWithoutKillall()
{
    const LogCapture log;
    Meter::setBehaviour("killall", "hang=1");
    QVERIFY(!Tools::StopSystemsCalibrationMode());
    QCOMPARE(calls(), QStringList("killall mactool"));
    Meter::hideProgram("killall");
    QVERIFY(!Tools::StopSystemsCalibrationMode());
    QCOMPARE(calls(), QStringList("killall mactool"));
    const QString line = "Tools::StopSystemsCalibrationMode(): killall mactool no finished!";
    QCOMPARE(log.lines(), QStringList({line, line}));
}

void TstUsbPort::nothingToSwitch()
{
    const LogCapture log;
    setUp(Tools::USB_RNDIS);
    QVERIFY(Tools::SetUSBMode(Tools::USB_RNDIS, Tools::RS232_Console));
    QCOMPARE(calls(), QStringList());
    setUp(Tools::USB_RS232);
    QVERIFY(Tools::SetUSBMode(Tools::USB_RS232, Tools::RS232_None));
    QCOMPARE(calls(), detection);
    QCOMPARE(log.lines(), QStringList());
}

void TstUsbPort::switchMode_data()
{
    QTest::addColumn<Tools::USB_Mode>("before");
    QTest::addColumn<Tools::USB_Mode>("wanted");
    QTest::addColumn<Tools::RS232_Function>("function");
    QTest::addColumn<QByteArray>("noise"); // of the first gadget to be loaded
    QTest::addColumn<Tools::USB_Mode>("after");
    QTest::addColumn<QStringList>("commands");
    QTest::addColumn<QStringList>("lines");
    const QStringList fallback {loadNetwork, networkUp};
    const QString fallbackLine = "Tools::SetUSBMode:end: StartRNDIS = true";
    const auto none = Tools::RS232_None;
    const auto console = Tools::RS232_Console;
    QTest::newRow("none to none is the fallback")
        << Tools::USB_None << Tools::USB_None << none << QByteArray() << Tools::USB_RNDIS
        << fallback << QStringList(fallbackLine);
    QTest::newRow("none to network") << Tools::USB_None << Tools::USB_RNDIS << none << QByteArray()
                                     << Tools::USB_RNDIS << fallback << QStringList();
    QTest::newRow("network to none is the fallback")
        << Tools::USB_RNDIS << Tools::USB_None << none << QByteArray() << Tools::USB_RNDIS
        << fallback << QStringList(fallbackLine);
    QTest::newRow("unknown mode is the fallback")
        << Tools::USB_RS232 << Tools::USB_Mode(7) << console << QByteArray() << Tools::USB_RNDIS
        << fallback << QStringList(fallbackLine);
    QTest::newRow("network to an unowned line")
        << Tools::USB_RNDIS << Tools::USB_RS232 << none << QByteArray() << Tools::USB_RS232
        << QStringList(loadSerial) + detection << QStringList();
    QTest::newRow("network to console")
        << Tools::USB_RNDIS << Tools::USB_RS232 << console << QByteArray() << Tools::USB_RS232
        << QStringList(loadSerial) + detection + detection + QStringList(consoleStart)
        << QStringList();
    QTest::newRow("network to an unknown owner")
        << Tools::USB_RNDIS << Tools::USB_RS232 << Tools::RS232_Function(9) << QByteArray()
        << Tools::USB_RNDIS << QStringList(loadSerial) + detection + detection + fallback
        << QStringList({"Tools::SetUSBMode: setRS232Mode2 = false", fallbackLine});
    QTest::newRow("none to an unowned line")
        << Tools::USB_None << Tools::USB_RS232 << none << QByteArray() << Tools::USB_RS232
        << QStringList(loadSerial) + detection << QStringList();
    QTest::newRow("serial gadget fails")
        << Tools::USB_RNDIS << Tools::USB_RS232 << console << QByteArray("careful")
        << Tools::USB_RNDIS << QStringList(loadSerial) + fallback
        << QStringList({"Tools::StartRS232(): modprobe-usb-gadget:careful\n",
                        "Tools::SetUSBMode:StartRS232 = false", fallbackLine});
    QTest::newRow("line to network")
        << Tools::USB_RS232 << Tools::USB_RNDIS << console << QByteArray() << Tools::USB_RNDIS
        << detection + fallback << QStringList();
    QTest::newRow("network gadget fails once")
        << Tools::USB_RS232 << Tools::USB_RNDIS << none << QByteArray("careful") << Tools::USB_RNDIS
        << detection + QStringList(loadNetwork) + fallback
        << QStringList({"Tools::SetUSBMode: StartRNDIS = false", fallbackLine});
}

void TstUsbPort::switchMode()
{
    QFETCH(Tools::USB_Mode, before);
    QFETCH(Tools::USB_Mode, wanted);
    QFETCH(Tools::RS232_Function, function);
    QFETCH(QByteArray, noise);
    setUp(before);
    if (!noise.isEmpty()) {
        Meter::replaceProgram("modprobe-usb-gadget",
                              "rm /run/meter/bin/modprobe-usb-gadget\n"
                              "ln -s /opt/meter/bin/modprobe-usb-gadget /run/meter/bin\necho "
                                  + noise);
    }
    const LogCapture log;
    QVERIFY(Tools::SetUSBMode(wanted, function));
    QTEST(calls(), "commands");
    QTEST(log.lines(), "lines");
    QTEST(Tools::getCurrentMode(), "after");
}

void TstUsbPort::switchWithoutAnyGadget()
{
    Meter::hideProgram("modprobe-usb-gadget");
    const LogCapture log;
    const QString noGadget = "Tools::StartRNDIS(): modprobe-usb-gadget g_ether no started!";
    QVERIFY(Tools::SetUSBMode(Tools::USB_RNDIS, Tools::RS232_None)); // the failure is only logged
    QCOMPARE(log.lines(),
             QStringList({noGadget, "Tools::SetUSBMode: StartRNDIS = false", noGadget,
                          "Tools::SetUSBMode:end: StartRNDIS = false"}));
    QCOMPARE(Tools::getCurrentMode(), Tools::USB_None);
}

void TstUsbPort::switchOwner()
{
    setUp(Tools::USB_RS232);
    QVERIFY(Tools::SetUSBMode(Tools::USB_RS232, Tools::RS232_Console));
    Meter::clearJournal();
    QVERIFY(Tools::SetUSBMode(Tools::USB_RS232, Tools::RS232_Console));
    QCOMPARE(calls(), detection);

    Meter::clearJournal();
    QVERIFY(Tools::SetUSBMode(Tools::USB_RS232, Tools::RS232_SystemCalibration));
    QCOMPARE(Tools::getRS232_Function(), Tools::RS232_SystemCalibration);
    QCOMPARE(calls().mid(0, 9),
             detection + detection + QStringList({consoleStop, "mactool", listTool}));

    // RS232_None cannot be started: the line is freed, then the network is loaded again.
    const LogCapture log;
    QVERIFY(Tools::SetUSBMode(Tools::USB_RS232, Tools::RS232_None));
    QCOMPARE(log.lines(),
             QStringList({"Tools::SetUSBMode: setRS232Mode1 = false",
                          "Tools::SetUSBMode:end: StartRNDIS = true"}));
    QCOMPARE(Tools::getCurrentMode(), Tools::USB_RNDIS);
    QCOMPARE(Meter::processes("mactool"), QStringList());
}

void TstUsbPort::ownerThatStaysKeepsTheLine()
{
    setUp(Tools::USB_RS232);
    Meter::replaceProgram("ps", "echo '  99 root      0:00 mactool'");
    Meter::setBehaviour("killall", "hang=1");
    const LogCapture log;
    QVERIFY(!Tools::setRS232Mode(Tools::RS232_Console));
    QCOMPARE(calls(), QStringList({listBridge, listTool, listBridge, listTool, "killall mactool"}));
    QCOMPARE(log.lines().last(), "Tools::StopAllRS232Function():StopSystemsCalibrationMode false");
}

void TstUsbPort::stopAllLogsWhatItCouldNotStop()
{
    setUp(Tools::USB_RS232);
    QVERIFY(Tools::StartRS232Console());
    Meter::replaceProgram("systemctl",
                          "[ $1 = stop ] && echo no; echo ' Active: active (running)'");
    const LogCapture log;
    QVERIFY(!Tools::StopAllRS232Function());
    QCOMPARE(log.lines().size(), 2);
    QCOMPARE(log.lines().last(), "Tools::StopAllRS232Function():StopRS232Console false");

    Meter::recordProgram("ps");
    Meter::setBehaviour("ps", "stdout=mactool");
    Meter::setBehaviour("killall", "hang=1");
    QVERIFY(Tools::SetUSBMode(Tools::USB_RNDIS, Tools::RS232_None));
    QCOMPARE(log.lines().mid(2),
             QStringList({"Tools::StopSystemsCalibrationMode(): killall mactool no finished!",
                          "Tools::StopAllRS232Function():StopSystemsCalibrationMode false",
                          "Tools::SetUSBMode: StopAllRS232Function = false",
                          "Tools::SetUSBMode:end: StartRNDIS = true"}));
}

KTV_METER_TEST_MAIN(TstUsbPort)
#include "tst_usb_port.moc"
