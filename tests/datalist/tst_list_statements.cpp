#include "ListStore.h"
#include "support/DriverLeaks.h"
#include "support/LogCapture.h"
#include "support/Meter.h"
#include "support/SqliteWatch.h"

#include <QtTest>

#include <functional>

using ListStore::families;
using ListStore::Family;

namespace {

using Operation = std::function<void(KTV_DataList &)>;

template <typename Element> void drop(QList<Element *> *list)
{
    qDeleteAll(*list);
    delete list;
}

} // namespace

Q_DECLARE_METATYPE(Operation)

/** The exact SQL statements of the lists, and how often they flush. */
class TstListStatements : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void creation();
    void statements_data();
    void statements();
    void firstStartFlushes_data();
    void firstStartFlushes();
    void laterStartDoesNotFlush();
    void operationsFlush();
    void statementsArePreparedOnce();
    void moreTextsThanAreKept();
    void keptStatementsHoldNoLock();
    void keptStatementsWithAnotherSchema();
    void exceptions_data();
    void exceptions();
    void exceptionWhileCreating();
    void nothingIsAddedWithoutACount();
    void exceptionWhileFilling_data();
    void exceptionWhileFilling();
    void exceptionWhileReading();
    void fullCardWhileCreating();
    void fullCardWhileFilling();
    void fullCardAtTheCommit();
    void readErrorWhileFilling();
};

void TstListStatements::init()
{
    ListStore::clear();
    ListStore::writeManyDefaults("EN", 1);
}

void TstListStatements::cleanup()
{
    SqliteWatch::throwOn(QString());
    SqliteWatch::fillCardOn(QString());
}

void TstListStatements::creation()
{
    SqliteWatch::clear();
    ListStore::open();
    const QStringList made = SqliteWatch::statements();
    const QStringList schema {
        "CREATE TABLE IF NOT EXISTS Setting (SETk_1_ID INTEGER UNIQUE PRIMARY KEY,SET_Key "
        "VARCHAR(255),SET_Value VARCHAR(255))",
        "INSERT INTO Setting (SET_Key, SET_Value) VALUES ('Version',0)",
        "CREATE TABLE IF NOT EXISTS OBIECT_TYP (OBTk_1_ID INTEGER UNIQUE PRIMARY KEY,OBT_Lang "
        "VARCHAR(2),OBT_ReadOnly BOOL,OBT_Value VARCHAR(255))",
        "CREATE TABLE IF NOT EXISTS OBIECT_NAME (OBNk_1_ID INTEGER UNIQUE PRIMARY KEY,OBN_Lang "
        "VARCHAR(2),OBN_ReadOnly BOOL,OBN_Value VARCHAR(255))",
        "CREATE TABLE IF NOT EXISTS MATERIALS (MATk_1_ID INTEGER UNIQUE PRIMARY KEY,MAT_Lang "
        "VARCHAR(2),MAT_ReadOnly BOOL,MAT_Name VARCHAR(255),MAT_Alpha REAL)",
        "CREATE TABLE IF NOT EXISTS LIMITS_R (LIMk_1_ID INTEGER UNIQUE PRIMARY KEY,LIM_Lang "
        "VARCHAR(2),LIM_Name VARCHAR(255),LIM_HighLimit VARCHAR(255),LIM_LoLimit VARCHAR(255))",
        "CREATE TABLE IF NOT EXISTS LIMITS_T (LIMk_1_ID INTEGER UNIQUE PRIMARY KEY,LIM_Lang "
        "VARCHAR(2),LIM_Name VARCHAR(255),LIM_HighLimit VARCHAR(255),LIM_LoLimit VARCHAR(255))",
    };
    const QStringList seeds {
        "SELECT COUNT(*) FROM OBIECT_TYP WHERE `OBT_ReadOnly` = 1 AND `OBT_Lang`='EN'",
        "BEGIN",
        "SELECT COUNT(*) FROM OBIECT_TYP WHERE `OBT_Value` = :OBT_Value",
        "INSERT INTO OBIECT_TYP (`OBT_Lang`,`OBT_ReadOnly`,`OBT_Value`) VALUES "
        "(:OBT_Lang,:OBT_ReadOnly,:OBT_Value)",
        "COMMIT",
        "SELECT COUNT(*) FROM OBIECT_NAME WHERE `OBN_ReadOnly` = 1 AND `OBN_Lang`='EN'",
        "BEGIN",
        "SELECT COUNT(*) FROM OBIECT_NAME WHERE `OBN_Value` = :OBN_Value",
        "INSERT INTO OBIECT_NAME (`OBN_Lang`,`OBN_ReadOnly`,`OBN_Value`) VALUES "
        "(:OBN_Lang,:OBN_ReadOnly,:OBN_Value)",
        "COMMIT",
        "SELECT COUNT(*) FROM MATERIALS WHERE `MAT_ReadOnly` = 1 AND `MAT_Lang`='EN'",
        "BEGIN",
        "INSERT INTO MATERIALS (`MAT_Lang`,`MAT_ReadOnly`,`MAT_Name`,`MAT_Alpha`) VALUES "
        "(:MAT_Lang,:MAT_ReadOnly,:MAT_Name,:MAT_Alpha)",
        "COMMIT",
    };
    QCOMPARE(made, QStringList("BEGIN") + schema + QStringList("COMMIT") + seeds);
}

