#include "meter/Networks.h"
#include "meter/Preferences.h"
#include "meter/Session.h"
#include "meter/Tones.h"
#include "meter/UsbPort.h"

#include "support/Meter.h"

#include <configuration/KTV_Configuration.h>
#include <configuration/KTV_InterfaceConfig.h>
#include <datasource/KTV_DataSource.h>
#include <language/LangSerwis.h>
#include <wifi/KTV_Connection.h>
#include <wifi/Network.h>

#include <QTemporaryDir>

#include <limits>

using Buzzer::BuzzerClass;
using QERNTools::Tools;
using WiFi::KTV_Connection;
using WiFi::Network;

namespace {

/** The WiFi manager of the library, and the panel's networks. */
struct Radio
{
    QTemporaryDir directory;
    KTV_Connection connection {directory.path() + QLatin1Char('/')};
    Networks networks {connection};

    bool look()
    {
        networks.startWatching();
        return QTest::qWaitFor([this] { return !networks.cells().isEmpty(); }, Meter::patience);
    }
    void sendScan(const QStringList &names)
    {
        auto *list = new QList<Network *>;
        for (const QString &name : names) {
            list->append(new Network);
            list->last()->ESSID = name;
        }
        emit connection.WiFi_Scan(list);
    }
    QStringList names() const
    {
        QStringList names;
        for (const Networks::Cell &cell : networks.cells())
            names += cell.name;
        return names;
    }
};

} // namespace

/** The panel without its screen, but with the facade and the meter's tools; takes seconds. */
class TstPanelSession : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void lateScanIsRepeated();
    void listStaysUntilTwoScansAreEmpty();
    void stateIsReadAtFirst();
    void passPhrases_data();
    void passPhrases();
    void joiningGoesOnWithoutWatching();
    void networkIsJoinedAgain();
    void networksThatAreNotJoined_data();
    void networksThatAreNotJoined();
    void portIsSwitched();
    void portWhoseLineIsHeld();
    void volumeWaitsForTones();
    void languageOfTheSession();
    void meterOfTheSession();
    void preferencesReachTheMeter();
    void factoryReset();
};

void TstPanelSession::initTestCase()
{
    qRegisterMetaType<Networks::Outcome>(); // the spies look it up by its name
}

// --- WiFi

void TstPanelSession::lateScanIsRepeated()
{
    Radio radio;
    QVERIFY(radio.look());
    const QStringList before = radio.names();
    radio.connection.ScanNetwork(false); // as the library does before it emits the signal
    QSignalSpy changed(&radio.networks, &Networks::changed);
    emit radio.connection.WiFi_Scan(nullptr);
    QCOMPARE(changed.size(), 1);
    QVERIFY(radio.networks.isScanLate());
    QCOMPARE(radio.names(), before);
    QTRY_VERIFY(radio.connection.isScanMode());
    QTRY_VERIFY(!radio.networks.isScanLate());
    QCOMPARE(radio.names(), before);
}

void TstPanelSession::listStaysUntilTwoScansAreEmpty()
{
    Radio radio;
    radio.sendScan({QStringLiteral("weak"), QStringLiteral("strong")});
    const QStringList both {QStringLiteral("strong"), QStringLiteral("weak")};
    QCOMPARE(radio.names(), both);
    radio.sendScan({});
    QCOMPARE(radio.names(), both);
    radio.sendScan({QStringLiteral("strong")});
    QCOMPARE(radio.names(), QStringList("strong"));
    radio.sendScan({});
    QCOMPARE(radio.names(), QStringList("strong"));
    QVERIFY(radio.networks.isScanned());
    radio.sendScan({});
    QCOMPARE(radio.names(), QStringList());
    QVERIFY(radio.networks.isScanned());
}

void TstPanelSession::stateIsReadAtFirst()
{
    const QTemporaryDir directory;
    KTV_Connection connection(directory.path() + QLatin1Char('/'));
    {
        Networks networks(connection);
        QVERIFY(!networks.state().isRead);
        networks.startWatching();
        QTRY_VERIFY(networks.state().isRead);
        networks.setOn(false);
        QTRY_VERIFY(!networks.state().isOn);
    }
    // The library emits a state only once, so a second object has to read it.
    Networks later(connection);
    later.startWatching();
    QTRY_VERIFY(later.state().isRead);
    QVERIFY(!later.state().isOn);
    later.setOn(true);
    QTRY_VERIFY(later.state().isOn);
}

void TstPanelSession::passPhrases_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<bool>("isOne");
    QTest::newRow("none") << 0 << false;
    QTest::newRow("too short") << 7 << false;
    QTest::newRow("shortest") << 8 << true;
    QTest::newRow("longest") << 63 << true;
    QTest::newRow("too long") << 64 << false;
}

