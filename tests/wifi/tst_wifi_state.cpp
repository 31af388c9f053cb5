#include "Inbox.h"
#include "SlowClock.h"
#include "Tools.h"
#include "support/LogCapture.h"

#include <wifi/KTV_Connection.h>

#include <QSemaphore>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QtConcurrent>
#include <QtTest>

#include <algorithm>
#include <memory>
#include <thread>
#include <vector>

using WiFi::KTV_Connection;
using WiFi::Network;

/** State, details, power and scanning of the interface, as signals and as return values. */
class TstWifiState : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void orderOfSignals();
    void construction_data();
    void construction();
    void slowToolsAreWaitedFor();

    void reading_data();
    void reading();
    void readingKeepsTheColon();
    void readingWithoutInterface();
    void interfaceIsLookedForAgain();

    void commandLines();
    void timers();
    void timersWithoutInterface();

    void firstStateIsKnownAtOnce();
    void stateChange();
    void stateOnATimer();
    void detailChange();
    void detailOnATimer();
    void detailWithoutInterface();
    void interfaceThatHasGone();
    void workersAtOnce();
    void stateOlderThanDetails();

    void power_data();
    void power();
    void powerToolIsLogged_data();
    void powerToolIsLogged();
    void powerRequestsRunInOrder();
    void oldestPowerRequestsAreDropped();
    void powerRefreshesDetails();
    void powerWithoutInterface();

    void scan();
    void scanOnATimer();
    void scanThatDoesNotAnswer_data();
    void scanThatDoesNotAnswer();
    void scanSwitchedOnByItsReceiver();
    void scanSwitchedOffMeanwhile();
    void scanWithoutInterface();
    void scanOfInterfaceThatIsDown();
    void scanModeIsRequired();

    void pollsDoNotPileUp();
    void poolOfOneThread();
    void recordsWithoutReceiver();
    void queuedReceiverOwnsRecords();

private:
    std::unique_ptr<KTV_Connection> manager() const
    {
        return std::make_unique<KTV_Connection>(m_directory->path() + QLatin1Char('/'));
    }
    /** Calls that have switched the interface: "u" for up, "d" for down. */
    static QString powerCalls();
    /** Waits until all workers have ended. @return false after Meter::patience */
    static bool poolIsIdle() { return QThreadPool::globalInstance()->waitForDone(Meter::patience); }

    std::unique_ptr<QTemporaryDir> m_directory;
};

void TstWifiState::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    Tools::reset();
    Tools::print("systemctl", QByteArray()); // no supplicant: the tools print what the test sets
    Tools::idle();
}

void TstWifiState::cleanup()
{
    QVERIFY(poolIsIdle());
    QThreadPool::globalInstance()->setMaxThreadCount(4);
}

void TstWifiState::orderOfSignals()
{
    const QMetaObject &meta = KTV_Connection::staticMetaObject;
    QList<QByteArray> methods;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        methods += meta.method(i).methodSignature();
    QCOMPARE(methods,
             QList<QByteArray>({"WiFi_State_Change(int)", "WiFi_DetailState_Change(WiFi::Network*)",
                                "WiFi_Scan(QList<WiFi::Network*>*)", "onStatusTime()",
                                "onStatusDetailTime()", "onScanNetwokTime()"}));
}

void TstWifiState::construction_data()
{
    QTest::addColumn<QByteArray>("interfaces");
    QTest::addColumn<QStringList>("commands");
    const QStringList look {QStringLiteral("ls /sys/class/net")};
    QTest::newRow("supplicant before state") << QByteArray("wlan0")
                                             << look
            + QStringList {QStringLiteral("systemctl restart wpa_supplicant@wlan0"),
                           QStringLiteral("ifconfig"), QStringLiteral("iwgetid wlan0 -r")};
    QTest::newRow("no interface is looked for again") << QByteArray("eth0") << look + look;
}

void TstWifiState::construction()
{
    QFETCH(QByteArray, interfaces);
    Tools::print("ls", interfaces);
    const auto wifi = manager();
    QTEST(Meter::journal(), "commands");
    QVERIFY(!wifi->get_wifi_Enable());
    QVERIFY(!wifi->isDetailInfoScan());
    QVERIFY(!wifi->isScanMode());
}