void TstListStatements::statements_data()
{
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<QStringList>("expected");
    const auto row = [](const char *name, const QStringList &expected, const Operation &operation) {
        QTest::newRow(name) << operation << expected;
    };
    row("add type",
        {"BEGIN", "SELECT COUNT(*) FROM OBIECT_TYP WHERE `OBT_Value` = :OBT_Value",
         "INSERT INTO OBIECT_TYP (`OBT_Lang`,`OBT_ReadOnly`,`OBT_Value`) VALUES "
         "(:OBT_Lang,:OBT_ReadOnly,:OBT_Value)",
         "COMMIT"},
        [](KTV_DataList &store) { store.AddObiectTyp("a"); });
    row("refused type",
        {"BEGIN", "SELECT COUNT(*) FROM OBIECT_TYP WHERE `OBT_Value` = :OBT_Value", "ROLLBACK"},
        [](KTV_DataList &store) { store.AddObiectTyp("EN entry 0"); });
    row("add name",
        {"BEGIN", "SELECT COUNT(*) FROM OBIECT_NAME WHERE `OBN_Value` = :OBN_Value",
         "INSERT INTO OBIECT_NAME (`OBN_Lang`,`OBN_ReadOnly`,`OBN_Value`) VALUES "
         "(:OBN_Lang,:OBN_ReadOnly,:OBN_Value)",
         "COMMIT"},
        [](KTV_DataList &store) { store.AddObiectName("a"); });
    row("add material",
        {"INSERT INTO MATERIALS (`MAT_Lang`,`MAT_ReadOnly`,`MAT_Name`,`MAT_Alpha`) VALUES "
         "(:MAT_Lang,:MAT_ReadOnly,:MAT_Name,:MAT_Alpha)"},
        [](KTV_DataList &store) { store.AddMaterial("a", 1); });
    row("add resistance limits",
        {"INSERT INTO LIMITS_R (`LIM_Lang`,`LIM_Name`,`LIM_HighLimit`,`LIM_LoLimit`) VALUES "
         "(:LIM_Lang,:LIM_Name,:LIM_HighLimit,:LIM_LoLimit)"},
        [](KTV_DataList &store) { store.AddLimit_R("a", "1", "2"); });
    row("add temperature limits",
        {"INSERT INTO LIMITS_T (`LIM_Lang`,`LIM_Name`,`LIM_HighLimit`,`LIM_LoLimit`) VALUES "
         "(:LIM_Lang,:LIM_Name,:LIM_HighLimit,:LIM_LoLimit)"},
        [](KTV_DataList &store) { store.AddLimit_T("a", "1", "2"); });

    row("update type",
        {"UPDATE OBIECT_TYP SET `OBT_Value`=:OBT_Value WHERE `OBTk_1_ID`=-7 AND "
         "`OBT_ReadOnly`= 0"},
        [](KTV_DataList &store) { store.UpdateObiectTyp(-7, "a"); });
    row("update name",
        {"UPDATE OBIECT_NAME SET `OBN_Value`=:OBN_Value WHERE `OBNk_1_ID`=2147483647 AND "
         "`OBN_ReadOnly`= 0"},
        [](KTV_DataList &store) { store.UpdateObiectName(2147483647, "a"); });
    row("update material",
        {"UPDATE MATERIALS SET `MAT_Name`=:MAT_Name,`MAT_Alpha`=:MAT_Alpha WHERE `MATk_1_ID`=5 "
         "AND `MAT_ReadOnly`= 0"},
        [](KTV_DataList &store) { store.UpdateMaterial(5, "a", 1); });
    row("update resistance limits",
        {"UPDATE LIMITS_R SET `LIM_Name`=:LIM_Name,`LIM_HighLimit`=:LIM_HighLimit,"
         "`LIM_LoLimit`=:LIM_LoLimit WHERE `LIMk_1_ID`=5"},
        [](KTV_DataList &store) { store.UpdateLimit_R(5, "a", "1", "2"); });
    row("update temperature limits",
        {"UPDATE LIMITS_T SET `LIM_Name`=:LIM_Name,`LIM_HighLimit`=:LIM_HighLimit,"
         "`LIM_LoLimit`=:LIM_LoLimit WHERE `LIMk_1_ID`=5"},
        [](KTV_DataList &store) { store.UpdateLimit_T(5, "a", "1", "2"); });

    row("delete type",
        {"SELECT `OBT_ReadOnly` FROM OBIECT_TYP WHERE `OBTk_1_ID`=2",
         "DELETE FROM OBIECT_TYP WHERE `OBTk_1_ID`=2"},
        [](KTV_DataList &store) {
            store.AddObiectTyp("a");
            SqliteWatch::clear();
            store.DeleteObiectTyp(2);
        });
    row("delete absent name", {"SELECT `OBN_ReadOnly` FROM OBIECT_NAME WHERE `OBNk_1_ID`=2"},
        [](KTV_DataList &store) { store.DeleteObiectName(2); });
    row("delete name",
        {"SELECT `OBN_ReadOnly` FROM OBIECT_NAME WHERE `OBNk_1_ID`=2",
         "DELETE FROM OBIECT_NAME WHERE `OBNk_1_ID`=2"},
        [](KTV_DataList &store) {
            store.AddObiectName("a");
            SqliteWatch::clear();
            store.DeleteObiectName(2);
        });
    row("delete material",
        {"SELECT `MAT_ReadOnly` FROM MATERIALS WHERE `MATk_1_ID`=2",
         "DELETE FROM MATERIALS WHERE `MATk_1_ID`=2"},
        [](KTV_DataList &store) {
            store.AddMaterial("a", 1);
            SqliteWatch::clear();
            store.DeleteMaterial(2);
        });
    row("delete resistance limits", {"DELETE FROM LIMITS_R WHERE `LIMk_1_ID`=2"},
        [](KTV_DataList &store) { store.DeleteLimit_R(2); });
    row("delete temperature limits", {"DELETE FROM LIMITS_T WHERE `LIMk_1_ID`=2"},
        [](KTV_DataList &store) { store.DeleteLimit_T(2); });

    const QString types = "SELECT `OBTk_1_ID`,`OBT_ReadOnly`,`OBT_Value` FROM OBIECT_TYP WHERE "
                          "`OBT_Lang`='EN'";
    row("types, both flags", {types, types}, [](KTV_DataList &store) {
        drop(store.GetObiectTyp(true, true, "", 0));
        drop(store.GetObiectTyp(false, false, "", -1));
    });
    row("types, factory rows",
        {types + " AND `OBT_ReadOnly` = 1",
         types + " AND `OBT_ReadOnly` = 1 AND `OBT_Value` LIKE :OBT_Value LIMIT 5"},
        [](KTV_DataList &store) {
            drop(store.GetObiectTyp(true, false, "", 0));
            drop(store.GetObiectTyp(true, false, "a", 5));
        });
    row("types, user rows",
        {types + " AND `OBT_ReadOnly` = 0 ",
         types + " AND `OBT_ReadOnly` = 0  AND `OBT_Value` LIKE :OBT_Value",
         types + " AND `OBT_ReadOnly` = 0  LIMIT 1"},
        [](KTV_DataList &store) {
            drop(store.GetObiectTyp(false, true, "", 0));
            drop(store.GetObiectTyp(false, true, "a", 0));
            drop(store.GetObiectTyp(false, true, "", 1));
        });
    row("types, a language with a quote",
        {"SELECT `OBTk_1_ID`,`OBT_ReadOnly`,`OBT_Value` FROM OBIECT_TYP WHERE "
         "`OBT_Lang`='E''%1'"},
        [](KTV_DataList &store) {
            store.SetLang("E'%1");
            SqliteWatch::clear();
            drop(store.GetObiectTyp(true, true, "", 0));
        });
    const QString names = "SELECT `OBNk_1_ID`,`OBN_ReadOnly`,`OBN_Value` FROM OBIECT_NAME WHERE "
                          "(`OBN_Lang`='EN')";
    row("names",
        {names, names + " AND (`OBN_ReadOnly` = 1)",
         names + " AND (`OBN_ReadOnly` = 0) AND (`OBN_Value` LIKE :OBN_Value) LIMIT 2"},
        [](KTV_DataList &store) {
            drop(store.GetObiectName(false, false, "", 0));
            drop(store.GetObiectName(true, false, "", 0));
            drop(store.GetObiectName(false, true, "a", 2));
        });
    const QString materials = "SELECT `MATk_1_ID`,`MAT_ReadOnly`,`MAT_Name`,`MAT_Alpha` FROM "
                              "MATERIALS WHERE (`MAT_Lang`='EN')";
    row("materials",
        {materials, materials + " AND (`MAT_ReadOnly` = 1)",
         materials + " AND (`MAT_ReadOnly` = 0) AND (`MAT_Name` LIKE :MAT_Name) LIMIT 2"},
        [](KTV_DataList &store) {
            drop(store.GetMaterials(false, false, "", 0));
            drop(store.GetMaterials(true, false, "", 0));
            drop(store.GetMaterials(false, true, "a", 2));
        });
    for (const char letter : {'R', 'T'}) {
        const QString limits =
            QString("SELECT `LIMk_1_ID`,`LIM_Name`,`LIM_HighLimit`,`LIM_LoLimit` FROM LIMITS_")
            + letter + " WHERE (`LIM_Lang`='EN')";
        row(letter == 'R' ? "resistance limits" : "temperature limits",
            {limits, limits + " AND (`LIM_Name` LIKE :LIM_Name) LIMIT 3"},
            [letter](KTV_DataList &store) {
                const auto get =
                    letter == 'R' ? &KTV_DataList::GetLimits_R : &KTV_DataList::GetLimits_T;
                drop((store.*get)("", 0));
                drop((store.*get)("a", 3));
            });
    }
}

