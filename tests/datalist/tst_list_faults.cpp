#include "ListStore.h"
#include "support/LogCapture.h"
#include "support/Meter.h"
#include "support/SqliteWatch.h"
#include "support/Volume.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QtTest>

#include <atomic>
#include <csignal>
#include <new>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

using ListStore::families;
using ListStore::Family;
using ListStore::rows;

namespace {

const QLatin1String noDefaults("XX"); ///< a language with empty default files

int countOf(const char *table)
{
    return rows(QString("SELECT COUNT(*) FROM ") + table).value(0).toInt();
}

bool isSound()
{
    return rows("PRAGMA integrity_check") == QStringList("ok");
}

/** Rows of the three lists that have factory rows. */
QList<int> factoryCounts()
{
    QList<int> counts;
    for (const QString &count :
         rows("SELECT COUNT(*) FROM OBIECT_TYP UNION ALL SELECT COUNT(*) FROM OBIECT_NAME "
              "UNION ALL SELECT COUNT(*) FROM MATERIALS"))
        counts += count.toInt();
    return counts;
}

bool areWholeOrAbsent(const QList<int> &counts, int lines)
{
    return std::all_of(counts.begin(), counts.end(),
                       [lines](int count) { return count == 0 || count == lines; });
}

/**
 * A number that a process stores in shared memory, so that it can be read after the process was
 * killed.
 */
class SharedCount
{
public:
    SharedCount()
        : m_count(new (::mmap(nullptr, sizeof(Count), PROT_READ | PROT_WRITE,
                              MAP_SHARED | MAP_ANONYMOUS, -1, 0)) Count(0))
    { }
    ~SharedCount() { ::munmap(m_count, sizeof(Count)); }
    Q_DISABLE_COPY_MOVE(SharedCount)

    operator int() const { return *m_count; }
    void increase() { ++*m_count; }

private:
    using Count = std::atomic<int>;
    Count *const m_count;
};

template <typename Work> pid_t startChild(Work work)
{
    const pid_t child = ::fork();
    if (child != 0)
        return child;
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    work();
    ::_exit(0);
}

/** @return whether the process was killed; false if it has ended by itself */
bool wasKilled(pid_t child)
{
    int status = 0;
    if (::waitpid(child, &status, 0) != child || (WIFEXITED(status) && WEXITSTATUS(status) != 0))
        qFatal("the child failed by itself");
    return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
}

void removeFile()
{
    QFile::remove(ListStore::file);
    QFile::remove(ListStore::file + "-journal");
}

/** How long a process takes to start and to create the lists, in microseconds. */
quint32 durationOfTheStart()
{
    QElapsedTimer clock;
    for (int i = 0; i < 2; ++i) { // the first run fills caches
        removeFile();
        clock.start();
        if (wasKilled(startChild([] { ListStore::open(); })))
            qFatal("killed by somebody else");
    }
    return quint32(clock.nsecsElapsed() / 1000);
}

} // namespace

/** The lists on a card that is full, read-only or removed, and after a power cut. */
class TstListFaults : public QObject
{
    Q_OBJECT
private slots:
    void init();

    void fullCard_data();
    void fullCard();
    void fullCardAtTheFirstStart();
    void fullCardAtTheReset();
    void reservedSpaceAtTheReset();
    void readOnlyCard();
    void readOnlyCardWithoutFile();
    void lockedFile();
    void damagedFile();
    void killedBeforeEveryChangeOfTheFirstStart();
    void killedBeforeEveryChangeOfAdding_data() { fullCard_data(); }
    void killedBeforeEveryChangeOfAdding();
    void killedAtRandom_data();
    void killedAtRandom();

private:
    static constexpr int lines = 200; // more than a block for each list
    static constexpr int someLines = 20;
    static constexpr int cardBlocks = 100;
};

void TstListFaults::init()
{
    ListStore::clear();
    ListStore::writeManyDefaults(noDefaults, 0);
}

void TstListFaults::fullCard_data()
{
    QTest::addColumn<int>("index");
    for (size_t i = 0; i < families().size(); ++i)
        QTest::newRow(families().at(i).name) << int(i);
}