/** Commands without a time limit: the list of interfaces and the supplicant's restart. */
void TstWifiState::slowToolsAreWaitedFor()
{
    const QString isRestarted = QStringLiteral("/tmp/restarted");
    Tools::delay("ls", "1.1");
    Meter::setBehaviour(QStringLiteral("systemctl"), QByteArray());
    Meter::replaceProgram(QStringLiteral("systemctl"), "pause 1.1\n: >/tmp/restarted");
    const auto wifi = manager();
    QCOMPARE(wifi->getInterfaceName(), QStringLiteral("wlan0"));
    QVERIFY(QFile::remove(isRestarted));
}

void TstWifiState::reading_data()
{
    QTest::addColumn<QByteArray>("ifconfig");
    QTest::addColumn<QByteArray>("iwgetid");
    QTest::addColumn<QByteArray>("iwconfig");
    QTest::addColumn<int>("state");
    QTest::addColumn<QString>("essid");
    const QByteArray up("stdout=wlan0     Link encap:Ethernet");
    const QByteArray address("stdout=wlan0     Link\\n     inet addr:10.0.0.7  Mask:255.0.0.0");
    const QByteArray lab("stdout=Lab");
    const QByteArray level("stdout=     Link Quality=50/70  Signal level=-72 dBm");
    const QByteArray hang("hang=1");
    QTest::newRow("down") << QByteArray("stdout=lo        Link") << lab << level << 1 << "";
    QTest::newRow("line of another interface first")
        << QByteArray("stdout=p2p-wlan0-0 Link\\nwlan0     Link") << lab << level << 1 << "";
    QTest::newRow("up") << up << QByteArray("stdout=") << level << 2 << ""; // a line feed
    QTest::newRow("no answer") << up << QByteArray("silent=1\nexit=255") << level << 2 << "";
    QTest::newRow("associated") << up << lab << level << 3 << "Lab";
    QTest::newRow("connected") << address << lab << level << 5 << "Lab";
    QTest::newRow("connected, no level") << address << lab << QByteArray("stdout=no") << 2 << "Lab";
    QTest::newRow("ifconfig hangs") << hang << lab << level << 1 << "";
    QTest::newRow("iwgetid hangs") << address << hang << level << 2 << "";
    QTest::newRow("half a name, then hangs")
        << address << QByteArray("noise=La\nhang=1") << level << 2 << "";
    QTest::newRow("iwconfig hangs") << address << lab << hang << 2 << "Lab";
    QTest::newRow("blanks around the name")
        << address << QByteArray("stdout=  a  b  ") << level << 5 << "a  b";
    QTest::newRow("blanks alone are no name")
        << address << QByteArray("stdout=  ") << level << 2 << "";
}

void TstWifiState::reading()
{
    QFETCH(QByteArray, ifconfig);
    QFETCH(QByteArray, iwgetid);
    QFETCH(QByteArray, iwconfig);
    const auto wifi = manager();
    Meter::setBehaviour(QStringLiteral("ifconfig"), ifconfig);
    Meter::setBehaviour(QStringLiteral("iwgetid"), iwgetid);
    Meter::setBehaviour(QStringLiteral("iwconfig"), iwconfig);
    const std::unique_ptr<Network> network(wifi->getWiFi_Info());
    QTEST(network->state, "state");
    QTEST(network->ESSID, "essid");
    QCOMPARE(network->parent(), nullptr);
    QVERIFY(!network->encryption);
    QCOMPARE(network->key, QString());
}

void TstWifiState::readingKeepsTheColon()
{
    const auto wifi = manager();
    Tools::connected();
    Meter::clearJournal();
    const std::unique_ptr<Network> network(wifi->getWiFi_Info());
    QCOMPARE(network->address, QStringLiteral(":10.1.2.3"));
    QCOMPARE(network->mask, QStringLiteral("255.255.255.0"));
    QCOMPARE(network->broadcast, QStringLiteral("10.1.2.255"));
    QCOMPARE(Meter::journal(),
             QStringList({QStringLiteral("ifconfig"), QStringLiteral("iwgetid wlan0 -r"),
                          QStringLiteral("ifconfig wlan0"), QStringLiteral("iwconfig wlan0")}));
}

void TstWifiState::readingWithoutInterface()
{
    Tools::print("ls", "eth0");
    const auto wifi = manager();
    QCOMPARE(wifi->getInterfaceName(), QString());
    Meter::clearJournal();
    const std::unique_ptr<Network> network(wifi->getWiFi_Info());
    QCOMPARE(network->state, int(Network::wifi_States_NAN));
    QVERIFY(Meter::journal().isEmpty());
}

