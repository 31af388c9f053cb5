#include "PanelFixture.h"

#include "support/Volume.h"
#include "touch/Plot.h"
#include "touch/Theme.h"

#include <configuration/KTV_Configuration.h>
#include <counters/KTV_Liczniki.h>
#include <datalist/KTV_DataList.h>
#include <datasource/KTV_DataSource.h>

#include <QDate>
#include <QDir>

namespace {

const char clients[] = "/media/sdcard/Clients";

QString measured(PanelFixture &panel)
{
    const auto *display = panel.finger.see<ValueDisplay>(QStringLiteral("measure.value"));
    if (!display || !panel.finger.tap(QStringLiteral("measure.start")))
        return QStringLiteral("(cannot be started)");
    Finger::waitFor([&] { return panel.buttonText("measure.start") == QLatin1String("Start"); });
    return display->value() + QLatin1Char('|') + display->verdict();
}

void measureWith(PanelFixture &panel, const TestObject &object)
{
    panel.session.setup().setTestObject(object);
}

TestObject objectOf(float ohms)
{
    TestObject object;
    object.resistance = ohms;
    object.noise = 0;
    object.temperature = Setup::referenceTemperature;
    return object;
}

/** Records a series of ten readings as fast as possible. */
bool record(PanelFixture &panel)
{
    return panel.finger.tap(QStringLiteral("nav.Record"))
        && panel.pick("record.count", QStringLiteral("10"))
        && panel.finger.tap(QStringLiteral("record.start")) && Finger::waitFor([&] {
               return panel.finger.find(QStringLiteral("record.save"))->isEnabled();
           });
}

/** Today's date. Waits while midnight is near, so that the test ends on the same day. */
QString today()
{
    while (QTime::currentTime() >= QTime(23, 58))
        QTest::qWait(1000);
    return QDate::currentDate().toString(QStringLiteral("yyyy-MM-dd"));
}

bool writeClient(PanelFixture &panel, const QString &name)
{
    return panel.finger.tap(QStringLiteral("record.client")) && panel.finger.type(name)
        && panel.finger.tap(QStringLiteral("key.done"));
}

} // namespace

/** The Measure and Record pages, by touches. */
class TstPanelMeasuring : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void aMeasurementEndsAndIsCounted_data();
    void aMeasurementEndsAndIsCounted();
    void stoppedEarlyIsNotCounted();
    void valuesThatCannotBeShown_data();
    void valuesThatCannotBeShown();
    void limitGivesVerdictAndTone_data();
    void limitGivesVerdictAndTone();
    void objectIsChangedByTouches();
    void compensatedForAMaterial();
    void currentsAreThoseOfTheModel();
    void serialNumberChangesTheModelUnderWay();
    void lastSettingComesBack();
    void startsWithAModel();
    void seriesIsShownWhileItGrows();
    void seriesIsSavedUnderASafeAndFreeName();
    void limitThatIsNotANumber();
    void verdictNeedsConnectedLeads();
    void objectOfTheLists();
    void figuresOfASeries();
    void pointIsReadByTouch();
    void seriesIsKeptUntilItIsDropped();
    void recordingGoesOnBesideOtherPages();
    void savingGoesOnAfterTheClient();
    void nothingStartsWhileASeriesIsSaved();
    void reasonWhereASeriesHasNoVerdict();
    void seriesKeepsItsMeter();
    void seriesOnAFullCard();
    void seriesWithoutAFolder();
    void nameOfDotsStaysInItsDirectory();
};

void TstPanelMeasuring::init()
{
    for (const char *directory : {"/media/sdcard/UserData", "/media/sdcard/Log", clients}) {
        QDir(QLatin1String(directory)).removeRecursively();
        QDir().mkpath(QLatin1String(directory));
    }
    Meter::clearJournal();
}

void TstPanelMeasuring::aMeasurementEndsAndIsCounted_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("result");
    QTest::addColumn<int>("counter");
    QTest::newRow("resistance") << "measure.kind.0" << QStringLiteral("1.2347 m\u2126|Done")
                                << int(KTV_Liczniki::Licznik_PomiarObiektowRezystancyjnych);
    QTest::newRow("inductance") << "measure.kind.1" << QStringLiteral("15.300 mH|Done")
                                << int(KTV_Liczniki::Licznik_PomiarObiektowIndukcyjnych);
    QTest::newRow("temperature") << "measure.kind.2" << QStringLiteral("20.0 \u00B0C|Done")
                                 << int(KTV_Liczniki::Licznik_PomiarTemperaturySilnika);
}

