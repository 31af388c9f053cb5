#include "support/DriverLeaks.h"
#include "support/LogCapture.h"
#include "support/Meter.h"
#include "support/SqliteWatch.h"

#include "wifi/KnownNetworks_p.h"

#include <wifi/KTV_Connection.h>

#include <QTemporaryDir>
#include <QtTest>

#include <functional>
#include <memory>

using Internal::KnownNetworks;
using WiFi::KTV_Connection;

namespace {

using Operation = std::function<bool(KnownNetworks &)>;

const QString thrown = QStringLiteral("thrown by the driver: %1 %s");
const QString selection = QStringLiteral("SELECT * FROM NETWORKS");
const QString deletion = QStringLiteral("DELETE FROM NETWORKS WHERE `NET_ESSID`=:NET_ESSID");

bool addLab(KnownNetworks &networks)
{
    return networks.add("Lab", "12345678");
}

bool removeLab(KnownNetworks &networks)
{
    return networks.remove("Lab");
}

bool updateRow(KnownNetworks &networks)
{
    return networks.updateRow(17, "Lab", "12345678");
}

bool removeRow(KnownNetworks &networks)
{
    return networks.removeRow(1);
}

} // namespace

Q_DECLARE_METATYPE(Operation)

/** The exact SQL statements of the known networks, and how they handle exceptions in SQLite. */
class TstWifiStatements : public QObject
{
    Q_OBJECT
private slots:
    void init() { m_directory = std::make_unique<QTemporaryDir>(); }
    void cleanup();

    void creation();
    void statements_data();
    void statements();
    void exceptions_data();
    void exceptions();
    void exceptionWhileReading();
    void exceptionsOfTheManager_data();
    void exceptionsOfTheManager();
    void exceptionWhileCreating();
    void exceptionWhileWritingTheFile();

private:
    QString directory() const { return m_directory->path() + '/'; }
    std::unique_ptr<KnownNetworks> open() const;
    std::unique_ptr<KTV_Connection> manager() const
    {
        return std::make_unique<KTV_Connection>(directory());
    }

    std::unique_ptr<QTemporaryDir> m_directory;
};

void TstWifiStatements::cleanup()
{
    SqliteWatch::throwOn(QString());
    SqliteWatch::throwOnReads(false);
}

std::unique_ptr<KnownNetworks> TstWifiStatements::open() const
{
    auto networks = std::make_unique<KnownNetworks>(directory());
    networks->open();
    return networks;
}

void TstWifiStatements::creation()
{
    SqliteWatch::clear();
    open();
    QCOMPARE(SqliteWatch::statements(),
             (QStringList {
                 "BEGIN",
                 "CREATE TABLE IF NOT EXISTS Setting (SETk_1_ID INTEGER UNIQUE PRIMARY KEY,"
                 "SET_Key VARCHAR(255),SET_Value VARCHAR(255))",
                 "INSERT INTO Setting (SET_Key, SET_Value) VALUES ('Version',0)",
                 "CREATE TABLE IF NOT EXISTS NETWORKS (NETk_1_ID INTEGER UNIQUE PRIMARY KEY,"
                 "NET_ESSID VARCHAR(255),NET_Encrypton int,NET_Key VARCHAR(255))",
                 "COMMIT",
             }));
}

void TstWifiStatements::statements_data()
{
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<bool>("isDone");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("read") << Operation([](KnownNetworks &networks) {
        return networks.all()->isEmpty();
    }) << true << QStringList(selection);
    QTest::newRow("add") << Operation(addLab) << true
                         << QStringList {"BEGIN", deletion,
                                         "INSERT INTO NETWORKS (`NET_ESSID`,`NET_Encrypton`,"
                                         "`NET_Key`)VALUES (:NET_ESSID,:NET_Encrypton,:NET_Key)",
                                         "COMMIT"};
    QTest::newRow("remove") << Operation(removeLab) << true
                            << QStringList {"BEGIN", deletion, "COMMIT"};
    QTest::newRow("update a row, which SQLite refuses")
        << Operation(updateRow) << false
        << QStringList {"BEGIN",
                        "UPDATE NETWORKS SET`NET_ESSID`=:NET_ESSID,`NET_Encrypton`="
                        ":NET_Encrypton,`NET_Key`=:NET_Key WHERE `NETk_1_ID=17",
                        "ROLLBACK"};
    QTest::newRow("remove a row") << Operation(removeRow) << true
                                  << QStringList {"BEGIN",
                                                  "DELETE FROM NETWORKS WHERE `NETk_1_ID` = '1'",
                                                  "COMMIT"};
}

