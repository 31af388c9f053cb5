#include "support/LogCapture.h"
#include "support/Meter.h"
#include "support/Volume.h"

#include <wifi/KTV_Connection.h>

#include <QProcess>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QtTest>

#include <cerrno>
#include <memory>
#include <utility>

using WiFi::KTV_Connection;

namespace {

const QString supplicantFile = QStringLiteral("/etc/wpa_supplicant/wpa_supplicant-wlan0.conf");
/** The file that the supplicant has read at its last start. */
const QString fileAtRestart = QStringLiteral("/run/meter/private/supplicant-wlan0.conf");
const QString restart = QStringLiteral("systemctl restart wpa_supplicant@wlan0");

const QByteArray header("ctrl_interface=/var/run/wpa_supplicant\n"
                        "ctrl_interface_group=0\n"
                        "update_config=1\n"
                        "fast_reauth=1\n"
                        "ap_scan=1\n"
                        "\n");

/** The output of the real tool for a name and a pass phrase. */
QByteArray protectedEntry(const QString &essid, const QString &key, bool preferred = false)
{
    QProcess tool;
    tool.start(QStringLiteral("wpa_passphrase"), {essid, key});
    tool.waitForFinished();
    QByteArray entry = tool.readAllStandardOutput();
    if (preferred)
        entry.insert(entry.lastIndexOf('}'), "\tpriority=100\n");
    return entry + '\n';
}

QByteArray openEntry(const QByteArray &essid, bool preferred = false)
{
    return "network={\n\tssid=\"" + essid + "\"\n\tkey_mgmt=NONE\n"
        + (preferred ? "\tpriority=100\n" : "") + "}\n";
}

/** All rows of a table as "column|column|...", in order. */
QStringList rows(const QString &file, const QString &table)
{
    QStringList result;
    {
        QSqlDatabase database =
            QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("reader"));
        database.setDatabaseName(file);
        database.open();
        QSqlQuery query(QStringLiteral("SELECT * FROM ") + table, database);
        while (query.next()) {
            QStringList columns;
            for (int i = 0; i < 4 && query.value(i).isValid(); ++i)
                columns += query.isNull(i) ? QStringLiteral("NULL") : query.value(i).toString();
            result += columns.join(QLatin1Char('|'));
        }
    }
    QSqlDatabase::removeDatabase(QStringLiteral("reader"));
    return result;
}

/** Changes a file as another program would. */
void change(const QString &file, const QStringList &statements)
{
    {
        QSqlDatabase database =
            QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("other"));
        database.setDatabaseName(file);
        database.open();
        for (const QString &statement : statements)
            QSqlQuery(statement, database);
    }
    QSqlDatabase::removeDatabase(QStringLiteral("other"));
}

QStringList known(KTV_Connection &connection)
{
    QStringList result;
    const std::unique_ptr<QList<WiFi::Network *>> networks(connection.GetMyNetwork());
    for (const WiFi::Network *network : std::as_const(*networks))
        result += network->ESSID + QLatin1Char('|') + QString::number(int(network->encryption))
            + QLatin1Char('|') + network->key;
    qDeleteAll(*networks);
    return result;
}

QFile::Permissions othersRights(const QString &file)
{
    return QFile::permissions(file)
        & (QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup | QFile::ReadOther
           | QFile::WriteOther | QFile::ExeOther);
}

QString characters(int count)
{
    return {count, QLatin1Char('k')};
}

} // namespace

