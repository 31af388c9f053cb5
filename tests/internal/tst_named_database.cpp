#include "support/LogCapture.h"
#include "support/Meter.h"
#include "support/Volume.h"

#include "internal/NamedDatabase_p.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>
#include <optional>

using Internal::NamedDatabase;
using Internal::Statement;
using Internal::Transaction;

/**
 * The database helper that the stores share: connection, transactions, and creation of the file.
 */
class TstNamedDatabase : public QObject
{
    Q_OBJECT
private slots:
    void init();

    void releaseRemovesTheConnection();
    void openAgainTakesAnotherFile();
    void failedOpenHasAReason();
    void transactionRollsBackUnlessCommitted();
    void innerTransactionIsPartOfTheOuter();
    void closeEndsTheTransaction();
    void commitThatCannotBeWritten();
    void schemaGoesOnAfterAFailure();
    void schemaIsOneTransaction();
    void missing_data();
    void missing();

private:
    QString path(const QString &name = QStringLiteral("a.db")) const
    {
        return m_directory->path() + '/' + name;
    }
    static int rows(NamedDatabase &database)
    {
        Statement query(database, "SELECT COUNT(*) FROM t");
        return query.isDone() && query.next() ? query.value(0).toInt() : -1;
    }
    static bool run(NamedDatabase &database, const QString &text)
    {
        return Statement(database, text).isDone();
    }

    std::unique_ptr<QTemporaryDir> m_directory;
};

void TstNamedDatabase::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
}

void TstNamedDatabase::releaseRemovesTheConnection()
{
    const LogCapture log;
    NamedDatabase database(QStringLiteral("one"));
    QVERIFY(!database.isOpen());
    QVERIFY(database.open(path()));
    QVERIFY(database.isOpen() && QSqlDatabase::contains("one"));
    database.close();
    QVERIFY(!database.isOpen() && QSqlDatabase::contains("one"));
    database.release();
    QVERIFY(!QSqlDatabase::contains("one"));
    database.release();
    QVERIFY(database.open(path()));
    QCOMPARE(log.lines(), QStringList());
}

void TstNamedDatabase::openAgainTakesAnotherFile()
{
    const LogCapture log;
    NamedDatabase database(QStringLiteral("one"));
    QVERIFY(database.open(path("a.db")) && run(database, "CREATE TABLE t (x)"));
    QVERIFY(database.open(path("b.db")));
    QCOMPARE(rows(database), -1);
    QCOMPARE(QSqlDatabase::database("one").databaseName(), path("b.db"));
    QCOMPARE(log.lines(), QStringList());
}

void TstNamedDatabase::failedOpenHasAReason()
{
    NamedDatabase database(QStringLiteral("one"));
    QVERIFY(!database.open(path("missing/a.db")));
    QVERIFY(!database.isOpen());
    QCOMPARE(database.lastError().text(),
             QStringLiteral("unable to open database file Error opening database"));
}

void TstNamedDatabase::transactionRollsBackUnlessCommitted()
{
    NamedDatabase database(QStringLiteral("one"));
    QVERIFY(database.open(path()) && run(database, "CREATE TABLE t (x)"));
    {
        const Transaction transaction(database);
        QVERIFY(run(database, "INSERT INTO t VALUES (1)"));
    }
    QCOMPARE(rows(database), 0);
    {
        Transaction transaction(database);
        QVERIFY(run(database, "INSERT INTO t VALUES (1)"));
        QVERIFY(transaction.commit());
    }
    QCOMPARE(rows(database), 1);
    QVERIFY(database.commit()); // no transaction is open
    database.rollback();
    QCOMPARE(rows(database), 1);
}

void TstNamedDatabase::innerTransactionIsPartOfTheOuter()
{
    NamedDatabase database(QStringLiteral("one"));
    QVERIFY(database.open(path()) && run(database, "CREATE TABLE t (x)"));
    for (const bool commitOuter : {false, true}) {
        Transaction outer(database);
        {
            Transaction inner(database);
            QVERIFY(run(database, "INSERT INTO t VALUES (1)"));
            QVERIFY(inner.commit());
        }
        {
            const Transaction givenUp(database); // its destructor has no effect, either
            QVERIFY(run(database, "INSERT INTO t VALUES (2)"));
        }
        QCOMPARE(rows(database), 2);
        if (commitOuter)
            QVERIFY(outer.commit());
    }
    QCOMPARE(rows(database), 2);
}

void TstNamedDatabase::closeEndsTheTransaction()
{
    const LogCapture log;
    NamedDatabase database(QStringLiteral("one"));
    QVERIFY(database.open(path()) && run(database, "CREATE TABLE t (x)"));
    {
        Transaction transaction(database);
        QVERIFY(run(database, "INSERT INTO t VALUES (1)"));
        database.close();
        QVERIFY(database.open(path()));
        Transaction next(database);
        QVERIFY(run(database, "INSERT INTO t VALUES (2)"));
        QVERIFY(next.commit());
    }
    QCOMPARE(rows(database), 1);
    QCOMPARE(log.lines(), QStringList());
}

