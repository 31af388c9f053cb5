#include "NoProcesses.h"
#include "support/Meter.h"

#include <sound/BuzzerClass.h>
#include <tools/Tools.h>
#include <wifi/KTV_Connection.h>

#include <QDir>
#include <QThreadPool>
#include <QtTest>

#include <memory>

using Buzzer::BuzzerClass;
using QERNTools::Tools;
using SoundNamespace::Sound;
using WiFi::KTV_Connection;
using WiFi::Network;

namespace {

/** Faults of a tool, or of the resources that every tool needs. */
enum Fault
{
    Missing,
    Slow, ///< starts its work after two seconds
    Deaf, ///< does nothing without end, and ignores SIGTERM
    Endless, ///< prints without end
    Forking, ///< does its work and leaves a child that keeps its pipe open
    NoDescriptors,
    NoMoreProcesses
};

/** How long a call takes. */
enum Pace
{
    Prompt,
    Patient, ///< waits for seconds: faults without end are tried only in the long form
    Sleepy ///< sleeps for seconds even without a fault: tried only in the long form
};

/** A call of the library that runs a tool. */
struct Place
{
    const char *name;
    const char *tool;
    void (*prepare)();
    QString (*call)(); ///< @return its result
    /**
     * The result without a fault, and other possible results. For each fault a digit is the index
     * of the expected result; x means that the fault cannot be tried, because the call waits
     * without limit or does not wait for the tool.
     */
    QStringList answers;
    const char *expected;
    Pace pace = Prompt;
};

bool isLongForm()
{
    return qEnvironmentVariableIsSet("KTV_LONG_FORM");
}

QString text(bool answer)
{
    return answer ? QStringLiteral("true") : QStringLiteral("false");
}

void execute(const char *program, const QStringList &arguments)
{
    QProcess::execute(QString::fromLatin1(program), arguments);
}

// --- USB port

void nothingConnected()
{
    execute("modprobe-usb-gadget", {"g_ether"});
    execute("/usr/bin/ip", {"link", "delete", "usb0"});
}

void serialLine()
{
    execute("systemctl", {"stop", "busybox.getty@ttyGS0.service"});
    execute("modprobe-usb-gadget", {"g_serial"});
}

void console()
{
    serialLine();
    execute("systemctl", {"start", "busybox.getty@ttyGS0.service"});
}

QString serialGadget()
{
    return text(Tools::StartRS232());
}

QString networkGadget()
{
    return text(Tools::StartRNDIS());
}

QString startConsole()
{
    return text(Tools::StartRS232Console());
}

QString stopConsole()
{
    return text(Tools::StopRS232Console());
}

/** With a bridge and a calibration tool that were started by somebody else. */
void bridge()
{
    serialLine();
    QProcess::startDetached("socat", {"/dev/ttyGS0", "/dev/ttycommunication"});
}

void calibrationTool()
{
    serialLine();
    QProcess::startDetached("mactool", {});
}

void endCalibration()
{
    __atomic_store_n(&Tools::isCalibrationModeActive, false, __ATOMIC_RELEASE);
    for (const char *program : {"socat", "mactool"})
        Meter::killProcesses(program);
    Tools::asyncSocatRuner.waitForFinished();
}

void nobody()
{
    endCalibration();
    serialLine();
}

QString startBridge()
{
    return text(Tools::StartHardwareCalibrationMode());
}

QString stopBridge()
{
    return text(Tools::StopHardwareCalibrationMode());
}

QString startCalibration()
{
    return text(Tools::StartSystemCalibrationMode());
}

QString stopCalibration()
{
    return text(Tools::StopSystemsCalibrationMode());
}

QString owner()
{
    return Tools::getRS232_Function() == Tools::RS232_Console ? "console" : "nobody";
}

// --- WiFi

const QString networks = QStringLiteral("/tmp/networks/");
const QString supplicantFile = QStringLiteral("/etc/wpa_supplicant/wpa_supplicant-wlan0.conf");
QFile flags(QStringLiteral("/sys/class/net/wlan0/flags")); // opened before descriptors run out
std::unique_ptr<KTV_Connection> connection;

/** Connected to the network "Lab", without timers that would poll by themselves. */
void connected()
{
    if (!connection) {
        flags.close();
        flags.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
        QDir().mkpath(networks);
        Meter::writeFile("/run/meter/radio", "-60\tLab\t-\n");
        connection = std::make_unique<KTV_Connection>(networks);
        for (auto *timer : connection->findChildren<QTimer *>())
            timer->stop(); // polls are started by this test only
        QThreadPool::globalInstance()->waitForDone();
    }
    execute("systemctl", {"stop", "wpa_supplicant@wlan0"});
    execute("/usr/bin/ip", {"link", "set", "wlan0", "up"});
    execute("/usr/bin/ip", {"address", "replace", "10.1.2.3/24", "dev", "wlan0"});
    Meter::writeFile("/run/meter/private/link-wlan0", "-\nLab");
}

QString interfaceName()
{
    connection->findWifiInterfaceName();
    return connection->getInterfaceName();
}

QString state()
{
    const std::unique_ptr<Network> network(connection->getWiFi_Info());
    return QString::number(network->state);
}

QString scan()
{
    QString result;
    const auto connected =
        QObject::connect(connection.get(), &KTV_Connection::WiFi_Scan, [&](QList<Network *> *list) {
            result = !list ? "no answer" : list->isEmpty() ? "none" : "networks";
            if (list)
                qDeleteAll(*list);
            delete list;
        });
    connection->ScanNetwork(true);
    QThreadPool::globalInstance()->waitForDone();
    connection->ScanNetwork(false);
    QObject::disconnect(connected);
    return result;
}

QString switchOff()
{
    connection->set_wifi_Enable(false);
    QThreadPool::globalInstance()->waitForDone();
    flags.seek(0);
    return flags.readAll().trimmed().toInt(nullptr, 16) & 1 ? "on" : "off";
}

void noNetworks()
{
    connected();
    connection->RestoreFabricalSetting();
}

QString add(const QString &key)
{
    if (!connection->AddNetwork("Lab", key))
        return "refused";
    return Meter::readFile(supplicantFile).contains("network={") ? "entry" : "no entry";
}

QString addNetwork()
{
    return add("ohm-law-1827");
}

QString addOpenNetwork()
{
    return add({});
}

// --- sound

void silent()
{
    BuzzerClass::BuzzerClass_Initialiser(KTV_Configuration::KTV_420, "/etc/wav/", false);
}

QString loop()
{
    Sound::Play(Sound::SOUND_ERROR, true, true, "/etc/wav/");
    Sound::KillProcess();
    return Sound::process ? "sounds" : "silent";
}

QString sample()
{
    Sound::Play(Sound::SOUND_ERROR, false, true, "/etc/wav/");
    QString result = Sound::process ? "sounds" : "silent";
    Sound::KillProcess();
    return result;
}

QString everyPlayer()
{
    Sound::Play(Sound::SOUND_ERROR, true, true, "/etc/wav/");
    Sound::KillProcess2();
    return Sound::process ? "sounds" : "silent";
}

bool hasComplained;

QString volume()
{
    hasComplained = false;
    const auto before = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext &, const QString &) { hasComplained = true; });
    Sound::SetVolumme(50);
    qInstallMessageHandler(before);
    return hasComplained ? "logged" : "done";
}

