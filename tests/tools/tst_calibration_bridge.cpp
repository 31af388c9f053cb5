#include "support/LogCapture.h"
#include "support/Meter.h"

#include <datasource/KTV_DataSource.h>
#include <tools/Tools.h>

#include <QtConcurrentRun>
#include <QtTest>

#include <array>
#include <atomic>
#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <thread>
#include <unistd.h>

using QERNTools::Tools;

namespace {

std::atomic<size_t> lineSettings {0}; ///< how often the line has been configured
std::array<std::atomic<qint64>, 5> settingTimes; ///< when it first was, in ms

const QByteArray bridgeCommand = "socat /dev/ttyGS0 /dev/ttycommunication";
const QString listBridge =
    QStringLiteral("sh -c ps | grep \"[s]ocat /dev/ttyGS0 /dev/ttycommunication\"");

/** The far end of a serial line, as the computer or the measuring hardware uses it. */
class LineEnd
{
public:
    explicit LineEnd(const char *path) : m_line(::open(path, O_RDWR | O_NOCTTY)) { }
    ~LineEnd() { ::close(m_line); }
    Q_DISABLE_COPY_MOVE(LineEnd)

    bool write(const QByteArray &data) const
    {
        return ::write(m_line, data.constData(), size_t(data.size())) == data.size();
    }
    /** Whether these bytes arrive next. */
    bool receives(const QByteArray &data) const
    {
        QByteArray got;
        pollfd ready {m_line, POLLIN, 0};
        while (got.size() < data.size() && ::poll(&ready, 1, Meter::patience) > 0) {
            char buffer[64];
            const ssize_t count = ::read(m_line, buffer, sizeof buffer);
            if (count <= 0)
                break;
            got.append(buffer, int(count));
        }
        return got == data;
    }

private:
    int m_line;
};

} // namespace

extern "C" int tcsetattr(int, int, const termios *)
{
    // Not needed: the line of the simulated meter is in raw mode already.
    if (lineSettings < settingTimes.size())
        settingTimes.at(lineSettings) = QDeadlineTimer::current().deadline();
    ++lineSettings;
    return 0;
}

/** The bridge between the USB serial line and the measuring hardware. */
class TstCalibrationBridge : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();

    void passesDataAndIsRestarted();
    void onOneCore();
    void endsWithTheLine();
    void endsWithTheFacade();
    void doesNotStart_data();
    void doesNotStart();
    void isRestartedOnceASecond();
    void isNotListedInTime();
    void workerWithoutARequest();
    void doesNotEnd();
    void cannotBeKilled();
    void bridgeThatStaysIsNotRestarted();
    void cancelledAndStartedAgain();
    void unreadableListIsReadAgain();
    void switchesBetweenBridgeAndNetwork();

private:
    /** Atomic, as in the library, because a worker may be reading the flag. */
    static void setActive(bool isActive)
    {
        __atomic_store_n(&Tools::isCalibrationModeActive, isActive, __ATOMIC_RELEASE);
    }
    static QStringList bridges() { return Meter::processes("socat"); }
    static void kill();
    static bool carries(const QByteArray &data);
};

void TstCalibrationBridge::initTestCase()
{
    for (const char *program : {"sh", "killall"})
        Meter::recordProgram(program);
}

void TstCalibrationBridge::init()
{
    QProcess::execute("modprobe-usb-gadget", {"g_serial"});
    Meter::clearJournal();
    lineSettings = 0;
}

void TstCalibrationBridge::cleanup()
{
    Meter::setBehaviour("killall", {});
    Meter::showProgram("killall");
    Meter::recordProgram("killall");
    Meter::showProgram("ps");
    Meter::showProgram("socat");
    if (Tools::isCalibrationModeActive)
        Tools::StopHardwareCalibrationMode();
    QTRY_VERIFY(bridges().isEmpty());
}

void TstCalibrationBridge::kill()
{
    QProcess::execute("busybox", {"killall", "-KILL", "socat"});
}

