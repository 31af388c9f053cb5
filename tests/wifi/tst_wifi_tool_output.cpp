#include "support/Meter.h"

#include <wifi/KTV_Connection.h>
#include <wifi/KnownNetworks_p.h>
#include <wifi/ToolOutput_p.h>

#include <QtTest>

#include <memory>

using WiFi::KTV_Connection;
using WiFi::Network;

namespace {

std::unique_ptr<Network> makeNetwork(const QString &essid, int state)
{
    auto network = std::make_unique<Network>();
    network->ESSID = essid;
    network->state = state;
    return network;
}

/** Records as "name state encryption". */
QStringList texts(const QList<Network *> &networks)
{
    QStringList result;
    for (const Network *network : networks)
        result += network->ESSID + QLatin1Char(' ') + QString::number(network->state)
            + (network->encryption ? QStringLiteral(" protected") : QString());
    return result;
}

} // namespace

/** Records read from the output of the wireless tools. */
class TstWifiToolOutput : public QObject
{
    Q_OBJECT
private slots:
    void dbmToSignal_data();
    void dbmToSignal();
    void validateNetwork_data();
    void validateNetwork();
    void addToList_data();
    void addToList();
    void addedCopyIsComplete();
    void sortOrder();
    void newRecord();

    void interfaceName_data();
    void interfaceName();
    void address_data();
    void address();
    void signalLevel_data();
    void signalLevel();
    void scan_data();
    void scan();

    void rowOperations();
};

void TstWifiToolOutput::dbmToSignal_data()
{
    QTest::addColumn<int>("dbm");
    QTest::addColumn<int>("state");
    QTest::newRow("above zero") << 10 << 8;
    QTest::newRow("-49") << -49 << 8;
    QTest::newRow("-50") << -50 << 7;
    QTest::newRow("-59") << -59 << 7;
    QTest::newRow("-60") << -60 << 6;
    QTest::newRow("-69") << -69 << 6;
    QTest::newRow("-70") << -70 << 5;
    QTest::newRow("-79") << -79 << 5;
    QTest::newRow("-80") << -80 << 4;
    QTest::newRow("least") << std::numeric_limits<int>::min() << 4;
}

void TstWifiToolOutput::dbmToSignal()
{
    QFETCH(int, dbm);
    QTEST(KTV_Connection::_dbmToSignal(dbm), "state");
}

void TstWifiToolOutput::validateNetwork_data()
{
    QTest::addColumn<QString>("essid");
    QTest::addColumn<bool>("valid");
    QTest::newRow("name") << "Lab" << true;
    QTest::newRow("empty") << "" << false;
    QTest::newRow("blanks") << "  \t " << false;
    QTest::newRow("zero bytes as iwlist prints them") << "\\x00\\x00" << true;
}

void TstWifiToolOutput::validateNetwork()
{
    QFETCH(QString, essid);
    QTEST(KTV_Connection::_validateNetwork(makeNetwork(essid, 4).get()), "valid");
    QVERIFY(!KTV_Connection::_validateNetwork(nullptr));
}

void TstWifiToolOutput::addToList_data()
{
    QTest::addColumn<QList<int>>("states"); // of access points with the same name, in order
    QTest::addColumn<int>("listed");
    QTest::addColumn<int>("mask"); // index of the one in the list
    QTest::newRow("stronger replaces weaker") << QList<int> {5, 8} << 8 << 1;
    QTest::newRow("weaker is dropped") << QList<int> {8, 5} << 8 << 0;
    QTest::newRow("of two equal ones the later") << QList<int> {6, 6} << 6 << 1;
    QTest::newRow("three") << QList<int> {4, 7, 6} << 7 << 1;
}

void TstWifiToolOutput::addToList()
{
    QFETCH(QList<int>, states);
    QFETCH(int, listed);
    QFETCH(int, mask);
    QList<Network *> list;
    const auto other = makeNetwork(QStringLiteral("Other"), 7);
    KTV_Connection::_addToList(&list, other.get());
    for (int i = 0; i < states.size(); ++i) {
        const auto network = makeNetwork(QStringLiteral("Lab"), states.at(i));
        network->mask = QString::number(i);
        KTV_Connection::_addToList(&list, network.get());
    }
    QCOMPARE(list.size(), 2);
    QCOMPARE(list.first()->ESSID, QStringLiteral("Other"));
    QCOMPARE(list.last()->state, listed);
    QCOMPARE(list.last()->mask, QString::number(mask));
    qDeleteAll(list);
}