void TstWifiState::interfaceIsLookedForAgain()
{
    Tools::print("ls", "eth0");
    const auto wifi = manager();
    Tools::print("ls", "wlan0\\nwlan0mon");
    wifi->onStatusTime();
    QTRY_COMPARE(wifi->getInterfaceName(), QStringLiteral("wlan0"));
    Tools::print("ls", "eth0");
    wifi->findWifiInterfaceName();
    QCOMPARE(wifi->getInterfaceName(), QString());
}

/** Records the shell, so that its command lines can be checked exactly. */
void TstWifiState::commandLines()
{
    const auto wifi = manager();
    Tools::connected();
    Meter::recordProgram(QStringLiteral("sh"));
    const auto shellLines = [] {
        QStringList lines = Meter::journal().filter(QRegularExpression(QStringLiteral("^sh ")));
        Meter::clearJournal();
        return lines;
    };
    shellLines();
    delete wifi->getWiFi_Info();
    QCOMPARE(shellLines(),
             QStringList({QStringLiteral("sh -c ifconfig | grep -e \"wlan0\""),
                          QStringLiteral("sh -c iwgetid wlan0 -r"),
                          QStringLiteral("sh -c ifconfig wlan0 | grep -e \"inet \""),
                          QStringLiteral("sh -c iwconfig wlan0 | grep \"Signal level=\"")}));
    KTV_Connection::check_wifiScan_Avait(wifi.get());
    QCOMPARE(shellLines(),
             QStringList(QStringLiteral("sh -c iwlist wlan0 scan |grep -e \"Cell\" -e \"ESSID\" "
                                        "-e \"Signal level\" -e \"Encryption key\"")));
    wifi->findWifiInterfaceName();
    QCOMPARE(shellLines(), QStringList(QStringLiteral("sh -c ls /sys/class/net | grep \"wlan0\"")));
}

void TstWifiState::timers()
{
    const auto wifi = manager();
    const auto intervals = [&wifi] {
        QVector<int> result;
        for (const QTimer *timer : wifi->findChildren<QTimer *>()) {
            if (timer->isActive())
                result += timer->interval();
        }
        std::sort(result.begin(), result.end());
        return result;
    };
    QCOMPARE(intervals(), QVector<int> {5000});
    const auto *const statusTimer = wifi->findChild<QTimer *>();
    wifi->DetailInfoScan(true);
    QCOMPARE(intervals(), QVector<int> {1000}); // instead of the timer of the state
    QVERIFY(wifi->ScanNetwork(true));
    QCOMPARE(intervals(), QVector<int>({1000, 10000}));
    wifi->DetailInfoScan(false);
    QCOMPARE(intervals(), QVector<int>({5000, 10000}));
    QTRY_VERIFY(statusTimer->remainingTime() < 4500);
    wifi->DetailInfoScan(false);
    QVERIFY(statusTimer->remainingTime() < 4500); // it was not restarted
    QVERIFY(wifi->ScanNetwork(false));
    QCOMPARE(intervals(), QVector<int> {5000});
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(wifi->findChildren<QTimer *>().size(), 1);
}

void TstWifiState::timersWithoutInterface()
{
    Tools::print("ls", "wlan0");
    const auto wifi = manager();
    QVERIFY(wifi->ScanNetwork(true));
    wifi->DetailInfoScan(true);
    Tools::print("ls", "eth0");
    wifi->findWifiInterfaceName();
    QVERIFY(wifi->ScanNetwork(true)); // it is on already
    wifi->DetailInfoScan(false);
    QVERIFY(!wifi->isDetailInfoScan());
    QVERIFY(wifi->ScanNetwork(false));
    QVERIFY(!wifi->ScanNetwork(true));
}

void TstWifiState::firstStateIsKnownAtOnce()
{
    Tools::connected();
    const auto wifi = manager();
    const Inbox inbox(*wifi);
    KTV_Connection::check_wifiState_Avait(wifi.get());
    QCOMPARE(inbox.count(), 0); // nothing has changed since the construction
    Tools::idle();
    KTV_Connection::check_wifiState_Avait(wifi.get());
    QCOMPARE(inbox.states(), QVector<int> {Network::wifi_States_ON}); // and on return
}