/** Known networks: the database and the supplicant's file. */
class TstWifiNetworks : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void newFileHasItsTables();
    void emptyFileIsCreatedAgain();
    void existingFileIsOpenedAsItIs();
    void directoryWithoutSeparator();
    void missingDirectoryIsCreated();
    void databaseThatCannotBeOpened();

    void keyLength_data();
    void keyLength();
    void addStoresRow();
    void addReplacesRow();
    void deleteRemovesRow();
    void everyRowOfAName();
    void missingTable();
    void connectionOfTheDriver();
    void secondManagerTakesTheConnection();
    void listBelongsToTheCaller();
    void closedDatabase();
    void failedWriteChangesNothing();
    void factoryReset();

    void emptyListGivesHeader();
    void supplicantFileIsExact();
    void preference_data();
    void preference();
    void hostileNames_data();
    void hostileNames();
    void toolFailure_data();
    void toolFailure();
    void fileThatCannotBeOpened();
    void fullCardLeavesTheFileAsItWas();
    void fewDescriptorsLoseNoNetwork();
    void withoutInterfaceNothingIsRestarted();
    void neighbouringInterfaceNames();
    void secretsAreReadableByTheOwnerOnly();
    void noKeyInTheLog();

private:
    std::unique_ptr<KTV_Connection> manager() const
    {
        return std::make_unique<KTV_Connection>(directory());
    }
    QString directory() const { return m_directory->path() + QLatin1Char('/'); }
    QString database() const { return directory() + QStringLiteral("wifi.db"); }

    std::unique_ptr<QTemporaryDir> m_directory;
};

void TstWifiNetworks::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    QFile::remove(supplicantFile);
    Meter::clearJournal();
}

void TstWifiNetworks::cleanup()
{
    for (const char *program : {"wpa_passphrase", "systemctl", "ls"}) {
        Meter::setBehaviour(QLatin1String(program), QByteArray());
        Meter::showProgram(QLatin1String(program));
    }
}

void TstWifiNetworks::newFileHasItsTables()
{
    manager().reset();
    QCOMPARE(rows(database(), QStringLiteral("Setting")),
             QStringList(QStringLiteral("1|Version|0")));
    QCOMPARE(rows(database(), QStringLiteral("NETWORKS")), QStringList());
    QCOMPARE(
        rows(database(), QStringLiteral("(SELECT sql FROM sqlite_master WHERE type = 'table')")),
        QStringList(
            {QStringLiteral("CREATE TABLE Setting (SETk_1_ID INTEGER UNIQUE PRIMARY KEY,"
                            "SET_Key VARCHAR(255),SET_Value VARCHAR(255))"),
             QStringLiteral("CREATE TABLE NETWORKS (NETk_1_ID INTEGER UNIQUE PRIMARY KEY,"
                            "NET_ESSID VARCHAR(255),NET_Encrypton int,NET_Key VARCHAR(255))")}));
}

void TstWifiNetworks::emptyFileIsCreatedAgain()
{
    Meter::writeFile(database(), QByteArray());
    QVERIFY(manager()->AddNetwork(QStringLiteral("Lab"), QString()));
    QCOMPARE(rows(database(), QStringLiteral("NETWORKS")), QStringList(QStringLiteral("1|Lab|0|")));
}

void TstWifiNetworks::existingFileIsOpenedAsItIs()
{
    change(database(), {QStringLiteral("CREATE TABLE Unrelated (x)")});
    const auto wifi = manager();
    QCOMPARE(known(*wifi), QStringList()); // there is no table, and none is created
    QVERIFY(!wifi->AddNetwork(QStringLiteral("Lab"), QString()));
    QCOMPARE(rows(database(), QStringLiteral("sqlite_master")).size(), 1);
}

void TstWifiNetworks::directoryWithoutSeparator()
{
    std::make_unique<KTV_Connection>(m_directory->path() + QStringLiteral("/User")).reset();
    QVERIFY(QFile::exists(directory() + QStringLiteral("Userwifi.db")));
}

void TstWifiNetworks::missingDirectoryIsCreated()
{
    std::make_unique<KTV_Connection>(directory() + QStringLiteral("new/")).reset();
    QVERIFY(QFile::exists(directory() + QStringLiteral("new/wifi.db")));
    const LogCapture log;
    std::make_unique<KTV_Connection>(directory() + QStringLiteral("a/b/"))
        .reset(); // one level only
    QVERIFY(!QFile::exists(directory() + QStringLiteral("a")));
    QVERIFY(log.lines().contains(QStringLiteral("KTV_Connection - No open database :(true")));
}