void TstPanelMeasuring::aMeasurementEndsAndIsCounted()
{
    QFETCH(QString, kind);
    QFETCH(int, counter);
    PanelFixture panel;
    measureWith(panel, objectOf(0.0012347F));
    QVERIFY(panel.finger.tap(kind));
    QTEST(measured(panel), "result");
    const KTV_Liczniki *counts = panel.session.library().getLiczniki();
    QCOMPARE(counts->get_dictionary(KTV_Liczniki::Licznik(counter)), 1);
    TAP(panel, "nav.About");
    QCOMPARE(panel.labelText(qPrintable(QStringLiteral("about.counter.%1").arg(counter))),
             QStringLiteral("1"));
}

void TstPanelMeasuring::stoppedEarlyIsNotCounted()
{
    PanelFixture panel;
    TAP(panel, "measure.start");
    QCOMPARE(panel.buttonText("measure.start"), QStringLiteral("Stop"));
    TAP(panel, "measure.start");
    QCOMPARE(panel.buttonText("measure.start"), QStringLiteral("Start"));
    QCOMPARE(panel.session.library().getLiczniki()->get_dictionary(
                 KTV_Liczniki::Licznik_PomiarObiektowRezystancyjnych),
             0);
}

void TstPanelMeasuring::valuesThatCannotBeShown_data()
{
    QTest::addColumn<float>("ohms");
    QTest::addColumn<int>("leads");
    QTest::addColumn<QString>("result");
    QTest::newRow("above the range")
        << 0.25F << int(TestObject::Connected) << QStringLiteral("> 199.99 m\u2126|Done");
    QTest::newRow("below zero") << 0.001F << int(TestObject::Reversed)
                                << QStringLiteral("< 0 \u03BC\u2126|The leads are swapped");
    QTest::newRow("missing") << 0.001F << int(TestObject::Open)
                             << QStringLiteral("--- \u2126|Current lead is open");
}

void TstPanelMeasuring::valuesThatCannotBeShown()
{
    QFETCH(float, ohms);
    QFETCH(int, leads);
    PanelFixture panel;
    TestObject object = objectOf(ohms);
    object.leads = TestObject::Leads(leads);
    measureWith(panel, object);
    QTEST(measured(panel), "result");
}

void TstPanelMeasuring::limitGivesVerdictAndTone_data()
{
    QTest::addColumn<float>("ohms");
    QTest::addColumn<QString>("verdict");
    QTest::addColumn<QString>("tone");
    const QString pass = QStringLiteral("beep -f 1400 -l 100 -d 100 -r 3");
    const QString fail = QStringLiteral("beep -f 2470 -l 600 -d 200 -r 2");
    QTest::newRow("below") << 0.0009F << "Fail" << fail;
    QTest::newRow("the lower bound itself") << 0.001F << "Pass" << pass;
    QTest::newRow("between") << 0.0012F << "Pass" << pass;
    QTest::newRow("the upper bound itself") << 0.0015F << "Pass" << pass;
    QTest::newRow("above by the last digit shown") << 0.0015001F << "Fail" << fail;
    QTest::newRow("above the range") << 0.25F << "Fail" << fail;
}

void TstPanelMeasuring::limitGivesVerdictAndTone()
{
    QFETCH(float, ohms);
    QFETCH(QString, tone);
    PanelFixture panel;
    QVERIFY(panel.session.library().get_DataList()->AddLimit_R(
        QStringLiteral("joint"), QStringLiteral("1.5 m\u2126"), QStringLiteral("1 m\u2126")));
    measureWith(panel, objectOf(ohms));
    QVERIFY(panel.pick("measure.limit", QStringLiteral("joint")));
    QTEST(measured(panel).section(QLatin1Char('|'), 1), "verdict");
    QVERIFY(Finger::waitFor([&] { return Meter::journal().contains(tone); }));
}

