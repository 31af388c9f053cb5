#include "support/Hostile.h"
#include "support/LogCapture.h"
#include "support/Meter.h"
#include "support/Volume.h"

#include <configuration/KTV_Configuration.h>

#include <QDir>
#include <QMetaEnum>
#include <QTextCodec>
#include <QtTest>

#include <functional>

using TextGetter = QString (KTV_Configuration::*)() const;
Q_DECLARE_METATYPE(TextGetter)
Q_DECLARE_METATYPE(std::function<void()>)

namespace {

const QString descriptionFile = QStringLiteral("/home/root/globalInfo.xml");
const QString versionFile = QStringLiteral("/etc/version");

struct TextKey
{
    const char *key;
    TextGetter getter;
    const char *withoutFile;
};

const TextKey textKeys[] = {
    {"_clientsDirectory", &KTV_Configuration::get_clientsDirectory, "/media/sdcard/Clients/"},
    {"_logDirectory", &KTV_Configuration::get_logDirectory, "/media/sdcard/Log/"},
    {"_updateDirectory", &KTV_Configuration::get_UpdateDirecotry, "/media/sdcard/Update"},
    {"_currentFirmwareDirectory", &KTV_Configuration::get_CurrentFirmwareDirectory,
     "/home/root/Firmware/"},
    {"_mainInterfeaceDirectory", &KTV_Configuration::get_mainInterfeaceDirectory, "/home/root/"},
    {"_mainInterfaceLangsDirectory", &KTV_Configuration::get_mainInterfaceLangsDirectory,
     "/home/root/Langs/"},
    {"_mainInterfaceUserDataDirectory", &KTV_Configuration::get_mainInterfaceUserDataDirectory,
     "/media/sdcard/UserData/"},
    {"_mainInterfaceUserHelpDirectory", &KTV_Configuration::get_mainInterfaceUserHelpDirectory,
     "/home/root/Help/"},
};

void clearPath(const QString &path)
{
    QDir(path).removeRecursively();
    QFile::remove(path);
}

QByteArray device(const QByteArray &elements)
{
    return "<device>" + elements + "</device>";
}

QByteArray element(const QByteArray &key, const QByteArray &value)
{
    return '<' + key + " Value=\"" + value + "\"/>";
}

/** Log lines of a load in which the switches have these texts. */
QStringList loadLines(const QString &soundOff = QString(), const QString &rebootOff = QString())
{
    return {QStringLiteral("\n\nKTV_Configuration::LoadDataFromXML():"),
            QStringLiteral("KTV_Configuration::getValue:_soundOff value:%1;").arg(soundOff),
            QStringLiteral("KTV_Configuration::getValue:_rebootOff value:%1;").arg(rebootOff),
            QStringLiteral("KTV_Configuration::LoadDataFromXML() end\n\n")};
}

void compareDefaults(const KTV_Configuration &configuration)
{
    for (const TextKey &entry : textKeys)
        QCOMPARE((configuration.*entry.getter)(), QString::fromLatin1(entry.withoutFile));
    QCOMPARE(configuration.get_SerialNumber(), QStringLiteral("AA0000"));
    QCOMPARE(configuration.get_MeterModelName(), QStringLiteral("KTV-xxx"));
    QCOMPARE(configuration.get_MeterFullName(), QStringLiteral("QERN KTV-xxx"));
    QCOMPARE(configuration.get_InterfaceVersion(), QStringLiteral("0.0.0.0 - 2.0.1"));
    QCOMPARE(configuration.get_batteryAlarm1(), 10);
    QCOMPARE(configuration.get_batteryAlarm2(), 3);
    QCOMPARE(configuration.get_SoundOff(), false);
    QCOMPARE(configuration.get_RebootOff(), false);
}

} // namespace

/** The device's description and identity, as a client sees them. */
class TstKtvConfiguration : public QObject
{
    Q_OBJECT
private slots:
    void init();