void TstWifiNetworks::databaseThatCannotBeOpened()
{
    QDir().mkpath(database());
    const LogCapture log;
    const auto wifi = manager();
    QVERIFY(!wifi->AddNetwork(QStringLiteral("Lab"), QString()));
    QCOMPARE(log.lines().filter(QRegularExpression(QStringLiteral("^!no open database:."))).size(),
             1);
    QVERIFY(!wifi->RestoreFabricalSetting());
    QCOMPARE(known(*wifi), QStringList());
}

void TstWifiNetworks::keyLength_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<bool>("accepted");
    QTest::newRow("0: an open network") << QString() << true;
    QTest::newRow("1") << characters(1) << false;
    QTest::newRow("7") << characters(7) << false;
    QTest::newRow("7 of two bytes") << QString(7, QChar(0xF6)) << false;
    QTest::newRow("8") << characters(8) << true;
    QTest::newRow("63") << characters(63) << true;
    QTest::newRow("63 of two bytes") << QString(63, QChar(0xF6)) << true;
    QTest::newRow("64") << characters(64) << false;
}

void TstWifiNetworks::keyLength()
{
    QFETCH(QString, key);
    QFETCH(bool, accepted);
    auto wifi = manager();
    const QByteArray before = Meter::readFile(supplicantFile);
    Meter::clearJournal();
    QCOMPARE(wifi->AddNetwork(QStringLiteral("Lab"), key), accepted);
    const bool isTaken = accepted && key.toUtf8().size() <= 63; // wpa_passphrase counts bytes
    QCOMPARE(Meter::readFile(supplicantFile) != before, isTaken);
    QCOMPARE(Meter::journal().contains(restart), accepted);
    wifi.reset();
    QCOMPARE(rows(database(), QStringLiteral("NETWORKS")).size(), accepted ? 1 : 0);
}

void TstWifiNetworks::addStoresRow()
{
    auto wifi = manager();
    QVERIFY(!wifi->AddNetwork(QString(), QStringLiteral("12345678")));
    QVERIFY(wifi->AddNetwork(QStringLiteral("Lab"), QString()));
    QVERIFY(wifi->AddNetwork(QStringLiteral("Office"), QStringLiteral("12345678")));
    QCOMPARE(known(*wifi),
             QStringList({QStringLiteral("Lab|0|"), QStringLiteral("Office|1|12345678")}));
    wifi.reset();
    QCOMPARE(rows(database(), QStringLiteral("NETWORKS")),
             QStringList({QStringLiteral("1|Lab|0|"), QStringLiteral("2|Office|1|12345678")}));
    QCOMPARE(known(*manager()),
             QStringList({QStringLiteral("Lab|0|"), QStringLiteral("Office|1|12345678")}));
}

void TstWifiNetworks::addReplacesRow()
{
    auto wifi = manager();
    for (const char *name : {"First", "Second", "Third"})
        QVERIFY(wifi->AddNetwork(QLatin1String(name), QString()));
    QVERIFY(wifi->AddNetwork(QStringLiteral("First"), QStringLiteral("12345678")));
    QVERIFY(wifi->AddNetwork(QStringLiteral("first"), QString())); // case counts
    wifi.reset();
    QCOMPARE(rows(database(), QStringLiteral("NETWORKS")),
             QStringList({QStringLiteral("2|Second|0|"), QStringLiteral("3|Third|0|"),
                          QStringLiteral("4|First|1|12345678"), QStringLiteral("5|first|0|")}));
}

