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

#include <optional>
#include <utility>

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

/** The texts of a list; deletes the list. */
template <typename Element> QStringList texts(QList<Element *> *list, QString Element::*text)
{
    if (!list)
        return {QStringLiteral("unreadable")};
    QStringList found;
    for (const Element *element : std::as_const(*list))
        found += element->*text;
    qDeleteAll(*list);
    delete list;
    return found;
}

/** @return their number; unreadable unless they are 1, 2, 3 and so on */
int countWhole(const QStringList &found)
{
    for (int i = 0; i < found.size(); ++i) {
        if (found.at(i) != QString::number(i + 1))
            return unreadable;
    }
    return int(found.size());
}

/** @return the only one; 0 if there is none; unreadable if there are several */
int theOnly(const QStringList &found)
{
    return found.isEmpty() ? 0 : found.size() == 1 ? found.first().toInt() : unreadable;
}

template <int (*number)(const QStringList &)> int entries()
{
    KTV_DataList store(directory, languages, QStringLiteral("EN"));
    if (store.GetDefaultObiectTypCount() != 2 || store.GetDefaultMaterialsCount() != 2)
        return unreadable;
    return number(texts(store.GetObiectTyp(false, true, QString(), 0), &DataList_Element::Value));
}

/** Whether the supplicant's file is complete, or does not exist yet. */
bool isSupplicantFileWhole(const QString &file)
{
    const auto networks = file.count(QStringLiteral("network={"));
    return networks == file.count(QStringLiteral("}\n"))
        && (networks == 0 || file.startsWith(QStringLiteral("ctrl_interface=")));
}

template <int (*number)(const QStringList &)> int networks()
{
    const QString file = QString::fromUtf8(Meter::readFile(supplicantFile));
    WiFi::KTV_Connection store(directory); // writes the file again
    const QStringList known = texts(store.GetMyNetwork(), &WiFi::Network::ESSID);
    return isSupplicantFileWhole(file) ? number(known) : unreadable;
}

/** Each network whose call has returned is in the supplicant's file, too. */
int networksOfBoth()
{
    const int written = int(QString::fromUtf8(Meter::readFile(supplicantFile)).count("network={"));
    const int known = networks<countWhole>();
    return written <= known ? std::min(written, known) : unreadable;
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
    int (*last)(); ///< number of the last stored change
    int longest; ///< most microseconds until the kill; includes the first start
    bool inTurns = false; ///< each second change removes what the one before has set

    int after(int change) const { return inTurns && change % 2 == 0 ? 0 : change; }
};

const Store stores[] = {
    {"settings", "interfaceConfig.db", lastSetting, 60000},
    {"deleted settings", "interfaceConfig.db", lastSetting, 60000, true},
    {"reset settings", "interfaceConfig.db", lastSetting, 60000, true},
    {"lists", "dataList.db", entries<countWhole>, 60000},
    {"deleted entries", "dataList.db", entries<theOnly>, 60000, true},
    {"reset lists", "dataList.db", entries<theOnly>, 60000, true},
    {"networks", "wifi.db", networksOfBoth, 300000}, // long, because the tools are slow
    {"deleted networks", "wifi.db", networks<theOnly>, 300000, true},
    {"reset networks", "wifi.db", networks<theOnly>, 300000, true},
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
 * A program is killed again and again, at random moments, while it changes a store. Afterwards
 * every change whose call had returned is there, at most one more, and no change is incomplete.
 */
class TstKilled : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void killed_data();
    void killed();

private:
    /**
     * Kills that long after the start of the changes or, when @p isLate, after the first one.
     * @return the last change that was answered; no value if a change has failed
     */
    static std::optional<int> changeAndKill(const char *store, qint64 microseconds, bool isLate);
};

void TstKilled::initTestCase()
{
    QLoggingCategory::setFilterRules("default.debug=false"); // there are too many lines
    for (const char *program : {"ifconfig", "systemctl"}) // not needed here: they only take time
        Meter::hideProgram(program);
    QDir(languages).removeRecursively();
    for (const char *list : {"obiectTyp", "obiectName", "materials"})
        Meter::writeFile(languages + "EN/default_" + list + ".txt", "One?1\nTwo?2\n");
}

void TstKilled::killed_data()
{
    QTest::addColumn<int>("index");
    int index = 0;
    for (const Store &store : stores)
        QTest::newRow(store.name) << index++;
}

std::optional<int> TstKilled::changeAndKill(const char *store, qint64 microseconds, bool isLate)
{
    QProcess changer;
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert("QT_LOGGING_RULES", "default.debug=false");
    changer.setProcessEnvironment(environment);
    changer.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    changer.start(CHANGER, {store, directory});
    QByteArray said;
    while (said.count('\n') < (isLate ? 2 : 1) && changer.waitForReadyRead(Meter::patience))
        said += changer.readAll();
    QThread::usleep(ulong(microseconds));
    changer.kill();
    changer.waitForFinished(-1);
    if (changer.exitStatus() != QProcess::CrashExit)
        return std::nullopt; // it has ended by itself
    said += changer.readAll();
    return said.trimmed().split('\n').last().toInt(); // 0 for "begin"
}

void TstKilled::killed()
{
    QFETCH(int, index);
    const Store &store = stores[index];
    const int rounds = qEnvironmentVariableIsSet("KTV_LONG_FORM") ? 1000 : 12;
    QRandomGenerator random(quint32(index + 1)); // the same moments in each run
    int answered = 0;
    for (int round = 0; round < rounds; ++round) {
        QDir(directory).removeRecursively();
        QDir().mkpath(directory);
        QFile::remove(supplicantFile);
        const auto changed =
            changeAndKill(store.name, random.bounded(store.longest), round % 2 == 1);
        QVERIFY2(changed, qPrintable(QStringLiteral("round %1: a change failed").arg(round)));
        const int last = *changed;
        answered += last;
        const int found = store.last();
        QVERIFY2(
            found == store.after(last) || found == store.after(last + 1),
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