void TstListFaults::fullCard()
{
    QFETCH(int, index);
    const Family &family = families().at(size_t(index));
    Volume card(ListStore::userData, cardBlocks);
    const auto store = ListStore::open(noDefaults);
    QVERIFY(family.add(*store, "kept"));
    card.fillUp();
    LogCapture log;
    for (const QString &text : {QString("short"), QString(20000, 'x')}) {
        QVERIFY(!family.add(*store, text));
        QVERIFY(log.lines().isEmpty());
        QVERIFY(!family.update(*store, 1, text));
        QCOMPARE(log.lines().size(), 1);
        QVERIFY(!log.lines().first().isEmpty());
        log.clear();
    }
    QVERIFY(!family.remove(*store, 1));
    QCOMPARE(family.names(*store), QStringList("kept"));
    card.fill(0);
    QCOMPARE(rows(QString("SELECT %1 FROM %2").arg(family.nameColumn, family.table)),
             QStringList("kept"));
    QVERIFY(isSound());
    QVERIFY(family.add(*store, "short"));
    QVERIFY(family.update(*store, 1, "changed"));
    QCOMPARE(family.names(*store), QStringList({"changed", "short"}));
}

void TstListFaults::fullCardAtTheFirstStart()
{
    ListStore::writeManyDefaults("EN", lines);
    QSet<QList<int>> outcomes;
    const QList<int> whole {lines, lines, lines};
    for (int free = 0; !outcomes.contains(whole); ++free) {
        QVERIFY(free < cardBlocks);
        Volume card(ListStore::userData, cardBlocks);
        card.fill(cardBlocks - free);
        {
            const auto store = ListStore::open();
            if (QFileInfo(ListStore::file).size() > 0) {
                QVERIFY(isSound());
                QVERIFY(areWholeOrAbsent(factoryCounts(), lines));
                outcomes += factoryCounts();
                QCOMPARE(countOf("Setting"), 1);
            } else {
                QVERIFY(!store->AddObiectTyp("no room"));
                outcomes += QList<int>();
            }
        }
        card.fill(0);
        const auto store = ListStore::open();
        QCOMPARE(factoryCounts(), whole);
        QCOMPARE(countOf("Setting"), 1);
        QVERIFY(isSound());
    }
    // Every way in which the card can be full has been tried.
    QVERIFY(outcomes.contains(QList<int>()));
    QVERIFY(outcomes.contains(QList<int>({0, 0, 0})));
    QVERIFY(outcomes.contains(QList<int>({lines, 0, 0})));
    QVERIFY(outcomes.contains(QList<int>({lines, lines, 0})));
}

void TstListFaults::fullCardAtTheReset()
{
    ListStore::writeManyDefaults("EN", lines);
    Volume card(ListStore::userData, cardBlocks);
    const auto store = ListStore::open();
    QVERIFY(store->AddLimit_R("user's", "1", "2"));
    card.fillUp();
    QVERIFY(store->RestoreFabricalSetting()); // the space of the old file is enough
    QVERIFY(isSound());
    QVERIFY(areWholeOrAbsent(factoryCounts(), lines));
    QCOMPARE(countOf("LIMITS_R"), 0);
    card.fill(0);
    store->SetLang("EN");
    QCOMPARE(factoryCounts(), QList<int>({lines, lines, lines}));
}

void TstListFaults::reservedSpaceAtTheReset()
{
    // Since the last reset the factory files have become too large for the card.
    ListStore::writeManyDefaults("EN", 10);
    Volume card(ListStore::userData, cardBlocks);
    const auto store = ListStore::open();
    card.fill(cardBlocks - 30);
    ListStore::writeManyDefaults("EN", 5 * lines);
    QVERIFY(store->RestoreFabricalSetting());
    QVERIFY(isSound());
    QVERIFY(areWholeOrAbsent(factoryCounts(), 5 * lines));
    QVERIFY(factoryCounts().contains(0));
    QVERIFY(store->AddLimit_R("still works", "1", "2"));
    card.fill(0);
    QVERIFY(store->RestoreFabricalSetting());
    QCOMPARE(factoryCounts(), QList<int>({5 * lines, 5 * lines, 5 * lines}));
}

