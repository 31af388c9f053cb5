#include "ListStore.h"
#include "support/LogCapture.h"
#include "support/Meter.h"

#include <configuration/KTV_InterfaceConfig.h>
#include <datasource/KTV_DataSource.h>
#include <valuebox/NumericalValueBox.h>

#include <QDir>
#include <QSqlDatabase>
#include <QtTest>

using ListStore::families;
using ListStore::Family;
using ListStore::FoundRows;
using ListStore::rows;
using ListStore::writeDefaults;

namespace {

const QString connectionName = QStringLiteral("dataList");

QString missing(const QString &language, const char *name)
{
    return QStringLiteral("Nie znaleziono lub nie otwarto pliku: /home/root/Langs/") + language
        + QStringLiteral("/default_") + QLatin1String(name) + QStringLiteral(".txt");
}

QStringList allMissing(const QString &language)
{
    return {missing(language, "obiectTyp"), missing(language, "obiectName"),
            missing(language, "materials")};
}

QString nulInside()
{
    return QString::fromUtf8("before\0after", 12);
}

} // namespace

/** The pick lists: their file, their factory rows and the effect of every operation. */
class TstKtvDataList : public QObject
{
    Q_OBJECT
private slots:
    void init();

    void metaObject();
    void newFile();
    void newFileIsCreatedOnce();
    void pathsAreConcatenated();
    void oneLevelOfDirectoriesIsCreated();
    void emptyFileIsCreatedAnew();
    void interruptedCreationIsRepeated();
    void openFailures_data();
    void openFailures();
    void closedStore();
    void reopening();
    void connectionIsRemoved();
    void secondStoreTakesTheConnection();

    void factoryTexts();
    void factoryMaterials_data();
    void factoryMaterials();
    void factoryRowsOfManyLanguages();
    void missingDefaultsAreLogged();
    void unreadableDefaults();
    void refusedFactoryRow();
    void oneFactoryRowIsEnough();
    void eachListIsFilledSeparately();
    void factoryReset();
    void factoryResetWithoutDeletion();
    void hostileLanguages_data();
    void hostileLanguages();

    void addAndQuery_data() { familyRows(); }
    void addAndQuery();
    void emptyNames_data() { familyRows(); }
    void emptyNames();
    void duplicates_data() { familyRows(); }
    void duplicates();
    void updates_data() { familyRows(); }
    void updates();
    void deletions_data() { familyRows(); }
    void deletions();
    void rowKinds_data() { familyRows(); }
    void rowKinds();
    void filters_data();
    void filters();
    void limits_data();
    void limits();
    void languagesAreSeparate_data() { familyRows(); }
    void languagesAreSeparate();
    void hostileTexts_data();
    void hostileTexts();
    void coefficients();
    void limitTexts();
    void temperatures_data();
    void temperatures();
    void temperaturesOfAnotherUnit();
    void brokenTable_data() { familyRows(); }
    void brokenTable();
    void returnedListsOutliveTheStore();
    void throughTheFacade();

private:
    static void familyRows();
    const Family &family() const;
};

void TstKtvDataList::init()
{
    ListStore::clear();
}

void TstKtvDataList::familyRows()
{
    QTest::addColumn<int>("index");
    for (size_t i = 0; i < families().size(); ++i)
        QTest::newRow(families().at(i).name) << int(i);
}

const Family &TstKtvDataList::family() const
{
    const auto *index = static_cast<const int *>(QTest::qData("index", qMetaTypeId<int>()));
    return families().at(size_t(*index));
}

void TstKtvDataList::metaObject()
{
    const QMetaObject &plain = QObject::staticMetaObject;
    for (const QMetaObject *object :
         {&KTV_DataList::staticMetaObject, &DataList_Element::staticMetaObject,
          &MaterialList_Element::staticMetaObject, &LimitList_Element::staticMetaObject}) {
        QCOMPARE(object->superClass(), &plain);
        QCOMPARE(object->methodCount(), plain.methodCount());
        QCOMPARE(object->propertyCount(), plain.propertyCount());
    }
}

void TstKtvDataList::newFile()
{
    ListStore::open();
    QCOMPARE(rows("SELECT * FROM Setting"), QStringList("1|Version|0"));
    QCOMPARE(
        rows("SELECT sql FROM sqlite_master WHERE type='table' ORDER BY rowid"),
        QStringList({
            "CREATE TABLE Setting (SETk_1_ID INTEGER UNIQUE PRIMARY KEY,SET_Key VARCHAR(255),"
            "SET_Value VARCHAR(255))",
            "CREATE TABLE OBIECT_TYP (OBTk_1_ID INTEGER UNIQUE PRIMARY KEY,OBT_Lang VARCHAR(2),"
            "OBT_ReadOnly BOOL,OBT_Value VARCHAR(255))",
            "CREATE TABLE OBIECT_NAME (OBNk_1_ID INTEGER UNIQUE PRIMARY KEY,OBN_Lang VARCHAR(2),"
            "OBN_ReadOnly BOOL,OBN_Value VARCHAR(255))",
            "CREATE TABLE MATERIALS (MATk_1_ID INTEGER UNIQUE PRIMARY KEY,MAT_Lang VARCHAR(2),"
            "MAT_ReadOnly BOOL,MAT_Name VARCHAR(255),MAT_Alpha REAL)",
            "CREATE TABLE LIMITS_R (LIMk_1_ID INTEGER UNIQUE PRIMARY KEY,LIM_Lang VARCHAR(2),"
            "LIM_Name VARCHAR(255),LIM_HighLimit VARCHAR(255),LIM_LoLimit VARCHAR(255))",
            "CREATE TABLE LIMITS_T (LIMk_1_ID INTEGER UNIQUE PRIMARY KEY,LIM_Lang VARCHAR(2),"
            "LIM_Name VARCHAR(255),LIM_HighLimit VARCHAR(255),LIM_LoLimit VARCHAR(255))",
        }));
    QCOMPARE(rows("SELECT name FROM sqlite_master WHERE type='index' AND sql IS NOT NULL"),
             QStringList());
}