void TstPanelSession::passPhrases()
{
    QFETCH(int, length);
    QTEST(Networks::isPassPhrase(QString(length, QLatin1Char(' '))), "isOne");
}

void TstPanelSession::joiningGoesOnWithoutWatching()
{
    Radio radio;
    QVERIFY(radio.look());
    QVERIFY(radio.networks.isOpen(QStringLiteral("Workshop Guest")));
    QVERIFY(!radio.networks.isOpen(QStringLiteral("Substation North")));
    QSignalSpy joined(&radio.networks, &Networks::joined);
    QVERIFY(radio.networks.join(QStringLiteral("Workshop Guest"), QString()));
    QCOMPARE(radio.networks.joining(), QStringLiteral("Workshop Guest"));
    radio.networks.stopWatching(); // as when another page is shown
    QTRY_COMPARE(joined.size(), 1);
    QCOMPARE(joined.first().at(0).toString(), QStringLiteral("Workshop Guest"));
    QCOMPARE(joined.first().at(1).value<Networks::Outcome>(), Networks::Joined);
    QVERIFY(radio.networks.joining().isEmpty());
    QVERIFY(radio.networks.state().isConnected);
}

void TstPanelSession::networkIsJoinedAgain()
{
    Radio radio;
    radio.networks.setPatience(std::numeric_limits<int>::max());
    QSignalSpy joined(&radio.networks, &Networks::joined);
    radio.networks.startWatching();
    for (int times = 1; times <= 2; ++times) {
        QVERIFY(radio.networks.join(QStringLiteral("Workshop Guest"), QString()));
        QTRY_COMPARE(joined.size(), times);
        QCOMPARE(joined.last().at(1).value<Networks::Outcome>(), Networks::Joined);
    }
}

void TstPanelSession::networksThatAreNotJoined_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("key");
    QTest::addColumn<Networks::Outcome>("outcome");
    QTest::newRow("wrong pass phrase") << "Substation North"
                                       << "ohm-law-1828" << Networks::PassPhraseRefused;
    QTest::newRow("hidden") << "Control Room"
                            << "four-wire-kelvin" << Networks::NotFound;
    QTest::newRow("without a pass phrase") << "Printer"
                                           << "" << Networks::NotAnswering;
}

void TstPanelSession::networksThatAreNotJoined()
{
    QFETCH(QString, name);
    QFETCH(QString, key);
    Radio radio;
    QVERIFY(radio.look());
    radio.networks.setPatience(0); // the first check decides
    QSignalSpy joined(&radio.networks, &Networks::joined);
    QVERIFY(radio.networks.join(name, key));
    QTRY_COMPARE(joined.size(), 1);
    QTEST(joined.first().at(1).value<Networks::Outcome>(), "outcome");
}

// --- USB

void TstPanelSession::portIsSwitched()
{
    UsbPort port;
    QSignalSpy refreshed(&port, &UsbPort::refreshed);
    QSignalSpy switched(&port, &UsbPort::switched);
    port.refresh();
    QVERIFY(port.isBusy());
    port.switchTo({Tools::USB_RS232, Tools::RS232_None}); // ignored, because the port is busy
    QTRY_COMPARE(refreshed.size(), 1);
    QCOMPARE(switched.size(), 0);
    const UsbPort::State console {Tools::USB_RS232, Tools::RS232_Console};
    port.switchTo(console);
    QTRY_COMPARE(switched.size(), 1);
    QCOMPARE(switched.takeFirst().first().toBool(), true);
    QVERIFY(port.state() == console);
    QCOMPARE(port.holders(), QStringList());
    port.switchTo({Tools::USB_RNDIS, Tools::RS232_None});
    QTRY_COMPARE(switched.size(), 1);
    QCOMPARE(switched.first().first().toBool(), true);
}

void TstPanelSession::portWhoseLineIsHeld()
{
    QVERIFY(Tools::StartRS232());
    QFile line(QStringLiteral("/dev/ttyGS0"));
    QVERIFY(line.open(QIODevice::ReadWrite | QIODevice::Unbuffered));
    Meter::setBehaviour(QStringLiteral("modprobe-usb-gadget"), "stdout=busy");
    UsbPort port;
    QSignalSpy switched(&port, &UsbPort::switched);
    port.switchTo({Tools::USB_RNDIS, Tools::RS232_None});
    const bool isEnded = switched.wait(Meter::patience);
    Meter::setBehaviour(QStringLiteral("modprobe-usb-gadget"), QByteArray());
    QVERIFY(isEnded);
    QCOMPARE(switched.first().first().toBool(), false);
    const QString own = QString::fromLocal8Bit(Meter::readFile("/proc/self/comm")).trimmed();
    // The process that imitates the kernel's driver is in the list, too.
    QVERIFY2(port.holders().contains(
                 QStringLiteral("%1 (%2)").arg(own).arg(QCoreApplication::applicationPid())),
             qPrintable(port.holders().join(QLatin1Char(' '))));
}

