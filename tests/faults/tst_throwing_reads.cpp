#include "support/LogCapture.h"
#include "support/Meter.h"
#include "support/SqliteWatch.h"

#include <configuration/KTV_Configuration.h>
#include <datasource/KTV_DataSource.h>
#include <language/LangSerwis.h>
#include <tools/Tools.h>

#include <QtTest>

#include <functional>

namespace {

using Reader = std::function<QString()>;

const QString description = QStringLiteral("/home/root/globalInfo.xml");
const QString languages = QStringLiteral("/home/root/Langs/");

QString word(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

} // namespace

Q_DECLARE_METATYPE(Reader)

/** Reads of files that throw, as if memory had run out. */
class TstThrowingReads : public QObject
{
    Q_OBJECT
private slots:
    void cleanup() { SqliteWatch::throwOnReads(false); }

    void readersReturnTheirDefault_data();
    void readersReturnTheirDefault();
    void languageStaysAsItWas();
};

void TstThrowingReads::readersReturnTheirDefault_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<Reader>("read");
    QTest::addColumn<QString>("failed");
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("afterwards");
    QTest::newRow("device description")
        << description << QByteArray("<root><_clientsDirectory Value='/mnt/'/></root>")
        << Reader([] { return KTV_Configuration().get_clientsDirectory(); })
        << "/media/sdcard/Clients/"
        << "KTV_Configuration: "
        << "/mnt/";
    QTest::newRow("system version")
        << "/etc/version" << QByteArray("2.1\n")
        << Reader([] { return KTV_Configuration().get_SystemVersion(); }) << " - ????"
        << "KTV_Configuration::get_SystemVersion: "
        << "2.1";
    QTest::newRow("interface version")
        << "/etc/version" << QByteArray("2.1\n")
        << Reader([] { return KTV_Configuration().get_InterfaceVersion(); }) << "0.0.0.0 - ????"
        << "KTV_Configuration::get_SystemVersion: "
        << "0.0.0.0 - 2.1";
    // The marker of the first start is not removed by the failed attempt.
    QTest::newRow("first start") << "/etc/korva/system-boot.status" << QByteArray("1")
                                 << Reader([] { return word(KTV_DataSource::FirstStart()); })
                                 << "false"
                                 << "KTV_DataSource::FirstStart(): "
                                 << "true";
    QTest::newRow("state of the card")
        << "/etc/korva/sdcard.error" << QByteArray("0")
        << Reader([] { return word(QERNTools::Tools::SD_Card_is_OK()); }) << "false"
        << "Tools::SD_Card_is_OK(): "
        << "true";
}

void TstThrowingReads::readersReturnTheirDefault()
{
    QFETCH(QString, file);
    QFETCH(QByteArray, content);
    QFETCH(Reader, read);
    QFETCH(QString, line);
    QFile::remove(description);
    Meter::writeFile(file, content);
    const LogCapture log;
    SqliteWatch::throwOnReads(true);
    QTEST(read(), "failed");
    SqliteWatch::throwOnReads(false);
    QCOMPARE(log.lines().filter("thrown"), QStringList(line + "thrown by a read"));
    QTEST(read(), "afterwards");
}

void TstThrowingReads::languageStaysAsItWas()
{
    Meter::writeFile(languages + "EN/EN.xml", "<root><Main><OK value='OK'/></Main></root>");
    Meter::writeFile(languages + "PL/PL.xml", "<root><Main><OK value='Tak'/></Main></root>");
    LangSerwis lang(languages, KTV_Configuration::MeterModels_NaN);
    QVERIFY(lang.setLang("EN"));
    const LogCapture log;
    SqliteWatch::throwOnReads(true);
    QVERIFY(!lang.setLang("PL"));
    SqliteWatch::throwOnReads(false);
    QCOMPARE(log.lines(), QStringList("LangSerwis::setLang: thrown by a read"));
    QCOMPARE(lang.getCurrentLang(), QStringLiteral("EN"));
    QCOMPARE(lang.getText("Main", "OK", {}), QStringLiteral("OK"));
    QVERIFY(lang.setLang("PL"));
    QCOMPARE(lang.getText("Main", "OK", {}), QStringLiteral("Tak"));
}

KTV_METER_TEST_MAIN(TstThrowingReads)
#include "tst_throwing_reads.moc"
