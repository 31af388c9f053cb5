#include "support/LogCapture.h"
#include "support/Meter.h"
#include "support/Volume.h"

#include <configuration/KTV_InterfaceConfig.h>

#include <QDir>
#include <QMetaEnum>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTemporaryDir>
#include <QVariant>
#include <QtEndian>
#include <QtTest>

#include <climits>
#include <memory>

using Config = KTV_InterfaceConfig;

namespace {

const QString fileName = QStringLiteral("interfaceConfig.db");

/** A file of settings seen through another connection. */
class Reader
{
public:
    explicit Reader(const QString &path)
    {
        m_db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("reader"));
        m_db.setDatabaseName(path);
        if (!m_db.open())
            qFatal("cannot open %s", qPrintable(path));
    }
    ~Reader()
    {
        m_db.close();
        m_db = QSqlDatabase();
        QSqlDatabase::removeDatabase(QStringLiteral("reader"));
    }
    Q_DISABLE_COPY_MOVE(Reader)

    /** Rows of a statement, columns joined by "|". */
    QStringList rows(const QString &statement) const
    {
        QSqlQuery query(m_db);
        if (!query.exec(statement))
            return {query.lastError().text()};
        QStringList rows;
        while (query.next()) {
            QStringList columns;
            for (int i = 0; i < query.record().count(); ++i)
                columns += query.isNull(i) ? QStringLiteral("NULL") : query.value(i).toString();
            rows += columns.join('|');
        }
        return rows;
    }
    QStringList settings() const
    {
        return rows(QStringLiteral("SELECT CON_Key,CON_Value FROM CONFIG_STR ORDER BY CONk_1_ID"));
    }

private:
    QSqlDatabase m_db;
};

const QStringList closedLine {QStringLiteral("KTV_InterfaceConfig: DB is CLOSE!")};

} // namespace

/** The settings: values as clients see them, and the file as another program sees it. */
class TstKtvInterfaceConfig : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void newFile();
    void connection();
    void namesOfKeys_data();
    void namesOfKeys();
    void directories_data();
    void directories();
    void directoryTooDeep();

    void textRoundTrip_data();
    void textRoundTrip();
    void integerRoundTrip_data();
    void integerRoundTrip();
    void integerOfText_data();
    void integerOfText();
    void laterValueReplaces();
    void firstOfDuplicateRowsCounts();
    void rowWithoutValueIsEmpty();
    void deleteValue_data();
    void deleteValue();
    void otherStatementsRunAfterAFailure();
    void writesAreOneTransaction();
    void restore();

    void existingFileIsUsedAsItIs();
    void emptyFileCountsAsMissing();
    void openTwice();
    void garbage_data();
    void garbage();
    void socketIsReplaced();
    void directoryInTheFilesPlaceIsKept();
    void closedStoreOpensOnIntegerRead();
    void readOnlyCard();
    void fullCard();
    void fullCardAtCreation();
    void lockedFile();
    void tablesChangedByAnotherProgram();
    void connectionIsRemoved();

private:
    QString path() const { return directory() + fileName; }
    QString directory() const { return m_directory->path() + '/'; }

    std::unique_ptr<QTemporaryDir> m_directory;
};

void TstKtvInterfaceConfig::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
}

void TstKtvInterfaceConfig::cleanup()
{
    m_directory.reset();
    QVERIFY2(QSqlDatabase::connectionNames().isEmpty(), "a connection was left behind");
}

void TstKtvInterfaceConfig::newFile()
{
    const LogCapture log;
    {
        Config config(directory());
        QCOMPARE(config.getValue(Config::MAIN_Lang, QStringLiteral("EN")), QStringLiteral("EN"));
        QCOMPARE(config.getValue(Config::Power_Time1, 5), 5);
    }
    QCOMPARE(log.lines(), QStringList());
    const Reader reader(path());
    QCOMPARE(reader.rows("SELECT name, sql FROM sqlite_master WHERE type = 'table'"),
             (QStringList {"Setting|CREATE TABLE Setting (SETk_1_ID INTEGER UNIQUE PRIMARY KEY,"
                           "SET_Key VARCHAR(255),SET_Value VARCHAR(255))",
                           "CONFIG_STR|CREATE TABLE CONFIG_STR (CONk_1_ID INTEGER UNIQUE PRIMARY "
                           "KEY,CON_Key VARCHAR(255),CON_Value VARCHAR(255))"}));
    QCOMPARE(reader.rows("SELECT * FROM Setting"), QStringList("1|Version|0"));
    QCOMPARE(reader.settings(), QStringList());
    QCOMPARE(QDir(directory()).entryList(QDir::Files), QStringList(fileName)); // and no journal
}