void TstWifiState::stateChange()
{
    const SlowClock clock;
    const auto wifi = manager();
    const Inbox inbox(*wifi);
    Tools::connected();
    wifi->onStatusTime();
    QTRY_COMPARE(inbox.states(), QVector<int> {Network::wifi_States_Connect_2});
    QVERIFY(inbox.threads().first() != QThread::currentThread());
    wifi->onStatusTime();
    QVERIFY(poolIsIdle());
    QCOMPARE(inbox.count(), 1);
    Tools::idle();
    wifi->onStatusTime();
    QVERIFY(poolIsIdle());
    QCOMPARE(inbox.order(), QByteArray("ss"));
    QVERIFY(!wifi->get_wifi_Enable()); // no details have been polled
}

void TstWifiState::stateOnATimer()
{
    const auto wifi = manager();
    const Inbox inbox(*wifi);
    Tools::connected();
    QTRY_COMPARE(inbox.states(), QVector<int> {Network::wifi_States_Connect_2});
}

void TstWifiState::detailChange()
{
    const SlowClock clock;
    const auto wifi = manager();
    const Inbox inbox(*wifi);
    Tools::connected();
    wifi->onStatusDetailTime();
    QVERIFY(poolIsIdle());
    QCOMPARE(inbox.order(), QByteArray("sd"));
    const auto network = inbox.details().first();
    QCOMPARE(network->ESSID, QStringLiteral("Lab"));
    QCOMPARE(network->state, int(Network::wifi_States_Connect_2));
    QCOMPARE(network->address, QStringLiteral(":10.1.2.3"));
    QCOMPARE(network->mask, QStringLiteral("255.255.255.0"));
    QCOMPARE(network->broadcast, QStringLiteral("10.1.2.255"));
    QCOMPARE(network->thread(), wifi->thread());
    QVERIFY(wifi->get_wifi_Enable());

    Tools::print("ifconfig",
                 "wlan0     Link encap:Ethernet\\n"
                 "          inet addr:10.1.2.3  Bcast:10.1.255.255  Mask:255.255.0.0\\n");
    wifi->onStatusDetailTime();
    QVERIFY(poolIsIdle());
    QCOMPARE(inbox.count(), 2); // none of the compared fields has changed

    Tools::connected("Lab", "10.1.2.4");
    KTV_Connection::check_wifiDetailState_Avait(wifi.get());
    // The state is emitted, too, although it has not changed.
    QCOMPARE(inbox.order(), QByteArray("sdsd"));
    Tools::connected("Office", "10.1.2.4");
    KTV_Connection::check_wifiDetailState_Avait(wifi.get());
    QCOMPARE(inbox.order(), QByteArray("sdsdsd"));
    Tools::print("ifconfig", "lo        Link");
    KTV_Connection::check_wifiDetailState_Avait(wifi.get());
    QCOMPARE(inbox.states().last(), int(Network::wifi_States_OFF));
    QVERIFY(!wifi->get_wifi_Enable());
}

void TstWifiState::detailOnATimer()
{
    const auto wifi = manager();
    const Inbox inbox(*wifi);
    Tools::connected();
    QVERIFY(!wifi->isDetailInfoScan());
    wifi->DetailInfoScan(true);
    wifi->DetailInfoScan(true);
    QVERIFY(wifi->isDetailInfoScan());
    QVERIFY(poolIsIdle());
    QCOMPARE(inbox.count(), 0); // the first poll is started by the timer
    QTRY_COMPARE(inbox.order(), QByteArray("sd"));
    wifi->DetailInfoScan(false);
    QVERIFY(!wifi->isDetailInfoScan());
    QVERIFY(poolIsIdle());
    Tools::idle();
    QTRY_COMPARE(inbox.order(), QByteArray("sds")); // the timer of the state runs again
}

void TstWifiState::interfaceThatHasGone()
{
    const auto wifi = manager();
    Tools::connected();
    KTV_Connection::check_wifiDetailState_Avait(wifi.get());
    QVERIFY(wifi->get_wifi_Enable());
    Tools::print("ls", "eth0");
    wifi->findWifiInterfaceName();
    QVERIFY(!wifi->get_wifi_Enable()); // although the last details are those of a connection
    KTV_Connection::check_wifiDetailState_Avait(wifi.get());
    Tools::print("ls", "wlan0");
    wifi->findWifiInterfaceName();
    QVERIFY(!wifi->get_wifi_Enable()); // the last details are those of no interface
}

