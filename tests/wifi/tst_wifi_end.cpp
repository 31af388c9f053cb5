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

#include <memory>

using WiFi::KTV_Connection;

/** The manager can be destroyed at any moment, whatever its workers are doing. */
class TstWifiEnd : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup() { QThreadPool::globalInstance()->setMaxThreadCount(4); }

    void toolsHang_data();
    void toolsHang();
    void inEachMode_data();
    void inEachMode();
    void rightAfterTheStart();
    void poolIsBusy();
    void powerRequestIsCarriedOut();
    void inAReceiver_data();
    void inAReceiver();
    void failedScanOfADestroyedManager();
    void fewDescriptorsLeft_data();
    void fewDescriptorsLeft();

private:
    std::unique_ptr<KTV_Connection> manager() const
    {
        return std::make_unique<KTV_Connection>(m_directory->path() + QLatin1Char('/'));
    }
    /** Processes of the tools that are still running. */
    static QString leftOver();

    std::unique_ptr<QTemporaryDir> m_directory;
};

void TstWifiEnd::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    Tools::reset();
    Tools::print("systemctl", QByteArray());
    Tools::idle();
}

QString TstWifiEnd::leftOver()
{
    QProcess list;
    list.start(QStringLiteral("/usr/bin/pgrep"),
               {QStringLiteral("-f"), QStringLiteral("bin/(ifconfig|iw|ls)")});
    list.waitForFinished();
    return QString::fromUtf8(list.readAllStandardOutput());
}

void TstWifiEnd::toolsHang_data()
{
    QTest::addColumn<QString>("tool");
    for (const char *tool : {"ifconfig", "iwgetid", "iwconfig", "iwlist"})
        QTest::newRow(tool) << tool;
}

void TstWifiEnd::toolsHang()
{
    QFETCH(QString, tool);
    auto wifi = manager();
    const Inbox inbox(*wifi);
    Tools::connected();
    Meter::setBehaviour(tool, "hang=1");
    Meter::clearJournal();
    const SlowClock clock; // so the limits of 1000 ms and 5000 ms are not reached
    wifi->DetailInfoScan(true);
    QVERIFY(wifi->ScanNetwork(true));
    wifi->onStatusTime();
    wifi->onStatusDetailTime();
    QTRY_VERIFY(!Meter::journal().filter(tool).isEmpty()); // the tool hangs now
    wifi.reset();
    const int count = inbox.count();
    QVERIFY(QThreadPool::globalInstance()->waitForDone(Meter::patience));
    QVERIFY(!SlowClock::isSecondOver()); // neither call has waited for the tool
    QTRY_COMPARE(leftOver(), QString());
    QCoreApplication::processEvents();
    QCOMPARE(inbox.count(), count);
}

void TstWifiEnd::inEachMode_data()
{
    QTest::addColumn<bool>("detail");
    QTest::addColumn<bool>("scan");
    QTest::addColumn<bool>("delayed");
    for (const bool detail : {false, true}) {
        for (const bool scan : {false, true}) {
            for (const bool delayed : {false, true})
                QTest::addRow("detail %d scan %d delayed %d", int(detail), int(scan), int(delayed))
                    << detail << scan << delayed;
        }
    }
}

void TstWifiEnd::inEachMode()
{
    QFETCH(bool, detail);
    QFETCH(bool, scan);
    QFETCH(bool, delayed);
    for (int round = 0; round < 5; ++round) {
        auto wifi = manager();
        const Inbox inbox(*wifi);
        Tools::connected("Lab" + QByteArray::number(round));
        if (delayed)
            Tools::delay("iwlist", "0.05");
        wifi->DetailInfoScan(detail);
        wifi->ScanNetwork(scan);
        wifi->onStatusTime();
        wifi->onStatusDetailTime();
        QTest::qWait(round * 7); // each time at another point of the workers
        wifi.reset();
        const int count = inbox.count();
        QCoreApplication::processEvents();
        QCOMPARE(inbox.count(), count);
    }
    QTRY_COMPARE(leftOver(), QString());
}

void TstWifiEnd::rightAfterTheStart()
{
    for (int i = 0; i < 5; ++i)
        manager().reset();
    QTRY_COMPARE(leftOver(), QString());
}

