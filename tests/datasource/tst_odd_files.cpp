#include "support/LogCapture.h"
#include "support/Meter.h"
#include "support/Volume.h"

#include <configuration/KTV_Configuration.h>
#include <configuration/KTV_InterfaceConfig.h>
#include <counters/KTV_Liczniki.h>
#include <datalist/KTV_DataList.h>
#include <datasource/KTV_DataSource.h>
#include <language/LangSerwis.h>
#include <language/helpManager.h>
#include <sound/Sound.h>
#include <tools/Tools.h>
#include <wifi/KTV_Connection.h>

#include <QDir>
#include <QtTest>

#include <functional>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

using Place = std::function<void(const QString &)>;
Q_DECLARE_METATYPE(Place)
using Use = QString (*)();
Q_DECLARE_METATYPE(Use)

namespace {

const QString userData = QStringLiteral("/media/sdcard/UserData/");
const QString languages = QStringLiteral("/home/root/Langs/");
constexpr unsigned longest = 120; // s; a test that opens a pipe would wait for ever

void clear(const QString &path)
{
    QDir(path).removeRecursively();
    QFile::remove(path);
}

/** What may be in the place of a file. */
struct Kind
{
    const char *name;
    void (*create)(const QString &path);
};

const Kind kinds[] = {
    {"pipe", [](const QString &path) { ::mkfifo(QFile::encodeName(path), 0600); }},
    {"link to a pipe",
     [](const QString &path) {
         clear("/tmp/pipe");
         ::mkfifo("/tmp/pipe", 0600);
         QFile::link("/tmp/pipe", path);
     }},
    {"device without end", [](const QString &path) { QFile::link("/dev/zero", path); }},
    {"device that swallows", [](const QString &path) { QFile::link("/dev/full", path); }},
    {"socket", [](const QString &path) { const SocketFile socket(path); }},
    {"directory", [](const QString &path) { QDir().mkpath(path); }},
};

bool isDirectory(const QString &path)
{
    return QFileInfo(path).isDir();
}

bool hasLine(const LogCapture &log, const QString &begin)
{
    return !log.lines()
                .filter(QRegularExpression('^' + QRegularExpression::escape(begin)))
                .isEmpty();
}

// For each place: uses the file, and checks the result.

void description(const QString &path)
{
    const LogCapture log;
    const KTV_Configuration configuration;
    QCOMPARE(log.lines(), QStringList("Fail to open KTV_Configuration:" + path));
    QCOMPARE(configuration.get_clientsDirectory(), QStringLiteral("/media/sdcard/Clients/"));
}

void systemVersion(const QString &)
{
    QCOMPARE(KTV_Configuration().get_SystemVersion(), QStringLiteral(" - ????"));
}

void language(const QString &path)
{
    LangSerwis texts(languages, KTV_Configuration::KTV_420);
    const LogCapture log;
    QVERIFY(texts.setLang("XX"));
    QCOMPARE(texts.getCurrentLang(), QStringLiteral("EN"));
    QCOMPARE(log.lines().size(), 1);
    QVERIFY(hasLine(log, "LangSerwis::setLang(XX): "));
    QVERIFY(log.lines().constFirst().endsWith(": " + path));
    QVERIFY(!log.lines().constFirst().contains("Unknown error"));
}

void fallbackLanguage(const QString &)
{
    LangSerwis texts(languages, KTV_Configuration::KTV_420);
    const LogCapture log;
    QVERIFY(!texts.setLang("XX"));
    QCOMPARE(log.lines().size(), 3);
    QVERIFY(hasLine(log, "LangSerwis::setLang to default (EN): "));
}

void helpPage(const QString &)
{
    QERNTools::helpManager help("/home/root/Help", KTV_Configuration::KTV_420, "XX");
    QVERIFY(!help.HasHelp("odd"));
    QVERIFY(std::unique_ptr<QStringList>(help.GetHelpFileList("odd"))->isEmpty());
}

/** No counts are read; saving replaces it if possible. */
void counters(const QString &path)
{
    const LogCapture log;
    {
        const KTV_Liczniki counters("/media/sdcard/Log/");
        QCOMPARE(counters.get_dictionary(KTV_Liczniki::Licznik_Demagnetyzacja), 0);
    }
    QStringList lines("Liczniki open file error!!!");
    if (isDirectory(path))
        lines += "Liczniki override file error!!!";
    QCOMPARE(log.lines(), lines);
    QCOMPARE(QFileInfo(path).isFile() && !QFileInfo(path).isSymLink(), !isDirectory(path));
    QVERIFY(!QFileInfo("/dev/zero").isFile());
}

void defaultList(const QString &)
{
    KTV_DataList lists(userData, languages, "XX");
    QVERIFY(lists.Open());
    QCOMPARE(lists.GetDefaultObiectTypCount(), 0);
    QVERIFY(lists.AddObiectTyp("own"));
}

void lists(const QString &)
{
    const LogCapture log;
    KTV_DataList lists(userData, languages, "EN");
    QVERIFY(!lists.Open());
    QVERIFY(!lists.AddObiectTyp("own"));
    QVERIFY(hasLine(log, "!no open database:unable to open database file"));
}

/** Settings that cannot be opened are replaced if possible. */
void settings(const QString &path)
{
    const LogCapture log;
    KTV_InterfaceConfig settings(userData);
    QVERIFY(hasLine(log, "!no open database:unable to open database file"));
    settings.setValue(KTV_InterfaceConfig::MAIN_Lang, "PL");
    QCOMPARE(settings.getValue(KTV_InterfaceConfig::MAIN_Lang, "none"),
             isDirectory(path) ? QStringLiteral("none") : QStringLiteral("PL"));
}

void knownNetworks(const QString &)
{
    WiFi::KTV_Connection connection(userData);
    QVERIFY(!connection.AddNetwork("name", "passphrase"));
}

/** It is replaced if possible. */
void supplicantFile(const QString &path)
{
    const LogCapture log;
    WiFi::KTV_Connection connection(userData);
    QVERIFY(connection.AddNetwork("Lab", QString()));
    if (isDirectory(path)) {
        QVERIFY(hasLine(log, "KTV_Connection::_buildConfFile: open file:Is a directory"));
        return;
    }
    QVERIFY(QFileInfo(path).isFile() && !QFileInfo(path).isSymLink());
    QVERIFY(Meter::readFile(path).contains("ssid=\"Lab\""));
    QVERIFY(!QFileInfo("/dev/zero").isFile());
}

/** A journal that is not a file is no problem; if it is a directory, no database is opened or lost.
 */
void journalOfSettings(const QString &path)
{
    const QString database = path.chopped(int(qstrlen("-journal")));
    KTV_InterfaceConfig settings(userData);
    settings.setValue(KTV_InterfaceConfig::MAIN_Lang, "PL");
    if (!isDirectory(path))
        QCOMPARE(settings.getValue(KTV_InterfaceConfig::MAIN_Lang, "none"), QStringLiteral("PL"));
    QVERIFY(QFileInfo(database).isFile());
}

void journalOfLists(const QString &path)
{
    KTV_DataList lists(userData, languages, "EN");
    QVERIFY(lists.AddObiectTyp("own") || isDirectory(path));
}

void journalOfNetworks(const QString &path)
{
    WiFi::KTV_Connection connection(userData);
    QVERIFY(connection.AddNetwork("Lab", QString()) || isDirectory(path));
}

void sample(const QString &)
{
    using SoundNamespace::Sound;
    for (const bool loop : {false, true}) {
        Sound::Play(Sound::SOUND_ERROR, loop, true, "/tmp/");
        Sound::KillProcess();
        QTRY_COMPARE(Meter::processes("aplay"), QStringList());
    }
}

void firstStartMarker(const QString &path)
{
    QVERIFY(!KTV_DataSource::FirstStart());
    QVERIFY(QFileInfo(path).exists());
}

void cardMarker(const QString &)
{
    QVERIFY(!QERNTools::Tools::SD_Card_is_OK());
}

/** Whatever can be opened like a line gets its settings, which only a line takes. */
void serialLine(const QString &path)
{
    struct stat file = {};
    QVERIFY(::stat(QFile::encodeName(path).constData(), &file) == 0);
    const bool canBeOpened = !S_ISDIR(file.st_mode) && !S_ISSOCK(file.st_mode);
    QCOMPARE(QERNTools::Tools::ConfigurePort(), canBeOpened);
}

struct PlaceOf
{
    const char *path;
    void (*look)(const QString &path);
};

const PlaceOf places[] = {
    {"/home/root/globalInfo.xml", description},
    {"/etc/version", systemVersion},
    {"/home/root/Langs/XX/XX.xml", language},
    {"/home/root/Langs/EN/EN.xml", fallbackLanguage},
    {"/home/root/Help/KTV_420/odd/page_XX.html", helpPage},
    {"/media/sdcard/Log/liczniki.bin", counters},
    {"/home/root/Langs/XX/default_obiectTyp.txt", defaultList},
    {"/media/sdcard/UserData/dataList.db", lists},
    {"/media/sdcard/UserData/interfaceConfig.db", settings},
    {"/media/sdcard/UserData/wifi.db", knownNetworks},
    {"/etc/wpa_supplicant/wpa_supplicant-wlan0.conf", supplicantFile},
    {"/media/sdcard/UserData/interfaceConfig.db-journal", journalOfSettings},
    {"/media/sdcard/UserData/dataList.db-journal", journalOfLists},
    {"/media/sdcard/UserData/wifi.db-journal", journalOfNetworks},
    {"/tmp/SOUND_ERROR.raw", sample},
    {"/etc/korva/system-boot.status", firstStartMarker},
    {"/etc/korva/sdcard.error", cardMarker},
    {"/dev/ttyGS0", serialLine},
};

// Each adds to a store and returns how much is then in it.

QString useCounters()
{
    KTV_Liczniki counters("/media/sdcard/Log/");
    counters.Up_Licznik_Demagnetyzacja();
    return QString::number(counters.get_dictionary(KTV_Liczniki::Licznik_Demagnetyzacja));
}

QString useLists()
{
    KTV_DataList lists(userData, languages, "EN");
    lists.AddLimit_R("own", {}, {});
    const std::unique_ptr<QList<LimitList_Element *>> limits(lists.GetLimits_R({}, 0));
    qDeleteAll(*limits);
    return QString::number(limits->size());
}

QString useSettings()
{
    KTV_InterfaceConfig settings(userData);
    const int next = settings.getValue(KTV_InterfaceConfig::MAIN_Pin, 0) + 1;
    settings.setValue(KTV_InterfaceConfig::MAIN_Pin, next);
    return QString::number(settings.getValue(KTV_InterfaceConfig::MAIN_Pin, 0));
}

QString useNetworks()
{
    WiFi::KTV_Connection connection(userData);
    const std::unique_ptr<QList<WiFi::Network *>> known(connection.GetMyNetwork());
    qDeleteAll(*known);
    connection.AddNetwork(QString::number(known->size()), {});
    return QString::number(
        Meter::readFile("/etc/wpa_supplicant/wpa_supplicant-wlan0.conf").count("network={"));
}

struct Written
{
    const char *path;
    Use use;
};

const Written writtenFiles[] = {
    {"/media/sdcard/Log/liczniki.bin", useCounters},
    {"/media/sdcard/UserData/dataList.db", useLists},
    {"/media/sdcard/UserData/interfaceConfig.db", useSettings},
    {"/media/sdcard/UserData/wifi.db", useNetworks},
    {"/etc/wpa_supplicant/wpa_supplicant-wlan0.conf", useNetworks},
};

} // namespace