void TstListStatements::statements()
{
    QFETCH(Operation, operation);
    QFETCH(QStringList, expected);
    const auto store = ListStore::open();
    SqliteWatch::clear();
    operation(*store);
    QCOMPARE(SqliteWatch::statements(), expected);
}

void TstListStatements::firstStartFlushes_data()
{
    QTest::addColumn<int>("lines");
    QTest::addColumn<int>("most");
    QTest::newRow("no entries: the tables") << 0 << 5;
    QTest::newRow("one entry a list") << 1 << 20;
    QTest::newRow("100 entries a list") << 100 << 20;
    QTest::newRow("1000 entries a list") << 1000 << 20;
}

void TstListStatements::firstStartFlushes()
{
    QFETCH(int, lines);
    QFETCH(int, most);
    ListStore::clear();
    ListStore::writeManyDefaults("EN", lines);
    SqliteWatch::clear();
    const auto store = ListStore::open();
    QVERIFY2(SqliteWatch::syncs() <= most,
             qPrintable(QString("%1 calls of fsync").arg(SqliteWatch::syncs())));
    QVERIFY(SqliteWatch::syncs() > 0);
    QCOMPARE(store->GetDefaultObiectTypCount(), lines);
    QCOMPARE(store->GetDefaultObiectNameCount(), lines);
    QCOMPARE(store->GetDefaultMaterialsCount(), lines);
}