void TstKtvInterfaceConfig::connection()
{
    const Config config(directory());
    const auto handle = QSqlDatabase::database("interfaceConfig", false);
    QVERIFY(handle.isOpen());
    QCOMPARE(handle.driverName(), QStringLiteral("QSQLITE"));
    QCOMPARE(handle.databaseName(), path());
    QCOMPARE(handle.connectOptions(),
             QStringLiteral("Version=3;Legacy Format=True; PRAGMA temp_store=memory;"
                            "PRAGMA synchronous = FULL;PRAGMA journal_mode = DELETE;"
                            "PRAGMA locking_mode=EXCLUSIVE;"));
    QSqlQuery query(handle);
    QVERIFY(query.exec("PRAGMA synchronous") && query.next());
    QCOMPARE(query.value(0).toInt(), 2); // SQLite's default: the options have no effect
    QVERIFY(query.exec("PRAGMA locking_mode") && query.next());
    QCOMPARE(query.value(0).toString(), QStringLiteral("normal"));
}

void TstKtvInterfaceConfig::namesOfKeys_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<QString>("name");
    const char *const names[] = {"MAIN_Lang",
                                 "MAIN_UseScreenKeyboard",
                                 "MAIN_HideNoCriticalDialog",
                                 "MAIN_OffSound",
                                 "MAIN_TemperatureUnit",
                                 "MAIN_StartScreen",
                                 "MAIN_Pin",
                                 "MAIN_MeterSN",
                                 "TEST_AutoMetoda_LastSetting",
                                 "TEST_Rezystanyjny_LastSetting",
                                 "TEST_Indukcyjny_LastSetting",
                                 "TEST_Rejestrator_LastSetting",
                                 "TEST_EngineTemperature_LastSetting",
                                 "TEST_ClampTest_LastSetting",
                                 "PRINT_Customer_Label",
                                 "PRINT_AutoPrint",
                                 "SERIS_LogerRun",
                                 "Power_Time1",
                                 "Power_Time2"};
    int key = 0;
    for (const char *name : names)
        QTest::newRow(name) << ++key << QString(name);
    QCOMPARE(QMetaEnum::fromType<Config::SettingKey>().keyCount(), key);
}

void TstKtvInterfaceConfig::namesOfKeys()
{
    QFETCH(int, key);
    QFETCH(QString, name);
    {
        Config config(directory());
        QCOMPARE(config.enumToString(Config::SettingKey(key)), name);
        config.setValue(Config::SettingKey(key), QStringLiteral("value"));
        QCOMPARE(config.enumToString(Config::SettingKey(0)), QString());
        QCOMPARE(config.enumToString(Config::SettingKey(20)), QString());
    }
    QCOMPARE(Reader(path()).settings(), QStringList(name + "|value"));
}

void TstKtvInterfaceConfig::directories_data()
{
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<QString>("file");
    // One row in each line.
    // clang-format off
    QTest::newRow("existing directory") << "" << "interfaceConfig.db";
    QTest::newRow("missing directory is created") << "new/" << "new/interfaceConfig.db";
    QTest::newRow("without a slash the name is glued to it") << "Data" << "DatainterfaceConfig.db";
    QTest::newRow("quotes") << "a'b\"c;--/" << "a'b\"c;--/interfaceConfig.db";
    QTest::newRow("percent") << "%1%s%20/" << "%1%s%20/interfaceConfig.db";
    QTest::newRow("non-ASCII") << QStringLiteral("żółć 日本/")
        << QStringLiteral("żółć 日本/interfaceConfig.db");
    QTest::newRow("looks like a file address") << "file:x?mode=ro/"
        << "file:x?mode=ro/interfaceConfig.db";
    // clang-format on
}