void TstPanelMeasuring::objectIsChangedByTouches()
{
    PanelFixture panel;
    QCOMPARE(panel.fieldValue("measure.testObject"),
             QStringLiteral("1.2347 m\u2126, 23.5 \u00B0C"));
    TAP(panel, "measure.testObject", "object.0.more", "object.1.more", "object.2.less",
        "object.3.less");
    QCOMPARE(panel.fieldValue("object.0"), QStringLiteral("15.3 m\u2126"));
    QCOMPARE(panel.fieldValue("object.1"), QStringLiteral("870 mH"));
    QCOMPARE(panel.fieldValue("object.2"), QStringLiteral("0 %"));
    QCOMPARE(panel.fieldValue("object.3"), QStringLiteral("20.0 \u00B0C"));
    TAP(panel, "sheet.ok");
    QCOMPARE(measured(panel), QStringLiteral("15.300 m\u2126|Done"));
    TAP(panel, "measure.kind.1");
    QCOMPARE(measured(panel), QStringLiteral("870.0 mH|Done"));
    TAP(panel, "measure.kind.2");
    QCOMPARE(measured(panel), QStringLiteral("20.0 \u00B0C|Done"));
    TAP(panel, "measure.kind.0", "measure.testObject", "object.leads.1", "sheet.ok");
    QCOMPARE(panel.fieldValue("measure.testObject"), QStringLiteral("Leads open"));
    QCOMPARE(measured(panel), QStringLiteral("--- \u2126|Current lead is open"));

    // With noise two measurements differ.
    measureWith(panel, objectOf(0.0012347F));
    TAP(panel, "measure.testObject", "object.2.more", "object.2.more", "object.2.more",
        "object.2.more", "sheet.ok");
    QVERIFY(record(panel));
    TAP(panel, "record.view.1");
    QStringList values = panel.titles("record.table");
    values.removeDuplicates();
    QVERIFY(values.size() > 5);
}

void TstPanelMeasuring::compensatedForAMaterial()
{
    PanelFixture panel;
    TestObject object = objectOf(0.001F);
    object.temperature = 120;
    measureWith(panel, object);
    QCOMPARE(measured(panel), QStringLiteral("1.3930 m\u2126|Done"));
    QVERIFY(panel.pick("measure.compensation", QStringLiteral("Copper")));
    // With compensation a copper object shows its resistance at 20 degrees.
    QCOMPARE(measured(panel), QStringLiteral("1.0000 m\u2126|Done"));
}

void TstPanelMeasuring::currentsAreThoseOfTheModel()
{
    PanelFixture panel;
    TAP(panel, "measure.current");
    QCOMPARE(panel.titles("sheet.list"),
             QStringList({"1.0 mA", "10.0 mA", "0.10 A", "1.00 A", "10.0 A"}));
    TAP(panel, "sheet.cancel");
    QVERIFY(panel.pick("measure.meter", QStringLiteral("DW44019")));
    QCOMPARE(panel.labelText("header.meter"), QStringLiteral("QERN KTV-4400   DW44019"));
    QVERIFY(panel.pick("measure.current", QStringLiteral("200 A")));
    measureWith(panel, objectOf(0.0005F));
    QCOMPARE(measured(panel), QStringLiteral("500.0 \u03BC\u2126|Done"));
}

void TstPanelMeasuring::serialNumberChangesTheModelUnderWay()
{
    PanelFixture panel;
    QVERIFY(panel.pick("measure.meter", QStringLiteral("DV42006")));
    QVERIFY(panel.pick("measure.current", QStringLiteral("150 A")));
    TAP(panel, "measure.start");
    QVERIFY(panel.session.hardware().isRunning());

    // The hardware reports another meter, which does not have this current.
    panel.session.setSerialNumber(QStringLiteral("CH20417"));
    QVERIFY(!panel.session.hardware().isRunning());
    QCOMPARE(panel.buttonText("measure.start"), QStringLiteral("Start"));
    QCOMPARE(panel.labelText("header.meter"), QStringLiteral("QERN KTV-420   CH20417"));
    QCOMPARE(panel.session.setup().current(), ValueBox::testI_10A);
    QCOMPARE(panel.session.library().getLiczniki()->get_dictionary(
                 KTV_Liczniki::Licznik_PomiarObiektowRezystancyjnych),
             0);
    measureWith(panel, objectOf(0.0012F));
    QCOMPARE(measured(panel), QStringLiteral("1.2000 m\u2126|Done"));

    panel.session.setSerialNumber(QStringLiteral("unknown"));
    QCOMPARE(panel.labelText("header.meter"), QStringLiteral("QERN KTV-xxx   unknown"));
}

