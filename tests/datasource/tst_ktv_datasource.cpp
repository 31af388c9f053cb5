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
#include <platform/Pendrive.h>
#include <platform/PowerManager.h>
#include <platform/PrintOnSato.h>
#include <platform/Update.h>
#include <platform/skanerQR.h>
#include <tools/Tools.h>
#include <valuebox/NumericalValueBox.h>
#include <wifi/KTV_Connection.h>

#include <QDir>
#include <QPointer>
#include <QSignalSpy>
#include <QTimer>
#include <QtTest>

#include <memory>

namespace {

const QString userData = QStringLiteral("/media/sdcard/UserData/");
const QString clients = QStringLiteral("/media/sdcard/Clients/");
const QString countersFile = QStringLiteral("/media/sdcard/Log/liczniki.bin");
const QString languages = QStringLiteral("/home/root/Langs/");
const QString helpPages = QStringLiteral("/home/root/Help/");
const QString bootMarker = QStringLiteral("/etc/korva/system-boot.status");
const QString touchScreen = QStringLiteral("/dev/input/touchscreen0");
const QString brightness = QStringLiteral("/run/platform/brightness");

QByteArray language(const QByteArray &code)
{
    return "<texts><Main><title value='" + code + "'/></Main></texts>";
}

QString storedValue(KTV_InterfaceConfig::SettingKey key)
{
    return KTV_InterfaceConfig(userData).getValue(key, QStringLiteral("not set"));
}

/** Class names of an object's children, in the order of their construction. */
QStringList childrenOf(const QObject &object)
{
    QStringList names;
    for (const QObject *child : object.children())
        names += child->metaObject()->className();
    return names;
}

/** For each line that begins with one of the texts: that text. */
QStringList ofInterest(const QStringList &lines, const QStringList &texts)
{
    QStringList found;
    for (const QString &line : lines) {
        for (const QString &text : texts) {
            if (line.startsWith(text))
                found += text;
        }
    }
    return found;
}

int knownNetworks(const KTV_DataSource &facade)
{
    const std::unique_ptr<QList<WiFi::Network *>> networks(facade.getConnection()->GetMyNetwork());
    const int count = int(networks->size());
    qDeleteAll(*networks);
    return count;
}

bool isThere(const QObject *child, const QObject &facade)
{
    return child && child->parent() == &facade;
}

} // namespace

/** The facade: order of its steps, language, identity, disk alert, first start. */
class TstKtvDataSource : public QObject
{
    Q_OBJECT
private slots:
    void init();

    void services();
    void orderOfConstruction();
    void orderOfDestruction();
    void everythingFailsInOrder();
    void directoriesComeFromTheDescription();

    void startLanguage_data();
    void startLanguage();
    void switchingTheLanguage();

    void serialNumberDecidesTheModel();
    void serialNumberTwice();
    void serialNumberIsStored_data();
    void serialNumberIsStored();
    void countersAreSavedAtTheEnd();

    void alertLevel_data();
    void alertLevel();
    void alertLevelIsSharedByTheProcess();
    void alertOfAVolumeWithoutSize();
    void diskIsCheckedOnceAMinute();
    void diskFigures();

    void factoryReset();
    void factoryResetGoesOnInOrder();
    void firstStart_data();
    void firstStart();
    void firstStartFromOddPlaces();
    void touchScreenIsDetectedByAFile();
};

void TstKtvDataSource::init()
{
    QFile::remove(QStringLiteral("/home/root/globalInfo.xml"));
    for (const QString &path :
         {userData, clients, languages, helpPages, QStringLiteral("/media/sdcard/Log/")}) {
        QDir(path).removeRecursively();
        QDir().mkpath(path);
    }
    Meter::writeFile(languages + "EN/EN.xml", language("EN"));
    Meter::writeFile(languages + "PL/PL.xml", language("PL"));
    QFile::remove(brightness);
    currentFreeSpaceAlletr = 0;
    KTV_Configuration::_meterModel = KTV_Configuration::MeterModels_NaN;
}