void TstKtvInterfaceConfig::directories()
{
    QFETCH(QString, suffix);
    QFETCH(QString, file);
    const LogCapture log;
    {
        Config config(directory() + suffix);
        config.setValue(Config::MAIN_Pin, QStringLiteral("1234"));
    }
    Config again(directory() + suffix);
    QCOMPARE(again.getValue(Config::MAIN_Pin, QString()), QStringLiteral("1234"));
    QVERIFY(QFile::exists(directory() + file));
    // Without a slash the directory "Data" is created all the same, and stays empty.
    QCOMPARE(log.lines(), QStringList());
}

void TstKtvInterfaceConfig::directoryTooDeep()
{
    const LogCapture log;
    Config config(directory() + "a/b/");
    const auto unopened =
        QStringLiteral("No open :(unable to open database file Error opening database");
    QCOMPARE(log.lines(), QStringList(unopened));
    QVERIFY(!QFile::exists(directory() + "a")); // one level at most is created
    QVERIFY(!config.Open());
    QVERIFY(!config.CreateNew());
}

void TstKtvInterfaceConfig::textRoundTrip_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("plain") << "DE";
    QTest::newRow("empty") << "";
    QTest::newRow("blanks") << "  a b  ";
    QTest::newRow("quotes") << "'); DROP TABLE CONFIG_STR; --\"`";
    QTest::newRow("percent") << "%1 %s %n %%";
    QTest::newRow("placeholders") << ":CON_Value ? @x $y";
    QTest::newRow("backslashes and lines") << "a\\nb\n\r\tc";
    QTest::newRow("Polish") << QStringLiteral("zażółć gęślą jaźń");
    QTest::newRow("beyond the basic plane") << QString::fromUtf8("\xf0\x9f\x94\xa7 日本語");
    QTest::newRow("NUL within") << QString::fromUtf8("a\0b", 3);
    QTest::newRow("longer than 255") << QString(300, 'x');
    QTest::newRow("a megabyte") << QString(1024 * 1024, QChar(0x17c));
    QTest::newRow("looks like a number") << "007";
}

void TstKtvInterfaceConfig::textRoundTrip()
{
    QFETCH(QString, text);
    const LogCapture log;
    {
        Config config(directory());
        config.setValue(Config::PRINT_Customer_Label, text);
        QCOMPARE(config.getValue(Config::PRINT_Customer_Label, QStringLiteral("default")), text);
    }
    Config again(directory());
    QCOMPARE(again.getValue(Config::PRINT_Customer_Label, QStringLiteral("default")), text);
    QCOMPARE(again.getValue(Config::MAIN_Pin, QStringLiteral("default")),
             QStringLiteral("default"));
    QCOMPARE(log.lines(), QStringList());
}

void TstKtvInterfaceConfig::integerRoundTrip_data()
{
    QTest::addColumn<int>("number");
    for (const int number : {0, 1, -1, 300, INT_MAX, INT_MIN})
        QTest::addRow("%d", number) << number;
}

void TstKtvInterfaceConfig::integerRoundTrip()
{
    QFETCH(int, number);
    Config config(directory());
    config.setValue(Config::Power_Time1, number);
    QCOMPARE(config.getValue(Config::Power_Time1, 77), number);
    QCOMPARE(config.getValue(Config::Power_Time1, QString()), QString::number(number));
}

void TstKtvInterfaceConfig::integerOfText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("number");
    QTest::newRow("digits") << "42" << 42;
    QTest::newRow("sign") << "+42" << 42;
    QTest::newRow("no number") << "abc" << 5;
    QTest::newRow("empty") << "" << 5;
    QTest::newRow("fraction") << "1.5" << 5;
    QTest::newRow("hexadecimal") << "0x10" << 5;
    QTest::newRow("word behind it") << "3 min" << 5;
    QTest::newRow("beyond an int") << "2147483648" << 5;
    QTest::newRow("far beyond") << "99999999999999999999" << 5;
}