void TstKtvDataList::newFileIsCreatedOnce()
{
    ListStore::open()->AddObiectTyp("kept");
    ListStore::change("UPDATE Setting SET SET_Value=7"); // the version is never read
    const auto store = ListStore::open();
    QCOMPARE(families().front().names(*store), QStringList("kept"));
    QCOMPARE(rows("SELECT SET_Key,SET_Value FROM Setting"), QStringList("Version|7"));
}

void TstKtvDataList::pathsAreConcatenated()
{
    Meter::writeFile(ListStore::languages + "preEN/default_obiectTyp.txt", "Motor\n");
    const KTV_DataList store(ListStore::userData + "pre", ListStore::languages + "pre", "EN");
    QCOMPARE(
        rows("SELECT OBT_Lang,OBT_Value FROM OBIECT_TYP", ListStore::userData + "predataList.db"),
        QStringList("EN|Motor"));
}

void TstKtvDataList::oneLevelOfDirectoriesIsCreated()
{
    QDir(ListStore::userData).removeRecursively();
    ListStore::open();
    QVERIFY(QFile::exists(ListStore::file));

    const QString deep = ListStore::userData + "two/levels/";
    LogCapture log;
    const auto store = ListStore::open("EN", deep);
    QCOMPARE(log.lines().mid(0, 2), QStringList({"No open :(", "true"}));
    QVERIFY(!store->AddObiectTyp("nowhere to go"));
    QVERIFY(!QFile::exists(ListStore::userData + "two"));
}

void TstKtvDataList::emptyFileIsCreatedAnew()
{
    Meter::writeFile(ListStore::file, QByteArray());
    writeDefaults("EN", "obiectTyp", "Motor\n");
    const auto store = ListStore::open();
    QCOMPARE(store->GetDefaultObiectTypCount(), 1);
    QCOMPARE(rows("SELECT SET_Value FROM Setting"), QStringList("0"));
}

void TstKtvDataList::interruptedCreationIsRepeated()
{
    // As left by a battery pulled during the first commit: pages, and a journal that says that
    // there were none before.
    ListStore::open();
    QByteArray journal = QByteArray::fromHex("d9d505f920a163d7") + QByteArray(4, '\0')
        + QByteArray(4, '\x55') + QByteArray(4, '\0');
    journal += QByteArray::fromHex("0000020000001000");
    Meter::writeFile(ListStore::file + "-journal", journal.leftJustified(512, '\0'));
    writeDefaults("EN", "obiectTyp", "Motor\n");
    const auto store = ListStore::open();
    QCOMPARE(store->GetDefaultObiectTypCount(), 1);
    QCOMPARE(rows("SELECT SET_Value FROM Setting"), QStringList("0"));
}

void TstKtvDataList::openFailures_data()
{
    QTest::addColumn<bool>("isDirectory");
    QTest::newRow("a directory of that name") << true;
    QTest::newRow("no directory to create it in") << false;
}

void TstKtvDataList::openFailures()
{
    QFETCH(bool, isDirectory);
    QDir(ListStore::userData).removeRecursively();
    if (isDirectory)
        QDir().mkpath(ListStore::file);
    else
        Meter::writeFile(QString(ListStore::userData).chopped(1), "a file");
    LogCapture log;
    const auto store = ListStore::open();
    if (isDirectory) {
        QCOMPARE(log.lines().size(), 1);
        QVERIFY2(log.lines().first().startsWith("!no open database:"),
                 qPrintable(log.lines().first()));
        QVERIFY(log.lines().first().contains("unable to open database file"));
        QVERIFY(!store->Open());
        QVERIFY(!store->CreateNew());
    } else {
        QCOMPARE(log.lines(), QStringList({"No open :(", "true"}));
        QVERIFY(!store->Open());
        QVERIFY(!store->CreateNew());
    }
    QFile::remove(QString(ListStore::userData).chopped(1));
}

void TstKtvDataList::closedStore()
{
    writeDefaults("EN", "obiectTyp", "Motor\n");
    writeDefaults("EN", "obiectName", "T1\n");
    writeDefaults("EN", "materials", "Copper?0.004\n");
    const auto store = ListStore::open();
    store->freeDB();
    LogCapture log;
    QCOMPARE(store->GetDefaultObiectTypCount(), 0);
    QCOMPARE(store->GetDefaultObiectNameCount(), 0);
    QCOMPARE(store->GetDefaultMaterialsCount(), 0);
    store->SetLang("EN");
    for (const Family &family : families()) {
        QVERIFY(!family.add(*store, "text"));
        QVERIFY(!family.addFactory(*store, "text"));
        QVERIFY(!family.update(*store, 1, "text"));
        QVERIFY(!family.remove(*store, 1));
        QVERIFY(!family.get(*store, true, true, QString(), 0));
        QVERIFY(!family.get(*store, true, false, "t", 5));
        QCOMPARE(family.add(*store, QString()), family.hasFactoryRows);
    }
    QCOMPARE(log.lines(), QStringList());
    store->freeDB();
    QVERIFY(store->Open());
    QCOMPARE(families().front().names(*store), QStringList("Motor"));

    store->freeDB();
    log.clear();
    store->SetLang("PL");
    QCOMPARE(log.lines(), allMissing("PL"));
    writeDefaults("PL", "obiectTyp", "Silnik\n");
    QVERIFY(store->Open());
    QCOMPARE(families().front().names(*store), QStringList("Silnik"));
}