QString tone()
{
    BuzzerClass::Beep(BuzzerClass::Tone_Decline, true);
    BuzzerClass::BuzzerClass_Free();
    return BuzzerClass::future.isFinished() ? "silent" : "sounds";
}

QString clearBeeps()
{
    BuzzerClass::ClearBeepInterface();
    return "done";
}

// In this order: missing, slow, deaf, endless, forking, no descriptors, no processes.
// clang-format off
const Place places[] = {
    {"serial gadget", "modprobe-usb-gadget", nothingConnected, serialGadget, {"true", "false"}, "1011011", Patient},
    {"network gadget", "modprobe-usb-gadget", nothingConnected, networkGadget, {"true", "false"}, "1011011", Patient},
    {"network interface", "ifconfig", nothingConnected, networkGadget, {"true", "false"}, "1011011", Patient},
    {"owner by processes", "ps", console, owner, {"console", "nobody"}, "0000011", Patient},
    {"owner by services", "systemctl", console, owner, {"console", "nobody"}, "1011011", Patient},
    // If the program is missing, the shell prints nothing, just as systemctl does on success.
    {"console starts", "systemctl", serialLine, startConsole, {"true", "false"}, "0011011", Patient},
    {"console ends", "systemctl", console, stopConsole, {"true", "false"}, "0011011", Patient},
    {"owner by processes", "grep", console, owner, {"console", "nobody"}, "0000011", Patient},
    {"bridge starts", "socat", nobody, startBridge, {"true", "false"}, "10x1011", Sleepy},
    {"bridge has started", "ps", nobody, startBridge, {"true", "false"}, "1011111", Sleepy},
    {"bridge ends", "killall", bridge, stopBridge, {"true", "false"}, "1011011", Sleepy},
    // If the list cannot be read, it is read again without limit.
    {"bridge has ended", "ps", bridge, stopBridge, {"true", "false"}, "00xxx11", Sleepy},
    {"calibration starts", "mactool", nobody, startCalibration, {"true", "false"}, "10xx011", Sleepy},
    {"calibration has started", "ps", nobody, startCalibration, {"true", "false"}, "1011111", Sleepy},
    {"calibration ends", "killall", calibrationTool, stopCalibration, {"true", "false"}, "1011011", Sleepy},
    // If the list cannot be read, there is no owner.
    {"calibration has ended", "ps", calibrationTool, stopCalibration, {"true", "false"}, "0000011", Sleepy},
    // In a pipeline the reader waits until every process has closed the other end.
    {"interface's name", "ls", connected, interfaceName, {"wlan0", ""}, "10x1x11"},
    {"interface's name", "grep", connected, interfaceName, {"wlan0", ""}, "10x1011"},
    {"interface's state", "ifconfig", connected, state, {"6", "1"}, "1111111"},
    {"interface's state", "grep", connected, state, {"6", "1"}, "1111011"},
    {"interface's state", "sh", connected, state, {"6", "1"}, "x111011"}, // the meter needs it itself
    {"network's name", "iwgetid", connected, state, {"6", "2", "1"}, "1111022"},
    {"network's level", "iwconfig", connected, state, {"6", "2", "1"}, "1111122"},
    {"networks in reach", "iwlist", connected, scan, {"networks", "none", "no answer", ""}, "1022232", Patient},
    {"networks in reach", "grep", connected, scan, {"networks", "none", "no answer", ""}, "1022032", Patient},
    {"radio off", "ifconfig", connected, switchOff, {"off", "on"}, "1011011", Patient},
    {"supplicant restarts", "systemctl", noNetworks, addOpenNetwork, {"entry", "refused"}, "00x0010"},
    // If no process can be started for the tool, the file and its entry stay.
    {"key of a network", "wpa_passphrase", noNetworks, addNetwork, {"entry", "no entry", "refused"}, "1111020"},
    {"sample", "aplay", silent, sample, {"sounds", "silent"}, "1000011"},
    {"sample in a loop", "aplay", silent, loop, {"silent"}, "0000000"},
    {"end of a sample", "pkill", silent, loop, {"silent"}, "0000000"},
    {"end of every loop", "ps", silent, everyPlayer, {"silent"}, "0000000"},
    {"end of every loop", "kill", silent, everyPlayer, {"silent"}, "00xxx00"},
    {"end of every player", "killall", silent, everyPlayer, {"silent"}, "0000000", Patient},
    {"volume", "amixer", silent, volume, {"done", "logged"}, "1011011", Patient},
    {"tone", "beep", silent, tone, {"silent"}, "0000000"},
    {"end of a tone", "killall", silent, tone, {"silent"}, "0000000"},
    {"clearing beep", "beep", silent, clearBeeps, {"done"}, "00x0000"},
    {"end of clearing beep", "killall", silent, clearBeeps, {"done"}, "00xxx00"},
};
// clang-format on