void TstKtvDataSource::services()
{
    QObject owner;
    auto *facade = new KTV_DataSource(&owner);
    QCOMPARE(facade->parent(), &owner);
    QVERIFY(isThere(facade->get_Lang(), *facade));
    QVERIFY(isThere(facade->get_InterfaceConfig(), *facade));
    QVERIFY(isThere(facade->getMainConfig(), *facade));
    QVERIFY(isThere(facade->get_DataList(), *facade));
    QVERIFY(isThere(facade->getConnection(), *facade));
    QVERIFY(isThere(facade->getPrinter(), *facade));
    QVERIFY(isThere(facade->getSkaner(), *facade));
    QVERIFY(isThere(facade->getLiczniki(), *facade));
    QVERIFY(isThere(facade->getPendrive(), *facade));
    QVERIFY(isThere(facade->getUpdate(), *facade));
    QVERIFY(isThere(facade->getPowerManager(), *facade));
    QCOMPARE(facade->getHelpManager(), nullptr);
    QCOMPARE(facade->get_Lang(), facade->get_Lang());
    QCOMPARE(facade->getMainConfig()->get_MeterModel(), KTV_Configuration::MeterModels_NaN);
    QCOMPARE(QByteArray(facade->metaObject()->className()), QByteArray("KTV_DataSource"));
    QVERIFY(facade->metaObject()->indexOfSignal("changeFreeSpaceAlert()") >= 0);
    QVERIFY(facade->metaObject()->indexOfSlot("updateTimeDisk()") >= 0);
}

void TstKtvDataSource::orderOfConstruction()
{
    const KTV_DataSource facade;
    QCOMPARE(childrenOf(facade),
             (QStringList {"KTV_Configuration", "KTV_InterfaceConfig", "LangSerwis", "KTV_Liczniki",
                           "KTV_DataList", "WiFi::KTV_Connection", "QTimer",
                           "Printing::PrintOnSato", "QRReader::skanerQR",
                           "Tools_Pendrive::Pendrive", "Updater::Update", "PowerManager"}));
}

void TstKtvDataSource::orderOfDestruction()
{
    QStringList order;
    {
        KTV_DataSource facade;
        facade.setMeterSerialName("CH1");
        facade.setMeterSerialName("CH2"); // the first help manager is destroyed with the facade
        for (const QObject *child : facade.children()) {
            const QString name = child->metaObject()->className();
            connect(child, &QObject::destroyed, [&order, name] { order += name; });
        }
    }
    QCOMPARE(order,
             (QStringList {"QTimer", "WiFi::KTV_Connection", "KTV_DataList", "LangSerwis",
                           "KTV_InterfaceConfig", "QERNTools::helpManager", "Printing::PrintOnSato",
                           "QRReader::skanerQR", "KTV_Liczniki", "Updater::Update",
                           "Tools_Pendrive::Pendrive", "PowerManager", "KTV_Configuration",
                           "QERNTools::helpManager"}));
}

void TstKtvDataSource::everythingFailsInOrder()
{
    // Neither card nor flash can be used: every service logs that, in order.
    const Volume noCard("/media/sdcard", 10);
    const Volume noFlash("/home/root", 10);
    Meter::writeFile("/home/root/globalInfo.xml", "damaged");
    Meter::writeFile("/media/sdcard/Log/liczniki.bin", "damaged");
    Meter::writeFile(userData + "interfaceConfig.db/in the way", "");
    const QStringList texts {"Fail to load KTV_Configuration!",   "!no open database:",
                             "LangSerwis::setLang(EN): ",         "LICZNIKI file damage!",
                             "KTV_InterfaceConfig: DB is CLOSE!", "Liczniki"};
    LogCapture log;
    auto facade = std::make_unique<KTV_DataSource>();
    QCOMPARE(ofInterest(log.lines(), texts),
             (QStringList {"Fail to load KTV_Configuration!", "!no open database:",
                           "LangSerwis::setLang(EN): ", "LICZNIKI file damage!"}));
    facade->setMeterSerialName("CH1");
    facade->SetLang("DE");
    facade->updateTimeDisk();
    QVERIFY(QDir("/media/sdcard/Log").removeRecursively());
    Meter::writeFile("/media/sdcard/Log", "in the way");
    log.clear();
    facade.reset();
    QCOMPARE(ofInterest(log.lines(), texts),
             (QStringList {"KTV_InterfaceConfig: DB is CLOSE!", "Liczniki"}));
    QVERIFY(log.lines().contains("Liczniki create path error!!!"));
}