void TstKtvDataList::reopening()
{
    const auto store = ListStore::open();
    QVERIFY(store->AddObiectTyp("kept"));
    writeDefaults("EN", "obiectName", "late\n");
    QVERIFY(store->Open());
    QCOMPARE(store->GetDefaultObiectNameCount(), 1);
    QCOMPARE(families().front().names(*store), QStringList("kept"));
    QVERIFY(QFile::remove(ListStore::file));
    QVERIFY(store->Open());
    QCOMPARE(families().front().names(*store), QStringList());
    QVERIFY(store->AddObiectTyp("not kept"));
    QVERIFY(store->CreateNew());
    QCOMPARE(families().front().names(*store), QStringList());
}

void TstKtvDataList::connectionIsRemoved()
{
    LogCapture log;
    auto store = ListStore::open();
    QVERIFY(QSqlDatabase::contains(connectionName));
    {
        const QSqlDatabase handle = QSqlDatabase::database(connectionName, false);
        QCOMPARE(handle.driverName(), QString("QSQLITE"));
        QCOMPARE(handle.databaseName(), QString(ListStore::file));
        QCOMPARE(handle.connectOptions(),
                 QString("Version=3;Legacy Format=True; PRAGMA temp_store=memory;"
                         "PRAGMA synchronous = FULL;PRAGMA journal_mode = DELETE;"
                         "PRAGMA locking_mode=EXCLUSIVE;"));
    }
    store->freeDB();
    QVERIFY(!QSqlDatabase::contains(connectionName));
    QVERIFY(store->Open());
    store.reset();
    QVERIFY(!QSqlDatabase::contains(connectionName));
    QCOMPARE(log.lines().filter("QSqlDatabasePrivate"), QStringList());
}

void TstKtvDataList::secondStoreTakesTheConnection()
{
    auto first = ListStore::open();
    LogCapture log;
    const auto second = ListStore::open();
    QVERIFY(!first->AddObiectTyp("lost"));
    QVERIFY(!first->GetObiectTyp(true, true, "", 0));
    QVERIFY(second->AddObiectTyp("kept"));
    first.reset();
    QVERIFY(second->AddObiectTyp("kept, too"));
    QCOMPARE(families().front().names(*second), QStringList({"kept", "kept, too"}));
}

void TstKtvDataList::factoryTexts()
{
    writeDefaults("EN", "obiectTyp", "Transformer\n\nMo\rtor\r\nTransformer\n  padded \n\r\nlast");
    writeDefaults("EN", "obiectName", "Transformer\n\u017b\u00f3\u0142w\n");
    const auto store = ListStore::open();
    QCOMPARE(
        rows("SELECT * FROM OBIECT_TYP"),
        QStringList({"1|EN|1|Transformer", "2|EN|1|Motor", "3|EN|1|  padded ", "4|EN|1|last"}));
    QCOMPARE(rows("SELECT * FROM OBIECT_NAME"),
             QStringList({"1|EN|1|Transformer", QStringLiteral("2|EN|1|\u017b\u00f3\u0142w")}));
    QCOMPARE(store->GetDefaultObiectTypCount(), 4);
    QCOMPARE(store->GetDefaultObiectNameCount(), 2);
    QCOMPARE(store->GetDefaultMaterialsCount(), 0);
}

void TstKtvDataList::factoryMaterials_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QStringList>("stored");
    QTest::newRow("name and number")
        << QByteArray("Copper?0.00393") << QStringList("Copper|0.00393");
    QTest::newRow("name is not trimmed") << QByteArray(" Tin ?1") << QStringList(" Tin |1");
    QTest::newRow("exponent") << QByteArray("Zinc?4.2e-3") << QStringList("Zinc|0.0042");
    QTest::newRow("negative") << QByteArray("Carbon?-0.0005") << QStringList("Carbon|-0.0005");
    QTest::newRow("blanks at the number")
        << QByteArray("Lead? 0.004 ") << QStringList("Lead|0.004");
    QTest::newRow("nan is stored as no number")
        << QByteArray("Copper?nan") << QStringList("Copper|");
    QTest::newRow("no question mark") << QByteArray("Copper 0.00393") << QStringList();
    QTest::newRow("two question marks") << QByteArray("Copper?0.00393?") << QStringList();
    QTest::newRow("two question marks, a number last")
        << QByteArray("Copper?pure?0.00393") << QStringList();
    QTest::newRow("no number") << QByteArray("Copper?") << QStringList();
    QTest::newRow("not a number") << QByteArray("Copper?much") << QStringList();
    QTest::newRow("decimal comma") << QByteArray("Copper?0,00393") << QStringList();
    QTest::newRow("no name") << QByteArray("?0.00393") << QStringList();
    QTest::newRow("empty") << QByteArray("") << QStringList();
}

void TstKtvDataList::factoryMaterials()
{
    QFETCH(QByteArray, line);
    QFETCH(QStringList, stored);
    writeDefaults("EN", "materials", "First?1\n" + line + "\nFirst?2\n");
    const auto store = ListStore::open();
    QCOMPARE(rows("SELECT MAT_Name,MAT_Alpha FROM MATERIALS WHERE MAT_ReadOnly=1"),
             QStringList("First|1") + stored + QStringList("First|2"));
    QCOMPARE(store->GetDefaultMaterialsCount(), 2 + stored.size());
}