QString callWith(Fault fault, const Place &place)
{
    const QString tool = place.tool;
    switch (fault) {
    case Missing:
        Meter::hideProgram(tool);
        break;
    case Slow:
        Meter::recordProgram(tool);
        Meter::setBehaviour(tool, "delay=2");
        break;
    case Deaf:
        Meter::replaceProgram(tool, "trap '' TERM INT HUP; exec sleep 100000");
        break;
    case Endless:
        Meter::replaceProgram(tool, "exec yes 'wlan0 inet Cell'");
        break;
    case Forking:
        Meter::replaceProgram(
            tool,
            "sleep 100000 &\n"
            "export PATH=/run/meter/bin:/run/meter/busybox:/usr/bin:/usr/sbin\n"
            "for folder in /opt/meter/bin /run/meter/busybox /usr/bin /usr/sbin; do\n"
            "    [ ! -x $folder/$program ] || exec $folder/$program \"$@\"\n"
            "done");
        break;
    case NoDescriptors: {
        const Meter::FewDescriptors none(0);
        return place.call();
    }
    case NoMoreProcesses: {
        NoProcesses::set(true);
        QString answer = place.call();
        NoProcesses::set(false);
        return answer;
    }
    }
    QString answer = place.call();
    Meter::showProgram(tool);
    Meter::setBehaviour(tool, {});
    return answer;
}

