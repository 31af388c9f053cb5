#include "support/LogCapture.h"
#include "support/Meter.h"
#include "support/SqliteWatch.h"
#include "support/Volume.h"

#include <counters/KTV_Liczniki.h>

#include <QDir>
#include <QMetaEnum>
#include <QTemporaryDir>
#include <QtTest>

#include <limits>
#include <memory>
#include <sys/mount.h>
#include <sys/stat.h>

namespace {

constexpr int counterCount = 7;

/** Counts in the order of the enumeration. */
using Counts = QVector<qint64>;

struct Named
{
    KTV_Liczniki::Licznik counter;
    const char *name;
    int offset; ///< in the file
    void (KTV_Liczniki::*up)();
};

const Named table[counterCount] = {
    {KTV_Liczniki::Licznik_AutomatycznyDoborMetody, "Licznik_AutomatycznyDoborMetody", 8,
     &KTV_Liczniki::Up_Licznik_AutomatycznyDoborMetody},
    {KTV_Liczniki::Licznik_PomiarObiektowRezystancyjnych, "Licznik_PomiarObiektowRezystancyjnych",
     32, &KTV_Liczniki::Up_Licznik_PomiarObiektowRezystancyjnych},
    {KTV_Liczniki::Licznik_PomiarObiektowIndukcyjnych, "Licznik_PomiarObiektowIndukcyjnych", 24,
     &KTV_Liczniki::Up_Licznik_PomiarObiektowIndukcyjnych},
    {KTV_Liczniki::Licznik_Demagnetyzacja, "Licznik_Demagnetyzacja", 16,
     &KTV_Liczniki::Up_Licznik_Demagnetyzacja},
    {KTV_Liczniki::Licznik_PomiarTemperaturySilnika, "Licznik_PomiarTemperaturySilnika", 40,
     &KTV_Liczniki::Up_Licznik_PomiarTemperaturySilnika},
    {KTV_Liczniki::Licznik_RejestracjaObiektowRezystancyjnych,
     "Licznik_RejestracjaObiektowRezystancyjnych", 56,
     &KTV_Liczniki::Up_Licznik_RejestracjaObiektowRezystancyjnych},
    {KTV_Liczniki::Licznik_RejestracjaObiektowIndukcyjnych,
     "Licznik_RejestracjaObiektowIndukcyjnych", 48,
     &KTV_Liczniki::Up_Licznik_RejestracjaObiektowIndukcyjnych},
};

Counts countsOf(const KTV_Liczniki &counters)
{
    Counts counts;
    for (const Named &entry : table)
        counts += counters.get_dictionary(entry.counter);
    return counts;
}

QByteArray bigEndian(qint64 number)
{
    QByteArray bytes;
    for (int shift = 56; shift >= 0; shift -= 8)
        bytes += char(quint64(number) >> shift);
    return bytes;
}

/** The file's bytes: marker, then the counts sorted by the counters' names. */
QByteArray fileOf(const Counts &counts)
{
    QByteArray bytes = bigEndian(1234567890) + QByteArray(56, '\0');
    for (int i = 0; i < counterCount; ++i)
        bytes.replace(table[i].offset, 8, bigEndian(counts[i]));
    return bytes;
}

const Counts none(counterCount, 0);
const Counts some {1,
                   -2,
                   3,
                   40,
                   1LL << 40,
                   std::numeric_limits<qint64>::max(),
                   std::numeric_limits<qint64>::min()};

} // namespace

/** The usage counters and their file. */
class TstKtvLiczniki : public QObject
{
    Q_OBJECT
private slots:
    void init();

    void enumeration();
    void eachCounterHasItsPlace_data();
    void eachCounterHasItsPlace();
    void roundTrip();
    void onlyTheDestructorSaves();
    void load_data();
    void load();
    void loadingADamagedFileKeepsTheCounts();
    void loadingThrows();
    void streamPastItsEnd();
    void copyBelongsToTheCaller();
    void printing();
    void highestCount();