void TstListFaults::readOnlyCard()
{
    ListStore::writeManyDefaults("EN", 1);
    ListStore::writeManyDefaults("PL", 1);
    Volume card(ListStore::userData, cardBlocks);
    ListStore::open();
    const QByteArray before = Meter::readFile(ListStore::file);
    card.setReadOnly(true);
    {
        const auto store = ListStore::open();
        QCOMPARE(store->GetDefaultObiectTypCount(), 1);
        store->SetLang("PL");
        QCOMPARE(store->GetDefaultObiectTypCount(), 0);
        store->SetLang("EN");
        for (const Family &family : families()) {
            QVERIFY(!family.add(*store, "new"));
            QVERIFY(!family.update(*store, 1, "new"));
            QCOMPARE(family.names(*store).size(), family.hasFactoryRows ? 1 : 0);
        }
        QVERIFY(!store->RestoreFabricalSetting());
        QVERIFY(store->Open());
        QCOMPARE(families().front().names(*store), QStringList("EN entry 0"));
    }
    QCOMPARE(Meter::readFile(ListStore::file), before);
    card.setReadOnly(false);
    const auto store = ListStore::open("PL");
    QCOMPARE(store->GetDefaultObiectTypCount(), 1);
}

void TstListFaults::readOnlyCardWithoutFile()
{
    Volume card(ListStore::userData, cardBlocks);
    card.setReadOnly(true);
    LogCapture log;
    const auto store = ListStore::open();
    QCOMPARE(log.lines(), QStringList({"No open :(", "true"}));
    QVERIFY(!store->AddObiectTyp("new"));
    QVERIFY(!store->GetObiectTyp(true, true, "", 0));
    card.setReadOnly(false);
    QVERIFY(store->Open());
    QVERIFY(store->AddObiectTyp("new"));
}

void TstListFaults::lockedFile()
{
    ListStore::writeManyDefaults("PL", 1);
    const auto store = ListStore::open(noDefaults);
    QCOMPARE(SqliteWatch::lockWait(), 5000);
    QVERIFY(store->AddObiectTyp("kept"));
    {
        QSqlDatabase other = QSqlDatabase::addDatabase("QSQLITE", "other");
        other.setDatabaseName(ListStore::file);
        QVERIFY(other.open());
        QSqlQuery(other).exec("BEGIN EXCLUSIVE");
        for (const Family &family : families()) {
            SqliteWatch::clear();
            QVERIFY(!family.add(*store, "refused"));
            QCOMPARE(SqliteWatch::statements().filter("SELECT").size(), int(family.isUnique));
            SqliteWatch::clear();
            QVERIFY(!family.get(*store, true, true, "", 0));
            QVERIFY(!family.remove(*store, 1));
            QCOMPARE(SqliteWatch::statements().size(), 2); // each statement waits for the lock once
        }
        SqliteWatch::clear();
        QVERIFY(store->Open());
        store->SetLang("PL");
        QCOMPARE(SqliteWatch::statements().size(), 6); // one statement for each list and call
        QSqlQuery(other).exec("ROLLBACK");
    }
    QSqlDatabase::removeDatabase("other");
    store->SetLang(noDefaults);
    QVERIFY(store->AddObiectTyp("accepted"));
    QCOMPARE(families().front().names(*store), QStringList({"kept", "accepted"}));
    QCOMPARE(countOf("MATERIALS"), 0);
    store->SetLang("PL");
    QCOMPARE(store->GetDefaultMaterialsCount(), 1);
}

void TstListFaults::damagedFile()
{
    Meter::writeFile(ListStore::file, QByteArray("this is no database ").repeated(1000));
    const auto store = ListStore::open(noDefaults);
    for (const Family &family : families()) {
        QVERIFY(!family.add(*store, "new"));
        QVERIFY(!family.get(*store, true, true, "", 0));
        QVERIFY(!family.remove(*store, 1));
    }
    QVERIFY(store->RestoreFabricalSetting());
    QVERIFY(store->AddObiectTyp("new"));
    QVERIFY(isSound());

    // A page in the middle: a query that fails halfway returns no rows.
    for (int i = 0; i < lines; ++i)
        QVERIFY(store->AddObiectName(QString(1000, 'x') + QString::number(i)));
    store->freeDB();
    QFile file(ListStore::file);
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.seek(file.size() / 2 / 4096 * 4096));
    file.write(QByteArray(4096, '\xff'));
    file.close();
    QVERIFY(store->Open());
    QVERIFY(!store->GetObiectName(true, true, "", 0));
    QVERIFY(store->AddObiectTyp("another table"));
}