void TstKtvInterfaceConfig::integerOfText()
{
    QFETCH(QString, text);
    QFETCH(int, number);
    Config config(directory());
    config.setValue(Config::Power_Time1, text);
    QCOMPARE(config.getValue(Config::Power_Time1, 5), number);
}

void TstKtvInterfaceConfig::laterValueReplaces()
{
    {
        Config config(directory());
        config.setValue(Config::MAIN_Lang, QStringLiteral("PL"));
        config.setValue(Config::MAIN_Pin, 1);
        config.setValue(Config::MAIN_Lang, QStringLiteral("DE"));
    }
    QCOMPARE(Reader(path()).settings(), (QStringList {"MAIN_Pin|1", "MAIN_Lang|DE"}));
}

void TstKtvInterfaceConfig::firstOfDuplicateRowsCounts()
{
    {
        const Config config(directory());
    }
    Reader(path()).rows("INSERT INTO CONFIG_STR (CON_Key,CON_Value) VALUES ('MAIN_Lang','PL'), "
                        "('MAIN_Lang','DE')");
    Config config(directory());
    QCOMPARE(config.getValue(Config::MAIN_Lang, QString()), QStringLiteral("PL"));
    config.setValue(Config::MAIN_Lang, QStringLiteral("US"));
    QCOMPARE(Reader(path()).settings(), QStringList("MAIN_Lang|US"));
}

void TstKtvInterfaceConfig::rowWithoutValueIsEmpty()
{
    Config config(directory());
    Reader(path()).rows("INSERT INTO CONFIG_STR (CON_Key,CON_Value) VALUES ('MAIN_Lang',NULL)");
    QCOMPARE(config.getValue(Config::MAIN_Lang, QStringLiteral("default")), QString());
    QCOMPARE(config.getValue(Config::MAIN_Lang, 7), 7);
}

void TstKtvInterfaceConfig::deleteValue_data()
{
    QTest::addColumn<QList<Config::SettingKey>>("keys");
    QTest::addColumn<QStringList>("left");
    using Keys = QList<Config::SettingKey>;
    const QStringList all {"MAIN_Lang|DE", "MAIN_Pin|1", "Power_Time2|9"};
    QTest::newRow("none") << Keys {} << all;
    QTest::newRow("one") << Keys {Config::MAIN_Pin}
                         << QStringList {"MAIN_Lang|DE", "Power_Time2|9"};
    QTest::newRow("all") << Keys {Config::Power_Time2, Config::MAIN_Lang, Config::MAIN_Pin}
                         << QStringList();
    QTest::newRow("one that is not set") << Keys {Config::MAIN_StartScreen} << all;
    QTest::newRow("one twice") << Keys {Config::MAIN_Pin, Config::MAIN_Pin}
                               << QStringList {"MAIN_Lang|DE", "Power_Time2|9"};
    QTest::newRow("no key") << Keys {Config::SettingKey(99)} << all;
}

void TstKtvInterfaceConfig::deleteValue()
{
    QFETCH(QList<Config::SettingKey>, keys);
    QFETCH(QStringList, left);
    const LogCapture log;
    {
        Config config(directory());
        config.setValue(Config::MAIN_Lang, QStringLiteral("DE"));
        config.setValue(Config::MAIN_Pin, 1);
        config.setValue(Config::Power_Time2, 9);
        config.deleteValue(keys);
        config.setValue(Config::MAIN_OffSound, 1); // the transaction has ended
        config.deleteValue({Config::MAIN_OffSound});
    }
    QCOMPARE(Reader(path()).settings(), left);
    QCOMPARE(log.lines(), QStringList());
}