void TstWifiState::detailWithoutInterface()
{
    Tools::print("ls", "eth0");
    const auto wifi = manager();
    wifi->DetailInfoScan(true);
    QVERIFY(!wifi->isDetailInfoScan());
    wifi->DetailInfoScan(false);
    QVERIFY(!wifi->get_wifi_Enable());
}

void TstWifiState::workersAtOnce()
{
    const SlowClock clock;
    const auto wifi = manager();
    const Inbox inbox(*wifi);
    // A change is emitted once as details, and as state at most once by each kind of poll.
    Tools::connected();
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back(&KTV_Connection::check_wifiState_Avait, wifi.get());
        threads.emplace_back(&KTV_Connection::check_wifiDetailState_Avait, wifi.get());
    }
    for (std::thread &thread : threads)
        thread.join();
    QCOMPARE(inbox.details().size(), 1);
    QVERIFY(inbox.states().size() <= 2);
    QVERIFY(wifi->get_wifi_Enable());
}

void TstWifiState::stateOlderThanDetails()
{
    const auto wifi = manager();
    const Inbox inbox(*wifi);
    Tools::connected();
    // After its 1000 ms the poll ends with what is known: the interface is up.
    Tools::hang("iwconfig");
    Meter::clearJournal();
    wifi->onStatusTime();
    QTRY_COMPARE(Meter::journal().filter(QStringLiteral("iwconfig")).size(), 1);
    Tools::print("ifconfig", "wlan0     Link encap:Ethernet");
    KTV_Connection::check_wifiDetailState_Avait(wifi.get());
    QCOMPARE(inbox.order(), QByteArray("sd"));
    QVERIFY(poolIsIdle());
    QCOMPARE(inbox.states(), QVector<int> {Network::wifi_States_Connecting});
    Tools::idle();
    wifi->onStatusTime(); // the next poll is emitted
    QVERIFY(poolIsIdle());
    QCOMPARE(inbox.states().last(), int(Network::wifi_States_ON));
}

void TstWifiState::power_data()
{
    QTest::addColumn<bool>("on");
    QTest::addColumn<QString>("command");
    QTest::newRow("off") << false << "ifconfig wlan0 down";
    QTest::newRow("on") << true << "ifconfig wlan0 up";
}

void TstWifiState::power()
{
    const SlowClock clock;
    QFETCH(bool, on);
    QFETCH(QString, command);
    Meter::setBehaviour(QStringLiteral("ifconfig"), QByteArray());
    QProcess::execute(
        QStringLiteral("ifconfig"),
        {QStringLiteral("wlan0"), on ? QStringLiteral("down") : QStringLiteral("up")});
    const auto wifi = manager();
    const Inbox inbox(*wifi);
    Meter::clearJournal();
    const LogCapture log;
    wifi->set_wifi_Enable(on);
    QTRY_COMPARE(inbox.states(),
                 QVector<int> {on ? Network::wifi_States_ON : Network::wifi_States_OFF});
    QCOMPARE(Meter::journal().first(), command);
    QCOMPARE(log.lines(), QStringList());
}

void TstWifiState::powerToolIsLogged_data()
{
    QTest::addColumn<bool>("on");
    QTest::addColumn<QByteArray>("behaviour"); // null: the tool is missing
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<QVector<int>>("states"); // the state is read in any case
    const QByteArray hang("noise=wlan0 is busy\nhang=1");
    const QString printed = QStringLiteral("set_wifiPower: wlan0 is busy\n");
    const QVector<int> off {Network::wifi_States_OFF};
    // The two texts are swapped.
    const QString offFailed = QStringLiteral("ifconfig up - not respond!");
    const QString onFailed = QStringLiteral("ifconfig down - not respond!");
    QTest::newRow("off hangs") << false << hang << QStringList({offFailed, printed}) << off;
    QTest::newRow("on hangs") << true << hang << QStringList({onFailed, printed}) << off;
    QTest::newRow("off is missing") << false << QByteArray() << QStringList(offFailed) << off;
    QTest::newRow("on is missing") << true << QByteArray() << QStringList(onFailed) << off;
    QTest::newRow("prints and ends")
        << true << QByteArray("stdout=wlan0 is busy") << QStringList(printed) << QVector<int>();
}