    void unusableFile_data();
    void unusableFile();
    void emptyDescription();
    void textOfKey_data();
    void textOfKey();
    void textRules_data();
    void textRules();
    void integerRules_data();
    void integerRules();
    void booleanRules_data();
    void booleanRules();
    void fullNameBeginsWithTheProducer();
    void loadIsLogged();
    void fileIsReadOnce();
    void manySiblingEntries();

    void modelOfSerialNumber_data();
    void modelOfSerialNumber();
    void modelIsSharedButNotItsName();
    void modelNamesAreKnownToTheMetaObject();

    void versions_data();
    void versions();
};

void TstKtvConfiguration::init()
{
    clearPath(descriptionFile);
    clearPath(versionFile);
    Meter::writeFile(versionFile, "2.0.1\n");
    Meter::writeFile(descriptionFile, device({}));
    KTV_Configuration::_meterModel = KTV_Configuration::MeterModels_NaN;
}

void TstKtvConfiguration::unusableFile_data()
{
    const auto unopened = QStringLiteral("Fail to open KTV_Configuration:") + descriptionFile;
    const auto unloaded = QStringLiteral("Fail to load KTV_Configuration!%1 Row:%2 Col:%3");
    using Preparation = std::function<void()>;
    QTest::addColumn<Preparation>("prepare");
    QTest::addColumn<QString>("line");
    const auto row = [](const char *name, const Preparation &prepare, const QString &line) {
        QTest::newRow(name) << prepare << line;
    };
    const auto content = [](const QByteArray &bytes) -> Preparation {
        return [bytes] { Meter::writeFile(descriptionFile, bytes); };
    };
    row(
        "no file", [] {}, unopened);
    row(
        "a directory in its place", [] { QDir().mkpath(descriptionFile); }, unopened);
    row(
        "a socket in its place", [] { const SocketFile socket(descriptionFile); }, unopened);
    row(
        "a link to nowhere", [] { QFile::link(QStringLiteral("/nowhere"), descriptionFile); },
        unopened);
    row("empty", content({}), unloaded.arg("unexpected end of file").arg(1).arg(1));
    row("blank", content(" \n "), unloaded.arg("unexpected end of file").arg(2).arg(2));
    row("no markup", content("abc"),
        unloaded.arg("error occurred while parsing element").arg(1).arg(1));
    row("cut off", content("<a>\n <_logDirectory Value=\"/log/\"/>\n"),
        unloaded.arg("unexpected end of file").arg(3).arg(1));
    row("crossed tags", content("<a><b></a></b>"), unloaded.arg("tag mismatch").arg(1).arg(10));
    row("after lone carriage returns", content("<a>\r\r<b>\r</a>"),
        unloaded.arg("tag mismatch").arg(4).arg(4));
    row("two roots", content("<a/><b/>"), unloaded.arg("unexpected character").arg(1).arg(6));
    row("only NUL bytes", content(QByteArray(4096, '\0')),
        unloaded.arg("error occurred while parsing element").arg(1).arg(1));
    row("noise", content(QByteArray::fromHex("7f454c46fffe80c0ff00d800")),
        unloaded.arg("error occurred while parsing element").arg(1).arg(1));
    row("entity bomb", content(Hostile::entityBomb()), QString());
    row("20001 levels", content(Hostile::nested(20001)),
        unloaded.arg("elements nested too deeply").arg(0).arg(0));
    row("200000 levels", content(Hostile::nested(200000)),
        unloaded.arg("elements nested too deeply").arg(0).arg(0));
    row("200000 levels, never closed", content(QByteArray("<x>").repeated(200000)),
        unloaded.arg("elements nested too deeply").arg(0).arg(0));
    row("deep and wide at once",
        content(QByteArray("<x>").repeated(9999) + QByteArray("<y/>").repeated(1000000)
                + QByteArray("</x>").repeated(9999)),
        unloaded.arg("too many elements").arg(0).arg(0));
    row("huge", content(Hostile::huge()), unloaded.arg("file too large").arg(0).arg(0));
}