void TstWifiNetworks::deleteRemovesRow()
{
    auto wifi = manager();
    QVERIFY(wifi->AddNetwork(QStringLiteral("Lab"), QString()));
    QVERIFY(wifi->AddNetwork(QStringLiteral("Office"), QString()));
    Meter::clearJournal();
    QVERIFY(wifi->DeleteNetwork(QStringLiteral("Office")));
    QCOMPARE(Meter::readFile(supplicantFile), header + openEntry("Lab"));
    QCOMPARE(Meter::journal().count(restart), 1);
    QVERIFY(wifi->DeleteNetwork(QStringLiteral("never stored")));
    QCOMPARE(Meter::journal().count(restart), 2);
    QVERIFY(wifi->DeleteNetwork(QString()));
    QCOMPARE(Meter::journal().count(restart), 3);
    wifi.reset();
    QCOMPARE(rows(database(), QStringLiteral("NETWORKS")), QStringList(QStringLiteral("1|Lab|0|")));
}

void TstWifiNetworks::everyRowOfAName()
{
    manager().reset();
    change(database(),
           {QStringLiteral("INSERT INTO NETWORKS VALUES (1,'Lab',0,''),(2,'Lab',1,'12345678'),"
                           "(3,'Office',0,''),(4,'Office',0,'')")});
    auto wifi = manager();
    QCOMPARE(known(*wifi).size(), 4);
    QVERIFY(wifi->AddNetwork(QStringLiteral("Office"), QString()));
    QVERIFY(wifi->DeleteNetwork(QStringLiteral("Lab")));
    wifi.reset();
    QCOMPARE(rows(database(), QStringLiteral("NETWORKS")),
             QStringList(QStringLiteral("3|Office|0|")));
}

void TstWifiNetworks::missingTable()
{
    manager().reset();
    change(database(), {QStringLiteral("DROP TABLE NETWORKS")});
    auto wifi = manager();
    const LogCapture log;
    QVERIFY(!wifi->AddNetwork(QStringLiteral("Lab"), QString()));
    QVERIFY(!wifi->DeleteNetwork(QStringLiteral("Lab")));
    QCOMPARE(log.lines().size(), 2);
    for (const QString &line : log.lines())
        QVERIFY2(line.startsWith(QLatin1String("_AddWifiToDataBase: no such table: NETWORKS")),
                 qPrintable(line));
}

void TstWifiNetworks::connectionOfTheDriver()
{
    const QString name = QStringLiteral("WiFi");
    auto wifi = manager();
    QVERIFY(QSqlDatabase::contains(name));
    {
        const QSqlDatabase handle = QSqlDatabase::database(name, false);
        QCOMPARE(handle.databaseName(), database());
        QCOMPARE(handle.driverName(), QStringLiteral("QSQLITE"));
        QCOMPARE(handle.connectOptions(),
                 QStringLiteral("Version=3;Legacy Format=True; PRAGMA temp_store=memory;"
                                "PRAGMA synchronous = FULL;PRAGMA journal_mode = DELETE;"
                                "PRAGMA locking_mode=EXCLUSIVE;"));
    }
    const LogCapture log;
    wifi.reset();
    QVERIFY(!QSqlDatabase::contains(name));
    wifi = manager();
    QVERIFY(QSqlDatabase::contains(name));
    QCOMPARE(log.lines(), QStringList()); // no warning about a connection in use
}

void TstWifiNetworks::secondManagerTakesTheConnection()
{
    auto first = manager();
    const auto second = manager();
    QVERIFY(!first->AddNetwork(QStringLiteral("Lost"), QString()));
    first.reset();
    QVERIFY(second->AddNetwork(QStringLiteral("Lab"), QString()));
    QCOMPARE(known(*second), QStringList(QStringLiteral("Lab|0|")));
}

void TstWifiNetworks::listBelongsToTheCaller()
{
    const auto wifi = manager();
    QVERIFY(wifi->AddNetwork(QStringLiteral("Lab"), QStringLiteral("12345678")));
    std::unique_ptr<QList<WiFi::Network *>> networks(wifi->GetMyNetwork());
    QCOMPARE(networks->size(), 1);
    const WiFi::Network *network = networks->first();
    QCOMPARE(network->parent(), nullptr);
    QCOMPARE(network->state, int(WiFi::Network::wifi_States_OFF));
    QCOMPARE(network->address + network->mask + network->broadcast, QString());
    qDeleteAll(*networks);
    QCOMPARE(known(*wifi).size(), 1);
}