void TstKtvDataSource::directoriesComeFromTheDescription()
{
    const QString other = QStringLiteral("/media/sdcard/Other/");
    QDir(other).removeRecursively();
    Meter::writeFile("/home/root/globalInfo.xml",
                     "<device><_clientsDirectory Value='/media/sdcard/Other/Clients/'/>"
                     "<_logDirectory Value='/media/sdcard/Other/Log/'/>"
                     "<_updateDirectory Value='/media/sdcard/Other/Update'/>"
                     "<_mainInterfaceLangsDirectory Value='/media/sdcard/Other/Langs/'/>"
                     "<_mainInterfaceUserDataDirectory Value='/media/sdcard/Other/UserData/'/>"
                     "<_mainInterfaceUserHelpDirectory Value='/media/sdcard/Other/Help/'/>"
                     "<_soundSamplePath Value='/media/sdcard/Other/wav/'/>"
                     "<_soundOff Value='true'/></device>");
    Meter::writeFile(other + "Langs/EN/EN.xml", language("other"));
    Meter::writeFile(other + "Langs/EN/default_obiectTyp.txt", "one\ntwo\n");
    Meter::writeFile(other + "Update/1.update", "x");
    {
        const Volume card(other + "Clients", 512);
        KTV_Configuration::_meterModel = KTV_Configuration::KTV_4200; // one that plays samples
        KTV_DataSource facade;
        const auto &soundOff = Buzzer::BuzzerClass::pernamentOff;
        const auto &samples = Buzzer::BuzzerClass::_pathtoWave;
        for (const bool hasSerialNumber : {false, true}) {
            QCOMPARE(facade.getUpdate()->updateFiles(), QStringList("1.update"));
            QCOMPARE(samples, other + "wav/");
            QVERIFY(soundOff);
            Buzzer::BuzzerClass::BuzzerClass_Initialiser(KTV_Configuration::KTV_4200, {}, false);
            if (!hasSerialNumber)
                facade.setMeterSerialName("DV1");
        }
        QCOMPARE(facade.get_Lang()->getText("Main", "title", {}), QStringLiteral("other"));
        QCOMPARE(facade.get_DataList()->GetDefaultObiectTypCount(), 2);
        const std::unique_ptr<QERNTools::DiskInfo> figures(facade.getDiskInfo());
        QCOMPARE(figures->totalText, QStringLiteral("2.00 MB"));
    }
    const auto filesOf = [](const QString &path) { return QDir(path).entryList(QDir::Files); };
    QCOMPARE(filesOf(other + "UserData"),
             (QStringList {"dataList.db", "interfaceConfig.db", "wifi.db"}));
    QCOMPARE(filesOf(other + "Log"), QStringList("liczniki.bin"));
    QVERIFY(QFileInfo(other + "Help/KTV_4200").isDir());
    QCOMPARE(filesOf(userData), QStringList()); // nothing in the usual places
    QVERIFY(!QFile::exists(countersFile));
    QVERIFY(!QFile::exists(helpPages + "KTV_4200"));
}

void TstKtvDataSource::startLanguage_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("code");
    QTest::newRow("none stored") << QString() << "EN";
    QTest::newRow("stored") << "PL"
                            << "PL";
    QTest::newRow("stored, gone: the fallback") << "DE"
                                                << "EN";
    QTest::newRow("stored empty text: the fallback") << ""
                                                     << "EN";
}

void TstKtvDataSource::startLanguage()
{
    QFETCH(QString, stored);
    QFETCH(QString, code);
    if (!stored.isNull())
        KTV_InterfaceConfig(userData).setValue(KTV_InterfaceConfig::MAIN_Lang, stored);
    Meter::writeFile(languages + code + "/default_obiectTyp.txt", "one\ntwo\n");
    Meter::writeFile(helpPages + "KTV_420/Main/a_" + code + ".html", "x");
    {
        KTV_DataSource facade;
        QCOMPARE(facade.get_Lang()->getCurrentLang(), code);
        QCOMPARE(facade.get_Lang()->getText("Main", "title", {}), code);
        // Lists and help use the current language, not the stored one.
        QCOMPARE(facade.get_DataList()->GetDefaultObiectTypCount(), 2);
        facade.setMeterSerialName("CH1");
        QVERIFY(facade.getHelpManager()->HasHelp("Main"));
    }
    QCOMPARE(storedValue(KTV_InterfaceConfig::MAIN_Lang),
             stored.isNull() ? QStringLiteral("not set") : stored);
}