bool TstCalibrationBridge::carries(const QByteArray &data)
{
    const LineEnd computer("/run/meter/usb-host");
    const LineEnd hardware("/run/meter/hardware");
    return computer.write(data) && hardware.receives(data) && hardware.write(data.toUpper())
        && computer.receives(data.toUpper());
}

void TstCalibrationBridge::passesDataAndIsRestarted()
{
    const LogCapture log;
    QVERIFY(Tools::StartHardwareCalibrationMode());
    QVERIFY(Tools::isCalibrationModeActive);
    QVERIFY(Tools::asyncSocatRuner.isRunning());
    QCOMPARE(Tools::getRS232_Function(), Tools::RS232_HardwareCalibration);
    QCOMPARE(Meter::journal().first(), listBridge);
    QVERIFY(carries("r = 1.2345 mohm\n"));

    const QStringList before = bridges();
    QCOMPARE(before.size(), 1);
    const size_t settings = lineSettings;
    kill();
    QTRY_VERIFY(bridges().size() == 1 && bridges() != before);
    QCOMPARE(lineSettings.load(), settings + 1);
    QVERIFY(carries("again\n"));

    Meter::clearJournal();
    QVERIFY(Tools::StopHardwareCalibrationMode());
    QCOMPARE(Meter::journal(), QStringList({"killall socat", listBridge}));
    QVERIFY(!Tools::isCalibrationModeActive);
    QTRY_VERIFY(Tools::asyncSocatRuner.isFinished());
    QCOMPARE(bridges(), QStringList());
    QCOMPARE(log.lines(), QStringList());
}

void TstCalibrationBridge::onOneCore()
{
    QThreadPool *const pool = QThreadPool::globalInstance();
    const int threads = pool->maxThreadCount();
    pool->setMaxThreadCount(1);
    QVERIFY(Tools::StartHardwareCalibrationMode());
    QFuture<void> other = QtConcurrent::run([] {});
    QTRY_VERIFY(other.isFinished());
    // Cancelling does not end the running bridge, but it is not restarted.
    Tools::asyncSocatRuner.cancel();
    QTRY_COMPARE(bridges().size(), 1); // its child has the same name at first
    kill();
    QTRY_VERIFY(Tools::asyncSocatRuner.isFinished());
    QVERIFY(Tools::isCalibrationModeActive);
    QCOMPARE(bridges(), QStringList());
    pool->setMaxThreadCount(threads);
}

void TstCalibrationBridge::endsWithTheLine()
{
    QVERIFY(Tools::StartHardwareCalibrationMode());
    QVERIFY(QFile::rename("/dev/ttyGS0", "/dev/elsewhere"));
    kill();
    QTRY_VERIFY(Tools::asyncSocatRuner.isFinished());
    QVERIFY(QFile::rename("/dev/elsewhere", "/dev/ttyGS0"));
}

void TstCalibrationBridge::endsWithTheFacade()
{
    {
        const KTV_DataSource facade;
        QVERIFY(Tools::StartHardwareCalibrationMode());
    }
    QVERIFY(!Tools::isCalibrationModeActive);
    QVERIFY(Tools::asyncSocatRuner.isFinished());
    QCOMPARE(bridges(), QStringList());
}

void TstCalibrationBridge::doesNotStart_data()
{
    QTest::addColumn<QByteArray>("socat");
    QTest::newRow("missing") << QByteArray();
    QTest::newRow("dies at once") << QByteArray("exit 1");
}