void TstPanelMeasuring::lastSettingComesBack()
{
    {
        PanelFixture panel;
        QVERIFY(panel.pick("measure.current", QStringLiteral("0.10 A")));
        QVERIFY(panel.pick("measure.meter", QStringLiteral("JB20871")));
        TAP(panel, "measure.kind.1");
        QVERIFY(panel.pick("measure.current", QStringLiteral("1.00 A")));
    }
    PanelFixture panel;
    QCOMPARE(panel.labelText("header.meter"), QStringLiteral("QERN PLX-420   JB20871"));
    QCOMPARE(panel.session.setup().current(), ValueBox::testI_100mA);
    TAP(panel, "measure.kind.1");
    QCOMPARE(panel.session.setup().current(), ValueBox::testI_1A);
}

void TstPanelMeasuring::startsWithAModel()
{
    {
        PanelFixture panel;
        QVERIFY(panel.pick("measure.meter", QStringLiteral("DV42006")));
        QVERIFY(panel.pick("measure.current", QStringLiteral("150 A")));
        panel.session.setSerialNumber(QStringLiteral("AA0000")); // stored, but of no model
    }
    PanelFixture panel;
    QCOMPARE(panel.labelText("header.meter"), QStringLiteral("QERN KTV-420   CH20417"));
    QCOMPARE(panel.fieldValue("measure.current"), QStringLiteral("10.0 A"));
}

void TstPanelMeasuring::seriesIsShownWhileItGrows()
{
    PanelFixture panel;
    TAP(panel, "measure.kind.1", "nav.Record");
    const auto accent = [&] {
        const QImage plot = panel.finger.find(QStringLiteral("record.plot"))->grab().toImage();
        int pixels = 0;
        for (int y = 0; y < plot.height(); ++y)
            for (int x = 0; x < plot.width(); ++x)
                pixels += plot.pixelColor(x, y) == Theme::current().accent ? 1 : 0;
        return pixels;
    };
    QCOMPARE(accent(), 0);
    panel.session.recorder().setWanted(Series::capacity); // does not end while the test looks
    TAP(panel, "record.view.1", "record.start");
    QVERIFY(Finger::waitFor([&] { return panel.list("record.table")->rowCount() >= 3; }));
    QVERIFY(panel.session.hardware().isRunning());
    QCOMPARE(panel.labelText("record.status"),
             QStringLiteral("%1 / 100000").arg(panel.list("record.table")->rowCount()));
    QVERIFY(panel.titles("record.table").first().endsWith(QLatin1String(" mH")));
    QVERIFY(accent() > 100); // the curve is a line across the plot
    QVERIFY(!panel.finger.find(QStringLiteral("record.save"))->isEnabled());
    TAP(panel, "record.start"); // stops
    QVERIFY(panel.finger.find(QStringLiteral("record.save"))->isEnabled());
    QCOMPARE(panel.session.library().getLiczniki()->get_dictionary(
                 KTV_Liczniki::Licznik_RejestracjaObiektowIndukcyjnych),
             1);
}

void TstPanelMeasuring::seriesIsSavedUnderASafeAndFreeName()
{
    const QString date = today();
    PanelFixture panel;
    measureWith(panel, objectOf(0.0012347F));
    QVERIFY(record(panel));
    TAP(panel, "record.view.1");
    const TouchList *table = panel.list("record.table");
    QCOMPARE(table->rowCount(), 10);
    QVERIFY(Finger::waitFor(
        [&] { return table->viewport()->rect().contains(table->rowRect(9).center()); }));
    QVERIFY(writeClient(panel, QStringLiteral("Yard 7/4: \"B\"")));
    const QDir directory(QLatin1String(clients) + QStringLiteral("/Yard 7_4_ _B_"));
    for (const QString &name : {date + ".csv", date + "_1.csv"}) {
        TAP(panel, "record.save");
        QCOMPARE(panel.message(), directory.filePath(name));
        TAP(panel, "sheet.ok");
    }
    QCOMPARE(directory.entryList(QDir::Files), QStringList({date + ".csv", date + "_1.csv"}));
    const QList<QByteArray> lines = Meter::readFile(directory.filePath(date + ".csv")).split('\n');
    QCOMPARE(lines.first(), QByteArray("meter,\"QERN KTV-420\"\r"));
    // The last element is the empty text after the last line feed.
    const QByteArray &tenth = lines.at(lines.size() - 2);
    QVERIFY(tenth.startsWith("10,"));
    QVERIFY(tenth.endsWith(QStringLiteral(",0.0012347,\"1.2347 m\u2126\",\r").toUtf8()));
    QCOMPARE(panel.session.library().getLiczniki()->get_dictionary(
                 KTV_Liczniki::Licznik_RejestracjaObiektowRezystancyjnych),
             1);
}

