#include "support/Meter.h"

#include <configuration/KTV_InterfaceConfig.h>
#include <counters/KTV_Liczniki.h>
#include <datalist/KTV_DataList.h>
#include <wifi/KTV_Connection.h>

#include <QDir>
#include <QRandomGenerator>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QtTest>

#include <memory>

namespace {

const QString directory = QStringLiteral("/media/sdcard/UserData/");
const QString languages = QStringLiteral("/home/root/Langs/");
const QString supplicantFile = QStringLiteral("/etc/wpa_supplicant/wpa_supplicant-wlan0.conf");
constexpr int unreadable = -1;

int lastSetting()
{
    KTV_InterfaceConfig store(directory);
    return store.getValue(KTV_InterfaceConfig::MAIN_Pin, QString::number(0)).toInt();
}

/** @return how many of the user's own there are; unreadable unless they are 1, 2, 3 and so on */
template <typename Element> int countWhole(QList<Element *> *list, QString Element::*name)
{
    if (!list)
        return unreadable;
    int count = 0;
    for (const Element *element : qAsConst(*list)) {
        if (count != unreadable)
            count = element->*name == QString::number(count + 1) ? count + 1 : unreadable;
    }
    qDeleteAll(*list);
    delete list;
    return count;
}

int lastEntry()
{
    KTV_DataList store(directory, languages, QStringLiteral("EN"));
    if (store.GetDefaultObiectTypCount() != 2 || store.GetDefaultMaterialsCount() != 2)
        return unreadable;
    return countWhole(store.GetObiectTyp(false, true, QString(), 0), &DataList_Element::Value);
}

int lastNetwork()
{
    // Before the next start makes it anew: each network that was answered is in it, whole.
    const QString file = QString::fromUtf8(Meter::readFile(supplicantFile));
    WiFi::KTV_Connection store(directory);
    const int known = countWhole(store.GetMyNetwork(), &WiFi::Network::ESSID);
    const int written = file.count(QStringLiteral("network={"));
    const bool isWhole = written == file.count(QStringLiteral("}\n"))
        && (written == 0 || file.startsWith(QStringLiteral("ctrl_interface=")));
    return isWhole && written <= known ? std::min(written, known) : unreadable;
}

int lastCount()
{
    const KTV_Liczniki store(directory);
    return int(store.get_dictionary(KTV_Liczniki::Licznik_Demagnetyzacja));
}

struct Store
{
    const char *name;
    const char *file; ///< SQLite; null for none
    int (*last)(); ///< number of the last change that is there
    int longest; ///< microseconds until the kill, at most: the first start is tried as well
};

const Store stores[] = {
    {"settings", "interfaceConfig.db", lastSetting, 60000},
    {"lists", "dataList.db", lastEntry, 60000},
    {"networks", "wifi.db", lastNetwork, 300000}, // its tools take their time
    {"counters", nullptr, lastCount, 60000},
};

QString integrity(const QString &file)
{
    QString result;
    {
        auto database = QSqlDatabase::addDatabase("QSQLITE", "check");
        database.setDatabaseName(file);
        database.open();
        QSqlQuery query(database);
        result = query.exec("PRAGMA integrity_check") && query.next() ? query.value(0).toString()
                                                                      : "unreadable";
    }
    QSqlDatabase::removeDatabase("check");
    return result;
}

} // namespace

/**
 * A program is killed at a random moment, again and again, while it changes a store: what it was
 * told to be done is there afterwards, at most one change more, and nothing is half done.
 */
class TstKilled : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void killed_data();
    void killed();

private:
    /** @return the last change that was answered */
    static int changeAndKill(const char *store, qint64 microseconds);
};

void TstKilled::initTestCase()
{
    QLoggingCategory::setFilterRules("default.debug=false"); // the changes are many
    for (const char *program : {"ifconfig", "systemctl"}) // only cost time here
        Meter::hideProgram(program);
    QDir(languages).removeRecursively();
    for (const char *list : {"obiectTyp", "obiectName", "materials"})
        Meter::writeFile(languages + "EN/default_" + list + ".txt", "One?1\nTwo?2\n");
}

void TstKilled::killed_data()
{
    QTest::addColumn<int>("index");
    for (int index = 0; index < 4; ++index)
        QTest::newRow(stores[index].name) << index;
}

int TstKilled::changeAndKill(const char *store, qint64 microseconds)
{
    QProcess changer;
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert("QT_LOGGING_RULES", "default.debug=false");
    changer.setProcessEnvironment(environment);
    changer.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    changer.start(CHANGER, {store, directory});
    QByteArray said;
    while (!said.contains('\n') && changer.waitForReadyRead(Meter::patience))
        said += changer.readAll();
    QThread::usleep(ulong(microseconds));
    changer.kill();
    changer.waitForFinished(-1);
    if (changer.exitStatus() != QProcess::CrashExit)
        return std::numeric_limits<int>::max(); // a change was refused
    said += changer.readAll();
    return said.trimmed().split('\n').last().toInt(); // 0 for "begin"
}

void TstKilled::killed()
{
    QFETCH(int, index);
    const Store &store = stores[index];
    const int rounds = qEnvironmentVariableIsSet("KTV_LONG_FORM") ? 1000 : 25;
    QRandomGenerator random(quint32(index + 1)); // the same moments every time
    int answered = 0;
    for (int round = 0; round < rounds; ++round) {
        QDir(directory).removeRecursively();
        QDir().mkpath(directory);
        QFile::remove(supplicantFile);
        const int last = changeAndKill(store.name, random.bounded(store.longest));
        answered += last;
        const int found = store.last();
        QVERIFY2(
            found == last || found == last + 1,
            qPrintable(
                QStringLiteral("round %1: %2 answered, %3 found").arg(round).arg(last).arg(found)));
        if (store.file)
            QCOMPARE(integrity(directory + store.file), "ok");
    }
    QVERIFY(answered > 0);
    qInfo("%d kills, %d answered changes", rounds, answered);
    for (const char *program : {"changer", "wpa_passphrase", "ls", "sh"})
        QTRY_COMPARE(Meter::processes(program), QStringList());
}

KTV_METER_TEST_MAIN(TstKilled)
#include "tst_killed.moc"