    void directoryIsCreated_data();
    void directoryIsCreated();
    void obstacle_data();
    void obstacle();
    void writeProtectedFileIsWritten();
    void countsAreWrittenOnAFullCard_data();
    void countsAreWrittenOnAFullCard();
    void fullCardWithoutFile_data();
    void fullCardWithoutFile();
    void mountPointIsOverwritten();
    void otherKindsOfFilesAreReplaced_data();
    void otherKindsOfFilesAreReplaced();
    void fileIsOverwrittenInPlace();

private:
    QString directory() const { return m_directory->path() + '/'; }
    QString path() const { return directory() + "liczniki.bin"; }

    std::unique_ptr<QTemporaryDir> m_directory;
};

void TstKtvLiczniki::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
}

void TstKtvLiczniki::enumeration()
{
    const auto names = QMetaEnum::fromType<KTV_Liczniki::Licznik>();
    QCOMPARE(names.keyCount(), counterCount);
    for (int i = 0; i < counterCount; ++i) {
        QCOMPARE(int(table[i].counter), i);
        QCOMPARE(QByteArray(names.valueToKey(i)), QByteArray(table[i].name));
    }
}

void TstKtvLiczniki::eachCounterHasItsPlace_data()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < counterCount; ++i)
        QTest::newRow(table[i].name) << i;
}

void TstKtvLiczniki::eachCounterHasItsPlace()
{
    QFETCH(int, index);
    {
        KTV_Liczniki counters(directory());
        QCOMPARE(countsOf(counters), none);
        (counters.*table[index].up)();
        (counters.*table[index].up)();
        counters.up_dictionary(table[index].counter);
    }
    Counts expected = none;
    expected[index] = 3;
    const QByteArray bytes = Meter::readFile(path());
    QCOMPARE(bytes.size(), 64);
    QCOMPARE(bytes.left(8), QByteArray::fromHex("00000000499602d2"));
    QCOMPARE(bytes.mid(table[index].offset, 8), QByteArray::fromHex("0000000000000003"));
    QCOMPARE(bytes, fileOf(expected));
}

void TstKtvLiczniki::roundTrip()
{
    {
        KTV_Liczniki counters(directory());
        for (int i = 0; i < counterCount; ++i)
            counters.set_dictionary(table[i].counter, some[i]);
        QCOMPARE(countsOf(counters), some);
    }
    QCOMPARE(Meter::readFile(path()), fileOf(some));
    QCOMPARE(countsOf(KTV_Liczniki(directory())), some);
}

void TstKtvLiczniki::onlyTheDestructorSaves()
{
    Meter::writeFile(path(), fileOf(none));
    {
        KTV_Liczniki counters(directory());
        counters.Up_Licznik_Demagnetyzacja();
        QCOMPARE(Meter::readFile(path()), fileOf(none));
    }
    QVERIFY(Meter::readFile(path()) != fileOf(none));
}

void TstKtvLiczniki::load_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<Counts>("counts");
    QTest::addColumn<QStringList>("lines");
    const QByteArray whole = fileOf(some);
    const QStringList damaged {"LICZNIKI file damage!"};
    QTest::newRow("whole") << whole << some << QStringList();
    QTest::newRow("bytes behind the last count") << whole + "more" << some << QStringList();
    QTest::newRow("megabytes behind the last count")
        << whole + QByteArray(4000000, 'x') << some << QStringList();
    QTest::newRow("empty") << QByteArray("") << none << damaged;
    QTest::newRow("seven bytes") << whole.left(7) << none << damaged;
    QTest::newRow("marker off by one") << bigEndian(1234567891) + whole.mid(8) << none << damaged;
    QTest::newRow("marker the wrong way round")
        << QByteArray::fromHex("d202964900000000") + whole.mid(8) << none << damaged;
    QTest::newRow("NUL bytes") << QByteArray(64, '\0') << none << damaged;
    QTest::newRow("noise") << QByteArray(64, '\xff') << none << damaged;
    QTest::newRow("marker alone") << whole.left(8) << none << QStringList();
    QTest::newRow("cut within the second count")
        << whole.left(20) << Counts {1, 0, 0, 0, 0, 0, 0} << QStringList();
    QTest::newRow("cut behind the second count")
        << whole.left(24) << Counts {1, 0, 0, 40, 0, 0, 0} << QStringList();
    QTest::newRow("one byte short")
        << whole.left(63) << Counts {1, -2, 3, 40, 1LL << 40, 0, some[6]} << QStringList();
}