void TstKtvDataSource::switchingTheLanguage()
{
    Meter::writeFile(helpPages + "KTV_420/Main/a_DE.html", "x");
    Meter::writeFile(helpPages + "KTV_420/Other/a_EN.html", "x");
    {
        KTV_DataSource facade;
        facade.setMeterSerialName("CH1");
        QVERIFY(facade.getHelpManager()->HasHelp("Other")); // in the current language
        facade.SetLang("PL");
        QCOMPARE(facade.get_Lang()->getCurrentLang(), QStringLiteral("PL"));
        QVERIFY(!facade.getHelpManager()->HasHelp("Other"));
        facade.SetLang("DE"); // the texts fall back, the help pages use this code
        QCOMPARE(facade.get_Lang()->getCurrentLang(), QStringLiteral("EN"));
        QVERIFY(facade.getHelpManager()->HasHelp("Main"));
        QVERIFY(!facade.getHelpManager()->HasHelp("Other"));
    }
    QCOMPARE(storedValue(KTV_InterfaceConfig::MAIN_Lang), QStringLiteral("not set"));
}

void TstKtvDataSource::serialNumberDecidesTheModel()
{
    KTV_DataSource facade;
    QDir(languages).mkdir("XX");
    const auto offered = [&facade] {
        return *std::unique_ptr<QStringList>(facade.get_Lang()->getLangList());
    };
    QCOMPARE(offered(), (QStringList {"EN", "PL", "XX"}));
    const LogCapture log;
    facade.setMeterSerialName("DV0001");
    const QStringList inOrder {"KTV_Configuration::set_SerialNumber(DV0001)",
                               "NumericalValueBox::SetCurrentMeter(3)"};
    QCOMPARE(ofInterest(log.lines(), inOrder), inOrder);
    QCOMPARE(facade.getMainConfig()->get_SerialNumber(), QStringLiteral("DV0001"));
    QCOMPARE(facade.getMainConfig()->get_MeterModel(), KTV_Configuration::KTV_4200);
    QCOMPARE(ValueBox::NumericalValueBox::currentMeter, KTV_Configuration::KTV_4200);
    QCOMPARE(offered(), (QStringList {"PL", "EN", "US"}));
    QVERIFY(isThere(facade.getHelpManager(), facade));
    QVERIFY(QFileInfo(helpPages + "KTV_4200").isDir());
}

void TstKtvDataSource::serialNumberTwice()
{
    auto facade = std::make_unique<KTV_DataSource>();
    const QPointer<Updater::Update> born(facade->getUpdate());
    facade->setMeterSerialName("CH1");
    const QPointer<Updater::Update> firstUpdate(facade->getUpdate());
    const QPointer<QERNTools::helpManager> firstHelp(facade->getHelpManager());
    QVERIFY(born.isNull());
    Tools_Pendrive::Pendrive *const stick = facade->getPendrive();

    facade->setMeterSerialName("DV1");
    QVERIFY(firstUpdate.isNull());
    QVERIFY(isThere(facade->getUpdate(), *facade));
    QCOMPARE(childrenOf(*facade).count("Updater::Update"), 1);
    QCOMPARE(facade->getPendrive(), stick);
    QVERIFY(!firstHelp.isNull());
    QVERIFY(firstHelp != facade->getHelpManager());
    QCOMPARE(firstHelp->parent(), facade.get());
    Meter::writeFile(helpPages + "KTV_420/Main/a_EN.html", "x");
    QVERIFY(firstHelp->HasHelp("Main")); // a page that is open can still use it
    QVERIFY(!facade->getHelpManager()->HasHelp("Main"));

    const QPointer<QERNTools::helpManager> secondHelp(facade->getHelpManager());
    facade.reset();
    QVERIFY(firstHelp.isNull() && secondHelp.isNull());
}

void TstKtvDataSource::serialNumberIsStored_data()
{
    QTest::addColumn<QString>("serial");
    QTest::addColumn<QString>("stored");
    QTest::newRow("none reported") << QString() << "AA0000";
    QTest::newRow("reported") << "EL12345"
                              << "EL12345";
    QTest::newRow("of no model") << "XX1"
                                 << "XX1";
    QTest::newRow("quotes, percent, letters")
        << QStringLiteral("CH'\"%1 ż") << QStringLiteral("CH'\"%1 ż");
}

void TstKtvDataSource::serialNumberIsStored()
{
    QFETCH(QString, serial);
    QFETCH(QString, stored);
    {
        KTV_DataSource facade;
        if (!serial.isNull())
            facade.setMeterSerialName(serial);
        QCOMPARE(facade.get_InterfaceConfig()->getValue(KTV_InterfaceConfig::MAIN_MeterSN,
                                                        QStringLiteral("not set")),
                 QStringLiteral("not set")); // written only by the destructor
    }
    QCOMPARE(storedValue(KTV_InterfaceConfig::MAIN_MeterSN), stored);
}