void TstKtvInterfaceConfig::otherStatementsRunAfterAFailure()
{
    {
        Config config(directory());
        config.setValue(Config::MAIN_Lang, QStringLiteral("PL"));
    }
    const auto refuse = [this](const QString &what) {
        const Reader reader(path());
        reader.rows("DROP TRIGGER IF EXISTS refusal");
        reader.rows("CREATE TRIGGER refusal BEFORE " + what
                    + " ON CONFIG_STR BEGIN SELECT RAISE(ABORT, 'refused'); END");
    };
    const auto reason = QStringLiteral("refused Unable to fetch row");
    refuse("DELETE");
    {
        Config config(directory());
        const LogCapture log;
        config.setValue(Config::MAIN_Lang, QStringLiteral("DE"));
        config.deleteValue({Config::MAIN_Pin, Config::MAIN_Lang});
        QCOMPARE(log.lines(),
                 (QStringList {"setValue - DELETE:" + reason, "deleteValue:" + reason}));
    }
    QCOMPARE(Reader(path()).settings(), (QStringList {"MAIN_Lang|PL", "MAIN_Lang|DE"}));
    refuse("INSERT");
    {
        Config config(directory());
        const LogCapture log;
        config.setValue(Config::MAIN_Lang, QStringLiteral("US"));
        QCOMPARE(log.lines(), QStringList("setValue - INSERT: " + reason));
    }
    QCOMPARE(Reader(path()).settings(), QStringList());
}

void TstKtvInterfaceConfig::writesAreOneTransaction()
{
    // SQLite counts the transactions of a file in its header.
    const auto transactions = [this] {
        return qFromBigEndian<quint32>(Meter::readFile(path()).mid(24, 4).constData());
    };
    Config config(directory());
    QCOMPARE(transactions(), 1U); // both tables and the version
    config.setValue(Config::MAIN_Lang, QStringLiteral("DE"));
    QCOMPARE(transactions(), 2U);
    config.setValue(Config::MAIN_Lang, QStringLiteral("PL")); // one row is deleted, one inserted
    QCOMPARE(transactions(), 3U);
    config.setValue(Config::MAIN_Pin, 1);
    QCOMPARE(transactions(), 4U);
    config.deleteValue({Config::MAIN_Lang, Config::MAIN_Pin});
    QCOMPARE(transactions(), 5U);
    config.deleteValue({});
    QCOMPARE(transactions(), 5U);
    config.RestoreFabricalSetting();
    QCOMPARE(transactions(), 1U);
}

void TstKtvInterfaceConfig::restore()
{
    const LogCapture log;
    {
        Config config(directory());
        config.setValue(Config::MAIN_Lang, QStringLiteral("DE"));
        QCOMPARE(config.getValue(Config::MAIN_Lang, QStringLiteral("EN")), QStringLiteral("DE"));
        config.RestoreFabricalSetting();
        QCOMPARE(config.getValue(Config::MAIN_Lang, QStringLiteral("EN")), QStringLiteral("EN"));
        config.setValue(Config::MAIN_Pin, 2);
    }
    const Reader reader(path());
    QCOMPARE(reader.settings(), QStringList("MAIN_Pin|2"));
    QCOMPARE(reader.rows("SELECT * FROM Setting"), QStringList("1|Version|0"));
    QCOMPARE(log.lines(), QStringList());
}

void TstKtvInterfaceConfig::existingFileIsUsedAsItIs()
{
    Reader(path()).rows("CREATE TABLE CONFIG_STR (CON_Key, CON_Value, Extra)");
    Reader(path()).rows("INSERT INTO CONFIG_STR VALUES ('Power_Time1', 12, 'x')");
    const LogCapture log;
    {
        Config config(directory());
        QCOMPARE(config.getValue(Config::Power_Time1, 5), 12);
        config.setValue(Config::MAIN_Pin, 2);
    }
    const Reader reader(path());
    QCOMPARE(reader.rows("SELECT name FROM sqlite_master"), QStringList("CONFIG_STR"));
    QCOMPARE(reader.rows("SELECT * FROM CONFIG_STR"),
             (QStringList {"Power_Time1|12|x", "MAIN_Pin|2|NULL"}));
    QCOMPARE(log.lines(), QStringList());
}

void TstKtvInterfaceConfig::emptyFileCountsAsMissing()
{
    Meter::writeFile(path(), QByteArray());
    const LogCapture log;
    {
        Config config(directory());
        config.setValue(Config::MAIN_Pin, 2);
    }
    QCOMPARE(Reader(path()).settings(), QStringList("MAIN_Pin|2"));
    QCOMPARE(log.lines(), QStringList());
}