void TstWifiState::powerToolIsLogged()
{
    QFETCH(bool, on);
    QFETCH(QByteArray, behaviour);
    const QString tool = QStringLiteral("ifconfig");
    const auto wifi = manager();
    const Inbox inbox(*wifi);
    if (behaviour.isEmpty())
        Meter::hideProgram(tool);
    else
        Meter::setBehaviour(tool, behaviour);
    const LogCapture log;
    wifi->set_wifi_Enable(on);
    QVERIFY(poolIsIdle());
    QTEST(log.lines(), "lines");
    QTEST(inbox.states(), "states");
}

QString TstWifiState::powerCalls()
{
    QString order;
    const QRegularExpression call(QStringLiteral("^ifconfig wlan0 (up|down)$"));
    for (const QString &line : Meter::journal().filter(call))
        order += line.endsWith(QLatin1String("up")) ? QLatin1Char('u') : QLatin1Char('d');
    return order;
}

void TstWifiState::powerRequestsRunInOrder()
{
    const SlowClock clock;
    const auto wifi = manager();
    Meter::clearJournal();
    wifi->set_wifi_Enable(false);
    wifi->set_wifi_Enable(true);
    QVERIFY(poolIsIdle());
    QCOMPARE(powerCalls(), QStringLiteral("du"));
    // Requests during another one wait.
    Meter::clearJournal();
    Tools::delay("ifconfig", "0.3");
    wifi->set_wifi_Enable(true);
    QTRY_COMPARE(powerCalls(), QStringLiteral("u"));
    Tools::delay("ifconfig", "0");
    for (const bool on : {false, true, true, false, false})
        wifi->set_wifi_Enable(on);
    QVERIFY(poolIsIdle());
    QCOMPARE(powerCalls(), QStringLiteral("uduudd"));
}

void TstWifiState::oldestPowerRequestsAreDropped()
{
    QThreadPool &pool = *QThreadPool::globalInstance();
    const auto wifi = manager();
    const int threads = pool.maxThreadCount();
    pool.setMaxThreadCount(1);
    QSemaphore release;
    pool.start([&release] { release.acquire(); });
    Meter::clearJournal();
    for (int i = 0; i < 100; ++i)
        wifi->set_wifi_Enable(i >= 98);
    release.release();
    QVERIFY(poolIsIdle());
    pool.setMaxThreadCount(threads);
    QCOMPARE(powerCalls(), QString(28, QLatin1Char('d')) + QStringLiteral("uu"));
}

void TstWifiState::powerRefreshesDetails()
{
    const SlowClock clock;
    const auto wifi = manager();
    const Inbox inbox(*wifi);
    wifi->DetailInfoScan(true);
    Tools::connected();
    Tools::print("ifconfig", "lo");
    wifi->set_wifi_Enable(false);
    QVERIFY(poolIsIdle());
    QVERIFY(!inbox.order().contains('d')); // the same as at the start: off, no name, no address
    Tools::connected();
    wifi->set_wifi_Enable(true);
    QVERIFY(poolIsIdle());
    QCOMPARE(inbox.order(), QByteArray("sd"));
    QVERIFY(wifi->get_wifi_Enable());
}

void TstWifiState::powerWithoutInterface()
{
    Tools::print("ls", "eth0");
    const auto wifi = manager();
    Meter::clearJournal();
    wifi->set_wifi_Enable(true);
    KTV_Connection::_set_wifi_Enable_Avait(wifi.get(), false);
    QVERIFY(poolIsIdle());
    QCOMPARE(Meter::journal(), QStringList());
}

void TstWifiState::scan()
{
    const SlowClock clock;
    Tools::print("iwlist",
                 "          Cell 01 - Address: 1\\n  Quality=1/70  Signal level=-48 dBm\\n"
                 "  Encryption key:on\\n  ESSID:\"Strong\"\\n"
                 "          Cell 02 - Address: 2\\n  Quality=1/70  Signal level=-88 dBm\\n"
                 "  Encryption key:off\\n  ESSID:\"Weak\"\\n");
    const auto wifi = manager();
    const Inbox inbox(*wifi);
    Meter::clearJournal();
    const LogCapture log;
    QVERIFY(!wifi->isScanMode());
    QVERIFY(wifi->ScanNetwork(true));
    QVERIFY(wifi->ScanNetwork(true)); // no second scan is started
    QVERIFY(wifi->isScanMode());
    QVERIFY(poolIsIdle());
    QCOMPARE(Meter::journal(), QStringList(QStringLiteral("iwlist wlan0 scan")));
    QCOMPARE(log.lines(), QStringList(QStringLiteral("LIST.COUNT = 2")));
    QCOMPARE(inbox.order(), QByteArray("n"));
    QVERIFY(inbox.threads().first() != QThread::currentThread());
    const Inbox::Scan scan = inbox.scans().first();
    QCOMPARE(scan.names(), QStringList({QStringLiteral("Weak"), QStringLiteral("Strong")}));
    QCOMPARE(scan.networks.first()->state, int(Network::wifi_States_Connect_0));
    QVERIFY(!scan.networks.first()->encryption);
    QVERIFY(scan.networks.last()->encryption);
    QCOMPARE(scan.networks.first()->thread(), wifi->thread());
    QVERIFY(wifi->ScanNetwork(false));
    QVERIFY(wifi->ScanNetwork(false));
    QVERIFY(!wifi->isScanMode());
}