void TstWifiNetworks::closedDatabase()
{
    QDir().mkpath(database()); // a folder in the file's place
    const auto wifi = manager();
    const LogCapture log;
    QVERIFY(!wifi->AddNetwork(QString(), QString())); // refused before the database is used
    QVERIFY(!wifi->AddNetwork(QStringLiteral("Lab"), characters(7)));
    QVERIFY(!wifi->AddNetwork(QStringLiteral("Lab"), QString()));
    QVERIFY(!wifi->DeleteNetwork(QStringLiteral("Lab")));
    QCOMPARE(log.lines(),
             QStringList(
                 {QStringLiteral("KTV_Connection::DB is CLOSE!"), QStringLiteral("DB is CLOSE!")}));
}

void TstWifiNetworks::failedWriteChangesNothing()
{
    auto wifi = manager();
    QVERIFY(wifi->AddNetwork(QStringLiteral("Lab"), QString()));
    wifi.reset();
    change(database(),
           {QStringLiteral("CREATE TRIGGER no_office BEFORE INSERT ON NETWORKS WHEN "
                           "NEW.NET_Key='12345678' BEGIN SELECT RAISE(ABORT, 'full'); END"),
            QStringLiteral("CREATE TRIGGER no_delete BEFORE DELETE ON NETWORKS WHEN "
                           "OLD.NET_ESSID='Kept' BEGIN SELECT RAISE(ABORT, 'kept'); END"),
            QStringLiteral("INSERT INTO NETWORKS VALUES (7,'Kept',0,'')")});
    wifi = manager();
    const QByteArray file = Meter::readFile(supplicantFile);
    Meter::clearJournal();
    const LogCapture log;
    QVERIFY(!wifi->AddNetwork(QStringLiteral("Lab"), QStringLiteral("12345678")));
    QVERIFY(!wifi->DeleteNetwork(QStringLiteral("Kept")));
    QVERIFY(!wifi->AddNetwork(QStringLiteral("Kept"), QString()));
    QCOMPARE(log.lines().size(), 3);
    QVERIFY(
        log.lines().at(0).startsWith(QLatin1String("KTV_Connection::_AddWifiToDataBase: full")));
    QVERIFY(log.lines().at(1).startsWith(QLatin1String("_AddWifiToDataBase: kept")));
    QVERIFY(log.lines().at(2).startsWith(QLatin1String("_AddWifiToDataBase: kept")));
    QCOMPARE(Meter::readFile(supplicantFile), file);
    QVERIFY(!Meter::journal().contains(restart));
    wifi.reset();
    QCOMPARE(rows(database(), QStringLiteral("NETWORKS")),
             QStringList({QStringLiteral("1|Lab|0|"), QStringLiteral("7|Kept|0|")}));
}

void TstWifiNetworks::factoryReset()
{
    auto wifi = manager();
    QVERIFY(wifi->AddNetwork(QStringLiteral("Lab"), QString()));
    const QByteArray file = Meter::readFile(supplicantFile);
    Meter::clearJournal();
    QVERIFY(wifi->RestoreFabricalSetting());
    QCOMPARE(known(*wifi), QStringList());
    QCOMPARE(Meter::readFile(supplicantFile), file); // stays until the next change
    QVERIFY(!Meter::journal().contains(restart));
    QVERIFY(wifi->AddNetwork(QStringLiteral("Office"), QString()));
    QCOMPARE(Meter::readFile(supplicantFile), header + openEntry("Office", true));
    wifi.reset();
    QCOMPARE(rows(database(), QStringLiteral("Setting")),
             QStringList(QStringLiteral("1|Version|0")));
}

void TstWifiNetworks::emptyListGivesHeader()
{
    Meter::writeFile(supplicantFile, QByteArray(4000, 'x'));
    const auto wifi = manager();
    QCOMPARE(Meter::readFile(supplicantFile), header);
    QCOMPARE(Meter::journal().count(restart), 1);
    QCOMPARE(Meter::readFile(fileAtRestart), header); // written before the restart
}