void TstNamedDatabase::commitThatCannotBeWritten()
{
    NamedDatabase database(QStringLiteral("one"));
    NamedDatabase reader(QStringLiteral("two"));
    QVERIFY(database.open(path()) && run(database, "CREATE TABLE t (x)"));
    QVERIFY(run(database, "PRAGMA busy_timeout = 0"));
    QVERIFY(reader.open(path()));
    std::optional<Transaction> reading(std::in_place, reader);
    QCOMPARE(rows(reader), 0);
    {
        Transaction transaction(database);
        QVERIFY(run(database, "INSERT INTO t VALUES (1)"));
        QVERIFY(!transaction.commit());
        QCOMPARE(database.lastError().text(),
                 QStringLiteral("database is locked Unable to commit transaction"));
    }
    QCOMPARE(rows(database), 0);
    reading.reset();
    Transaction transaction(database);
    QVERIFY(run(database, "INSERT INTO t VALUES (1)"));
    QVERIFY(transaction.commit());
}

void TstNamedDatabase::schemaGoesOnAfterAFailure()
{
    NamedDatabase database(QStringLiteral("one"));
    QVERIFY(database.open(path()));
    const LogCapture log;
    Internal::createSchema(database,
                           {"CREATE TABLE t (x)", "CREATE NONSENSE", "INSERT INTO t VALUES (1)"});
    QCOMPARE(log.lines(),
             QStringList("near \"NONSENSE\": syntax error Unable to execute statement"));
    QCOMPARE(rows(database), 1);
}

void TstNamedDatabase::schemaIsOneTransaction()
{
    const Volume card(m_directory->path() + "/card", 6);
    NamedDatabase database(QStringLiteral("one"));
    QVERIFY(database.open(path("card/a.db")));
    const LogCapture log;
    Internal::createSchema(
        database, {"CREATE TABLE t (x)", "INSERT INTO t VALUES ('" + QString(100000, 'x') + "')"});
    QVERIFY(!log.lines().isEmpty());
    database.release();
    QVERIFY(Internal::isMissing(path("card/a.db"))); // an incomplete schema counts as none
}

void TstNamedDatabase::missing_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("journal");
    QTest::addColumn<bool>("isMissing");
    const QByteArray magic = QByteArray::fromHex("d9d505f920a163d7");
    const QByteArray head = magic
        + QByteArray::fromHex("00000001"
                              "12345678");
    const QByteArray wasEmpty = head + QByteArray::fromHex("00000000");
    QTest::newRow("no file") << QByteArray() << QByteArray() << true;
    QTest::newRow("no file, journal left behind") << QByteArray() << wasEmpty << true;
    QTest::newRow("empty file") << QByteArray("") << QByteArray() << true;
    QTest::newRow("one byte") << QByteArray("x") << QByteArray() << false;
    QTest::newRow("file") << QByteArray(4096, 'x') << QByteArray() << false;
    QTest::newRow("its creation was cut short") << QByteArray(4096, 'x') << wasEmpty << true;
    QTest::newRow("its creation was cut short, with pages in the journal")
        << QByteArray(4096, 'x') << wasEmpty + QByteArray(512, '\0') << true;
    QTest::newRow("a change was cut short")
        << QByteArray(4096, 'x') << head + QByteArray::fromHex("00000001") << false;
    QTest::newRow("journal without its head")
        << QByteArray(4096, 'x') << QByteArray(512, '\0') << false;
    QTest::newRow("journal cut within its head")
        << QByteArray(4096, 'x') << wasEmpty.left(19) << false;
    QTest::newRow("empty journal") << QByteArray(4096, 'x') << QByteArray("") << false;
}

void TstNamedDatabase::missing()
{
    QFETCH(QByteArray, content);
    QFETCH(QByteArray, journal);
    QFETCH(bool, isMissing);
    if (!content.isNull())
        Meter::writeFile(path(), content);
    if (!journal.isNull())
        Meter::writeFile(path("a.db-journal"), journal);
    QCOMPARE(Internal::isMissing(path()), isMissing);
    QDir().mkdir(path("directory"));
    // Not missing, although it cannot be opened.
    QCOMPARE(Internal::isMissing(path("directory")), false);
    const SocketFile socket(path("socket"));
    QCOMPARE(Internal::isMissing(path("socket")), false); // although its size is 0
}

KTV_METER_TEST_MAIN(TstNamedDatabase)
#include "tst_named_database.moc"