void TstListStatements::laterStartDoesNotFlush()
{
    ListStore::open();
    SqliteWatch::clear();
    const auto store = ListStore::open();
    store->SetLang("EN");
    QCOMPARE(SqliteWatch::syncs(), 0);
    QCOMPARE(SqliteWatch::changes(), 0);
}

void TstListStatements::operationsFlush()
{
    const auto store = ListStore::open();
    for (const Family &family : families()) {
        SqliteWatch::clear();
        QVERIFY(family.add(*store, "text"));
        QVERIFY(SqliteWatch::syncs() > 0 && SqliteWatch::syncs() <= 5);
        SqliteWatch::clear();
        QCOMPARE(family.add(*store, QString()), family.hasFactoryRows);
        family.names(*store);
        if (family.isUnique)
            QVERIFY(!family.add(*store, "text"));
        QCOMPARE(SqliteWatch::syncs(), 0);
    }
}

void TstListStatements::statementsArePreparedOnce()
{
    ListStore::writeManyDefaults("PL", 100);
    const auto store = ListStore::open();
    SqliteWatch::clear();
    store->SetLang("PL");
    QVERIFY(SqliteWatch::statements().size() > 300);
    QVERIFY(SqliteWatch::preparations() <= 3 * 5);
    for (const Family &family : families()) {
        family.names(*store);
        QVERIFY(family.add(*store, "first"));
        SqliteWatch::clear();
        family.names(*store);
        QVERIFY(family.add(*store, "second"));
        // Only the start and the end of a transaction.
        QCOMPARE(SqliteWatch::preparations(), family.isUnique ? 2 : 0);
    }
    // The key is part of the text: such statements are not kept.
    SqliteWatch::clear();
    for (int i = 0; i < 200; ++i)
        QVERIFY(families().front().update(*store, -i, "text"));
    families().front().names(*store);
    QCOMPARE(SqliteWatch::preparations(), 200);
}