void TstWifiNetworks::supplicantFileIsExact()
{
    const QString office = QStringLiteral("Office");
    const QString key = QStringLiteral("12345678");
    const auto wifi = manager();
    QVERIFY(wifi->AddNetwork(QStringLiteral("Lab"), QString()));
    QCOMPARE(Meter::readFile(supplicantFile), header + openEntry("Lab", true));
    QVERIFY(wifi->AddNetwork(office, key));
    const QByteArray expected = header + openEntry("Lab") + protectedEntry(office, key, true);
    QCOMPARE(Meter::readFile(supplicantFile), expected);
    QCOMPARE(Meter::readFile(fileAtRestart), expected);
    QVERIFY(expected.endsWith("\n\tpriority=100\n}\n\n"));
}

void TstWifiNetworks::preference_data()
{
    QTest::addColumn<QString>("essid");
    QTest::addColumn<bool>("lab");
    QTest::addColumn<bool>("office");
    QTest::newRow("open network") << "Lab" << true << false;
    QTest::newRow("protected network") << "Office" << false << true;
    QTest::newRow("case counts") << "lab" << false << false;
    QTest::newRow("not stored") << "Home" << false << false;
    QTest::newRow("none") << "" << false << false;
}

void TstWifiNetworks::preference()
{
    QFETCH(QString, essid);
    QFETCH(bool, lab);
    QFETCH(bool, office);
    const QString key = QStringLiteral("12345678");
    auto wifi = manager();
    QVERIFY(wifi->AddNetwork(QStringLiteral("Lab"), QString()));
    QVERIFY(wifi->AddNetwork(QStringLiteral("Office"), key));
    Meter::clearJournal();
    wifi->SetPreferedNetwork(essid);
    QCOMPARE(Meter::readFile(supplicantFile),
             header + openEntry("Lab", lab)
                 + protectedEntry(QStringLiteral("Office"), key, office));
    QCOMPARE(Meter::journal().count(restart), 1);
    wifi.reset();
    QCOMPARE(rows(database(), QStringLiteral("NETWORKS")),
             QStringList({QStringLiteral("1|Lab|0|"), QStringLiteral("2|Office|1|12345678")}));
    manager().reset(); // the choice is not stored
    QVERIFY(!Meter::readFile(supplicantFile).contains("priority"));
}

void TstWifiNetworks::hostileNames_data()
{
    QTest::addColumn<QString>("essid");
    QTest::newRow("shell") << "$(touch /tmp/hit)`touch /tmp/hit`;touch /tmp/hit";
    QTest::newRow("SQL") << "'; DROP TABLE NETWORKS; --";
    QTest::newRow("quotation mark") << "a\"b";
    QTest::newRow("brace and marker") << "network={}";
    QTest::newRow("backslashes") << "\\x00\\\\n%1%s";
    QTest::newRow("option") << "-h";
    QTest::newRow("blanks") << "  two  blanks  ";
    QTest::newRow("UTF-8") << QStringLiteral("\u0141\u0105ka \u2126 \U0001F4F6");
    QTest::newRow("line feed") << "a\nb";
    QTest::newRow("32 bytes") << QString(32, QLatin1Char('~'));
    QTest::newRow("longer than a name can be") << QString(300, QLatin1Char('n'));
}

void TstWifiNetworks::hostileNames()
{
    QFETCH(QString, essid);
    const QString key = QStringLiteral("'; \"$(x)\\");
    auto wifi = manager();
    QVERIFY(wifi->AddNetwork(essid, QString()));
    QCOMPARE(known(*wifi), QStringList(essid + QStringLiteral("|0|")));
    QCOMPARE(Meter::readFile(supplicantFile), header + openEntry(essid.toUtf8(), true));
    QVERIFY(wifi->AddNetwork(essid, key));
    QCOMPARE(known(*wifi), QStringList(essid + QStringLiteral("|1|") + key));
    QCOMPARE(Meter::readFile(supplicantFile), header + protectedEntry(essid, key, true));
    QVERIFY(wifi->DeleteNetwork(essid));
    QCOMPARE(known(*wifi), QStringList());
    QVERIFY(!QFile::exists(QStringLiteral("/tmp/hit")));
}