void TstPanelMeasuring::limitThatIsNotANumber()
{
    PanelFixture panel;
    QVERIFY(panel.session.library().get_DataList()->AddLimit_R(QStringLiteral("words"),
                                                               QStringLiteral("abc"), QString()));
    measureWith(panel, objectOf(0.0012F));
    QVERIFY(panel.pick("measure.limit", QStringLiteral("words")));
    QCOMPARE(measured(panel), QStringLiteral("1.2000 m\u2126|No verdict"));
    QCOMPARE(panel.finger.see<ValueDisplay>(QStringLiteral("measure.value"))->reason(),
             QStringLiteral("The limit is not a number"));
}

void TstPanelMeasuring::verdictNeedsConnectedLeads()
{
    PanelFixture panel;
    QVERIFY(panel.session.library().get_DataList()->AddLimit_R(
        QStringLiteral("joint"), QStringLiteral("1.5 m\u2126"), QStringLiteral("1 m\u2126")));
    QVERIFY(panel.pick("measure.limit", QStringLiteral("joint")));
    TestObject object = objectOf(0.0012F);
    const auto *display = panel.finger.see<ValueDisplay>(QStringLiteral("measure.value"));
    object.leads = TestObject::Reversed;
    measureWith(panel, object);
    QCOMPARE(measured(panel), QStringLiteral("< 0 \u03BC\u2126|No verdict"));
    QCOMPARE(display->reason(), QStringLiteral("The leads are swapped"));
    object.leads = TestObject::Open;
    measureWith(panel, object);
    QCOMPARE(measured(panel), QStringLiteral("--- \u2126|No verdict"));
    QCOMPARE(display->reason(), QStringLiteral("Current lead is open"));
}

void TstPanelMeasuring::objectOfTheLists()
{
    PanelFixture panel;
    KTV_DataList *lists = panel.session.library().get_DataList();
    QVERIFY(lists->AddObiectTyp(QStringLiteral("My busbar")));
    QVERIFY(lists->AddObiectName(QStringLiteral("Joint 7")));
    QVERIFY(panel.pick("measure.object", QStringLiteral("My busbar")));
    QVERIFY(panel.finger.tapRow(QStringLiteral("sheet.list"), QStringLiteral("Joint 7")));
    QCOMPARE(panel.fieldValue("measure.object"), QStringLiteral("My busbar \u00B7 Joint 7"));
    QVERIFY(record(panel));
    QVERIFY(panel.labelText("record.what").endsWith(QStringLiteral("My busbar \u00B7 Joint 7")));
    QCOMPARE(panel.session.recorder().series().conditions().objectName, QStringLiteral("Joint 7"));
}

void TstPanelMeasuring::figuresOfASeries()
{
    PanelFixture panel;
    QVERIFY(panel.session.library().get_DataList()->AddLimit_R(
        QStringLiteral("joint"), QStringLiteral("1 m\u2126"), QString()));
    QVERIFY(panel.pick("measure.limit", QStringLiteral("joint")));
    measureWith(panel, objectOf(0.0012347F));
    QVERIFY(record(panel));
    QCOMPARE(panel.labelText("record.figure.count"), QStringLiteral("10"));
    for (const char *figure : {"minimum", "maximum", "mean"})
        QCOMPARE(panel.labelText(qPrintable(QStringLiteral("record.figure.") + figure)),
                 QStringLiteral("1.2347 m\u2126"));
    QCOMPARE(panel.labelText("record.figure.deviation"), QStringLiteral("0 \u03BC\u2126"));
    QCOMPARE(panel.finger.see<VerdictLabel>(QStringLiteral("record.verdict"))->text(),
             QStringLiteral("Fail 10 / 10"));
}

