#include "support/Meter.h"
#include "support/Volume.h"

#include "internal/DurableFile_p.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>
#include <sys/file.h>
#include <sys/resource.h>

/** Files are replaced completely or not at all. */
class TstDurableFile : public QObject
{
    Q_OBJECT
private slots:
    void init();

    void replaces_data();
    void replaces();
    void isReadableByItsOwnerOnly();
    void linkIsKept();
    void leftoversAreRemoved();
    void obstacle_data();
    void obstacle();
    void noDescriptorLeft();
    void directoryIsMadeOnce();
    void directoryOfAMissingFile();

private:
    QString directory() const { return m_directory->path() + '/'; }
    QString path() const { return directory() + "a.conf"; }
    QStringList files() const { return QDir(directory()).entryList(QDir::Files | QDir::Hidden); }

    std::unique_ptr<QTemporaryDir> m_directory;
};

void TstDurableFile::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
}

void TstDurableFile::replaces_data()
{
    QTest::addColumn<QByteArray>("old");
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("missing") << QByteArray() << QByteArray("new");
    QTest::newRow("longer") << QByteArray("older") << QByteArray("new");
    QTest::newRow("nothing in it") << QByteArray("old") << QByteArray("");
    QTest::newRow("large") << QByteArray("old") << QByteArray(1000000, '\0');
}

void TstDurableFile::replaces()
{
    QFETCH(QByteArray, old);
    QFETCH(QByteArray, content);
    if (!old.isNull())
        Meter::writeFile(path(), old);
    QString reason;
    QVERIFY(Internal::replaceFile(path(), content, &reason));
    QCOMPARE(Meter::readFile(path()), content);
    QCOMPARE(files(), QStringList("a.conf"));
    QVERIFY(reason.isNull());
}

void TstDurableFile::isReadableByItsOwnerOnly()
{
    Meter::writeFile(path(), "old");
    QVERIFY(QFile::setPermissions(path(), QFile::ReadOwner | QFile::ReadOther));
    QString reason;
    QVERIFY(Internal::replaceFile(path(), "secret", &reason));
    const auto expected = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser;
    QCOMPARE(QFile::permissions(path()), expected);
}

void TstDurableFile::linkIsKept()
{
    QDir().mkdir(directory() + "elsewhere");
    const QString target = directory() + "elsewhere/b.conf";
    Meter::writeFile(target, "old");
    QVERIFY(QFile::link("elsewhere/b.conf", path()));
    QString reason;
    QVERIFY(Internal::replaceFile(path(), "new", &reason));
    QVERIFY(QFileInfo(path()).isSymLink());
    QVERIFY(!QFileInfo(target).isSymLink());
    QCOMPARE(Meter::readFile(target), QByteArray("new"));
}

void TstDurableFile::leftoversAreRemoved()
{
    const QStringList others {"a.conf.backup", "a.conf.new-abc", "a.conf.new-uVwXyZ",
                              "b.conf.new-aBcDeF"};
    for (const QString &name : others + QStringList("a.conf.new-aBcDeF"))
        Meter::writeFile(directory() + name, "x");
    QFile beingMade(directory() + "a.conf.new-uVwXyZ"); // being written by another process
    QVERIFY(beingMade.open(QIODevice::ReadOnly));
    QCOMPARE(::flock(beingMade.handle(), LOCK_EX), 0);
    QString reason;
    QVERIFY(Internal::replaceFile(path(), "new", &reason));
    QCOMPARE(files(), QStringList("a.conf") + others);
    beingMade.close();
    {
        Internal::FileReplacement givenUp(path());
        QVERIFY(givenUp.open(&reason));
    }
    QCOMPARE(Meter::readFile(path()), QByteArray("new"));
    QCOMPARE(files().size(), others.size()); // the other process has ended
}

void TstDurableFile::obstacle_data()
{
    QTest::addColumn<QString>("obstacle");
    QTest::addColumn<QString>("text");
    QTest::newRow("full card") << "full"
                               << "No space left on device";
    QTest::newRow("read-only card") << "read-only"
                                    << "Read-only file system";
    QTest::newRow("directory in the file's place") << "directory"
                                                   << "Is a directory";
    QTest::newRow("no directory") << "missing"
                                  << "No such file or directory";
}

void TstDurableFile::obstacle()
{
    QFETCH(QString, obstacle);
    QFETCH(QString, text);
    Volume card(directory());
    const QString file = obstacle == "missing" ? directory() + "a/b" : path();
    if (obstacle == "directory")
        QDir().mkpath(path() + "/within");
    else if (obstacle != "missing")
        Meter::writeFile(path(), "old");
    if (obstacle == "full")
        card.fillUp();
    card.setReadOnly(obstacle == "read-only");
    const QStringList before = files();
    QString reason;
    QVERIFY(!Internal::replaceFile(file, QByteArray(10000, 'x'), &reason));
    QCOMPARE(reason, text);
    QCOMPARE(files(), before);
    if (before.contains("a.conf"))
        QCOMPARE(Meter::readFile(path()), QByteArray("old"));
}

void TstDurableFile::noDescriptorLeft()
{
    Meter::writeFile(path(), "old");
    rlimit limit {};
    QVERIFY(::getrlimit(RLIMIT_NOFILE, &limit) == 0);
    const rlimit none {0, limit.rlim_max};
    QVERIFY(::setrlimit(RLIMIT_NOFILE, &none) == 0);
    QString reason;
    const bool isDone = Internal::replaceFile(path(), "new", &reason);
    const bool isFlushed = Internal::flushDirectoryOf(path());
    QVERIFY(::setrlimit(RLIMIT_NOFILE, &limit) == 0);
    QVERIFY(!isDone && !isFlushed);
    QCOMPARE(reason, QString("Too many open files"));
    QCOMPARE(Meter::readFile(path()), QByteArray("old"));
}

void TstDurableFile::directoryIsMadeOnce()
{
    QVERIFY(Internal::makeDirectory(directory() + "a/"));
    QVERIFY(Internal::makeDirectory(directory() + "a/"));
    QVERIFY(QFileInfo(directory() + "a").isDir());
    QVERIFY(!Internal::makeDirectory(directory() + "b/c/")); // one level only
    Meter::writeFile(path(), "in the way");
    QVERIFY(!Internal::makeDirectory(path()));
}

void TstDurableFile::directoryOfAMissingFile()
{
    QVERIFY(Internal::flushDirectoryOf(path())); // the file itself need not exist
    QVERIFY(!Internal::flushDirectoryOf(directory() + "a/b"));
}

KTV_METER_TEST_MAIN(TstDurableFile)
#include "tst_durable_file.moc"