void TstWifiNetworks::toolFailure_data()
{
    QTest::addColumn<QByteArray>("behaviour");
    QTest::newRow("prints an error") << QByteArray("stdout=Passphrase must be 8..63 characters");
    QTest::newRow("marker not at the start") << QByteArray("stdout= network={}");
    QTest::newRow("marker in capitals") << QByteArray("stdout=Network={}");
    QTest::newRow("prints nothing") << QByteArray("silent=1");
    QTest::newRow("hangs") << QByteArray("hang=1");
    QTest::newRow("hangs in the middle") << QByteArray("noise=network={\\n\\tssid=\nhang=1");
    QTest::newRow("missing") << QByteArray();
}

void TstWifiNetworks::toolFailure()
{
    QFETCH(QByteArray, behaviour);
    const QString tool = QStringLiteral("wpa_passphrase");
    if (behaviour.isEmpty()) {
        Meter::hideProgram(tool);
    } else {
        Meter::recordProgram(tool);
        Meter::setBehaviour(tool, behaviour);
    }
    auto wifi = manager();
    QVERIFY(wifi->AddNetwork(QStringLiteral("Lab"), QString()));
    QVERIFY(wifi->AddNetwork(QStringLiteral("Office"), QStringLiteral("12345678")));
    QCOMPARE(Meter::readFile(supplicantFile), header + openEntry("Lab"));
    QCOMPARE(known(*wifi).size(), 2); // missing in the file, not in the database
}

void TstWifiNetworks::fileThatCannotBeOpened()
{
    QDir().mkpath(supplicantFile); // a folder in the file's place
    Meter::recordProgram(QStringLiteral("wpa_passphrase"));
    const LogCapture log;
    auto wifi = manager();
    QVERIFY(wifi->AddNetwork(QStringLiteral("Lab"), QStringLiteral("12345678")));
    const QRegularExpression line(
        QStringLiteral("^KTV_Connection::_buildConfFile: open file:[^ ].*"));
    QCOMPARE(log.lines().filter(line).size(), 2);
    QCOMPARE(Meter::journal().filter(QStringLiteral("wpa_passphrase")), QStringList());
    QVERIFY(!Meter::journal().contains(restart));
    QDir().rmdir(supplicantFile);
}

void TstWifiNetworks::fullCardLeavesTheFileAsItWas()
{
    Volume card(QFileInfo(supplicantFile).path());
    auto wifi = manager();
    QVERIFY(wifi->AddNetwork(QStringLiteral("Lab"), QString()));
    const QByteArray before = Meter::readFile(supplicantFile);
    card.fillUp();
    Meter::clearJournal();
    const LogCapture log;
    QVERIFY(wifi->AddNetwork(QStringLiteral("Office"), QString())); // stored all the same
    QCOMPARE(log.lines(),
             QStringList(QStringLiteral("KTV_Connection::_buildConfFile: open file:")
                         + qt_error_string(ENOSPC)));
    QCOMPARE(Meter::readFile(supplicantFile), before);
    QVERIFY(!Meter::journal().contains(restart));
    card.fill(0);
    wifi->SetPreferedNetwork(QString());
    QCOMPARE(Meter::readFile(supplicantFile), header + openEntry("Lab") + openEntry("Office"));
    QCOMPARE(Meter::readFile(fileAtRestart), Meter::readFile(supplicantFile));
    QCOMPARE(QDir(QFileInfo(supplicantFile).path()).entryList(QDir::Files).size(), 1);
}