void TstKtvInterfaceConfig::openTwice()
{
    const LogCapture log;
    Config config(directory());
    config.setValue(Config::MAIN_Pin, 2);
    QVERIFY(config.Open());
    QVERIFY(config.Open());
    QCOMPARE(config.getValue(Config::MAIN_Pin, 0), 2);
    QCOMPARE(log.lines(), QStringList()); // no warning about a connection still in use
}

void TstKtvInterfaceConfig::garbage_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("reason");
    const auto noDatabase = QStringLiteral("file is not a database");
    QTest::newRow("noise") << QByteArray("\x7f\xff\x80noise").repeated(200) << noDatabase;
    QTest::newRow("NUL bytes") << QByteArray(4096, '\0') << noDatabase;
    QTest::newRow("one byte") << QByteArray("x") << "no such table: CONFIG_STR";
    QTest::newRow("only the first words of a database")
        << QByteArray("SQLite format 3\0", 16) << noDatabase;
    QTest::newRow("head of a database, noise behind")
        << QByteArray("SQLite format 3\0", 16) + QByteArray(4080, '\xee') << noDatabase;
}

void TstKtvInterfaceConfig::garbage()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, reason);
    Meter::writeFile(path(), content);
    {
        const LogCapture log;
        Config config(directory());
        QCOMPARE(config.getValue(Config::MAIN_Lang, QStringLiteral("EN")), QStringLiteral("EN"));
        QCOMPARE(config.getValue(Config::Power_Time1, 5), 5);
        QCOMPARE(log.lines(), QStringList());
    }
    {
        const LogCapture log;
        Config config(directory());
        config.setValue(Config::MAIN_Lang, QStringLiteral("DE"));
        QCOMPARE(log.lines(),
                 (QStringList {"setValue - DELETE:" + reason + " Unable to execute statement",
                               "setValue - INSERT: " + reason + " Unable to execute statement"}));
    }
    {
        const LogCapture log;
        Config config(directory());
        config.deleteValue({Config::MAIN_Lang, Config::MAIN_Pin});
        QCOMPARE(log.lines(),
                 (QStringList {"deleteValue:" + reason + " Unable to execute statement",
                               "deleteValue:" + reason + " Unable to execute statement"}));
    }
    QCOMPARE(Meter::readFile(path()), content); // nothing of it is lost
    Config config(directory());
    config.RestoreFabricalSetting();
    config.setValue(Config::MAIN_Lang, QStringLiteral("DE"));
    QCOMPARE(config.getValue(Config::MAIN_Lang, QString()), QStringLiteral("DE"));
}

void TstKtvInterfaceConfig::socketIsReplaced()
{
    const SocketFile socket(path());
    const LogCapture log;
    Config config(directory());
    QCOMPARE(log.lines(),
             QStringList("!no open database:unable to open database file Error opening database"));
    config.setValue(Config::MAIN_Lang, QStringLiteral("DE"));
    QCOMPARE(config.getValue(Config::MAIN_Lang, QString()), QStringLiteral("DE"));
    QVERIFY(QFileInfo(path()).isFile());
}

void TstKtvInterfaceConfig::directoryInTheFilesPlaceIsKept()
{
    QDir().mkpath(path() + "/within");
    const LogCapture log;
    Config config(directory());
    const QStringList failed {
        "!no open database:unable to open database file Error opening database",
        "KTV_InterfaceConfig::CreateNew(): file delete error:Is a directory"};
    QCOMPARE(log.lines(), failed);
    QCOMPARE(config.getValue(Config::MAIN_Lang, QStringLiteral("EN")), QStringLiteral("EN"));
    QCOMPARE(log.lines(), failed); // reading a text does not open the store again
    QCOMPARE(config.getValue(Config::Power_Time1, 5), 5);
    QCOMPARE(log.lines(), failed + failed + QStringList("DB is CLOSE!"));
    QVERIFY(QFile::exists(path() + "/within"));
}