/**
 * On a busy machine a tool that works may be late, so a wrong answer is tried up to three times.
 */
template <typename Call>
QString answer(const Place &place, const Call &call, const QString &expected)
{
    QString result;
    for (int left = 3; left > 0 && (result.isNull() || result != expected); --left) {
        place.prepare();
        result = call();
    }
    return result;
}

int openDescriptors()
{
    endCalibration(); // ends the thread of a bridge
    QThreadPool::globalInstance()
        ->waitForDone(); // ends the pool's threads, which have descriptors of their own
    return int(QDir("/proc/self/fd")
                   .entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System)
                   .size());
}

} // namespace

/**
 * Each tool with each fault, for each call that runs it: the call returns the right result, no
 * process of the tool is left, no descriptor leaks, and the next call succeeds.
 */
class TstFailingTools : public QObject
{
    Q_OBJECT
private slots:
    // A function for each fault, so that they can be distributed to several meters.
    void missing_data() { addPlaces(Missing); }
    void missing() { tryPlace(Missing); }
    void slow_data() { addPlaces(Slow); }
    void slow() { tryPlace(Slow); }
    void deaf_data() { addPlaces(Deaf); }
    void deaf() { tryPlace(Deaf); }
    void endless_data() { addPlaces(Endless); }
    void endless() { tryPlace(Endless); }
    void forking_data() { addPlaces(Forking); }
    void forking() { tryPlace(Forking); }
    void noDescriptors_data() { addPlaces(NoDescriptors); }
    void noDescriptors() { tryPlace(NoDescriptors); }
    void noMoreProcesses_data() { addPlaces(NoMoreProcesses); }
    void noMoreProcesses() { tryPlace(NoMoreProcesses); }
    void cleanup()
    {
        endCalibration();
        Meter::killProcesses("sleep");
    }
    void cleanupTestCase() { connection.reset(); }

private:
    static void addPlaces(Fault fault);
    static void tryPlace(Fault fault);
};

void TstFailingTools::addPlaces(Fault fault)
{
    QTest::addColumn<int>("place");
    const bool isWaited = fault >= Slow && fault <= Forking;
    int index = 0;
    for (const Place &place : places) {
        const bool isShort = place.pace == Prompt || (place.pace == Patient && !isWaited);
        const bool isIncluded = place.expected[fault] != 'x' && (isShort || isLongForm());
        if (isIncluded)
            QTest::addRow("%s: %s", place.name, place.tool) << index;
        ++index;
    }
}

void TstFailingTools::tryPlace(Fault fault)
{
    QFETCH(int, place);
    const Place &tried = places[place];
    QCOMPARE(answer(tried, tried.call, tried.answers.first()), tried.answers.first());
    const int descriptors = openDescriptors();
    const QString expected = tried.answers.at(tried.expected[fault] - '0');
    const auto callFaulty = [&tried, fault] { return callWith(fault, tried); };
    QCOMPARE(answer(tried, callFaulty, expected), expected);
    endCalibration(); // until then a bridge goes on, and so does a child that nobody waits for
    if (fault == Forking) // a tool that has ended by itself may leave a child
        Meter::killProcesses("sleep");
    for (const char *program : {"sleep", "yes", "aplay", "beep", "cat"})
        QTRY_COMPARE(Meter::processes(program), QStringList());
    if (fault == NoDescriptors)
        connection.reset(); // its delayed calls must not run in the next row
    QCOMPARE(answer(tried, tried.call, tried.answers.first()), tried.answers.first());
    QTRY_VERIFY2(openDescriptors() <= descriptors, qPrintable(QString::number(openDescriptors())));
}

KTV_METER_TEST_MAIN(TstFailingTools)
#include "tst_failing_tools.moc"