void TstCalibrationBridge::doesNotStart()
{
    QFETCH(QByteArray, socat);
    if (socat.isEmpty()) {
        Meter::hideProgram("socat");
    } else {
        Meter::replaceProgram("socat", socat);
        Meter::replaceProgram("ps", ":"); // as if none of them runs at the moment of the list
    }
    const LogCapture log;
    QElapsedTimer pause;
    pause.start();
    QVERIFY(!Tools::StartHardwareCalibrationMode());
    QVERIFY(pause.elapsed() >= 5000); // the time that the bridge has to start
    QCOMPARE(log.lines(), QStringList("Tools::StartHardwareCalibrationMode(): socat no run!"));
    QVERIFY(lineSettings >= 2); // it was tried, and tried again
    QVERIFY(!Tools::isCalibrationModeActive);
    QTRY_VERIFY(Tools::asyncSocatRuner.isFinished());
    QVERIFY(Tools::asyncSocatRuner.isCanceled());
}

void TstCalibrationBridge::isRestartedOnceASecond()
{
    QVERIFY(Tools::StartHardwareCalibrationMode());
    Meter::replaceProgram("socat", "exit 1");
    kill();
    QTRY_VERIFY(lineSettings >= 5);
    QVERIFY(Tools::StopHardwareCalibrationMode());
    QTRY_VERIFY(Tools::asyncSocatRuner.isFinished());
    // The first of these has run until it was killed.
    for (size_t i = 2; i < 5; ++i) {
        const qint64 pause = settingTimes.at(i) - settingTimes.at(i - 1);
        QVERIFY2(pause >= 1000, QByteArray::number(pause));
    }
}

void TstCalibrationBridge::isNotListedInTime()
{
    Meter::replaceProgram("ps", "echo socat /dev/ttyGS0 /dev/ttycommunication; wait_for_ever");
    const LogCapture log;
    QVERIFY(!Tools::StartHardwareCalibrationMode());
    QCOMPARE(log.lines(),
             QStringList({"Tools::StartHardwareCalibrationMode(): ps socat no finished!",
                          "Tools::StartHardwareCalibrationMode(): socat no run!"}));
    QVERIFY(!Tools::isCalibrationModeActive);
    kill(); // this one has run
    QTRY_VERIFY(Tools::asyncSocatRuner.isFinished());
}

void TstCalibrationBridge::workerWithoutARequest()
{
    Meter::replaceProgram("socat", "exit 1");
    Tools::asyncSocatRuner = QtConcurrent::run([] {});
    Tools::asyncSocatRuner.waitForFinished();
    QVERIFY(!Tools::asyncSocatRuner.isCanceled());
    Tools::socatProces_Avait(); // the flag is false
    QCOMPARE(lineSettings.load(), size_t(0));
    setActive(true);
    Tools::asyncSocatRuner = QFuture<void>();
    Tools::socatProces_Avait(); // the flag is true, but an empty future counts as cancelled
    setActive(false);
    QCOMPARE(lineSettings.load(), size_t(0));
}

void TstCalibrationBridge::doesNotEnd()
{
    Meter::replaceProgram("ps", "echo socat /dev/ttyGS0 /dev/ttycommunication");
    const LogCapture log;
    QElapsedTimer pause;
    pause.start();
    QVERIFY(!Tools::StopAllRS232Function());
    QVERIFY(pause.elapsed() >= 2000 + 6 * 500);
    QCOMPARE(Meter::journal().filter(listBridge).size(), 1 + 7);
    QCOMPARE(log.lines(),
             QStringList("Tools::StopAllRS232Function():StopHardwareCalibrationMode false"));
}

void TstCalibrationBridge::cannotBeKilled()
{
    Meter::setBehaviour("killall", "hang=1");
    setActive(true);
    const LogCapture log;
    QVERIFY(!Tools::StopHardwareCalibrationMode());
    QVERIFY(!Tools::isCalibrationModeActive);
    Meter::hideProgram("killall");
    QVERIFY(!Tools::StopHardwareCalibrationMode());
    QCOMPARE(Meter::journal(), QStringList("killall socat"));
    const QString line = "Tools::StopHardwareCalibrationMode(): killall socat no finished!";
    QCOMPARE(log.lines(), QStringList({line, line}));
}