void TstKtvLiczniki::load()
{
    QFETCH(QByteArray, content);
    QFETCH(Counts, counts);
    QFETCH(QStringList, lines);
    Meter::writeFile(path(), content);
    const LogCapture log;
    {
        KTV_Liczniki counters(directory());
        QCOMPARE(countsOf(counters), counts);
        counters.set_dictionary(KTV_Liczniki::Licznik_Demagnetyzacja, 7);
    }
    counts[KTV_Liczniki::Licznik_Demagnetyzacja] = 7;
    QCOMPARE(Meter::readFile(path()), fileOf(counts));
    QCOMPARE(log.lines(), lines);
}

void TstKtvLiczniki::loadingADamagedFileKeepsTheCounts()
{
    Meter::writeFile(path(), fileOf(some));
    KTV_Liczniki counters(directory());
    Meter::writeFile(path(), "damage");
    counters.LoadLiczniki();
    QCOMPARE(countsOf(counters), some);
    Meter::writeFile(path(), fileOf(none));
    counters.LoadLiczniki();
    QCOMPARE(countsOf(counters), none);
}

void TstKtvLiczniki::loadingThrows()
{
    Meter::writeFile(path(), fileOf(some));
    const LogCapture log;
    SqliteWatch::throwOnReads(true);
    const KTV_Liczniki counters(directory());
    SqliteWatch::throwOnReads(false);
    QCOMPARE(log.lines(), QStringList("Liczniki load error: thrown by a read"));
    const std::unique_ptr<QHash<KTV_Liczniki::Licznik, qint64>> all(counters.getLiczniki());
    QCOMPARE(all->size(), counterCount);
    QCOMPARE(countsOf(counters), none);
}

void TstKtvLiczniki::streamPastItsEnd()
{
    KTV_Liczniki counters(directory());
    const QByteArray bytes = bigEndian(5) + "abc";
    QDataStream stream(bytes);
    counters.load(&stream, KTV_Liczniki::Licznik_PomiarTemperaturySilnika);
    QCOMPARE(counters.get_dictionary(KTV_Liczniki::Licznik_PomiarTemperaturySilnika), 5);
    counters.load(&stream, KTV_Liczniki::Licznik_PomiarTemperaturySilnika);
    QCOMPARE(counters.get_dictionary(KTV_Liczniki::Licznik_PomiarTemperaturySilnika), 0);
}

void TstKtvLiczniki::copyBelongsToTheCaller()
{
    KTV_Liczniki counters(directory());
    counters.Up_Licznik_Demagnetyzacja();
    const std::unique_ptr<QHash<KTV_Liczniki::Licznik, qint64>> first(counters.getLiczniki());
    const std::unique_ptr<QHash<KTV_Liczniki::Licznik, qint64>> second(counters.getLiczniki());
    QVERIFY(first != second);
    QCOMPARE(first->size(), counterCount);
    counters.Up_Licznik_Demagnetyzacja();
    second->clear();
    QCOMPARE(first->value(KTV_Liczniki::Licznik_Demagnetyzacja), 1);
    QCOMPARE(counters.get_dictionary(KTV_Liczniki::Licznik_Demagnetyzacja), 2);
}

void TstKtvLiczniki::printing()
{
    Meter::writeFile(path(), fileOf(some));
    const KTV_Liczniki counters(directory());
    const LogCapture log;
    counters.printLiczniki();
    QCOMPARE(log.lines(),
             (QStringList {"Licznik_AutomatycznyDoborMetody:1", "Licznik_Demagnetyzacja:40",
                           "Licznik_PomiarObiektowIndukcyjnych:3",
                           "Licznik_PomiarObiektowRezystancyjnych:-2",
                           "Licznik_PomiarTemperaturySilnika:1099511627776",
                           "Licznik_RejestracjaObiektowIndukcyjnych:-9223372036854775808",
                           "Licznik_RejestracjaObiektowRezystancyjnych:9223372036854775807"}));
}