void TstKtvConfiguration::unusableFile()
{
    QFETCH(std::function<void()>, prepare);
    QFETCH(QString, line);
    clearPath(descriptionFile);
    prepare();
    const LogCapture log;
    const KTV_Configuration configuration;
    QCOMPARE(log.lines().size(), 1);
    if (line.isEmpty())
        QVERIFY(log.lines().constFirst().startsWith("Fail to load KTV_Configuration!"));
    else
        QCOMPARE(log.lines().constFirst(), line);
    compareDefaults(configuration);
    QCOMPARE(configuration.get_SoundSampleDirectory(), QString()); // set by a load only
}

void TstKtvConfiguration::emptyDescription()
{
    const KTV_Configuration configuration;
    compareDefaults(configuration);
    QCOMPARE(configuration.get_SoundSampleDirectory(), QStringLiteral("/etc/wav/"));
}

void TstKtvConfiguration::textOfKey_data()
{
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<TextGetter>("getter");
    for (const TextKey &entry : textKeys)
        QTest::newRow(entry.key) << QByteArray(entry.key) << entry.getter;
    QTest::newRow("_soundSamplePath")
        << QByteArray("_soundSamplePath") << &KTV_Configuration::get_SoundSampleDirectory;
}

void TstKtvConfiguration::textOfKey()
{
    QFETCH(QByteArray, key);
    QFETCH(TextGetter, getter);
    Meter::writeFile(descriptionFile, device(element(key, "/elsewhere")));
    const KTV_Configuration configuration;
    QCOMPARE((configuration.*getter)(), QStringLiteral("/elsewhere"));
    for (const TextKey &entry : textKeys) {
        if (entry.key != key) // changing the interface's directory changes no directory below it
            QCOMPARE((configuration.*entry.getter)(), QString::fromLatin1(entry.withoutFile));
    }
}

void TstKtvConfiguration::textRules_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("logDirectory");
    const auto unset = QStringLiteral("/media/sdcard/Log/");
    const QByteArray one = element("_logDirectory", "/one/");
    QTest::newRow("any root name") << "<żółw>" + one + "</żółw>"
                                   << "/one/";
    QTest::newRow("root with a prefix") << "<a:b>" + one + "</a:b>"
                                        << "/one/";
    QTest::newRow("after declaration, comment and type")
        << "<?xml version=\"1.0\"?><!-- c --><!DOCTYPE device>" + device(one) << "/one/";
    QTest::newRow("byte order mark") << "\xef\xbb\xbf" + device(one) << "/one/";
    QTest::newRow("anywhere below the root") << device("<a><b>text" + one + "</b></a>") << "/one/";
    QTest::newRow("the root itself does not count") << one << unset;
    QTest::newRow("first in document order, deep")
        << device("<a>" + one + "</a>" + element("_logDirectory", "/two/")) << "/one/";
    QTest::newRow("first in document order, flat")
        << device(one + element("_logDirectory", "/two/")) << "/one/";
    QTest::newRow("first counts although it lacks the value")
        << device("<_logDirectory/>" + one) << unset;
    QTest::newRow("commented out") << device("<!--" + one + "-->") << unset;
    QTest::newRow("letter case of the key") << device(element("_LogDirectory", "/x/")) << unset;
    QTest::newRow("letter case of the attribute")
        << device("<_logDirectory value='/x/'/>") << unset;
    QTest::newRow("text instead of the attribute")
        << device("<_logDirectory>/x/</_logDirectory>") << unset;
    QTest::newRow("empty value") << device(element("_logDirectory", "")) << "";
    QTest::newRow("no slash is added") << device(element("_logDirectory", "log")) << "log";
    QTest::newRow("blanks stay") << device(element("_logDirectory", " a b ")) << " a b ";
    QTest::newRow("quotes, percent and letters")
        << device(element("_logDirectory", "/a&quot;b'%1%s/żółć/日本/"))
        << QStringLiteral("/a\"b'%1%s/żółć/日本/");
    QTest::newRow("Latin-1 file") << "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>"
            + device(element("_logDirectory", "/\xe9/"))
                                  << QStringLiteral("/é/");
    QTest::newRow("carriage returns") << "<device>\r\n" + one + "\r\n</device>\r\n"
                                      << "/one/";
    const auto inUtf16 = [](const QString &text) {
        return QTextCodec::codecForName("UTF-16")->fromUnicode(text);
    };
    QTest::newRow("carriage returns in UTF-16")
        << inUtf16("<device>\r\n" + one + "\r\n</device>\r\n") << "/one/";
    QTest::newRow("UTF-16 letter with a carriage return's byte")
        << inUtf16(device(element("_logDirectory", "/č/"))) << QStringLiteral("/č/");
    QTest::newRow("unknown elements") << device("<unknown Value='x'/>" + one) << "/one/";
    QTest::newRow("9999 levels down")
        << QByteArray("<x>").repeated(9999) + one + QByteArray("</x>").repeated(9999) << "/one/";
}