void TstKtvInterfaceConfig::closedStoreOpensOnIntegerRead()
{
    const QString late = directory() + "a/b/";
    Config config(late);
    {
        const LogCapture log;
        QCOMPARE(config.getValue(Config::MAIN_Lang, QStringLiteral("EN")), QStringLiteral("EN"));
        QCOMPARE(log.lines(), QStringList());
        config.setValue(Config::MAIN_Lang, QStringLiteral("DE"));
        QCOMPARE(log.lines(), closedLine);
        config.setValue(Config::Power_Time1, 1);
        QCOMPARE(log.lines(), closedLine + closedLine);
        config.deleteValue({});
        QCOMPARE(log.lines(), closedLine + closedLine + closedLine);
    }
    {
        const LogCapture log;
        config.RestoreFabricalSetting();
        QCOMPARE(log.lines(),
                 (QStringList {"No open :(unable to open database file Error opening database",
                               "KTV_InterfaceConfig::RestoreFabricalSetting(): false"}));
    }
    QDir().mkpath(late); // the card is there again
    const LogCapture log;
    QCOMPARE(config.getValue(Config::Power_Time1, 5), 5);
    config.setValue(Config::MAIN_Lang, QStringLiteral("DE"));
    QCOMPARE(config.getValue(Config::MAIN_Lang, QStringLiteral("EN")), QStringLiteral("DE"));
    QCOMPARE(log.lines(), QStringList());
}

void TstKtvInterfaceConfig::readOnlyCard()
{
    Volume card(directory());
    {
        Config config(directory());
        config.setValue(Config::MAIN_Lang, QStringLiteral("DE"));
    }
    card.setReadOnly(true);
    {
        const LogCapture log;
        Config config(directory());
        QCOMPARE(config.getValue(Config::MAIN_Lang, QString()), QStringLiteral("DE"));
        QCOMPARE(log.lines(), QStringList());
        config.setValue(Config::MAIN_Lang, QStringLiteral("PL"));
        const auto reason =
            QStringLiteral("attempt to write a readonly database Unable to fetch row");
        QCOMPARE(log.lines(),
                 (QStringList {"setValue - DELETE:" + reason, "setValue - INSERT: " + reason}));
        QCOMPARE(config.getValue(Config::MAIN_Lang, QString()), QStringLiteral("DE"));
    }
    {
        const LogCapture log;
        Config config(directory());
        config.RestoreFabricalSetting();
        QCOMPARE(log.lines(),
                 (QStringList {
                     "KTV_InterfaceConfig::CreateNew(): file delete error:Read-only file system",
                     "KTV_InterfaceConfig::RestoreFabricalSetting(): false"}));
    }
    Config config(directory());
    QCOMPARE(config.getValue(Config::MAIN_Lang, QString()), QStringLiteral("DE"));
}

void TstKtvInterfaceConfig::fullCard()
{
    Volume card(directory());
    {
        Config config(directory());
        config.setValue(Config::MAIN_Lang, QStringLiteral("DE"));
        card.fillUp();
        const LogCapture log;
        config.setValue(Config::MAIN_Lang, QString(20000, 'x'));
        const auto reason = QStringLiteral("database or disk is full Unable to fetch row");
        QCOMPARE(log.lines(),
                 (QStringList {"setValue - DELETE:" + reason, "setValue - INSERT: " + reason}));
    }
    Config config(directory());
    QCOMPARE(config.getValue(Config::MAIN_Lang, QString()), QStringLiteral("DE"));
    card.fill(0);
    const LogCapture log;
    config.setValue(Config::MAIN_Lang, QStringLiteral("PL"));
    QCOMPARE(config.getValue(Config::MAIN_Lang, QString()), QStringLiteral("PL"));
    QCOMPARE(log.lines(), QStringList());
}

void TstKtvInterfaceConfig::fullCardAtCreation()
{
    Volume card(directory());
    card.fillUp();
    const LogCapture log;
    Config config(directory());
    const auto full = QStringLiteral("database or disk is full Unable to fetch row");
    QCOMPARE(log.lines(), // each statement is tried
             (QStringList {full, "no such table: Setting Unable to execute statement", full}));
    QVERIFY(config.CreateNew()); // true, because the file opens
    QCOMPARE(config.getValue(Config::MAIN_Lang, QStringLiteral("EN")), QStringLiteral("EN"));
    card.fill(0);
    QVERIFY(config.Open()); // the file without tables counts as missing
    config.setValue(Config::MAIN_Lang, QStringLiteral("DE"));
    QCOMPARE(config.getValue(Config::MAIN_Lang, QStringLiteral("EN")), QStringLiteral("DE"));
}