void TstKtvLiczniki::highestCount()
{
    KTV_Liczniki counters(directory());
    const auto unknown = KTV_Liczniki::Licznik(99);
    QCOMPARE(counters.get_dictionary(unknown), 0);
    counters.up_dictionary(unknown); // a missing counter becomes 1
    QCOMPARE(counters.get_dictionary(unknown), 1);
    const auto last = std::numeric_limits<qint64>::max();
    counters.set_dictionary(KTV_Liczniki::Licznik_Demagnetyzacja, last - 1);
    for (int i = 0; i < 2; ++i) {
        counters.Up_Licznik_Demagnetyzacja();
        QCOMPARE(counters.get_dictionary(KTV_Liczniki::Licznik_Demagnetyzacja), last);
    }
}

void TstKtvLiczniki::directoryIsCreated_data()
{
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<QString>("file");
    QTest::newRow("missing") << "Log/"
                             << "Log/liczniki.bin";
    QTest::newRow("quotes and percent") << "a'b\"%1%s/"
                                        << "a'b\"%1%s/liczniki.bin";
    QTest::newRow("non-ASCII") << QStringLiteral("żółć/") << QStringLiteral("żółć/liczniki.bin");
    // The prefix is also used as the name of the directory: that is created, and the file is beside
    // it.
    QTest::newRow("without a slash") << "Log"
                                     << "Logliczniki.bin";
}

void TstKtvLiczniki::directoryIsCreated()
{
    QFETCH(QString, suffix);
    QFETCH(QString, file);
    const LogCapture log;
    {
        const KTV_Liczniki counters(directory() + suffix);
        QVERIFY(!QFile::exists(directory() + file));
    }
    QCOMPARE(Meter::readFile(directory() + file), fileOf(none));
    QVERIFY(QFileInfo(directory() + suffix).isDir());
    QCOMPARE(log.lines(), QStringList());
}

void TstKtvLiczniki::obstacle_data()
{
    QTest::addColumn<QString>("obstacle");
    QTest::addColumn<QStringList>("lines");
    QTest::newRow("two levels missing") << "deep" << QStringList {"Liczniki create path error!!!"};
    QTest::newRow("directory in the file's place")
        << "directory"
        << QStringList {"Liczniki open file error!!!", "Liczniki override file error!!!"};
    QTest::newRow("read-only card, no file")
        << "read-only" << QStringList {"Liczniki create file error!!!"};
    QTest::newRow("read-only card, old file")
        << "read-only file" << QStringList {"Liczniki override file error!!!"};
}

void TstKtvLiczniki::obstacle()
{
    QFETCH(QString, obstacle);
    QFETCH(QStringList, lines);
    std::unique_ptr<Volume> card;
    QString prefix = directory();
    if (obstacle == "deep")
        prefix += "a/b/";
    if (obstacle == "directory")
        QDir().mkpath(path() + "/within");
    if (obstacle.startsWith("read-only"))
        card = std::make_unique<Volume>(directory());
    if (obstacle == "read-only file")
        Meter::writeFile(path(), fileOf(some));
    if (card)
        card->setReadOnly(true);
    const LogCapture log;
    {
        KTV_Liczniki counters(prefix);
        counters.Up_Licznik_Demagnetyzacja();
    }
    QCOMPARE(log.lines(), lines);
    if (obstacle == "read-only file")
        QCOMPARE(Meter::readFile(path()), fileOf(some));
}

void TstKtvLiczniki::writeProtectedFileIsWritten()
{
    Meter::writeFile(path(), fileOf(some));
    QVERIFY(QFile::setPermissions(path(), QFile::ReadOwner));
    const LogCapture log;
    {
        KTV_Liczniki counters(directory());
        counters.set_dictionary(KTV_Liczniki::Licznik_Demagnetyzacja, 41);
    }
    Counts expected = some;
    expected[KTV_Liczniki::Licznik_Demagnetyzacja] = 41;
    QCOMPARE(Meter::readFile(path()), fileOf(expected));
    QCOMPARE(log.lines(), QStringList());
}

void TstKtvLiczniki::countsAreWrittenOnAFullCard_data()
{
    QTest::addColumn<QByteArray>("old");
    QTest::newRow("whole file") << fileOf(some);
    QTest::newRow("shorter file") << fileOf(some).left(20);
    QTest::newRow("longer file") << fileOf(some) + QByteArray(5000, 'x');
}