void TstListFaults::killedBeforeEveryChangeOfTheFirstStart()
{
    ListStore::writeManyDefaults("EN", someLines);
    int deaths = 0;
    QSet<QList<int>> outcomes;
    for (bool isKilled = true; isKilled;) {
        removeFile();
        isKilled = wasKilled(startChild([&deaths] {
            SqliteWatch::killBeforeChange(deaths + 1);
            ListStore::open();
        }));
        deaths += isKilled;
        const auto store = ListStore::open(noDefaults);
        QVERIFY(isSound());
        QCOMPARE(countOf("Setting"), 1);
        QVERIFY2(areWholeOrAbsent(factoryCounts(), someLines), qPrintable(QString::number(deaths)));
        outcomes += factoryCounts();
        store->SetLang("EN");
        QCOMPARE(factoryCounts(), QList<int>({someLines, someLines, someLines}));
    }
    QCOMPARE(outcomes.size(), 4);
    QVERIFY2(deaths > 50, qPrintable(QString::number(deaths)));
}

void TstListFaults::killedBeforeEveryChangeOfAdding()
{
    QFETCH(int, index);
    const Family &family = families().at(size_t(index));
    constexpr int most = 3;
    const QString long300(300, 'x');
    int deaths = 0;
    for (bool isKilled = true; isKilled;) {
        removeFile();
        ListStore::open(noDefaults);
        SharedCount committed;
        isKilled = wasKilled(startChild([&] {
            const auto store = ListStore::open(noDefaults);
            SqliteWatch::killBeforeChange(deaths + 1);
            while (committed < most && family.add(*store, QString::number(committed) + long300))
                committed.increase();
        }));
        deaths += isKilled;
        const auto store = ListStore::open(noDefaults);
        QVERIFY(isSound());
        const QStringList names = family.names(*store);
        QVERIFY(names.size() == committed || names.size() == committed + 1);
        for (int i = 0; i < names.size(); ++i)
            QCOMPARE(names.at(i), QString::number(i) + long300);
        if (!isKilled)
            QCOMPARE(int(committed), most);
    }
    QVERIFY2(deaths > 3 * most, qPrintable(QString::number(deaths)));
}

void TstListFaults::killedAtRandom_data()
{
    QTest::addColumn<bool>("isAdding");
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 5; ++seed) {
        QTest::addRow("while starting, seed %u", seed) << false << seed;
        QTest::addRow("while adding, seed %u", seed) << true << seed;
    }
}

void TstListFaults::killedAtRandom()
{
    QFETCH(bool, isAdding);
    QFETCH(quint32, seed);
    constexpr int runs = 40;
    ListStore::writeManyDefaults("EN", someLines);
    const quint32 longestLife = durationOfTheStart();
    QRandomGenerator random(seed);
    int duringTheStart = 0;
    for (int run = 0; run < runs; ++run) {
        removeFile();
        SharedCount committed;
        const pid_t child = startChild([&committed] {
            const auto store = ListStore::open();
            while (store->AddLimit_R(QString::number(committed), "1", "2"))
                committed.increase();
            ::_exit(1);
        });
        while (isAdding && committed == 0 && ::waitpid(child, nullptr, WNOHANG) == 0)
            ::usleep(10);
        // Mostly early: if the machine is less busy now, the start is faster than measured.
        ::usleep(random.bounded(random.bounded(longestLife) + 1));
        ::kill(child, SIGKILL);
        QVERIFY(wasKilled(child));
        duringTheStart += committed == 0;
        const auto store = ListStore::open(noDefaults);
        QVERIFY(isSound());
        QVERIFY(areWholeOrAbsent(factoryCounts(), someLines));
        const QStringList names = rows("SELECT LIM_Name FROM LIMITS_R");
        QVERIFY(names.size() == committed || names.size() == committed + 1);
        for (int i = 0; i < names.size(); ++i)
            QCOMPARE(names.at(i), QString::number(i));
        store->SetLang("EN");
        QCOMPARE(factoryCounts(), QList<int>({someLines, someLines, someLines}));
    }
    QCOMPARE(duringTheStart > 0, !isAdding);
}

KTV_METER_TEST_MAIN(TstListFaults)
#include "tst_list_faults.moc"