void TstKtvDataList::factoryRowsOfManyLanguages()
{
    for (const char *language : {"EN", "PL"}) {
        writeDefaults(language, "obiectTyp", QByteArray("Motor\n") + language + " type\n");
        writeDefaults(language, "obiectName", QByteArray(language) + " name\n");
        writeDefaults(language, "materials", "Gold?0.0034\n");
    }
    const auto store = ListStore::open();
    store->SetLang("PL");
    store->SetLang("EN");
    store->SetLang("PL");
    // Object types are unique over all languages, materials are not.
    QCOMPARE(rows("SELECT OBT_Lang,OBT_Value FROM OBIECT_TYP"),
             QStringList({"EN|Motor", "EN|EN type", "PL|PL type"}));
    QCOMPARE(rows("SELECT MAT_Lang,MAT_Name FROM MATERIALS"), QStringList({"EN|Gold", "PL|Gold"}));
    QCOMPARE(store->GetDefaultObiectTypCount(), 1);
    QCOMPARE(families().front().names(*store), QStringList("PL type"));
}

void TstKtvDataList::missingDefaultsAreLogged()
{
    LogCapture log;
    const auto store = ListStore::open();
    QCOMPARE(log.lines(), allMissing("EN"));
    for (int i = 0; i < 2; ++i) {
        log.clear();
        store->SetLang("DE");
        QCOMPARE(log.lines(), allMissing("DE"));
    }
    log.clear();
    store->FillDefaultObiectName();
    QCOMPARE(log.lines(), QStringList(missing("DE", "obiectName")));
    for (const Family &family : families())
        QCOMPARE(family.names(*store), QStringList());
}

void TstKtvDataList::unreadableDefaults()
{
    // A directory exists but cannot be opened; /proc/self/mem can be opened but not read.
    QDir().mkpath(ListStore::languages + "EN/default_obiectTyp.txt");
    QFile::link("/proc/self/mem", ListStore::languages + "EN/default_obiectName.txt");
    writeDefaults("EN", "materials", "Copper?0.00393\n");
    LogCapture log;
    const auto store = ListStore::open();
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(store->GetDefaultObiectTypCount(), 0);
    QCOMPARE(store->GetDefaultObiectNameCount(), 0);
    QCOMPARE(store->GetDefaultMaterialsCount(), 1);
}

void TstKtvDataList::refusedFactoryRow()
{
    {
        const auto store = ListStore::open();
    }
    // A trigger such as another program may have added to the table.
    ListStore::change("CREATE TRIGGER refusal BEFORE INSERT ON OBIECT_TYP "
                      "WHEN NEW.OBT_Value='two' BEGIN SELECT RAISE(ABORT, 'no two'); END");
    writeDefaults("EN", "obiectTyp", "one\ntwo\nthree\n");
    const auto store = ListStore::open();
    QCOMPARE(families().at(0).names(*store), QStringList({"one", "three"}));
    QVERIFY(!store->AddObiectTyp("two"));
}

void TstKtvDataList::oneFactoryRowIsEnough()
{
    writeDefaults("EN", "obiectTyp", "one\ntwo\n");
    {
        const auto store = ListStore::open();
        QVERIFY(store->AddObiectName("the user's"));
    }
    ListStore::change("DELETE FROM OBIECT_TYP WHERE OBT_Value='two'");
    writeDefaults("EN", "obiectTyp", "one\ntwo\nthree\n");
    writeDefaults("EN", "obiectName", "the user's\nfactory name\n");
    const auto store = ListStore::open();
    QCOMPARE(families().at(0).names(*store), QStringList("one"));
    QCOMPARE(families().at(1).names(*store), QStringList({"the user's", "factory name"}));
    QCOMPARE(store->GetDefaultObiectNameCount(), 1); // not the user's
}

void TstKtvDataList::eachListIsFilledSeparately()
{
    const auto store = ListStore::open();
    ListStore::writeManyDefaults("EN", 1);
    const auto counts = [&store] {
        return QList<int> {store->GetDefaultObiectTypCount(), store->GetDefaultObiectNameCount(),
                           store->GetDefaultMaterialsCount()};
    };
    QCOMPARE(counts(), QList<int>({0, 0, 0}));
    store->FillDefaultMaterials();
    QCOMPARE(counts(), QList<int>({0, 0, 1}));
    store->FillDefaultObiectTyp();
    QCOMPARE(counts(), QList<int>({1, 0, 1}));
    store->FillDefaultObiectName();
    QCOMPARE(counts(), QList<int>({1, 1, 1}));
}

void TstKtvDataList::factoryReset()
{
    writeDefaults("EN", "obiectTyp", "English\n");
    writeDefaults("PL", "obiectTyp", "Polski\n");
    const auto store = ListStore::open();
    for (const char *language : {"EN", "PL"}) {
        store->SetLang(language);
        for (const Family &family : families())
            QVERIFY(family.add(*store, QString("user's ") + language));
    }
    QVERIFY(store->RestoreFabricalSetting());
    for (const Family &family : families()) {
        const auto all = rows(QString("SELECT COUNT(*) FROM ") + family.table);
        QCOMPARE(all, QStringList(family.table == QString("OBIECT_TYP") ? "1" : "0"));
    }
    QCOMPARE(families().front().names(*store), QStringList("Polski"));
    QCOMPARE(rows("SELECT SET_Key,SET_Value FROM Setting"), QStringList("Version|0"));
    store->SetLang("EN");
    QCOMPARE(families().front().names(*store), QStringList("English"));
}