void TstKtvInterfaceConfig::lockedFile()
{
    {
        Config config(directory());
        config.setValue(Config::MAIN_Lang, QStringLiteral("DE"));
    }
    {
        const Reader other(path());
        QCOMPARE(other.rows("BEGIN EXCLUSIVE"), QStringList());
        const LogCapture log;
        Config config(directory());
        QCOMPARE(config.getValue(Config::MAIN_Lang, QStringLiteral("EN")), QStringLiteral("EN"));
        QCOMPARE(log.lines(), QStringList());
    }
    Config config(directory());
    QCOMPARE(config.getValue(Config::MAIN_Lang, QStringLiteral("EN")), QStringLiteral("DE"));
    {
        const Reader other(path());
        other.rows("BEGIN");
        QCOMPARE(other.settings(), QStringList("MAIN_Lang|DE")); // its lock prevents commits
        const LogCapture log;
        config.setValue(Config::MAIN_Lang, QStringLiteral("PL"));
        QCOMPARE(log.lines(),
                 QStringList("setValue: database is locked Unable to commit transaction"));
    }
    QCOMPARE(config.getValue(Config::MAIN_Lang, QStringLiteral("EN")), QStringLiteral("DE"));
    config.setValue(Config::MAIN_Lang, QStringLiteral("PL"));
    QCOMPARE(config.getValue(Config::MAIN_Lang, QStringLiteral("EN")), QStringLiteral("PL"));
}

void TstKtvInterfaceConfig::tablesChangedByAnotherProgram()
{
    Config config(directory());
    config.setValue(Config::MAIN_Lang, QStringLiteral("DE"));
    QCOMPARE(config.getValue(Config::MAIN_Lang, QStringLiteral("EN")), QStringLiteral("DE"));
    const auto change = [this](const QString &statement) {
        const LogCapture log;
        QCOMPARE(Reader(path()).rows(statement), QStringList());
    };
    change("ALTER TABLE CONFIG_STR RENAME TO Elsewhere");
    for (int i = 0; i < 2; ++i) {
        const LogCapture log;
        // Only the first statement finds tables that it does not expect.
        const QString ends[] {" Unable to fetch row", " Unable to execute statement"};
        config.setValue(Config::MAIN_Lang, QStringLiteral("PL"));
        const QString reason = "no such table: CONFIG_STR";
        QCOMPARE(log.lines(),
                 (QStringList {"setValue - DELETE:" + reason + ends[i],
                               "setValue - INSERT: " + reason + ends[1]}));
        QCOMPARE(config.getValue(Config::MAIN_Lang, QStringLiteral("EN")), QStringLiteral("EN"));
    }
    change("ALTER TABLE Elsewhere RENAME TO CONFIG_STR");
    QCOMPARE(config.getValue(Config::MAIN_Lang, QStringLiteral("EN")), QStringLiteral("DE"));
    config.setValue(Config::MAIN_Lang, QStringLiteral("PL"));
    QCOMPARE(config.getValue(Config::MAIN_Lang, QStringLiteral("EN")), QStringLiteral("PL"));
    change("ALTER TABLE CONFIG_STR RENAME COLUMN CON_Value TO Other");
    {
        const LogCapture log; // the deletion does not use the missing column, but reads the tables
        config.setValue(Config::MAIN_Lang, QStringLiteral("DE"));
        QCOMPARE(log.lines(),
                 QStringList("setValue - INSERT: table CONFIG_STR has no column named CON_Value "
                             "Unable to execute statement"));
    }
    change("BEGIN EXCLUSIVE"); // no statement that is still running locks the file
}

void TstKtvInterfaceConfig::connectionIsRemoved()
{
    const LogCapture log;
    {
        const Config config(directory());
        QVERIFY(QSqlDatabase::contains("interfaceConfig"));
    }
    QVERIFY(!QSqlDatabase::contains("interfaceConfig"));
    QCOMPARE(log.lines(), QStringList());
}

KTV_METER_TEST_MAIN(TstKtvInterfaceConfig)
#include "tst_ktv_interfaceconfig.moc"
