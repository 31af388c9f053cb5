#include "support/DriverLeaks.h"
#include "support/LogCapture.h"
#include "support/Meter.h"
#include "support/SqliteWatch.h"

#include <configuration/KTV_InterfaceConfig.h>

#include <QTemporaryDir>
#include <QtTest>

#include <functional>
#include <memory>

using Config = KTV_InterfaceConfig;

namespace {

using Operation = std::function<void(Config &)>;

const QString selection =
    QStringLiteral("SELECT `CON_Value` FROM CONFIG_STR WHERE `CON_Key` = 'MAIN_Lang'");
const QString deletion = QStringLiteral("DELETE FROM CONFIG_STR WHERE `CON_Key` = 'MAIN_Lang'");
const QString insertion =
    QStringLiteral("INSERT INTO CONFIG_STR (`CON_Key`,`CON_Value`)VALUES (:CON_Key,:CON_Value)");

QString readLanguage(Config &config)
{
    return config.getValue(Config::MAIN_Lang, QStringLiteral("default"));
}

} // namespace

Q_DECLARE_METATYPE(Operation)

/** The exact SQL statements of the settings, and how they handle exceptions in SQLite. */
class TstSettingsStatements : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void creation();
    void statements_data();
    void statements();
    void exceptions_data();
    void exceptions();
    void exceptionWhileCreating();
    void exceptionInTheRollback();

private:
    std::unique_ptr<Config> open() const
    {
        return std::make_unique<Config>(m_directory->path() + '/');
    }

    std::unique_ptr<QTemporaryDir> m_directory;
};

void TstSettingsStatements::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
}

void TstSettingsStatements::cleanup()
{
    SqliteWatch::throwOn(QString());
    m_directory.reset();
}

void TstSettingsStatements::creation()
{
    SqliteWatch::clear();
    open();
    QCOMPARE(SqliteWatch::statements(),
             (QStringList {
                 "BEGIN",
                 "CREATE TABLE IF NOT EXISTS Setting (SETk_1_ID INTEGER UNIQUE PRIMARY KEY,"
                 "SET_Key VARCHAR(255),SET_Value VARCHAR(255))",
                 "INSERT INTO Setting (SET_Key, SET_Value) VALUES ('Version',0)",
                 "CREATE TABLE IF NOT EXISTS CONFIG_STR (CONk_1_ID INTEGER UNIQUE PRIMARY KEY,"
                 "CON_Key VARCHAR(255),CON_Value VARCHAR(255))",
                 "COMMIT",
             }));
}

void TstSettingsStatements::statements_data()
{
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<QStringList>("expected");
    const auto row = [](const char *name, const QStringList &expected, const Operation &operation) {
        QTest::newRow(name) << operation << expected;
    };
    row("read a text", {selection}, [](Config &config) { readLanguage(config); });
    row("read a number", {selection},
        [](Config &config) { config.getValue(Config::MAIN_Lang, 1); });
    row("write a text", {"BEGIN", deletion, insertion, "COMMIT"},
        [](Config &config) { config.setValue(Config::MAIN_Lang, QStringLiteral("DE")); });
    row("write a number", {"BEGIN", deletion, insertion, "COMMIT"},
        [](Config &config) { config.setValue(Config::MAIN_Lang, 1); });
    row("delete nothing", {"BEGIN", "COMMIT"}, [](Config &config) { config.deleteValue({}); });
    row("delete two",
        {"BEGIN", "DELETE FROM CONFIG_STR WHERE `CON_Key` = 'Power_Time2'", deletion, "COMMIT"},
        [](Config &config) {
            config.deleteValue({Config::Power_Time2, Config::MAIN_Lang});
        });
}

void TstSettingsStatements::statements()
{
    QFETCH(Operation, operation);
    const auto config = open();
    SqliteWatch::clear();
    operation(*config);
    QTEST(SqliteWatch::statements(), "expected");
    SqliteWatch::clear();
    operation(*config); // the same with kept statements
    QTEST(SqliteWatch::statements(), "expected");
}

void TstSettingsStatements::exceptions_data()
{
    QTest::addColumn<QString>("part");
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<QString>("line");
    const auto row = [](const char *name, const char *part, const char *operationName,
                        const Operation &operation) {
        QTest::newRow(name) << QString(part) << operation
                            << operationName + QStringLiteral(": thrown by the driver: %1 %s");
    };
    const Operation write = [](Config &config) {
        config.setValue(Config::MAIN_Lang, QStringLiteral("DE"));
    };
    const Operation remove = [](Config &config) { config.deleteValue({Config::MAIN_Lang}); };
    row("read a text", "SELECT", "getValue",
        [](Config &config) { QCOMPARE(readLanguage(config), QStringLiteral("default")); });
    row("read a number", "SELECT", "getValue",
        [](Config &config) { QCOMPARE(config.getValue(Config::MAIN_Lang, 7), 7); });
    for (const char *part : {"BEGIN", "DELETE", "INSERT", "COMMIT"})
        row(qPrintable(QStringLiteral("write, ") + part), part, "setValue", write);
    for (const char *part : {"BEGIN", "DELETE", "COMMIT"})
        row(qPrintable(QStringLiteral("delete, ") + part), part, "deleteValue", remove);
}

void TstSettingsStatements::exceptions()
{
    QFETCH(QString, part);
    QFETCH(Operation, operation);
    QFETCH(QString, line);
    const auto config = open();
    config->setValue(Config::MAIN_Lang, QStringLiteral("PL"));
    LogCapture log;
    SqliteWatch::throwOn(part);
    operation(*config);
    SqliteWatch::throwOn(QString());
    QCOMPARE(log.lines(), QStringList(line));
    QCOMPARE(readLanguage(*config), QStringLiteral("PL")); // rolled back
    config->setValue(Config::MAIN_Lang, QStringLiteral("EN"));
    QCOMPARE(readLanguage(*config), QStringLiteral("EN"));
    QCOMPARE(log.lines(), QStringList(line));
}

void TstSettingsStatements::exceptionWhileCreating()
{
    LogCapture log;
    SqliteWatch::throwOn("TABLE IF NOT EXISTS CONFIG_STR");
    const auto config = open();
    SqliteWatch::throwOn(QString());
    QCOMPARE(log.lines(), QStringList("thrown by the driver: %1 %s"));
    QVERIFY(config->Open()); // nothing of the new file was kept
    config->setValue(Config::MAIN_Lang, QStringLiteral("PL"));
    QCOMPARE(readLanguage(*config), QStringLiteral("PL"));
}

void TstSettingsStatements::exceptionInTheRollback()
{
    const auto config = open();
    config->setValue(Config::MAIN_Lang, QStringLiteral("PL"));
    LogCapture log;
    SqliteWatch::throwOn("O"); // in COMMIT, and in the ROLLBACK after it
    config->deleteValue({});
    SqliteWatch::throwOn(QString());
    QCOMPARE(
        log.lines(),
        (QStringList {"thrown by the driver: %1 %s", "deleteValue: thrown by the driver: %1 %s"}));
}

KTV_METER_TEST_MAIN(TstSettingsStatements)
#include "tst_settings_statements.moc"