void TstWifiToolOutput::addedCopyIsComplete()
{
    auto network = makeNetwork(QStringLiteral("Lab"), 7);
    network->encryption = true;
    network->key = QStringLiteral("k");
    network->address = QStringLiteral("a");
    network->mask = QStringLiteral("m");
    network->broadcast = QStringLiteral("b");
    QList<Network *> list;
    KTV_Connection::_addToList(&list, network.get());
    QVERIFY(list.first() != network.get());
    network.reset();
    const std::unique_ptr<Network> copy(list.takeFirst());
    QCOMPARE(copy->ESSID + copy->key + copy->address + copy->mask + copy->broadcast,
             QStringLiteral("Labkamb"));
    QCOMPARE(copy->state, 7);
    QCOMPARE(copy->encryption, true);
}

void TstWifiToolOutput::sortOrder()
{
    const auto weak = makeNetwork(QStringLiteral("z"), 4);
    const auto strong = makeNetwork(QStringLiteral("a"), 8);
    QVERIFY(WiFi::variantLessThan(weak.get(), strong.get()));
    QVERIFY(!WiFi::variantLessThan(strong.get(), weak.get()));
    QVERIFY(!WiFi::variantLessThan(weak.get(), weak.get()));
}

void TstWifiToolOutput::newRecord()
{
    const Network network;
    QCOMPARE(network.state, int(Network::wifi_States_OFF));
    QCOMPARE(network.encryption, false);
    const auto states = QMetaEnum::fromType<Network::wifiStates>();
    QCOMPARE(states.keyCount(), 9);
    QCOMPARE(states.valueToKey(0), "wifi_States_NAN");
    QCOMPARE(states.valueToKey(3), "wifi_States_Connecting");
    QCOMPARE(states.valueToKey(8), "wifi_States_Connect_4");
}

void TstWifiToolOutput::interfaceName_data()
{
    QTest::addColumn<QString>("listing");
    QTest::addColumn<QString>("name");
    QTest::newRow("none") << ""
                          << "";
    QTest::newRow("line end only") << "\n"
                                   << "";
    QTest::newRow("one") << "wlan0\n"
                         << "wlan0";
    QTest::newRow("monitor beside it") << "wlan0\nwlan0mon\n"
                                       << "wlan0";
    QTest::newRow("another before it") << "p2p-wlan0-0\nwlan0\n"
                                       << "wlan0";
    QTest::newRow("only a longer name") << "wlan0mon\nwlan0x\n"
                                        << "wlan0mon";
}

void TstWifiToolOutput::interfaceName()
{
    QFETCH(QString, listing);
    QTEST(Internal::ToolOutput::interfaceName(listing), "name");
}

void TstWifiToolOutput::address_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("mask");
    QTest::addColumn<QString>("broadcast");
    QTest::newRow("busybox, colon kept")
        << "          inet addr:10.20.30.100  Bcast:10.20.30.255  Mask:255.255.255.0\n"
        << ":10.20.30.100"
        << "255.255.255.0"
        << "10.20.30.255";
    QTest::newRow("no broadcast") << "inet addr:10.0.0.1  Mask:255.0.0.0"
                                  << ":10.0.0.1"
                                  << "255.0.0.0"
                                  << "";
    QTest::newRow("tools without markers") << "inet 10.0.0.1  netmask 255.0.0.0"
                                           << ""
                                           << ""
                                           << "";
    QTest::newRow("another line") << "flags addr:10.0.0.1"
                                  << ""
                                  << ""
                                  << "";
    QTest::newRow("nothing") << ""
                             << ""
                             << ""
                             << "";
    QTest::newRow("blank after the marker") << "inet addr: 10.0.0.1"
                                            << ":"
                                            << ""
                                            << "";
}

void TstWifiToolOutput::address()
{
    QFETCH(QString, line);
    Network network;
    Internal::ToolOutput::readAddress(line, network);
    QTEST(network.address, "address");
    QTEST(network.mask, "mask");
    QTEST(network.broadcast, "broadcast");
}

void TstWifiToolOutput::signalLevel_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<int>("state");
    QTest::newRow("usual") << "   Link Quality=50/70  Signal level=-60 dBm  \n" << 6;
    QTest::newRow("weakest") << "Link Quality=1/70  Signal level=-99 dBm" << 4;
    QTest::newRow("the last level counts") << "Signal level=-40 dBm  Noise level=-92 dBm" << 4;
    QTest::newRow("no number counts as 0 dBm") << "Signal level=60/100" << 8;
    QTest::newRow("marker missing") << "Link Quality=50/70 level=-60 dBm" << 2;
    QTest::newRow("nothing") << "" << 2;
}

void TstWifiToolOutput::signalLevel()
{
    QFETCH(QString, line);
    const auto network = makeNetwork(QStringLiteral("Lab"), Network::wifi_States_ON);
    Internal::ToolOutput::readSignal(line, *network);
    QTEST(network->state, "state");
}