void TstKtvConfiguration::textRules()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, logDirectory);
    Meter::writeFile(descriptionFile, content);
    QCOMPARE(KTV_Configuration().get_logDirectory(), logDirectory);
}

void TstKtvConfiguration::integerRules_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("second");
    QTest::newRow("number") << QByteArray("25") << 25 << 25;
    QTest::newRow("zero") << QByteArray("0") << 0 << 0;
    QTest::newRow("negative") << QByteArray("-1") << -1 << -1;
    QTest::newRow("largest") << QByteArray("2147483647") << 2147483647 << 2147483647;
    QTest::newRow("beyond the largest") << QByteArray("2147483648") << 10 << 3;
    QTest::newRow("smallest") << QByteArray("-2147483648") << int(-2147483647 - 1)
                              << int(-2147483647 - 1);
    QTest::newRow("letters") << QByteArray("abc") << 10 << 3;
    QTest::newRow("empty") << QByteArray("") << 10 << 3;
    QTest::newRow("fraction") << QByteArray("7.5") << 10 << 3;
    QTest::newRow("base ten only") << QByteArray("0x10") << 10 << 3;
    QTest::newRow("leading zeros are not octal") << QByteArray("010") << 10 << 10;
    QTest::newRow("unit behind it") << QByteArray("7%") << 10 << 3;
}

void TstKtvConfiguration::integerRules()
{
    QFETCH(QByteArray, text);
    QFETCH(int, first);
    QFETCH(int, second);
    Meter::writeFile(descriptionFile,
                     device(element("_batteryAlarm1", text) + element("_batteryAlarm2", text)));
    const KTV_Configuration configuration;
    QCOMPARE(configuration.get_batteryAlarm1(), first);
    QCOMPARE(configuration.get_batteryAlarm2(), second);
}

void TstKtvConfiguration::booleanRules_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("value");
    QTest::newRow("true") << QByteArray("true") << true;
    QTest::newRow("TRUE") << QByteArray("TRUE") << true;
    QTest::newRow("tRuE") << QByteArray("tRuE") << true;
    QTest::newRow("false") << QByteArray("false") << false;
    QTest::newRow("False") << QByteArray("False") << false;
    QTest::newRow("yes is no truth") << QByteArray("yes") << false;
    QTest::newRow("1 is no truth") << QByteArray("1") << false;
    QTest::newRow("empty") << QByteArray("") << false;
    QTest::newRow("blanks count") << QByteArray(" true ") << false;
}

void TstKtvConfiguration::booleanRules()
{
    QFETCH(QByteArray, text);
    QFETCH(bool, value);
    for (const bool isSound : {true, false}) {
        const QByteArray key = isSound ? "_soundOff" : "_rebootOff";
        Meter::writeFile(descriptionFile, device(element(key, text)));
        const LogCapture log;
        const KTV_Configuration configuration;
        QCOMPARE(configuration.get_SoundOff(), isSound && value);
        QCOMPARE(configuration.get_RebootOff(), !isSound && value);
        QCOMPARE(log.lines(), isSound ? loadLines(text, {}) : loadLines({}, text));
    }
}