void TstPanelMeasuring::pointIsReadByTouch()
{
    PanelFixture panel;
    QVERIFY(record(panel));
    auto *plot = panel.finger.see<Plot>(QStringLiteral("record.plot"));
    QSignalSpy touched(plot, &Plot::touched);
    const QImage before = plot->grab().toImage();
    TAP(panel, "record.plot");
    QCOMPARE(touched.size(), 1);
    const double seconds = touched.first().first().toDouble();
    const Series &series = panel.session.recorder().series();
    QVERIFY2(seconds > series.seconds(0) && seconds < series.seconds(series.count() - 1),
             qPrintable(QString::number(seconds)));
    QVERIFY(plot->grab().toImage() != before);
    QCOMPARE(plot->markedText(), series.text(series.nearest(seconds)));
}

void TstPanelMeasuring::seriesIsKeptUntilItIsDropped()
{
    PanelFixture panel;
    measureWith(panel, objectOf(0.0012347F));
    QVERIFY(record(panel));
    QCOMPARE(panel.labelText("record.status"), QStringLiteral("10 / 10   Not saved"));
    TAP(panel, "nav.Settings", "settings.temperature.1", "settings.temperature.0", "nav.Measure",
        "measure.kind.2", "nav.WiFi", "nav.Record", "record.view.1");
    QCOMPARE(panel.titles("record.table").size(), 10);
    QCOMPARE(panel.titles("record.table").first(), QStringLiteral("1.2347 m\u2126"));
    TAP(panel, "record.start", "sheet.cancel");
    QVERIFY(!panel.session.recorder().isRunning());
    QCOMPARE(panel.titles("record.table").size(), 10);
    QVERIFY(panel.session.recorder().isUnsaved());

    QVERIFY(writeClient(panel, QStringLiteral("a")));
    TAP(panel, "record.save");
    QVERIFY(panel.message().startsWith(QLatin1String(clients)));
    TAP(panel, "sheet.ok");
    QCOMPARE(panel.labelText("record.status"), QStringLiteral("10 / 10"));
    TAP(panel, "record.start"); // the series was saved, so the user is not asked
    QVERIFY(Finger::waitFor([&] { return panel.session.recorder().series().count() > 0; }));
    TAP(panel, "record.start", "record.start", "sheet.yes");
    QVERIFY(panel.session.recorder().isRunning());
}

void TstPanelMeasuring::recordingGoesOnBesideOtherPages()
{
    PanelFixture panel;
    TAP(panel, "nav.Record");
    QVERIFY(!panel.finger.find(QStringLiteral("header.recording")));
    panel.session.recorder().setWanted(Series::capacity);
    TAP(panel, "record.start", "nav.WiFi", "nav.Measure");
    QVERIFY(!panel.finger.find(QStringLiteral("measure.start"))->isEnabled());
    QVERIFY(!panel.finger.find(QStringLiteral("measure.current"))->isEnabled());
    const int before = panel.session.recorder().series().count();
    QVERIFY(Finger::waitFor([&] { return panel.session.recorder().series().count() > before; }));
    QVERIFY(panel.buttonText("header.recording").contains(QLatin1String("Recording")));
    TAP(panel, "header.recording", "record.view.1");
    QCOMPARE(panel.list("record.table")->rowCount(), panel.session.recorder().series().count());
    TAP(panel, "record.start");
    QVERIFY(!panel.finger.find(QStringLiteral("header.recording")));
}

void TstPanelMeasuring::savingGoesOnAfterTheClient()
{
    PanelFixture panel;
    QVERIFY(record(panel));
    TAP(panel, "record.save");
    QVERIFY(panel.finger.type(QStringLiteral("yard")));
    TAP(panel, "key.done");
    QVERIFY(panel.message().startsWith(QLatin1String(clients) + QStringLiteral("/yard/")));
}