/** Something that is not a file, in the place of each file that the library reads or writes. */
class TstOddFiles : public QObject
{
    Q_OBJECT
private slots:
    void init() { ::alarm(longest); }
    void cleanup() { ::alarm(0); }

    void inTheFilesPlace_data();
    void inTheFilesPlace();
    void linkToAFile();
    void linkOutOfTheFolder_data();
    void linkOutOfTheFolder();
};

void TstOddFiles::inTheFilesPlace_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<Place>("look");
    QTest::addColumn<Place>("create");
    for (const PlaceOf &place : places) {
        for (const Kind &kind : kinds)
            QTest::addRow("%s: %s", place.path, kind.name)
                << place.path << Place(place.look) << Place(kind.create);
    }
}

void TstOddFiles::inTheFilesPlace()
{
    QFETCH(QString, path);
    QFETCH(Place, look);
    QFETCH(Place, create);
    const QByteArray before = Meter::readFile(path);
    const bool existed = QFile::exists(path);
    QDir().mkpath(QFileInfo(path).path());
    clear(path);
    create(path);
    look(path);
    clear(path);
    clear(userData);
    if (existed)
        Meter::writeFile(path, before);
}

/** A link to a regular file elsewhere works like the file. */
void TstOddFiles::linkToAFile()
{
    Meter::writeFile("/tmp/version", "7.8.9\n");
    const QByteArray before = Meter::readFile("/etc/version");
    clear("/etc/version");
    QVERIFY(QFile::link("/tmp/version", "/etc/version"));
    QCOMPARE(KTV_Configuration().get_SystemVersion(), QStringLiteral("7.8.9"));
    clear("/etc/version");
    Meter::writeFile("/etc/version", before);
}

void TstOddFiles::linkOutOfTheFolder_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<Use>("use");
    for (const Written &written : writtenFiles)
        QTest::addRow("%s", written.path) << written.path << written.use;
}

/** Changes are written to the file to which the link leads, and the next start reads them there. */
void TstOddFiles::linkOutOfTheFolder()
{
    QFETCH(QString, path);
    QFETCH(Use, use);
    clear("/tmp/elsewhere");
    QDir().mkpath("/tmp/elsewhere");
    const QString target = "/tmp/elsewhere/" + QFileInfo(path).fileName();
    clear(path);
    use(); // makes the file
    QVERIFY(QFile::copy(path, target));
    clear(path);
    QVERIFY(QFile::link(target, path));
    const QString before = use();
    QVERIFY(QFileInfo(path).isSymLink());
    QVERIFY(QFileInfo(target).isFile() && !QFileInfo(target).isSymLink());
    clear(path);
    QVERIFY(QFile::copy(target, path));
    QCOMPARE(use(), QString::number(before.toInt() + 1));
    clear(path);
    clear(userData);
}

KTV_METER_TEST_MAIN(TstOddFiles)
#include "tst_odd_files.moc"