void TstKtvDataList::factoryResetWithoutDeletion()
{
    const auto store = ListStore::open();
    QVERIFY(store->AddObiectTyp("kept"));
    const QByteArray before = Meter::readFile(ListStore::file);
    QFile::setPermissions(QString(ListStore::userData),
                          QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    LogCapture log;
    const bool isReset = store->RestoreFabricalSetting();
    const bool isAdded = store->AddObiectTyp("refused");
    const FoundRows found = families().front().get(*store, true, true, "", 0);
    QFile::setPermissions(QString(ListStore::userData),
                          QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    QVERIFY(!isReset);
    QVERIFY(!isAdded);
    QVERIFY(!found); // closed
    QVERIFY(QSqlDatabase::contains(connectionName));
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(Meter::readFile(ListStore::file), before);
    QVERIFY(store->Open());
    QCOMPARE(families().front().names(*store), QStringList("kept"));
}

void TstKtvDataList::hostileLanguages_data()
{
    QTest::addColumn<QString>("language");
    QTest::newRow("empty") << "";
    QTest::newRow("null") << QString();
    QTest::newRow("quote") << "E'";
    QTest::newRow("only a quote") << "'";
    QTest::newRow("two quotes") << "''";
    QTest::newRow("end of statement") << "'; DROP TABLE OBIECT_TYP; --";
    QTest::newRow("every row") << "' OR 1=1 OR '1'='1";
    QTest::newRow("backquote and double quote") << "`\"";
    QTest::newRow("placeholder") << ":OBT_Value ?";
    QTest::newRow("quoted placeholder") << "':OBT_Value";
    QTest::newRow("percent") << "%1%s";
    QTest::newRow("beyond the first plane") << QStringLiteral("\U0001F1F5\U0001F1F1");
}

void TstKtvDataList::hostileLanguages()
{
    QFETCH(QString, language);
    const auto store = ListStore::open("PL");
    for (const Family &family : families())
        QVERIFY(family.add(*store, "Polish"));
    if (!language.contains('/'))
        writeDefaults(language, "obiectTyp", "its own\n");
    store->SetLang(language);
    store->SetLang(language);
    QCOMPARE(families().front().names(*store), QStringList("its own"));
    QCOMPARE(store->GetDefaultObiectTypCount(), 1);
    for (const Family &family : families()) {
        QVERIFY(family.add(*store, "user's"));
        QCOMPARE(family.names(*store, "user"), QStringList("user's"));
        QVERIFY(family.names(*store).contains("user's"));
        QVERIFY(!family.names(*store).contains("Polish"));
    }
}

void TstKtvDataList::addAndQuery()
{
    {
        const auto store = ListStore::open();
        QVERIFY(family().add(*store, "first"));
        QVERIFY(family().add(*store, "second"));
        const FoundRows found = family().get(*store, true, true, QString(), 0);
        QCOMPARE(int(found.value().size()), 2);
        QCOMPARE(found->front().id, 1);
        QCOMPARE(found->front().columns.first(), QString("first"));
        QVERIFY(!found->front().readOnly);
        QCOMPARE(found->back().id, 2);
        QCOMPARE(found->back().columns.first(), QString("second"));
    }
    const QString prefix = QString(family().nameColumn).left(4);
    const QString flag = family().hasFactoryRows ? prefix + "ReadOnly" : QString("0");
    QCOMPARE(rows("SELECT " + prefix + "Lang," + flag + ',' + family().nameColumn + " FROM "
                  + family().table),
             QStringList({"EN|0|first", "EN|0|second"}));
    const auto store = ListStore::open();
    QCOMPARE(family().names(*store), QStringList({"first", "second"}));
}

void TstKtvDataList::emptyNames()
{
    const auto store = ListStore::open();
    QVERIFY(family().add(*store, "row"));
    for (const QString &empty : {QString(), QStringLiteral("")}) {
        QCOMPARE(family().add(*store, empty), family().hasFactoryRows);
        QCOMPARE(family().addFactory(*store, empty), family().hasFactoryRows);
        QVERIFY(!family().update(*store, 1, empty));
    }
    QCOMPARE(family().names(*store), QStringList("row"));
    QVERIFY(family().add(*store, " "));
}

void TstKtvDataList::duplicates()
{
    const auto store = ListStore::open();
    QVERIFY(family().add(*store, "Motor"));
    QVERIFY(family().add(*store, "motor")); // texts are different if only their letter case differs
    store->SetLang("PL");
    QCOMPARE(family().add(*store, "Motor"), !family().isUnique);
    QCOMPARE(family().addFactory(*store, "Motor"), !family().isUnique);
    QVERIFY(family().add(*store, "other"));
    QVERIFY(family().update(*store, family().idOf(*store, "other"), "Motor"));
    const QString count = QString("SELECT COUNT(*) FROM ") + family().table;
    QCOMPARE(rows(count), QStringList(family().isUnique ? "3" : "5"));
}

void TstKtvDataList::updates()
{
    const auto store = ListStore::open();
    QVERIFY(family().addFactory(*store, "factory"));
    QVERIFY(family().add(*store, "user's"));
    QVERIFY(family().update(*store, 2, "renamed"));
    QVERIFY(family().update(*store, 1, "not renamed"));
    QVERIFY(family().update(*store, 99, "nobody"));
    QVERIFY(family().update(*store, -1, "nobody"));
    const QString first = family().hasFactoryRows ? "factory" : "not renamed";
    QCOMPARE(family().names(*store), QStringList({first, "renamed"}));
}

void TstKtvDataList::deletions()
{
    const auto store = ListStore::open();
    QVERIFY(family().addFactory(*store, "factory"));
    QVERIFY(family().add(*store, "user's"));
    QVERIFY(family().add(*store, "kept"));
    QVERIFY(family().remove(*store, 2));
    QCOMPARE(family().remove(*store, 2), !family().hasFactoryRows);
    QCOMPARE(family().remove(*store, 99), !family().hasFactoryRows);
    QCOMPARE(family().remove(*store, 1), !family().hasFactoryRows);
    const QStringList all {"factory", "kept"};
    QCOMPARE(family().names(*store), all.mid(family().hasFactoryRows ? 0 : 1));
}

void TstKtvDataList::rowKinds()
{
    const auto store = ListStore::open();
    QVERIFY(family().addFactory(*store, "factory"));
    QVERIFY(family().add(*store, "user's"));
    const auto names = [&](bool readOnly, bool user, const QString &filter) {
        QStringList found;
        const FoundRows rows = family().get(*store, readOnly, user, filter, 0);
        for (const auto &row : rows.value()) {
            if (family().hasFactoryRows && row.readOnly != (row.columns.first() == "factory"))
                found += "wrong flag";
            found += row.columns.first();
        }
        return found;
    };
    const QStringList all {"factory", "user's"};
    QCOMPARE(names(true, true, ""), all);
    QCOMPARE(names(false, false, ""), all);
    QCOMPARE(names(true, false, ""), all.mid(0, family().hasFactoryRows ? 1 : 2));
    QCOMPARE(names(false, true, ""), all.mid(family().hasFactoryRows ? 1 : 0));
    QCOMPARE(names(true, false, "user"), all.mid(family().hasFactoryRows ? 2 : 1));
    QCOMPARE(names(false, true, "user"), all.mid(1));
}

void TstKtvDataList::filters_data()
{
    QTest::addColumn<QString>("filter");
    QTest::addColumn<QStringList>("found");
    const QStringList all {"Copper", "copper 50%", "Kobalt_1",
                           QStringLiteral("\u017b\u00f3\u0142w"), "it's"};
    QTest::newRow("none") << "" << all;
    QTest::newRow("null") << QString() << all;
    QTest::newRow("part, either case of ASCII") << "COP" << QStringList(all.mid(0, 2));
    QTest::newRow("either case of ASCII only") << QStringLiteral("\u017c") << QStringList();
    QTest::newRow("beyond ASCII") << QStringLiteral("\u0142") << QStringList(all.mid(3, 1));
    QTest::newRow("percent is any text") << "c%p" << QStringList(all.mid(0, 2));
    QTest::newRow("percent alone") << "%" << all;
    QTest::newRow("underscore is any character") << "t_1" << QStringList(all.mid(2, 1));
    QTest::newRow("underscore alone") << "_" << all;
    QTest::newRow("quote") << "'" << QStringList(all.mid(4, 1));
    QTest::newRow("backslash escapes nothing") << "\\%" << QStringList();
    QTest::newRow("no match") << "iron" << QStringList();
}

void TstKtvDataList::filters()
{
    QFETCH(QString, filter);
    QFETCH(QStringList, found);
    const auto store = ListStore::open();
    for (const Family &family : families()) {
        for (const QString &text :
             {QStringLiteral("Copper"), QStringLiteral("copper 50%"), QStringLiteral("Kobalt_1"),
              QStringLiteral("\u017b\u00f3\u0142w"), QStringLiteral("it's")})
            QVERIFY(family.add(*store, text));
        QCOMPARE(family.names(*store, filter), found);
        QCOMPARE(family.names(*store, filter, 1), found.mid(0, 1));
    }
}

void TstKtvDataList::limits_data()
{
    QTest::addColumn<int>("limit");
    QTest::addColumn<int>("count");
    QTest::newRow("below zero is no limit") << -1 << 7;
    QTest::newRow("zero is no limit") << 0 << 7;
    QTest::newRow("one") << 1 << 1;
    QTest::newRow("some") << 5 << 5;
    QTest::newRow("all") << 7 << 7;
    QTest::newRow("more than there are") << 8 << 7;
    QTest::newRow("largest") << std::numeric_limits<int>::max() << 7;
    QTest::newRow("smallest") << std::numeric_limits<int>::min() << 7;
}

void TstKtvDataList::limits()
{
    QFETCH(int, limit);
    QFETCH(int, count);
    const auto store = ListStore::open();
    for (const Family &family : families()) {
        QStringList texts;
        for (int i = 0; i < 7; ++i) {
            texts += QString("row %1").arg(i);
            QVERIFY(family.add(*store, texts.last()));
        }
        QCOMPARE(family.names(*store, "", limit), texts.mid(0, count));
        QCOMPARE(family.names(*store, "row", limit), texts.mid(0, count));
    }
}

void TstKtvDataList::languagesAreSeparate()
{
    const auto store = ListStore::open();
    QVERIFY(family().add(*store, "English"));
    store->SetLang("PL");
    QCOMPARE(family().names(*store), QStringList());
    QVERIFY(family().add(*store, "Polski"));
    QCOMPARE(family().names(*store), QStringList("Polski"));
    store->SetLang("EN");
    QCOMPARE(family().names(*store), QStringList("English"));
    QVERIFY(family().update(*store, 2, "across languages")); // only the key matters
    QVERIFY(family().remove(*store, 2));
    store->SetLang("PL");
    QCOMPARE(family().names(*store), QStringList());
}

void TstKtvDataList::hostileTexts_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("quote") << "it's '' \"quoted\" `so`";
    QTest::newRow("end of statement") << "'); DROP TABLE OBIECT_TYP; --";
    QTest::newRow("placeholders") << ":OBT_Value ? :LIM_Name ?1";
    QTest::newRow("percent and underscore") << "100% _ %s %1 %n";
    QTest::newRow("NUL inside") << nulInside();
    QTest::newRow("10,000 characters") << QString(10000, QChar(0x17b));
    QTest::newRow("beyond the first plane") << QStringLiteral("\U0001F50C \U00020000");
    QTest::newRow("combining, right to left") << QStringLiteral("e\u0301 \u05d0\u05d1");
    QTest::newRow("ohm sign is not the Greek letter")
        << QStringLiteral("\u2126 \u03a9 \u03bc \u00b5");
    QTest::newRow("line ends and tabs") << "a\nb\r\nc\td";
    QTest::newRow("digits") << "007";
    QTest::newRow("NULL") << "NULL";
}

void TstKtvDataList::hostileTexts()
{
    QFETCH(QString, text);
    for (const Family &family : families()) {
        ListStore::clear();
        {
            const auto store = ListStore::open();
            QVERIFY(family.add(*store, "first"));
            QVERIFY(family.add(*store, text));
            QCOMPARE(family.add(*store, text), !family.isUnique);
        }
        const auto store = ListStore::open();
        QCOMPARE(family.names(*store).at(1), text);
        QVERIFY(family.update(*store, 1, text + text));
        QCOMPARE(family.names(*store).at(0), text + text);
        if (text != nulInside()) // a pattern ends at a NUL
            QVERIFY(family.names(*store, text.left(1000)).contains(text));
        QVERIFY(family.remove(*store, 2));
        QCOMPARE(family.names(*store).count(text), family.isUnique ? 0 : 1);
    }
}

void TstKtvDataList::coefficients()
{
    const double values[] = {0.00393, -1e-300, 1e308, 0, 0.1 + 0.2};
    const auto store = ListStore::open();
    for (const double value : values)
        QVERIFY(store->AddMaterial("m", value));
    QVERIFY(store->UpdateMaterial(1, "m", 0.0068));
    const std::unique_ptr<QList<MaterialList_Element *>> list(
        store->GetMaterials(true, true, "", 0));
    QCOMPARE(list->size(), 5);
    QCOMPARE(list->at(0)->Alpha, 0.0068);
    for (int i = 1; i < 5; ++i)
        QVERIFY(list->at(i)->Alpha == values[i]);
    qDeleteAll(*list);
}

void TstKtvDataList::limitTexts()
{
    const auto store = ListStore::open();
    QVERIFY(store->AddLimit_R("both", "2 m\u2126", "text as it stands"));
    QVERIFY(store->AddLimit_R("none", "", QString()));
    QVERIFY(store->UpdateLimit_R(1, "changed", "", "3"));
    const std::unique_ptr<QList<LimitList_Element *>> list(store->GetLimits_R("", 0));
    QCOMPARE(list->size(), 2);
    QCOMPARE(list->at(0)->Name, QString("changed"));
    QCOMPARE(list->at(0)->HighLimit, QString());
    QCOMPARE(list->at(0)->LoLimit, QString("3"));
    QCOMPARE(list->at(1)->HighLimit, QString());
    QCOMPARE(list->at(1)->LoLimit, QString());
    qDeleteAll(*list);
}

void TstKtvDataList::temperatures_data()
{
    QTest::addColumn<int>("unit");
    QTest::addColumn<QString>("entered");
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("shown");
    const auto degF = [](const char *number) {
        return QString(number) + QStringLiteral(" \u00b0F");
    };
    QTest::newRow("Celsius unchanged") << int(ValueBox::Temp_Celsius) << "20.000 grad"
                                       << "20.000 grad"
                                       << "20.000 grad";
    QTest::newRow("Celsius, no number") << int(ValueBox::Temp_Celsius) << "warm"
                                        << "warm"
                                        << "warm";
    QTest::newRow("an unknown unit, unchanged") << 7 << "20.000"
                                                << "20.000"
                                                << "20.000";
    QTest::newRow("boiling") << int(ValueBox::Temp_Fahrenheit) << "212" << degF("100")
                             << degF("212");
    QTest::newRow("with its sign")
        << int(ValueBox::Temp_Fahrenheit) << degF("98.6") << degF("37") << degF("98.6");
    QTest::newRow("two decimals") << int(ValueBox::Temp_Fahrenheit) << "100" << degF("37.78")
                                  << degF("100");
    QTest::newRow("rounded on the way")
        << int(ValueBox::Temp_Fahrenheit) << "0.01" << degF("-17.77") << degF("0.01");
    QTest::newRow("computed with twice the digits")
        << int(ValueBox::Temp_Fahrenheit) << "100037" << degF("55558.33") << degF("100036.99");
    QTest::newRow("where the scales meet")
        << int(ValueBox::Temp_Fahrenheit) << "-40" << degF("-40") << degF("-40");
    QTest::newRow("below the freezing point")
        << int(ValueBox::Temp_Fahrenheit) << "5" << degF("-15") << degF("5");
    QTest::newRow("no number is kept as none")
        << int(ValueBox::Temp_Fahrenheit) << "warm" << degF("nan") << degF("nan");
    QTest::newRow("empty stays empty") << int(ValueBox::Temp_Fahrenheit) << ""
                                       << ""
                                       << "";
    QTest::newRow("absolute zero") << int(ValueBox::Temp_Kelvin) << "0"
                                   << "-273.15 K"
                                   << "0 K";
    QTest::newRow("kelvins") << int(ValueBox::Temp_Kelvin) << "300 K"
                             << "26.85 K"
                             << "300 K";
    QTest::newRow("with a prefix") << int(ValueBox::Temp_Kelvin) << "0.3 kK"
                                   << "26.85 K"
                                   << "300 K";
}

void TstKtvDataList::temperatures()
{
    QFETCH(int, unit);
    QFETCH(QString, entered);
    QFETCH(QString, stored);
    QFETCH(QString, shown);
    ValueBox::NumericalValueBox::prepareStaticDefaultValue(ValueBox::TemperatureUnit(unit));
    const auto store = ListStore::open();
    QVERIFY(store->AddLimit_T("212", entered, ""));
    QVERIFY(store->_AddLimit_T("212", "", entered));
    QVERIFY(store->AddLimit_T("changed later", "1", "2"));
    QVERIFY(store->UpdateLimit_T(3, "212", entered, entered));
    QVERIFY(store->AddLimit_R("212", entered, entered));
    const QString other = "SELECT LIM_Name,LIM_HighLimit,LIM_LoLimit FROM LIMITS_";
    QCOMPARE(rows(other + 'R'), QStringList("212|" + entered + '|' + entered));
    QCOMPARE(
        rows(other + 'T'),
        QStringList({"212|" + stored + '|', "212||" + stored, "212|" + stored + '|' + stored}));
    const FoundRows found = families().back().get(*store, true, true, "", 0);
    QCOMPARE(found.value().at(0).columns, QStringList({"212", shown, ""}));
    QCOMPARE(found.value().at(1).columns, QStringList({"212", "", shown}));
    QCOMPARE(found.value().at(2).columns, QStringList({"212", shown, shown}));
    ValueBox::NumericalValueBox::prepareStaticDefaultValue(ValueBox::Temp_Celsius);
}

void TstKtvDataList::temperaturesOfAnotherUnit()
{
    using ValueBox::NumericalValueBox;
    const auto store = ListStore::open();
    NumericalValueBox::prepareStaticDefaultValue(ValueBox::Temp_Fahrenheit);
    QVERIFY(store->AddLimit_T("warm", "212", "32"));
    const auto shown = [&] {
        return families().back().get(*store, true, true, "", 0).value().front().columns.mid(1);
    };
    NumericalValueBox::prepareStaticDefaultValue(ValueBox::Temp_Kelvin);
    QCOMPARE(shown(), QStringList({"373.15 K", "273.15 K"}));
    // In Celsius the stored texts are returned unchanged, with the sign that they were stored with.
    NumericalValueBox::prepareStaticDefaultValue(ValueBox::Temp_Celsius);
    QCOMPARE(shown(), QStringList({QStringLiteral("100 \u00b0F"), QStringLiteral("0 \u00b0F")}));
}

void TstKtvDataList::throughTheFacade()
{
    for (const char *language : {"EN", "PL"}) {
        writeDefaults(language, "obiectTyp", QByteArray(language) + " type\n");
        const QString text = QString("%1/%1.xml").arg(language);
        QVERIFY(
            QFile::copy("/opt/meter/image/home-root/Langs/" + text, ListStore::languages + text));
    }
    const auto names = [](const KTV_DataSource &source) {
        return families().front().names(*source.get_DataList());
    };
    {
        KTV_DataSource source;
        QCOMPARE(source.get_DataList()->parent(), &source);
        QCOMPARE(names(source), QStringList("EN type"));
        source.setMeterSerialName("DV1");
        source.SetLang("PL");
        QCOMPARE(names(source), QStringList("PL type"));
        source.SetLang("XX"); // no such language: the lists use the one that the texts have
        QCOMPARE(names(source), QStringList("EN type"));
        source.SetLang("PL");
        QVERIFY(source.get_DataList()->AddObiectTyp("user's"));
        source.get_InterfaceConfig()->setValue(KTV_InterfaceConfig::MAIN_Lang, "PL");
    }
    QVERIFY(!QSqlDatabase::contains(connectionName));
    KTV_DataSource source;
    QCOMPARE(names(source), QStringList({"PL type", "user's"}));
    source.ClearToDefault();
    QCOMPARE(names(source), QStringList("PL type"));
    QCOMPARE(rows("SELECT OBT_Lang FROM OBIECT_TYP"), QStringList("PL"));
}

void TstKtvDataList::brokenTable()
{
    const auto store = ListStore::open();
    ListStore::change(QString("DROP TABLE ") + family().table);
    LogCapture log;
    QVERIFY(!family().add(*store, "text"));
    QVERIFY(!family().get(*store, true, true, "", 0));
    QVERIFY(!family().remove(*store, 1));
    QCOMPARE(log.lines(), QStringList());
    QVERIFY(!family().update(*store, 1, "text"));
    QCOMPARE(log.lines().size(), 1);
    QVERIFY2(log.lines().first().contains(QString("no such table: ") + family().table),
             qPrintable(log.lines().first()));
    // The connection still works.
    for (const Family &other : families()) {
        if (other.table != family().table)
            QVERIFY(other.add(*store, "still works"));
    }
}

void TstKtvDataList::returnedListsOutliveTheStore()
{
    auto store = ListStore::open();
    QVERIFY(store->AddObiectTyp("text"));
    QList<DataList_Element *> *list = store->GetObiectTyp(true, true, "", 0);
    QList<DataList_Element *> *again = store->GetObiectTyp(true, true, "", 0);
    QVERIFY(list != again);
    QVERIFY(list->first() != again->first());
    QCOMPARE(list->first()->parent(), nullptr);
    store.reset();
    QCOMPARE(list->first()->Value, QString("text"));
    for (auto *one : {list, again}) {
        qDeleteAll(*one);
        delete one;
    }
}

KTV_METER_TEST_MAIN(TstKtvDataList)
#include "tst_ktv_datalist.moc"