void TstWifiState::scanOnATimer()
{
    const auto wifi = manager();
    const Inbox inbox(*wifi);
    QVERIFY(wifi->ScanNetwork(true));
    QTRY_COMPARE(inbox.scans().size(), 2);
    QVERIFY(wifi->ScanNetwork(false));
}

void TstWifiState::scanThatDoesNotAnswer_data()
{
    QTest::addColumn<bool>("direct");
    QTest::newRow("on the pool") << false;
    QTest::newRow("on the manager's thread") << true;
}

void TstWifiState::scanThatDoesNotAnswer()
{
    QFETCH(bool, direct);
    const auto wifi = manager();
    const Inbox inbox(*wifi);
    Meter::setBehaviour(QStringLiteral("iwlist"), "noise=Cell 01\\nESSID:\"Lab\"\nhang=1");
    const LogCapture log;
    if (direct) {
        KTV_Connection::check_wifiScan_Avait(wifi.get());
    } else {
        QVERIFY(wifi->ScanNetwork(true));
        QTRY_COMPARE(inbox.count(), 1);
    }
    QCOMPARE(inbox.order(), QByteArray("n"));
    QVERIFY(inbox.scans().first().isNull);
    QTRY_VERIFY(!wifi->isScanMode());
    // No warning about a timer of another thread either.
    QCOMPARE(log.lines(), QStringList(QStringLiteral("iwlist - not respond!")));
}

void TstWifiState::scanSwitchedOnByItsReceiver()
{
    const auto wifi = manager();
    Tools::hang("iwlist");
    QObject receiver;
    QVector<bool> wasOn;
    int scanned = -1;
    connect(wifi.get(), &KTV_Connection::WiFi_Scan, &receiver, [&](QList<Network *> *networks) {
        if (!networks) {
            wasOn += wifi->isScanMode();
            Tools::print("iwlist", "Cell 01\\nESSID:\"Lab\"\\n");
            QVERIFY(wifi->ScanNetwork(true));
            return;
        }
        scanned = int(networks->size());
        qDeleteAll(*networks);
        delete networks;
    });
    QVERIFY(wifi->ScanNetwork(true));
    QTRY_COMPARE(scanned, 1);
    QCOMPARE(wasOn, QVector<bool> {false});
    QVERIFY(wifi->isScanMode()); // a delayed call of the failed scan does not end this one
}

void TstWifiState::scanSwitchedOffMeanwhile()
{
    const SlowClock clock;
    const auto wifi = manager();
    const Inbox inbox(*wifi);
    const QString isOff = QStringLiteral("/tmp/scan-is-off");
    Meter::replaceProgram(QStringLiteral("iwlist"),
                          "until [ -e /tmp/scan-is-off ]; do pause 0.01; done\n"
                          "say 'Cell 01' 'ESSID:\"Lab\"'");
    Meter::clearJournal();
    const LogCapture log;
    QVERIFY(wifi->ScanNetwork(true));
    QTRY_VERIFY(!Meter::journal().isEmpty()); // the tool runs
    QVERIFY(wifi->ScanNetwork(false));
    Meter::writeFile(isOff, QByteArray());
    QVERIFY(poolIsIdle());
    QVERIFY(QFile::remove(isOff));
    QCOMPARE(inbox.count(), 0);
    QCOMPARE(log.lines(), QStringList());
}