// --- sound

void TstPanelSession::volumeWaitsForTones()
{
    const QTemporaryDir directory;
    KTV_InterfaceConfig settings(directory.path() + QLatin1Char('/'));
    const Preferences preferences(settings, directory.filePath(QStringLiteral("panel.ini")));
    BuzzerClass::BuzzerClass_Initialiser(KTV_Configuration::KTV_420, QString(), false);
    Meter::setBehaviour(QStringLiteral("beep"), "delay=1");
    {
        Tones tones(preferences);
        tones.repeat(BuzzerClass::Tone_Alarm);
        QTRY_VERIFY(!Meter::processes(QStringLiteral("beep")).isEmpty());
        Meter::clearJournal();
        tones.silence(); // blocks the thread of the tones until the beep has ended
        for (const int percent : {20, 30, 40})
            tones.setVolume(percent);
        QTRY_COMPARE(Meter::readFile(QStringLiteral("/run/meter/volume")).trimmed(), "40");
        QVERIFY(Meter::processes(QStringLiteral("beep")).isEmpty());
        QCOMPARE(Meter::journal().filter(QStringLiteral("amixer")).size(), 1);
        tones.setVolume(50);
    }
    QCOMPARE(Meter::readFile(QStringLiteral("/run/meter/volume")).trimmed(), "50");
    Meter::setBehaviour(QStringLiteral("beep"), QByteArray());
    BuzzerClass::BuzzerClass_Free();
}

// --- session

void TstPanelSession::languageOfTheSession()
{
    Session session;
    QSignalSpy changed(&session, &Session::languageChanged);
    QSignalSpy lists(&session.lists(), &Lists::changed);
    session.setLanguage(QStringLiteral("DE"));
    QCOMPARE(changed.size(), 1);
    QCOMPARE(lists.size(), 1);
    QCOMPARE(session.library().get_Lang()->getCurrentLang(), QStringLiteral("DE"));
    QCOMPARE(session.library().get_InterfaceConfig()->getValue(KTV_InterfaceConfig::MAIN_Lang,
                                                               QString()),
             QStringLiteral("DE"));
}

void TstPanelSession::meterOfTheSession()
{
    Session session;
    const KTV_Configuration *meter = session.library().getMainConfig();
    QVERIFY(meter->get_MeterModel() != KTV_Configuration::MeterModels_NaN);
    session.setSerialNumber(QStringLiteral("DV42006"));
    session.setup().setCurrent(ValueBox::testI_150A);
    QCOMPARE(session.setup().current(), ValueBox::testI_150A);
    session.measurement().start();
    QSignalSpy changed(&session, &Session::meterChanged);
    session.setSerialNumber(QStringLiteral("CH20417")); // has currents up to 10 A only
    QCOMPARE(changed.size(), 1);
    QCOMPARE(meter->get_SerialNumber(), QStringLiteral("CH20417"));
    QVERIFY(!session.measurement().isRunning());
    QVERIFY(session.setup().testCurrents().contains(session.setup().current()));
}

void TstPanelSession::preferencesReachTheMeter()
{
    Session session;
    session.preferences().setBrightness(30);
    QCOMPARE(Meter::readFile(QStringLiteral("/run/platform/brightness")), QByteArray("30\n"));
    session.preferences().setVolume(60);
    QTRY_COMPARE(Meter::readFile(QStringLiteral("/run/meter/volume")).trimmed(), "60");
}

void TstPanelSession::factoryReset()
{
    Session session;
    Recorder &recorder = session.recorder();
    const int usual = recorder.wanted();
    recorder.setWanted(7);
    session.preferences().setDark(true);
    recorder.start();
    QVERIFY(!session.canRestoreFactorySettings());
    session.restoreFactorySettings(); // does nothing: the series goes on with its settings
    QCOMPARE(recorder.wanted(), 7);
    QVERIFY(session.preferences().isDark());
    recorder.stop();
    session.restoreFactorySettings();
    QCOMPARE(recorder.wanted(), usual);
    QVERIFY(!session.preferences().isDark());
}

KTV_METER_TEST_MAIN(TstPanelSession)

#include "tst_panel_session.moc"