void TstCalibrationBridge::bridgeThatStaysIsNotRestarted()
{
    Meter::replaceProgram("socat", "trap '' TERM; wait_for_ever");
    const LogCapture log;
    QVERIFY(Tools::StartHardwareCalibrationMode());
    QVERIFY(!Tools::StopHardwareCalibrationMode());
    QVERIFY(!Tools::isCalibrationModeActive);
    QVERIFY(Tools::asyncSocatRuner.isRunning());
    QVERIFY(Tools::asyncSocatRuner.isCanceled());
    QCOMPARE(bridges().size(), 1);
    kill();
    QTRY_VERIFY(Tools::asyncSocatRuner.isFinished());
    QCOMPARE(log.lines(), QStringList());
}

void TstCalibrationBridge::cancelledAndStartedAgain()
{
    Meter::replaceProgram("socat", "wait_for_ever");
    const auto starts = [] { return Meter::journal().filter(QRegularExpression("^socat")).size(); };
    QVERIFY(Tools::StartHardwareCalibrationMode());
    Tools::asyncSocatRuner.cancel();
    QVERIFY(Tools::StartHardwareCalibrationMode());
    QCOMPARE(starts(), 2);
    kill();
    QTRY_COMPARE(starts(), 4); // both are restarted: the latest run has not been cancelled
    Tools::asyncSocatRuner.cancel();
    kill();
    QTRY_VERIFY(Tools::asyncSocatRuner.isFinished());
    QTRY_COMPARE(bridges(), QStringList());
    QCOMPARE(starts(), 4);
}

void TstCalibrationBridge::unreadableListIsReadAgain()
{
    // The shell is missing at first: until it is there the list cannot be read, and the attempts
    // are not limited.
    constexpr int askings = 9; // more than the polls for a bridge that does not end
    QVERIFY(QDir().mkpath("/tmp/programs"));
    QVERIFY(QFile::link("/run/meter/bin/killall", "/tmp/programs/killall"));
    const QByteArray searchPath = qgetenv("PATH");
    qputenv("PATH", "/tmp/programs");
    const LogCapture log;
    std::thread late([&log] {
        while (log.lines().size() < askings)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        Meter::writeFile("/tmp/programs/new",
                         "#!/bin/sh\necho >>/tmp/asked\necho " + bridgeCommand + '\n');
        QFile("/tmp/programs/new").setPermissions(QFile::ReadOwner | QFile::ExeOwner);
        QFile::rename("/tmp/programs/new", "/tmp/programs/sh");
    });
    const bool isOver = Tools::StopHardwareCalibrationMode();
    late.join();
    qputenv("PATH", searchPath);
    QVERIFY(!isOver);
    const QString line = "Tools::StopHardwareCalibrationMode(): ps socat no finished!";
    QVERIFY(log.lines().size() >= askings); // more while the shell was being put in place
    QCOMPARE(log.lines().count(line), log.lines().size());
    QCOMPARE(Meter::readFile("/tmp/asked"), QByteArray("\n")); // the first list decides
}

void TstCalibrationBridge::switchesBetweenBridgeAndNetwork()
{
    QProcess::execute("modprobe-usb-gadget", {"g_ether"});
    const KTV_DataSource facade;
    const LogCapture log;
    QVERIFY(facade.SetUSBMode(Tools::USB_RS232, Tools::RS232_HardwareCalibration));
    QCOMPARE(facade.getUSB_Mode(), Tools::USB_RS232);
    QCOMPARE(facade.getRS_Mode(), Tools::RS232_HardwareCalibration);
    QVERIFY(carries("r = 9.9 ohm\n"));
    QVERIFY(facade.SetUSBMode(Tools::USB_RNDIS, Tools::RS232_None));
    QCOMPARE(facade.getUSB_Mode(), Tools::USB_RNDIS);
    QCOMPARE(facade.getRS_Mode(), Tools::RS232_None);
    QCOMPARE(log.lines(), QStringList());
}

KTV_METER_TEST_MAIN(TstCalibrationBridge)
#include "tst_calibration_bridge.moc"