void TstWifiEnd::poolIsBusy()
{
    QThreadPool::globalInstance()->setMaxThreadCount(1);
    QSemaphore release;
    QFuture<void> task = QtConcurrent::run([&release] { release.acquire(); });
    auto wifi = manager();
    const Inbox inbox(*wifi);
    Tools::connected();
    QVERIFY(wifi->ScanNetwork(true));
    wifi->onStatusTime();
    wifi->onStatusDetailTime();
    Meter::clearJournal();
    wifi.reset(); // works although no worker could start
    QVERIFY(!task.isFinished());
    release.release();
    task.waitForFinished();
    QCOMPARE(inbox.count(), 0);
    QCOMPARE(Meter::journal(), QStringList());
}

void TstWifiEnd::powerRequestIsCarriedOut()
{
    QThreadPool::globalInstance()->setMaxThreadCount(1);
    QSemaphore release;
    QFuture<void> task = QtConcurrent::run([&release] { release.acquire(); });
    auto wifi = manager();
    for (const bool on : {false, true, false}) // of the waiting ones only the last is carried out
        wifi->set_wifi_Enable(on);
    Meter::clearJournal();
    wifi.reset();
    QCOMPARE(Meter::journal(), QStringList(QStringLiteral("ifconfig wlan0 down")));
    release.release();
    task.waitForFinished();
}

void TstWifiEnd::inAReceiver_data()
{
    QTest::addColumn<bool>("hang");
    QTest::newRow("of the state") << false;
    QTest::newRow("of a failed scan") << true;
}

void TstWifiEnd::inAReceiver()
{
    QFETCH(bool, hang);
    auto wifi = manager();
    Tools::connected();
    if (hang)
        Tools::hang("iwlist");
    int details = 0;
    connect(wifi.get(), &KTV_Connection::WiFi_State_Change, [&wifi] { wifi.reset(); });
    connect(wifi.get(), &KTV_Connection::WiFi_Scan, [&wifi] { wifi.reset(); });
    connect(wifi.get(), &KTV_Connection::WiFi_DetailState_Change, [&details] { ++details; });
    // A direct call: the receiver runs before it returns.
    if (hang)
        KTV_Connection::check_wifiScan_Avait(wifi.get());
    else
        KTV_Connection::check_wifiDetailState_Avait(wifi.get());
    QVERIFY(!wifi);
    QCOMPARE(details, 0);
}

void TstWifiEnd::failedScanOfADestroyedManager()
{
    auto wifi = manager();
    const Inbox inbox(*wifi);
    Tools::hang("iwlist");
    const LogCapture log;
    QVERIFY(wifi->ScanNetwork(true));
    // Its call to delete the timer is in this thread's event queue.
    QVERIFY(QThreadPool::globalInstance()->waitForDone(Meter::patience));
    QCOMPARE(inbox.order(), QByteArray("n"));
    QVERIFY(!wifi->isScanMode());
    wifi.reset();
    QCoreApplication::processEvents();
    QCOMPARE(log.lines(), QStringList(QStringLiteral("iwlist - not respond!")));
}

void TstWifiEnd::fewDescriptorsLeft_data()
{
    QTest::addColumn<int>("left");
    for (const int left : {0, 1, 2, 3, 4, 6, 10, 15, 20})
        QTest::addRow("%d", left) << left;
}

void TstWifiEnd::fewDescriptorsLeft()
{
    QFETCH(int, left);
    auto wifi = manager();
    QThreadPool *const pool = QThreadPool::globalInstance();
    Meter::clearJournal();
    pool->waitForDone(); // ends its threads, so that new ones need descriptors
    {
        const Meter::FewDescriptors few(left);
        const SlowClock clock; // a busy machine must not make a tool miss its limit
        wifi->ScanNetwork(true);
        wifi->DetailInfoScan(true);
        wifi->set_wifi_Enable(true);
        for (int i = 0; i < 2; ++i) {
            wifi->onStatusTime();
            wifi->onStatusDetailTime();
            wifi->onScanNetwokTime();
        }
        QVERIFY(pool->waitForDone(Meter::patience));
    }
    // The request is not lost: it is carried out when descriptors are free again.
    QTRY_VERIFY(Meter::journal().contains(QStringLiteral("ifconfig wlan0 up")));
}

KTV_METER_TEST_MAIN(TstWifiEnd)
#include "tst_wifi_end.moc"