void TstListStatements::moreTextsThanAreKept()
{
    ListStore::writeManyDefaults("EN", 100);
    const auto store = ListStore::open();
    const Family &family = families().front();
    for (const bool isAgain : {false, true}) {
        SqliteWatch::clear();
        for (int limit = 1; limit <= 70; ++limit)
            QCOMPARE(family.names(*store, {}, limit).size(), limit);
        QVERIFY2(SqliteWatch::preparations() >= 6, isAgain ? "again" : "at first");
    }
}

void TstListStatements::keptStatementsHoldNoLock()
{
    const auto store = ListStore::open();
    for (const Family &family : families()) {
        family.names(*store, QString(), 1);
        QVERIFY(family.add(*store, "first"));
        QCOMPARE(family.add(*store, "first"), !family.isUnique); // refused halfway
        ListStore::change("BEGIN EXCLUSIVE"); // fails if a statement is still running
    }
}

void TstListStatements::keptStatementsWithAnotherSchema()
{
    const auto store = ListStore::open();
    for (const Family &family : families()) {
        const auto alter = [&family](const char *text) {
            ListStore::change(QString(text).arg(family.table));
        };
        const QStringList before = family.names(*store);
        QVERIFY(family.add(*store, "first"));
        alter("ALTER TABLE %1 ADD COLUMN Extra");
        QCOMPARE(family.names(*store), before + QStringList("first"));
        QVERIFY(family.add(*store, "second"));
        alter("ALTER TABLE %1 RENAME TO Elsewhere");
        QVERIFY(!family.get(*store, true, true, "", 0));
        QVERIFY(!family.add(*store, "lost"));
        ListStore::change(QString("ALTER TABLE Elsewhere RENAME TO %1").arg(family.table));
        QCOMPARE(family.names(*store), before + QStringList({"first", "second"}));
        QVERIFY(family.add(*store, "third"));
    }
    // All statements that were prepared for the file are dropped with it.
    QVERIFY(store->RestoreFabricalSetting());
    for (const Family &family : families()) {
        QVERIFY(family.add(*store, "after"));
        QVERIFY(family.names(*store).contains("after"));
    }
    store->freeDB();
    for (const Family &family : families())
        QVERIFY(!family.add(*store, "closed"));
}