void TstPanelMeasuring::nothingStartsWhileASeriesIsSaved()
{
    PanelFixture panel;
    QVERIFY(record(panel));
    QVERIFY(writeClient(panel, QStringLiteral("a")));
    {
        const BusyPool pool;
        TAP(panel, "record.save");
        QCOMPARE(panel.labelText("record.status"), QStringLiteral("Saving the series"));
        QVERIFY(!panel.finger.find(QStringLiteral("record.start"))->isEnabled());
    }
    QVERIFY(panel.message().startsWith(QLatin1String(clients)));
    TAP(panel, "sheet.ok", "record.start");
    QVERIFY(panel.session.recorder().isRunning());
}

void TstPanelMeasuring::reasonWhereASeriesHasNoVerdict()
{
    PanelFixture panel;
    QVERIFY(panel.session.library().get_DataList()->AddLimit_R(
        QStringLiteral("joint"), QStringLiteral("1.5 m\u2126"), QStringLiteral("1 m\u2126")));
    QVERIFY(panel.pick("measure.limit", QStringLiteral("joint")));
    TestObject object = objectOf(0.0012F);
    object.leads = TestObject::Open;
    measureWith(panel, object);
    QVERIFY(record(panel));
    QCOMPARE(panel.finger.see<VerdictLabel>(QStringLiteral("record.verdict"))->text(),
             QStringLiteral("No verdict"));
    QCOMPARE(panel.labelText("record.reason"), QStringLiteral("Current lead is open"));
}

void TstPanelMeasuring::seriesKeepsItsMeter()
{
    PanelFixture panel;
    QVERIFY(panel.pick("measure.meter", QStringLiteral("DV42006")));
    QVERIFY(panel.pick("measure.current", QStringLiteral("150 A")));
    measureWith(panel, objectOf(0.0001F));
    QVERIFY(record(panel));
    const QString mean = panel.labelText("record.figure.mean");
    QCOMPARE(mean, QStringLiteral("100.0 \u03BC\u2126"));
    panel.session.setSerialNumber(QStringLiteral("CH20417")); // has no such current
    TAP(panel, "nav.Settings", "settings.temperature.1", "settings.temperature.0", "nav.Record");
    QCOMPARE(panel.labelText("record.figure.mean"), mean);
    TAP(panel, "record.view.1");
    QCOMPARE(panel.titles("record.table").first(), mean);
}

void TstPanelMeasuring::seriesOnAFullCard()
{
    const QString date = today();
    PanelFixture panel;
    Volume card(QLatin1String(clients), 40);
    QVERIFY(record(panel));
    QVERIFY(writeClient(panel, QStringLiteral("a")));
    QCOMPARE(panel.labelText("header.alert"), QString());
    card.fillUp();
    TAP(panel, "record.save");
    QCOMPARE(panel.message(), QStringLiteral("No space left on the memory card"));
    TAP(panel, "sheet.ok");
    QCOMPARE(panel.labelText("header.alert"), QStringLiteral("The memory card is almost full"));
    const QDir directory(QLatin1String(clients) + QStringLiteral("/a"));
    QCOMPARE(directory.entryList(QDir::Files), QStringList());

    card.fill(4); // the series still exists, and now there is space for it
    TAP(panel, "record.save");
    QCOMPARE(panel.message(), directory.filePath(date + ".csv"));
    TAP(panel, "sheet.ok");
    QCOMPARE(directory.entryList(QDir::Files).size(), 1);
    QCOMPARE(panel.labelText("header.alert"), QString());
}

void TstPanelMeasuring::seriesWithoutAFolder()
{
    Meter::writeFile(QLatin1String(clients) + QStringLiteral("/a"), "a file in its place");
    PanelFixture panel;
    QVERIFY(record(panel));
    QVERIFY(writeClient(panel, QStringLiteral("a")));
    TAP(panel, "record.save");
    QCOMPARE(panel.message(), QStringLiteral("The operation failed"));
}

void TstPanelMeasuring::nameOfDotsStaysInItsDirectory()
{
    PanelFixture panel;
    QVERIFY(record(panel));
    QVERIFY(writeClient(panel, QStringLiteral("..")));
    TAP(panel, "record.save");
    QVERIFY(panel.message().startsWith(QLatin1String("/media/sdcard/Clients/_../")));
    QCOMPARE(QDir(QStringLiteral("/media/sdcard")).entryList({"*.csv"}), QStringList());
}

KTV_PANEL_TEST_MAIN(TstPanelMeasuring)

#include "tst_panel_measuring.moc"