void TstKtvLiczniki::countsAreWrittenOnAFullCard()
{
    QFETCH(QByteArray, old);
    Volume card(directory());
    Meter::writeFile(path(), old);
    card.fillUp();
    const LogCapture log;
    Counts expected;
    {
        KTV_Liczniki counters(directory());
        counters.set_dictionary(KTV_Liczniki::Licznik_Demagnetyzacja, 41);
        expected = countsOf(counters);
    }
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(Meter::readFile(path()), fileOf(expected));
}

void TstKtvLiczniki::fullCardWithoutFile_data()
{
    QTest::addColumn<bool>("exists");
    QTest::newRow("no file") << false;
    QTest::newRow("a file of no bytes") << true;
}

void TstKtvLiczniki::fullCardWithoutFile()
{
    QFETCH(bool, exists);
    Volume card(directory());
    if (exists)
        Meter::writeFile(path(), QByteArray());
    card.fillUp();
    LogCapture log;
    {
        KTV_Liczniki counters(directory());
        log.clear();
    }
    QCOMPARE(log.lines(), QStringList("Liczniki save error: No space left on device"));
    QCOMPARE(QFile::exists(path()), exists);
    card.fill(0);
    {
        const KTV_Liczniki counters(directory());
    }
    QCOMPARE(Meter::readFile(path()), fileOf(none));
}

void TstKtvLiczniki::mountPointIsOverwritten()
{
    // The file can be neither removed nor replaced.
    const QString source = directory() + "source";
    Meter::writeFile(source, fileOf(some));
    Meter::writeFile(path(), QByteArray());
    const QByteArray from = QFile::encodeName(source);
    const QByteArray to = QFile::encodeName(path());
    QVERIFY(::mount(from.constData(), to.constData(), nullptr, MS_BIND, nullptr) == 0);
    const LogCapture log;
    {
        KTV_Liczniki counters(directory());
        counters.set_dictionary(KTV_Liczniki::Licznik_Demagnetyzacja, 41);
    }
    QVERIFY(::umount2(to.constData(), MNT_DETACH) == 0);
    Counts expected = some;
    expected[KTV_Liczniki::Licznik_Demagnetyzacja] = 41;
    QCOMPARE(Meter::readFile(source), fileOf(expected));
    QCOMPARE(log.lines(), QStringList());
}

void TstKtvLiczniki::otherKindsOfFilesAreReplaced_data()
{
    QTest::addColumn<bool>("isPipe");
    QTest::newRow("socket") << false;
    QTest::newRow("pipe") << true;
}

void TstKtvLiczniki::otherKindsOfFilesAreReplaced()
{
    QFETCH(bool, isPipe);
    std::unique_ptr<SocketFile> socket;
    if (isPipe)
        QVERIFY(::mkfifo(QFile::encodeName(path()).constData(), S_IRUSR | S_IWUSR) == 0);
    else
        socket = std::make_unique<SocketFile>(path());
    const LogCapture log;
    {
        const KTV_Liczniki counters(directory());
    }
    QCOMPARE(log.lines(), QStringList("Liczniki open file error!!!"));
    QCOMPARE(Meter::readFile(path()), fileOf(none));
    QCOMPARE(QDir(directory()).entryList(QDir::Files), QStringList("liczniki.bin"));
}

void TstKtvLiczniki::fileIsOverwrittenInPlace()
{
    Meter::writeFile(path(), fileOf(none));
    QFile old(path());
    QVERIFY(old.open(QIODevice::ReadOnly));
    {
        KTV_Liczniki counters(directory());
        counters.Up_Licznik_Demagnetyzacja();
    }
    QCOMPARE(old.readAll(), Meter::readFile(path())); // the same file, not a new one with that name
    QVERIFY(Meter::readFile(path()) != fileOf(none));
    QCOMPARE(QDir(directory()).entryList(QDir::Files), QStringList("liczniki.bin"));
}

KTV_METER_TEST_MAIN(TstKtvLiczniki)
#include "tst_ktv_liczniki.moc"