void TstListStatements::exceptions_data()
{
    QTest::addColumn<QString>("part");
    for (const char *part : {"INSERT INTO", "SELECT COUNT", "UPDATE", "DELETE"})
        QTest::newRow(part) << QString(part);
}

void TstListStatements::exceptions()
{
    QFETCH(QString, part);
    const auto store = ListStore::open();
    for (const Family &family : families()) {
        QVERIFY(family.add(*store, "kept"));
        const int id = family.idOf(*store, "kept");
        const QStringList before = family.names(*store);
        const bool isUsed = part != "SELECT COUNT" || family.isUnique;
        LogCapture log;
        SqliteWatch::throwOn(part);
        const bool isDone = family.add(*store, "new") && family.update(*store, id, "kept")
            && family.remove(*store, id);
        SqliteWatch::throwOn(QString());
        QCOMPARE(isDone, !isUsed);
        if (!isUsed)
            continue;
        QCOMPARE(log.lines(), QStringList("thrown by the driver: %1 %s"));
        if (part != "UPDATE" && part != "DELETE")
            QCOMPARE(family.names(*store), before);
        // No transaction is left open: another connection can write.
        ListStore::change(QString("DELETE FROM ") + family.table);
    }
}

void TstListStatements::exceptionWhileFilling_data()
{
    QTest::addColumn<QString>("part");
    QTest::newRow("count") << "SELECT COUNT(*) FROM OBIECT_NAME WHERE `OBN_ReadOnly`";
    QTest::newRow("duplicate test") << "SELECT COUNT(*) FROM OBIECT_NAME WHERE `OBN_Value`";
    QTest::newRow("row") << "INSERT INTO OBIECT_NAME";
}

void TstListStatements::exceptionWhileFilling()
{
    QFETCH(QString, part);
    ListStore::writeManyDefaults("EN", 3);
    SqliteWatch::throwOn(part);
    LogCapture log;
    const auto store = ListStore::open();
    SqliteWatch::throwOn(QString());
    QCOMPARE(log.lines(), QStringList("thrown by the driver: %1 %s"));
    QCOMPARE(store->GetDefaultObiectTypCount(), 3);
    QCOMPARE(store->GetDefaultObiectNameCount(), 0);
    QCOMPARE(store->GetDefaultMaterialsCount(), 3);
    store->SetLang("EN");
    QCOMPARE(store->GetDefaultObiectNameCount(), 3);
}

void TstListStatements::exceptionWhileReading()
{
    ListStore::writeManyDefaults("PL", 3);
    const auto store = ListStore::open();
    SqliteWatch::throwOnReads(true);
    LogCapture log;
    store->SetLang("PL");
    SqliteWatch::throwOnReads(false);
    QCOMPARE(log.lines(),
             QStringList({"thrown by a read", "thrown by a read", "thrown by a read"}));
    QCOMPARE(store->GetDefaultObiectTypCount(), 0);
    store->SetLang("PL");
    QCOMPARE(store->GetDefaultObiectTypCount(), 3);
}