void TstWifiNetworks::fewDescriptorsLoseNoNetwork()
{
    auto wifi = manager();
    QVERIFY(wifi->AddNetwork(QStringLiteral("Lab"), QStringLiteral("12345678")));
    constexpr int enough = 12;
    for (int left = 0; left <= enough; ++left) {
        const QString name = QStringLiteral("Net%1").arg(left);
        const LogCapture log;
        bool isAdded = false;
        {
            const Meter::FewDescriptors few(left);
            isAdded = wifi->AddNetwork(name, QStringLiteral("12345678"));
        }
        const QByteArray file = Meter::readFile(supplicantFile);
        QVERIFY2(file.contains("ssid=\"Lab\""), qPrintable(name));
        const bool isInFile = file.contains("ssid=\"" + name.toUtf8() + '"');
        QVERIFY2(isAdded || !isInFile, qPrintable(name));
        QVERIFY2(isInFile || !log.lines().isEmpty(), qPrintable(name));
        QCOMPARE(isInFile || left < enough, true);
    }
}

void TstWifiNetworks::withoutInterfaceNothingIsRestarted()
{
    Meter::recordProgram(QStringLiteral("ls"));
    Meter::setBehaviour(QStringLiteral("ls"), "stdout=eth0\\nlo");
    auto wifi = manager();
    QCOMPARE(wifi->getInterfaceName(), QString());
    QVERIFY(!QFile::exists(supplicantFile));
    QVERIFY(wifi->AddNetwork(QStringLiteral("Lab"), QString()));
    QCOMPARE(Meter::readFile(supplicantFile), header + openEntry("Lab", true));
    QCOMPARE(Meter::journal().filter(QStringLiteral("systemctl")), QStringList());
}

void TstWifiNetworks::neighbouringInterfaceNames()
{
    Meter::recordProgram(QStringLiteral("ls"));
    Meter::setBehaviour(QStringLiteral("ls"), "stdout=lo\\np2p-wlan0-0\\nwlan0\\nwlan0mon");
    const auto wifi = manager();
    QCOMPARE(wifi->getInterfaceName(), QStringLiteral("wlan0"));
    QCOMPARE(Meter::journal().filter(QStringLiteral("systemctl")), QStringList(restart));
}

void TstWifiNetworks::secretsAreReadableByTheOwnerOnly()
{
    auto wifi = manager();
    QVERIFY(wifi->AddNetwork(QStringLiteral("Office"), QStringLiteral("12345678")));
    QCOMPARE(othersRights(database()), QFile::Permissions());
    QCOMPARE(othersRights(supplicantFile), QFile::Permissions());
    QVERIFY(wifi->RestoreFabricalSetting());
    QCOMPARE(othersRights(database()), QFile::Permissions());
    wifi.reset();
    // Files as written by an earlier version.
    const auto everyone =
        QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::ReadOther;
    QVERIFY(QFile::setPermissions(database(), everyone));
    QVERIFY(QFile::setPermissions(supplicantFile, everyone));
    wifi = manager();
    QCOMPARE(othersRights(database()), QFile::Permissions());
    QCOMPARE(othersRights(supplicantFile), QFile::Permissions());
}

void TstWifiNetworks::noKeyInTheLog()
{
    const QString key = QStringLiteral("correct-horse");
    Meter::hideProgram(QStringLiteral("wpa_passphrase"));
    const LogCapture log;
    auto wifi = manager();
    QVERIFY(wifi->AddNetwork(QStringLiteral("Office"), key));
    QVERIFY(wifi->DeleteNetwork(QStringLiteral("Office")));
    wifi.reset();
    Meter::writeFile(database(), QByteArray(8192, 'g')); // not a database
    wifi = manager();
    QVERIFY(!wifi->AddNetwork(QStringLiteral("Office"), key));
    QVERIFY(!log.lines().isEmpty());
    QVERIFY(!log.lines().join(QLatin1Char('\n')).contains(key));
}

KTV_METER_TEST_MAIN(TstWifiNetworks)
#include "tst_wifi_networks.moc"