void TstKtvDataSource::countersAreSavedAtTheEnd()
{
    {
        const KTV_DataSource facade;
        facade.getLiczniki()->Up_Licznik_Demagnetyzacja();
        QVERIFY(!QFile::exists(countersFile));
    }
    QCOMPARE(Meter::readFile(countersFile).mid(16, 8), QByteArray::fromHex("0000000000000001"));
    const KTV_DataSource again;
    QCOMPARE(again.getLiczniki()->get_dictionary(KTV_Liczniki::Licznik_Demagnetyzacja), 1);
}

void TstKtvDataSource::alertLevel_data()
{
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("blocks");
    QTest::addColumn<int>("level");
    const QVector<QPair<int, int>> levels {{0, 0},  {69, 0}, {70, 0}, {71, 1}, {72, 1},
                                           {79, 1}, {80, 1}, {81, 2}, {82, 2}, {100, 2}};
    for (const auto &entry : levels) {
        for (int before = 0; before <= 2; ++before)
            QTest::addRow("%d %% used at level %d", entry.first, before)
                << before << entry.first << entry.second;
    }
}

void TstKtvDataSource::alertLevel()
{
    QFETCH(int, before);
    QFETCH(int, blocks);
    QFETCH(int, level);
    Volume card(clients);
    KTV_DataSource facade;
    card.fill(blocks);
    currentFreeSpaceAlletr = before;
    int levelSeen = -1;
    connect(&facade, &KTV_DataSource::changeFreeSpaceAlert,
            [&] { levelSeen = facade.getFreeSpaceAlert(); });
    QSignalSpy changes(&facade, &KTV_DataSource::changeFreeSpaceAlert);
    facade.updateTimeDisk();
    QCOMPARE(facade.getFreeSpaceAlert(), level);
    QCOMPARE(changes.count(), before == level ? 0 : 1);
    QCOMPARE(levelSeen, before == level ? -1 : level); // stored before the signal is emitted
    facade.updateTimeDisk();
    QCOMPARE(changes.count(), before == level ? 0 : 1);
}

void TstKtvDataSource::alertLevelIsSharedByTheProcess()
{
    Volume card(clients);
    card.fill(75);
    {
        KTV_DataSource facade;
        QCOMPARE(facade.getFreeSpaceAlert(), 0); // not checked by the constructor
        facade.updateTimeDisk();
    }
    QCOMPARE(currentFreeSpaceAlletr, 1);
    KTV_DataSource facade;
    QCOMPARE(facade.getFreeSpaceAlert(), 1);
    QSignalSpy changes(&facade, &KTV_DataSource::changeFreeSpaceAlert);
    facade.updateTimeDisk();
    QCOMPARE(changes.count(), 0);
}

void TstKtvDataSource::alertOfAVolumeWithoutSize()
{
    Meter::writeFile("/home/root/globalInfo.xml",
                     "<device><_clientsDirectory Value='/proc/'/></device>");
    KTV_DataSource facade;
    currentFreeSpaceAlletr = 2;
    facade.updateTimeDisk();
    QCOMPARE(facade.getFreeSpaceAlert(), 0);
}

void TstKtvDataSource::diskIsCheckedOnceAMinute()
{
    Volume card(clients);
    card.fill(90);
    const KTV_DataSource facade;
    const auto timers = facade.findChildren<QTimer *>(QString(), Qt::FindDirectChildrenOnly);
    QCOMPARE(timers.size(), 1);
    QTimer *const timer = timers.constFirst();
    QVERIFY(timer->isActive());
    QCOMPARE(timer->interval(), 60000);
    QVERIFY(!timer->isSingleShot());
    QSignalSpy changes(&facade, &KTV_DataSource::changeFreeSpaceAlert);
    QVERIFY(QMetaObject::invokeMethod(timer, "timeout", Qt::DirectConnection));
    QCOMPARE(changes.count(), 1);
    QCOMPARE(facade.getFreeSpaceAlert(), 2);
}

void TstKtvDataSource::diskFigures()
{
    Volume card(clients, 512);
    card.fill(256);
    const KTV_DataSource facade;
    const std::unique_ptr<QERNTools::DiskInfo> first(facade.getDiskInfo());
    QCOMPARE(first->freeText, QStringLiteral("1.00 MB"));
    QCOMPARE(first->totalText, QStringLiteral("2.00 MB"));
    QCOMPARE(first->usedPercent, 50.F);
    QVERIFY(first != std::unique_ptr<QERNTools::DiskInfo>(facade.getDiskInfo()));
}