void TstKtvConfiguration::fullNameBeginsWithTheProducer()
{
    Meter::writeFile(descriptionFile, device(element("_meterProducer", "A &amp; B")));
    KTV_Configuration configuration;
    QCOMPARE(configuration.get_MeterFullName(), QStringLiteral("A & B KTV-xxx"));
    configuration.set_SerialNumber(QStringLiteral("DW7"));
    QCOMPARE(configuration.get_MeterFullName(), QStringLiteral("A & B KTV-4400"));
}

void TstKtvConfiguration::loadIsLogged()
{
    const LogCapture log;
    const KTV_Configuration configuration;
    QCOMPARE(log.lines(), loadLines());
}

void TstKtvConfiguration::fileIsReadOnce()
{
    Meter::writeFile(descriptionFile, device(element("_logDirectory", "/one/")));
    const KTV_Configuration configuration;
    Meter::writeFile(descriptionFile, device(element("_logDirectory", "/two/")));
    QCOMPARE(configuration.get_logDirectory(), QStringLiteral("/one/"));
    QCOMPARE(Meter::readFile(descriptionFile), device(element("_logDirectory", "/two/")));
}

void TstKtvConfiguration::manySiblingEntries()
{
    // Also what a stricter parser refuses: repeated attributes, undeclared prefixes.
    Meter::writeFile(descriptionFile,
                     device(QByteArray("<a:b c='1' c='2'/>").repeated(12000)
                            + element("_logDirectory", "/last/")));
    QCOMPARE(KTV_Configuration().get_logDirectory(), QStringLiteral("/last/"));
}

void TstKtvConfiguration::modelOfSerialNumber_data()
{
    QTest::addColumn<QString>("serial");
    QTest::addColumn<KTV_Configuration::MeterModels>("model");
    QTest::addColumn<QString>("name");
    QTest::newRow("DV") << "DV0001" << KTV_Configuration::KTV_4200 << "KTV-4200";
    QTest::newRow("CH") << "CH0001" << KTV_Configuration::KTV_420 << "KTV-420";
    QTest::newRow("EL") << "EL12345" << KTV_Configuration::KTV_420 << "KTV-420";
    QTest::newRow("JB") << "JB" << KTV_Configuration::PLX_420 << "PLX-420";
    QTest::newRow("DW") << "DW1" << KTV_Configuration::KTV_4400 << "KTV-4400";
    QTest::newRow("JD") << "JD1" << KTV_Configuration::KTV_410 << "KTV-410";
    QTest::newRow("case counts") << "el1" << KTV_Configuration::MeterModels_NaN << "KTV-xxx";
    QTest::newRow("empty") << "" << KTV_Configuration::MeterModels_NaN << "KTV-xxx";
    QTest::newRow("one letter") << "D" << KTV_Configuration::MeterModels_NaN << "KTV-xxx";
    QTest::newRow("before the meter reports")
        << "AA0000" << KTV_Configuration::MeterModels_NaN << "KTV-xxx";
    QTest::newRow("prefix only at the start")
        << "ADV1" << KTV_Configuration::MeterModels_NaN << "KTV-xxx";
    QTest::newRow("a model's name is no serial number")
        << "KTV-420" << KTV_Configuration::MeterModels_NaN << "KTV-xxx";
    QTest::newRow("a blank before it") << " DV1" << KTV_Configuration::MeterModels_NaN << "KTV-xxx";
    QTest::newRow("letters, quotes and percent behind it")
        << QStringLiteral("CH'\"%1 żó") << KTV_Configuration::KTV_420 << "KTV-420";
}

void TstKtvConfiguration::modelOfSerialNumber()
{
    QFETCH(QString, serial);
    QFETCH(KTV_Configuration::MeterModels, model);
    QFETCH(QString, name);
    KTV_Configuration configuration;
    configuration.set_SerialNumber(QStringLiteral("JB1")); // nothing of the earlier one remains
    const LogCapture log;
    configuration.set_SerialNumber(serial);
    QCOMPARE(configuration.get_MeterModel(), model);
    QCOMPARE(KTV_Configuration::currentMeterModel(), model);
    QCOMPARE(configuration.get_MeterModelName(), name);
    QCOMPARE(configuration.get_MeterFullName(), QStringLiteral("QERN ") + name);
    QCOMPARE(configuration.get_SerialNumber(), serial);
    QCOMPARE(log.lines(),
             QStringList(QStringLiteral("KTV_Configuration::set_SerialNumber(") + serial + ')'));
}