void TstWifiToolOutput::scan_data()
{
    QTest::addColumn<QString>("lines");
    QTest::addColumn<QStringList>("networks");
    const QString cell = QStringLiteral("          Cell %1 - Address: 02:4B:54:56:00:01\n"
                                        "          Quality=62/70  Signal level=%2 dBm  \n"
                                        "          Encryption key:%3\n"
                                        "          ESSID:\"%4\"\n");
    const auto one = [&cell](const char *level, const char *key, const char *essid) {
        return cell.arg(QStringLiteral("01"), QLatin1String(level), QLatin1String(key),
                        QString::fromUtf8(essid));
    };
    QTest::newRow("nothing") << "" << QStringList();
    QTest::newRow("protected") << one("-48", "on", "Lab") << QStringList("Lab 8 protected");
    QTest::newRow("open") << one("-55", "off", "Lab") << QStringList("Lab 7");
    QTest::newRow("weakest first")
        << one("-48", "off", "A") + one("-75", "off", "B") + one("-65", "off", "C")
        << QStringList({"B 5", "C 6", "A 8"});
    QTest::newRow("one name, weaker first")
        << one("-70", "off", "Lab") + one("-40", "on", "Lab") << QStringList("Lab 8 protected");
    QTest::newRow("one name, stronger first")
        << one("-40", "on", "Lab") + one("-70", "off", "Lab") << QStringList("Lab 8 protected");
    QTest::newRow("hidden name") << one("-40", "on", "") << QStringList();
    QTest::newRow("name of blanks") << one("-40", "on", "   ") << QStringList();
    QTest::newRow("no ESSID line")
        << "Cell 01 - x\nQuality=1/70  Signal level=-40 dBm" << QStringList();
    QTest::newRow("lines before the first cell")
        << "ESSID:\"Early\"\nQuality=-40 dBm\n" + one("-60", "off", "Lab") << QStringList("Lab 6");
    QTest::newRow("unreadable level")
        << "Cell 01\nQuality=1/70  Signal level=weak\nESSID:\"Lab\"" << QStringList("Lab 1");
    QTest::newRow("no level line") << "Cell 01\nESSID:\"Lab\"" << QStringList("Lab 1");
    QTest::newRow("level without a unit")
        << "Cell 01\nQuality:3  Signal level=-62\nESSID:\"Lab\"" << QStringList("Lab 6");
    QTest::newRow("the last level of a line counts")
        << "Cell 01\nQuality=1/70  Signal level=-40 dBm  Noise level=-92 dBm\nESSID:\"Lab\""
        << QStringList("Lab 4");
    QTest::newRow("no equals sign") << "Cell 01\nQuality 5\nESSID:\"Lab\"" << QStringList("Lab 1");
    QTest::newRow("quotation marks are removed, escapes are kept")
        << one("-60", "off", "a\"b\\x00\\xC5\\\\") << QStringList("ab\\x00\\xC5\\\\ 6");
    QTest::newRow("marker within the name")
        << one("-60", "off", "ESSID:ESSID:x") << QStringList("x 6");
    QTest::newRow("name that looks like a cell")
        << one("-60", "off", "Cell 02") << QStringList("Cell 02 6");
    QTest::newRow("key line without a colon")
        << "Cell 01\nEncryption key:\nESSID:\"Lab\"" << QStringList("Lab 1");
    QTest::newRow("UTF-8") << one("-60", "off", "\xC5\x81\xC4\x85ka")
                           << QStringList(QStringLiteral("\u0141\u0105ka 6"));
}

void TstWifiToolOutput::scan()
{
    QFETCH(QString, lines);
    QTEST(texts(*Internal::ToolOutput::readScan(lines)), "networks");
}

void TstWifiToolOutput::rowOperations()
{
    const QTemporaryDir directory;
    Internal::KnownNetworks known(directory.path() + QLatin1Char('/'));
    QTest::ignoreMessage(QtDebugMsg, "DB is CLOSE!");
    QVERIFY(!known.updateRow(1, QStringLiteral("Lab"), QString()));
    QTest::ignoreMessage(QtDebugMsg, "DB is CLOSE!");
    QVERIFY(!known.removeRow(1));
    QVERIFY(known.open());
    QVERIFY(known.add(QStringLiteral("Lab"), QString()));
    // The statement has an unclosed quotation mark, so it fails and the row stays.
    QTest::ignoreMessage(QtDebugMsg, QRegularExpression(QStringLiteral("^_AddWifiToDataBase: .")));
    QVERIFY(!known.updateRow(1, QStringLiteral("Office"), QStringLiteral("12345678")));
    QCOMPARE(texts(*known.all()), QStringList("Lab 1"));
    QVERIFY(known.removeRow(2));
    QCOMPARE(known.all()->size(), 1);
    QVERIFY(known.removeRow(1));
    QCOMPARE(known.all()->size(), 0);
    known.release();
    QCOMPARE(known.all()->size(), 0);
}

KTV_METER_TEST_MAIN(TstWifiToolOutput)
#include "tst_wifi_tool_output.moc"