void TstWifiState::scanWithoutInterface()
{
    Tools::print("ls", "eth0");
    const auto wifi = manager();
    const Inbox inbox(*wifi);
    QVERIFY(!wifi->ScanNetwork(true));
    QVERIFY(!wifi->isScanMode());
    QVERIFY(wifi->ScanNetwork(false));
    Meter::clearJournal();
    KTV_Connection::check_wifiScan_Avait(wifi.get());
    QCOMPARE(inbox.count(), 0);
    QCOMPARE(Meter::journal(), QStringList());
}

void TstWifiState::scanOfInterfaceThatIsDown()
{
    const auto wifi = manager();
    const Inbox inbox(*wifi);
    Meter::setBehaviour(QStringLiteral("iwlist"), "silent=1\nexit=255");
    QVERIFY(wifi->ScanNetwork(true));
    QVERIFY(poolIsIdle());
    QCOMPARE(inbox.order(), QByteArray("n"));
    QVERIFY(!inbox.scans().first().isNull); // an empty list: the tool has answered
    QCOMPARE(inbox.scans().first().names(), QStringList());
    QVERIFY(wifi->isScanMode());
}

void TstWifiState::scanModeIsRequired()
{
    const auto wifi = manager();
    const Inbox inbox(*wifi);
    KTV_Connection::check_wifiScan_Avait(wifi.get());
    QCOMPARE(inbox.count(), 0);
}

void TstWifiState::pollsDoNotPileUp()
{
    const SlowClock clock;
    const auto wifi = manager();
    Tools::delay("ifconfig", "0.4");
    Tools::delay("iwlist", "0.4");
    Meter::clearJournal();
    for (int i = 0; i < 50; ++i) {
        wifi->onStatusTime();
        wifi->onStatusDetailTime();
        wifi->onScanNetwokTime();
    }
    QVERIFY(poolIsIdle());
    QCOMPARE(Meter::journal().filter(QRegularExpression(QStringLiteral("^ifconfig$"))).size(),
             2 + 2);
    QCOMPARE(Meter::journal().filter(QStringLiteral("iwlist")).size(), 2);
    Meter::clearJournal();
    wifi->onStatusTime(); // a new poll can be started again
    QVERIFY(poolIsIdle());
    QCOMPARE(Meter::journal().filter(QRegularExpression(QStringLiteral("^ifconfig$"))).size(), 1);
}

void TstWifiState::poolOfOneThread()
{
    QThreadPool::globalInstance()->setMaxThreadCount(1);
    const auto wifi = manager();
    const Inbox inbox(*wifi);
    Tools::connected();
    wifi->DetailInfoScan(true);
    QVERIFY(wifi->ScanNetwork(true));
    wifi->set_wifi_Enable(true);
    QTRY_COMPARE(inbox.details().size(), 1);
    QTRY_COMPARE(inbox.scans().size(), 1);
    QTRY_VERIFY(Meter::journal().contains(QStringLiteral("ifconfig wlan0 up")));
    QCOMPARE(inbox.details().first()->ESSID, QStringLiteral("Lab"));
}

void TstWifiState::recordsWithoutReceiver()
{
    const SlowClock clock;
    const auto wifi = manager();
    Tools::connected();
    const LogCapture log;
    QVERIFY(wifi->ScanNetwork(true)); // leaks are found by the leak sanitizer
    wifi->onStatusDetailTime();
    QVERIFY(poolIsIdle());
    QCOMPARE(log.lines(), QStringList(QStringLiteral("LIST.COUNT = 4")));
    QVERIFY(wifi->get_wifi_Enable());
}

void TstWifiState::queuedReceiverOwnsRecords()
{
    const SlowClock clock;
    const auto wifi = manager();
    QObject receiver;
    std::unique_ptr<Network> detail;
    int scanned = -1;
    connect(wifi.get(), &KTV_Connection::WiFi_DetailState_Change, &receiver,
            [&detail](Network *network) {
                detail.reset(network);
                QCOMPARE(network->thread(), QThread::currentThread());
            });
    connect(wifi.get(), &KTV_Connection::WiFi_Scan, &receiver,
            [&scanned](QList<Network *> *networks) {
                scanned = int(networks->size());
                qDeleteAll(*networks);
                delete networks;
            });
    Tools::connected();
    wifi->onStatusDetailTime();
    QVERIFY(wifi->ScanNetwork(true));
    QTRY_VERIFY(detail);
    QCOMPARE(detail->address, QStringLiteral(":10.1.2.3"));
    QTRY_COMPARE(scanned, 4);
}

KTV_METER_TEST_MAIN(TstWifiState)
#include "tst_wifi_state.moc"
