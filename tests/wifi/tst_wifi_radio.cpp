#include "Inbox.h"
#include "Tools.h"

#include <datasource/KTV_DataSource.h>
#include <wifi/KTV_Connection.h>

#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using WiFi::KTV_Connection;
using WiFi::Network;

/** The manager with simulated access points: no output is fixed, every tool does its work. */
class TstWifiRadio : public QObject
{
    Q_OBJECT
private slots:
    void init();

    void joinsAndLoses();
    void prefersTheLastAdded();
    void wrongKeyJoinsNothing();
    void listsWhatIsInReach();
    void escapedNames();
    void throughTheFacade();

private:
    static void radio(const QByteArray &accessPoints)
    {
        Meter::writeFile(QStringLiteral("/run/meter/radio"), accessPoints);
    }
    std::unique_ptr<KTV_Connection> manager() const
    {
        return std::make_unique<KTV_Connection>(m_directory->path() + QLatin1Char('/'));
    }

    std::unique_ptr<QTemporaryDir> m_directory;
};

void TstWifiRadio::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    Tools::reset();
    Meter::writeFile(QStringLiteral("/run/meter/behaviour/wpa_supplicant"),
                     "associate=0.1\naddress=0.1\n");
    radio("-62\tSubstation\tohm-law-1827\tsubnet=10.20.30\n"
          "-75\tSubstation\tohm-law-1827\tsubnet=10.20.30\n"
          "-45\tGuest\t-\tsubnet=10.9.8\n");
}

void TstWifiRadio::joinsAndLoses()
{
    const QString address = QStringLiteral("/tmp/address"); // assigned when this file exists
    Meter::writeFile(QStringLiteral("/run/meter/behaviour/wpa_supplicant"),
                     "associate=0.1\naddress=" + address.toLatin1() + '\n');
    const auto wifi = manager();
    const Inbox inbox(*wifi);
    wifi->DetailInfoScan(true);
    QVERIFY(wifi->AddNetwork(QStringLiteral("Substation"), QStringLiteral("ohm-law-1827")));
    QTRY_VERIFY(inbox.states().contains(Network::wifi_States_Connecting));
    Meter::writeFile(address, QByteArray());
    QTRY_COMPARE(inbox.states().last(), int(Network::wifi_States_Connect_2));
    QTRY_COMPARE(inbox.details().last()->address, QStringLiteral(":10.20.30.100"));
    const auto network = inbox.details().last();
    QCOMPARE(network->ESSID, QStringLiteral("Substation"));
    QCOMPARE(network->mask, QStringLiteral("255.255.255.0"));
    QCOMPARE(network->broadcast, QStringLiteral("10.20.30.255"));
    radio("");
    QTRY_COMPARE(inbox.states().last(), int(Network::wifi_States_ON));
    QTRY_COMPARE(inbox.details().last()->ESSID, QString());
}

void TstWifiRadio::prefersTheLastAdded()
{
    const auto wifi = manager();
    const Inbox inbox(*wifi);
    wifi->DetailInfoScan(true);
    QVERIFY(wifi->AddNetwork(QStringLiteral("Guest"), QString()));
    QTRY_COMPARE(inbox.details().isEmpty() ? QString() : inbox.details().last()->address,
                 QStringLiteral(":10.9.8.100"));
    QVERIFY(wifi->AddNetwork(QStringLiteral("Substation"), QStringLiteral("ohm-law-1827")));
    QTRY_COMPARE(inbox.details().last()->address, QStringLiteral(":10.20.30.100"));
    wifi->SetPreferedNetwork(QStringLiteral("Guest"));
    QTRY_COMPARE(inbox.details().last()->address, QStringLiteral(":10.9.8.100"));
    QVERIFY(wifi->DeleteNetwork(QStringLiteral("Guest")));
    QTRY_COMPARE(inbox.details().last()->address, QStringLiteral(":10.20.30.100"));
}

void TstWifiRadio::wrongKeyJoinsNothing()
{
    const auto isRefused = [] {
        return Meter::readFile(QStringLiteral("/run/meter/supplicant.log"))
            .contains("reason=WRONG_KEY");
    };
    const auto wifi = manager();
    QVERIFY(!isRefused());
    QVERIFY(wifi->AddNetwork(QStringLiteral("Substation"), QStringLiteral("wrong-key")));
    QTRY_VERIFY(isRefused());
    const std::unique_ptr<Network> network(wifi->getWiFi_Info());
    QCOMPARE(network->state, int(Network::wifi_States_ON));
    QCOMPARE(network->ESSID, QString());
}

void TstWifiRadio::listsWhatIsInReach()
{
    const auto wifi = manager();
    const Inbox inbox(*wifi);
    QVERIFY(wifi->ScanNetwork(true));
    QTRY_COMPARE(inbox.scans().size(), 1);
    const Inbox::Scan scan = inbox.scans().first();
    QCOMPARE(scan.names(), QStringList({QStringLiteral("Substation"), QStringLiteral("Guest")}));
    QCOMPARE(scan.networks.at(0)->state, int(Network::wifi_States_Connect_2));
    QVERIFY(scan.networks.at(0)->encryption);
    QCOMPARE(scan.networks.at(1)->state, int(Network::wifi_States_Connect_4));
    QVERIFY(!scan.networks.at(1)->encryption);
}

void TstWifiRadio::escapedNames()
{
    radio("-50\t\xC5\x81\xC4\x85ka\t-\n"
          "-55\tquote\"quote\t-\n"
          "-65\t$(touch /tmp/hit)\t-\n"
          "-75\ttab\\tin it\t-\n"
          "-85\thidden\t-\thidden=6\n");
    const auto wifi = manager();
    const Inbox inbox(*wifi);
    QVERIFY(wifi->ScanNetwork(true));
    QTRY_COMPARE(inbox.scans().size(), 1);
    QCOMPARE(inbox.scans().first().names(),
             QStringList({QStringLiteral("\\x00\\x00\\x00\\x00\\x00\\x00"),
                          QStringLiteral("tab\\x09in it"), QStringLiteral("$(touch /tmp/hit)"),
                          QStringLiteral("\\xC5\\x81\\xC4\\x85ka"), QStringLiteral("quotequote")}));
    for (const QString &name : inbox.scans().first().names())
        QVERIFY(wifi->AddNetwork(name, QString()));
    QVERIFY(!QFile::exists(QStringLiteral("/tmp/hit")));
}

void TstWifiRadio::throughTheFacade()
{
    const QString file = QStringLiteral("/media/sdcard/UserData/wifi.db");
    KTV_DataSource meter;
    QVERIFY(QFile::exists(file));
    QCOMPARE(meter.getConnection()->parent(), &meter);
    QCOMPARE(meter.getConnection()->getInterfaceName(), QStringLiteral("wlan0"));
    QVERIFY(meter.getConnection()->AddNetwork(QStringLiteral("Guest"), QString()));
    const auto count = [&meter] {
        const std::unique_ptr<QList<Network *>> networks(meter.getConnection()->GetMyNetwork());
        const int size = int(networks->size());
        qDeleteAll(*networks);
        return size;
    };
    QCOMPARE(count(), 1);
    meter.ClearToDefault();
    QCOMPARE(count(), 0);
}

KTV_METER_TEST_MAIN(TstWifiRadio)
#include "tst_wifi_radio.moc"