void TstKtvDataSource::factoryReset()
{
    KTV_DataSource facade;
    facade.setMeterSerialName("CH1");
    facade.SetLang("PL");
    facade.get_InterfaceConfig()->setValue(KTV_InterfaceConfig::MAIN_Lang, QStringLiteral("PL"));
    facade.getLiczniki()->Up_Licznik_Demagnetyzacja();
    QVERIFY(facade.getConnection()->AddNetwork("office", ""));
    QCOMPARE(knownNetworks(facade), 1);
    facade.ClearToDefault();
    QCOMPARE(knownNetworks(facade), 0);
    QCOMPARE(facade.get_InterfaceConfig()->getValue(KTV_InterfaceConfig::MAIN_Lang,
                                                    QStringLiteral("not set")),
             QStringLiteral("not set"));
    QCOMPARE(Meter::readFile(brightness).trimmed(), QByteArray("50"));
    QCOMPARE(facade.getLiczniki()->get_dictionary(KTV_Liczniki::Licznik_Demagnetyzacja), 1);
    QCOMPARE(facade.get_Lang()->getCurrentLang(), QStringLiteral("PL"));
    QCOMPARE(facade.getMainConfig()->get_SerialNumber(), QStringLiteral("CH1"));
}

void TstKtvDataSource::factoryResetGoesOnInOrder()
{
    KTV_DataSource facade;
    QVERIFY(QDir(userData).removeRecursively());
    Meter::writeFile("/media/sdcard/UserData", "in the way");
    const LogCapture log;
    facade.ClearToDefault();
    const auto reason = QStringLiteral("unable to open database file Error opening database");
    QCOMPARE(
        log.lines(),
        (QStringList {"No open :(" + reason, "KTV_InterfaceConfig::RestoreFabricalSetting(): false",
                      "No open :(", "true", "KTV_Connection - No open database :(true"}));
    QCOMPARE(Meter::readFile(brightness).trimmed(), QByteArray("50"));
    QVERIFY(QFile::remove("/media/sdcard/UserData"));
}

void TstKtvDataSource::firstStart_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("isFirst");
    QTest::newRow("1") << QByteArray("1") << true;
    QTest::newRow("1 and a line end") << QByteArray("1\n") << true;
    QTest::newRow("1 and more") << QByteArray("10 installed") << true;
    QTest::newRow("1 and NUL") << QByteArray("1\0002", 3) << true;
    QTest::newRow("1 after a byte order mark") << QByteArray("\xEF\xBB\xBF"
                                                             "1")
                                               << true;
    QTest::newRow("0") << QByteArray("0\n") << false;
    QTest::newRow("empty") << QByteArray("") << false;
    QTest::newRow("blank before it") << QByteArray(" 1") << false;
    QTest::newRow("NUL before it") << QByteArray("\0001", 2) << false;
    QTest::newRow("noise") << QByteArray(4096, '\xff') << false;
    QTest::newRow("no file") << QByteArray() << false;
}

void TstKtvDataSource::firstStart()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, isFirst);
    QFile::remove(bootMarker);
    if (!content.isNull())
        Meter::writeFile(bootMarker, content);
    QCOMPARE(KTV_DataSource::FirstStart(), isFirst);
    QCOMPARE(QFile::exists(bootMarker), !content.isNull() && !isFirst);
    if (!isFirst && !content.isNull())
        QCOMPARE(Meter::readFile(bootMarker), content);
    QCOMPARE(KTV_DataSource::FirstStart(), false); // removed by the first call, or never there
}

void TstKtvDataSource::firstStartFromOddPlaces()
{
    QFile::remove(bootMarker);
    QVERIFY(QDir().mkpath(bootMarker));
    QCOMPARE(KTV_DataSource::FirstStart(), false);
    QVERIFY(QDir().rmdir(bootMarker));
    {
        const SocketFile socket(bootMarker);
        QCOMPARE(KTV_DataSource::FirstStart(), false);
        QVERIFY(QFile::exists(bootMarker));
    }
    QVERIFY(QFile::remove(bootMarker));
}

void TstKtvDataSource::touchScreenIsDetectedByAFile()
{
    QFile::remove(touchScreen);
    QVERIFY(!KTV_DataSource::TouchScreenEnable());
    Meter::writeFile(touchScreen, "");
    QVERIFY(KTV_DataSource::TouchScreenEnable());
}

KTV_METER_TEST_MAIN(TstKtvDataSource)
#include "tst_ktv_datasource.moc"