void TstKtvConfiguration::modelIsSharedButNotItsName()
{
    KTV_Configuration first;
    const KTV_Configuration second;
    QCOMPARE(KTV_Configuration::currentMeterModel(), KTV_Configuration::MeterModels_NaN);
    first.set_SerialNumber(QStringLiteral("DV1"));
    QCOMPARE(second.get_MeterModel(), KTV_Configuration::KTV_4200);
    QCOMPARE(second.get_MeterModelName(), QStringLiteral("KTV-xxx"));
    QCOMPARE(KTV_Configuration().get_MeterModel(), KTV_Configuration::KTV_4200);
}

void TstKtvConfiguration::modelNamesAreKnownToTheMetaObject()
{
    const char *const names[] = {"MeterModels_NaN", "KTV_410",  "KTV_420",
                                 "KTV_4200",        "KTV_4400", "PLX_420"};
    const auto models = QMetaEnum::fromType<KTV_Configuration::MeterModels>();
    QCOMPARE(models.keyCount(), 6);
    for (int value = 0; value < models.keyCount(); ++value)
        QCOMPARE(QByteArray(models.valueToKey(value)), QByteArray(names[value]));
}

void TstKtvConfiguration::versions_data()
{
    QTest::addColumn<QByteArray>("elements");
    QTest::addColumn<QByteArray>("systemFile");
    QTest::addColumn<QString>("interfaceVersion");
    QTest::addColumn<QString>("systemVersion");
    const QByteArray plain = element("_interfaceVersion", "1.2.3");
    const QByteArray beta = plain + element("_betaVersion", "7");
    QTest::newRow("plain") << plain << QByteArray("2.0.1") << "1.2.3 - 2.0.1"
                           << "2.0.1";
    QTest::newRow("beta") << beta << QByteArray("2.0.1") << "1.2.3 beta: 7 - 2.0.1"
                          << "2.0.1";
    QTest::newRow("empty beta is none")
        << plain + element("_betaVersion", "") << QByteArray("2.0.1") << "1.2.3 - 2.0.1"
        << "2.0.1";
    QTest::newRow("white space around is removed, within is kept")
        << plain << QByteArray("\r\n \t2.0.1\nbuild 5 \r\n\n") << "1.2.3 - 2.0.1\nbuild 5"
        << "2.0.1\nbuild 5";
    QTest::newRow("UTF-8") << plain << QByteArray("ż") << QStringLiteral("1.2.3 - ż")
                           << QStringLiteral("ż");
    QTest::newRow("empty file") << plain << QByteArray("") << "1.2.3 - "
                                << "";
    QTest::newRow("no file") << plain << QByteArray() << "1.2.3 - ????"
                             << " - ????";
    QTest::newRow("no file, beta") << beta << QByteArray() << "1.2.3 beta: 7 - ????"
                                   << " - ????";
    QTest::newRow("empty interface version")
        << element("_interfaceVersion", "") << QByteArray("2") << " - 2"
        << "2";
}

void TstKtvConfiguration::versions()
{
    QFETCH(QByteArray, elements);
    QFETCH(QByteArray, systemFile);
    QFETCH(QString, interfaceVersion);
    QFETCH(QString, systemVersion);
    Meter::writeFile(descriptionFile, device(elements));
    const KTV_Configuration configuration;
    if (systemFile.isNull())
        QFile::remove(versionFile);
    else
        Meter::writeFile(versionFile, systemFile); // read again by each call
    QCOMPARE(configuration.get_InterfaceVersion(), interfaceVersion);
    QCOMPARE(configuration.get_SystemVersion(), systemVersion);
}

KTV_METER_TEST_MAIN(TstKtvConfiguration)
#include "tst_ktv_configuration.moc"