void TstWifiStatements::statements()
{
    QFETCH(Operation, operation);
    QFETCH(bool, isDone);
    const auto networks = open();
    SqliteWatch::clear();
    QCOMPARE(operation(*networks), isDone);
    QTEST(SqliteWatch::statements(), "expected");
}

void TstWifiStatements::exceptions_data()
{
    QTest::addColumn<QString>("part");
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<QString>("prefix");
    const auto row = [](const char *name, const char *part, const Operation &operation,
                        const char *prefix) {
        QTest::addRow("%s, %s", name, part) << QString(part) << operation << QString(prefix);
    };
    for (const char *part : {"BEGIN", "DELETE", "INSERT", "COMMIT"})
        row("add", part, addLab, "KTV_Connection::_AddWifiToDataBase: ");
    for (const char *part : {"BEGIN", "DELETE", "COMMIT"}) {
        row("remove", part, removeLab, "_AddWifiToDataBase: ");
        row("remove a row", part, removeRow, "_DeleteWifiInDataBase:");
    }
    row("update a row", "BEGIN", updateRow, "_AddWifiToDataBase: ");
}

void TstWifiStatements::exceptions()
{
    QFETCH(QString, part);
    QFETCH(Operation, operation);
    QFETCH(QString, prefix);
    const auto networks = open();
    QVERIFY(networks->add("Lab", "old pass phrase"));
    LogCapture log;
    SqliteWatch::throwOn(part);
    QVERIFY(!operation(*networks));
    SqliteWatch::throwOn(QString());
    QCOMPARE(log.lines(), QStringList(prefix + thrown));
    const auto kept = networks->all();
    QCOMPARE(kept->size(), 1);
    QCOMPARE(kept->first()->key, QStringLiteral("old pass phrase")); // rolled back
    QVERIFY(addLab(*networks));
    QCOMPARE(networks->all()->first()->key, QStringLiteral("12345678"));
}

void TstWifiStatements::exceptionWhileReading()
{
    const auto networks = open();
    QVERIFY(addLab(*networks));
    LogCapture log;
    SqliteWatch::throwOn("SELECT");
    QVERIFY(networks->all()->isEmpty());
    SqliteWatch::throwOn(QString());
    QCOMPARE(log.lines(), QStringList("GetMyNetwork: " + thrown));
    QCOMPARE(networks->all()->size(), 1);
}

void TstWifiStatements::exceptionsOfTheManager_data()
{
    QTest::addColumn<QString>("part");
    for (const char *part : {"BEGIN", "DELETE", "INSERT", "COMMIT", "CREATE"})
        QTest::newRow(part) << part;
}

void TstWifiStatements::exceptionsOfTheManager()
{
    QFETCH(QString, part);
    SqliteWatch::throwOn(part);
    const auto wifi = manager();
    SqliteWatch::throwOn(QString());
    QVERIFY(wifi->RestoreFabricalSetting()); // creates the tables, if the constructor could not
    SqliteWatch::throwOn(part);
    QCOMPARE(wifi->AddNetwork("Lab", QString()), part == "CREATE");
    QCOMPARE(wifi->DeleteNetwork("Lab"), part == "CREATE" || part == "INSERT");
    QVERIFY(wifi->RestoreFabricalSetting());
    SqliteWatch::throwOn(QString());
    QVERIFY(wifi->RestoreFabricalSetting());
    QVERIFY(wifi->AddNetwork("Lab", QString()));
    QVERIFY(wifi->DeleteNetwork("Lab"));
}

void TstWifiStatements::exceptionWhileCreating()
{
    LogCapture log;
    SqliteWatch::throwOn("TABLE IF NOT EXISTS NETWORKS");
    const auto networks = open();
    SqliteWatch::throwOn(QString());
    QCOMPARE(log.lines(), QStringList(thrown));
    QVERIFY(networks->open()); // nothing of the new file was kept
    QVERIFY(addLab(*networks));
    QCOMPARE(networks->all()->size(), 1);
}

void TstWifiStatements::exceptionWhileWritingTheFile()
{
    const QString file = "/etc/wpa_supplicant/wpa_supplicant-wlan0.conf";
    const auto wifi = manager();
    QVERIFY(wifi->AddNetwork("Lab", "12345678"));
    const QByteArray before = Meter::readFile(file);
    LogCapture log;
    SqliteWatch::throwOnReads(true); // the output of wpa_passphrase cannot be read
    wifi->SetPreferedNetwork("Other");
    SqliteWatch::throwOnReads(false);
    QCOMPARE(log.lines(),
             QStringList("KTV_Connection::_buildConfFile: exception:thrown by a read"));
    QCOMPARE(Meter::readFile(file), before);
}

KTV_METER_TEST_MAIN(TstWifiStatements)
#include "tst_wifi_statements.moc"