void TstListStatements::exceptionWhileCreating()
{
    SqliteWatch::throwOn("TABLE IF NOT EXISTS LIMITS_R");
    const auto store = ListStore::open();
    cleanup();
    QVERIFY(!store->AddObiectTyp("no table"));
    QVERIFY(store->Open());
    QCOMPARE(store->GetDefaultObiectTypCount(), 1);
    QVERIFY(store->AddLimit_R("a", "1", "2"));
}

void TstListStatements::nothingIsAddedWithoutACount()
{
    const auto store = ListStore::open();
    SqliteWatch::fillCardOn("SELECT COUNT(*) FROM MATERIALS");
    store->FillDefaultMaterials();
    QCOMPARE(store->GetDefaultMaterialsCount(), 0);
    cleanup();
    QCOMPARE(store->GetDefaultMaterialsCount(), 1); // not added a second time
}

void TstListStatements::fullCardWhileCreating()
{
    // The card then has space for the other tables, but a file with only these would never be
    // completed.
    SqliteWatch::fillCardOn("TABLE IF NOT EXISTS OBIECT_NAME");
    LogCapture log;
    SqliteWatch::clear();
    const auto store = ListStore::open();
    cleanup();
    QVERIFY(log.lines().value(0).contains("Unable to fetch row"));
    QVERIFY(SqliteWatch::statements().filter("TABLE IF NOT EXISTS LIMITS_T").size() == 1);
    QVERIFY(!store->AddObiectTyp("no table"));
    QVERIFY(!store->AddLimit_T("no table", "1", "2"));
    QVERIFY(store->Open());
    QCOMPARE(ListStore::rows("SELECT COUNT(*) FROM Setting"), QStringList("1"));
    for (const Family &family : families())
        QVERIFY(family.add(*store, "a"));
    QCOMPARE(store->GetDefaultObiectNameCount(), 1);
}

void TstListStatements::fullCardWhileFilling()
{
    ListStore::writeManyDefaults("EN", 3);
    SqliteWatch::fillCardOn("INSERT INTO MATERIALS");
    const auto store = ListStore::open();
    cleanup();
    QCOMPARE(store->GetDefaultObiectTypCount(), 3);
    QCOMPARE(store->GetDefaultMaterialsCount(), 0);
    store->FillDefaultMaterials();
    QCOMPARE(store->GetDefaultMaterialsCount(), 3);
}

void TstListStatements::fullCardAtTheCommit()
{
    ListStore::writeManyDefaults("PL", 3);
    const auto store = ListStore::open();
    SqliteWatch::fillCardOn("COMMIT");
    QVERIFY(!store->AddObiectTyp("new"));
    QVERIFY(!store->AddObiectName("new"));
    QVERIFY(store->AddMaterial("new", 1)); // a single statement without a transaction
    store->SetLang("PL");
    cleanup();
    QCOMPARE(store->GetDefaultObiectTypCount(), 0);
    QCOMPARE(store->GetDefaultMaterialsCount(), 0);
    store->SetLang("EN");
    QCOMPARE(families().at(0).names(*store), QStringList("EN entry 0"));
    QCOMPARE(families().at(1).names(*store), QStringList("EN entry 0"));
    QVERIFY(store->AddObiectTyp("new"));
}

void TstListStatements::readErrorWhileFilling()
{
    constexpr int lines = 2000; // more than are read at once
    ListStore::writeManyDefaults("XX", 0);
    ListStore::writeManyDefaults("PL", lines);
    const auto store = ListStore::open("XX");
    SqliteWatch::failReadsAfter(1);
    store->SetLang("PL");
    SqliteWatch::failReadsAfter(-1);
    QCOMPARE(store->GetDefaultObiectTypCount(), 0);
    store->SetLang("PL");
    QCOMPARE(store->GetDefaultObiectTypCount(), lines);
}

KTV_METER_TEST_MAIN(TstListStatements)
#include "tst_list_statements.moc"
