#include "meter/AxisScale.h"
#include "meter/Limit.h"
#include "meter/Lists.h"
#include "meter/Measurement.h"
#include "meter/NetworkName.h"
#include "meter/Preferences.h"
#include "meter/Recorder.h"
#include "meter/SeriesFile.h"
#include "meter/Setup.h"
#include "meter/Tones.h"
#include "meter/Verdict.h"

#include "meter/Hardware.h"
#include "support/Meter.h"
#include "touch/Envelope.h"

#include <configuration/KTV_Configuration.h>
#include <configuration/KTV_InterfaceConfig.h>
#include <counters/KTV_Liczniki.h>
#include <datalist/KTV_DataList.h>
#include <valuebox/NumericalValueBox.h>

#include <QTemporaryDir>
#include <QtConcurrent>
#include <QtTest>

#include <cmath>

using ValueBox::NumericalValueBox;

Q_DECLARE_METATYPE(Quantity)
Q_DECLARE_METATYPE(Limit)
Q_DECLARE_METATYPE(SeriesFile::Result)

namespace {

const float missing = std::numeric_limits<float>::quiet_NaN();
const QString milliohm = QStringLiteral(" m\u2126");

void useUnit(ValueBox::TemperatureUnit unit)
{
    NumericalValueBox::prepareStaticDefaultValue(unit);
}

/**
 * The stores that the panel uses, in a temporary directory, without the facade and without tools.
 */
struct Stores
{
    QTemporaryDir directory;
    QString path = directory.path() + QLatin1Char('/');
    KTV_InterfaceConfig settings {path};
    KTV_Liczniki counters {path};
    KTV_Configuration meter;
    Setup setup {settings};
    Hardware hardware {setup};
    Recorder recorder {settings, meter, setup, hardware, counters};
};

/** The same, with a measurement and its tones. */
struct Bench : Stores
{
    Preferences preferences {settings, path + QStringLiteral("panel.ini")};
    Tones tones {preferences};
    Measurement measurement {setup, hardware, counters, tones};

    void measure(std::initializer_list<float> values)
    {
        measurement.start();
        for (const float value : values)
            hardware.deliver(value);
    }
};

/** Occupies every thread of the pool while this object exists. */
class BusyPool
{
public:
    BusyPool()
    {
        QThreadPool::globalInstance()->setMaxThreadCount(1);
        m_work = QtConcurrent::run([this] { m_end.acquire(); });
    }
    ~BusyPool()
    {
        m_end.release();
        m_work.waitForFinished();
    }

private:
    QSemaphore m_end;
    QFuture<void> m_work;
};

/** Records a series of these values. */
void record(Stores &stores, const QVector<float> &values)
{
    stores.recorder.setInterval(1000000); // so long that the simulated hardware adds no reading
    stores.recorder.setWanted(int(values.size()));
    stores.recorder.start();
    for (const float value : values)
        stores.hardware.deliver(value);
}

/** Saves the series. @return the lines of the file; empty if it could not be saved */
QStringList saved(Recorder &recorder)
{
    QSignalSpy saved(&recorder, &Recorder::saved);
    if (!recorder.isSaving())
        recorder.save();
    if (saved.isEmpty() && !saved.wait(60000))
        return {};
    const auto result = saved.first().first().value<SeriesFile::Result>();
    return QString::fromUtf8(Meter::readFile(result.path)).split(QStringLiteral("\r\n"));
}

SeriesConditions circumstances(const Limit &limit = Limit())
{
    SeriesConditions conditions;
    conditions.limit = limit;
    conditions.start = QDateTime(QDate(2024, 3, 1), QTime(9, 30));
    return conditions;
}

} // namespace

/** The panel without its screen, the facade and tools; takes milliseconds. */
class TstPanelMeter : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void verdictOfAReading_data();
    void verdictOfAReading();
    void limitInTheUnitInEffect_data();
    void limitInTheUnitInEffect();
    void limitOfTheListsInTheUnitInEffect();
    void valuesThatAreRefused_data();
    void valuesThatAreRefused();
    void statistics();
    void statisticsWithoutReadings();
    void outcomeOfASeries_data();
    void outcomeOfASeries();
    void nearestReading_data();
    void nearestReading();
    void axisInOnePrefix_data();
    void axisInOnePrefix();
    void curveOfAnyLength();
    void curveWithGaps();
    void seriesAsAFile();
    void namesInAFile_data();
    void namesInAFile();
    void temperaturesInAFile();
    void seriesFollowsTheUnit();
    void recorderEndsByItself();
    void recorderKeepsItsConditions();
    void countIsThatOfTheStart();
    void savedInTheUnitAtThatMoment();
    void longSeriesIsSavedCompletely();
    void seriesKeepsItsTexts();
    void textsAreMadeAFewAtATime();
    void nothingStartsWhileASeriesIsSaved();
    void measurementIsTheMeanOfSix();
    void hardwareServesOneAtATime();
    void measurementIsForgottenWithItsSetup();
    void measurementIsJudged();
    void settersEmitSignals();
    void factorySettingsEmitSignals();
    void lastSettingComesBack();
    void currentFollowsTheCompensation();
    void namesOfNetworks_data();
    void namesOfNetworks();
};

void TstPanelMeter::initTestCase()
{
    qRegisterMetaType<SeriesFile::Result>("SeriesFile::Result");
}

void TstPanelMeter::init()
{
    useUnit(ValueBox::Temp_Celsius);
    NumericalValueBox::SetCurrentMeter(KTV_Configuration::KTV_420);
}

// --- verdicts

void TstPanelMeter::verdictOfAReading_data()
{
    QTest::addColumn<Quantity>("quantity");
    QTest::addColumn<float>("value");
    QTest::addColumn<Limit>("limit");
    QTest::addColumn<int>("reason");
    QTest::addColumn<int>("outcome");
    const auto ohms = [](const char *row, double value, const QString &low, const QString &high,
                         Verdict::Reason reason, Verdict::Outcome outcome) {
        QTest::newRow(row) << Quantity::Resistance << float(value)
                           << Limit {QStringLiteral("joint"), low, high} << int(reason)
                           << int(outcome);
    };
    const QString one = QLatin1Char('1') + milliohm;
    const QString more = QStringLiteral("1.5") + milliohm;
    const QString none;
    const QString words = QStringLiteral("abc");
    ohms("below", 0.0009, one, more, Verdict::TooLow, Verdict::Fail);
    ohms("the low bound itself", 0.001, one, more, Verdict::Within, Verdict::Pass);
    ohms("the high bound itself", 0.0015, one, more, Verdict::Within, Verdict::Pass);
    ohms("above by the last digit shown", 0.0015001, one, more, Verdict::TooHigh, Verdict::Fail);
    ohms("above by less than is shown", 0.00150004, one, more, Verdict::Within, Verdict::Pass);
    ohms("no low bound", 0.0001, none, more, Verdict::Within, Verdict::Pass);
    ohms("no high bound", 0.1, one, none, Verdict::Within, Verdict::Pass);
    ohms("no bounds at all", 0.001, none, none, Verdict::LimitEmpty, Verdict::None);
    ohms("high bound that is no number", 0.001, none, words, Verdict::LimitUnreadable,
         Verdict::None);
    ohms("low bound that is no number", 0.001, words, more, Verdict::LimitUnreadable,
         Verdict::None);
    ohms("bound of another unit", 0.001, none, QStringLiteral("5 V"), Verdict::LimitUnreadable,
         Verdict::None);
    ohms("bound that is NaN in words", 0.001, none, QStringLiteral("nan"), Verdict::LimitUnreadable,
         Verdict::None);
    ohms("infinite bound", 0.001, none, QStringLiteral("inf"), Verdict::LimitUnreadable,
         Verdict::None);
    const auto bound = [&ohms](const char *row, const QString &text, bool isRead) {
        ohms(row, 0.1, QString(), text, isRead ? Verdict::TooHigh : Verdict::LimitUnreadable,
             isRead ? Verdict::Fail : Verdict::None);
    };
    bound("an ohm in letters", QStringLiteral("5 Ohm"), false);
    bound("kiloohms in letters", QStringLiteral("5 kOhm"), false);
    bound("another unit behind milli", QStringLiteral("5 mV"), false);
    bound("a prefix alone", QStringLiteral("5 m"), false);
    bound("words behind the number", QStringLiteral("0.05 xyz"), false);
    bound("words behind the unit", QStringLiteral("0.05 \u2126 or so"), false);
    bound("words before the number", QStringLiteral("about 0.05 \u2126"), false);
    bound("no blank before the unit", QStringLiteral("0.05\u2126"), false);
    bound("decimal comma", QStringLiteral("0,05 \u2126"), false);
    bound("no unit", QStringLiteral("0.05"), true);
    bound("blanks around it", QStringLiteral(" 0.05 \u2126 "), true);
    bound("the Greek letter for an ohm", QStringLiteral("5 m\u03A9"), true);
    bound("the micro sign", QStringLiteral("5 \u00B5\u2126"), true);
    ohms("leads swapped", -0.001, one, more, Verdict::LeadsSwapped, Verdict::None);
    ohms("leads open", std::nan(""), one, more, Verdict::NothingMeasured, Verdict::None);
    ohms("beyond the range, the limit is in it", 0.25, one, more, Verdict::TooHigh, Verdict::Fail);
    ohms("beyond the range, and so is the limit", 0.25, one, QStringLiteral("300 m\u2126"),
         Verdict::BeyondRange, Verdict::None);
    ohms("beyond the range, without a high bound", 0.25, one, none, Verdict::BeyondRange,
         Verdict::None);
    QTest::newRow("no limit") << Quantity::Resistance << 0.001F << Limit() << int(Verdict::NoLimit)
                              << int(Verdict::None);
    const Limit winding {QStringLiteral("winding"), QStringLiteral("-5"), QStringLiteral("26.67")};
    QTest::newRow("temperature within")
        << Quantity::Temperature << 23.5F << winding << int(Verdict::Within) << int(Verdict::Pass);
    QTest::newRow("temperature below zero")
        << Quantity::Temperature << -4.F << winding << int(Verdict::Within) << int(Verdict::Pass);
    QTest::newRow("temperature above")
        << Quantity::Temperature << 27.F << winding << int(Verdict::TooHigh) << int(Verdict::Fail);
}

void TstPanelMeter::verdictOfAReading()
{
    QFETCH(Quantity, quantity);
    QFETCH(float, value);
    QFETCH(Limit, limit);
    const ReadingFormat format {
        quantity, quantity == Quantity::Temperature ? ValueBox::Round_Static : ValueBox::Round_R,
        ValueBox::testI_10A};
    const Verdict verdict(Reading(value, format), quantity, limit);
    QTEST(int(verdict.reason()), "reason");
    QTEST(int(verdict.outcome()), "outcome");
}

void TstPanelMeter::limitInTheUnitInEffect_data()
{
    QTest::addColumn<int>("unit");
    QTest::addColumn<QString>("listed");
    QTest::addColumn<QString>("kept");
    QTest::addColumn<QString>("shown");
    const int celsius = ValueBox::Temp_Celsius;
    const int fahrenheit = ValueBox::Temp_Fahrenheit;
    const int kelvin = ValueBox::Temp_Kelvin;
    QTest::newRow("as entered") << celsius << "26.5"
                                << "26.5" << QStringLiteral("26.5 \u00B0C");
    QTest::newRow("entered in another unit")
        << celsius << QStringLiteral("26.67 \u00B0F") << "26.67" << QStringLiteral("26.67 \u00B0C");
    QTest::newRow("80 degrees Fahrenheit, and back")
        << fahrenheit << QStringLiteral("80.01 \u00B0F") << "26.67" << QStringLiteral("80 \u00B0F");
    QTest::newRow("a tenth of a degree") << fahrenheit << QStringLiteral("80.49 \u00B0F") << "26.94"
                                         << QStringLiteral("80.5 \u00B0F");
    QTest::newRow("freezing point")
        << fahrenheit << QStringLiteral("32 \u00B0F") << "0" << QStringLiteral("32 \u00B0F");
    QTest::newRow("below zero") << fahrenheit << QStringLiteral("-4 \u00B0F") << "-20"
                                << QStringLiteral("-4 \u00B0F");
    QTest::newRow("kelvin") << kelvin << "300 K"
                            << "26.85"
                            << "300 K";
    QTest::newRow("words") << fahrenheit << "abc"
                           << "abc"
                           << "abc";
    QTest::newRow("none") << fahrenheit << ""
                          << ""
                          << "";
}

void TstPanelMeter::limitInTheUnitInEffect()
{
    QFETCH(int, unit);
    QFETCH(QString, listed);
    useUnit(ValueBox::TemperatureUnit(unit));
    const QString kept = Limit::kept(Quantity::Temperature, listed);
    QTEST(kept, "kept");
    QTEST(Limit::text(Quantity::Temperature, kept), "shown");
}

void TstPanelMeter::limitOfTheListsInTheUnitInEffect()
{
    Stores stores;
    KTV_DataList library(stores.path, stores.path, QStringLiteral("EN"));
    Lists lists(library);
    useUnit(ValueBox::Temp_Fahrenheit);
    for (int degrees = -40; degrees <= 400; ++degrees)
        QVERIFY(library.AddLimit_T(QString::number(degrees), QString::number(degrees), QString()));
    for (const Lists::Entry &entry : lists.entries(Lists::TemperatureLimits))
        QCOMPARE(entry.values.at(2), entry.values.at(0));
    useUnit(ValueBox::Temp_Celsius);
    // What was entered as 80 degrees Fahrenheit is now shown in Celsius, without a sign.
    QCOMPARE(lists.entries(Lists::TemperatureLimits, QStringLiteral("80")).first().values.at(2),
             QStringLiteral("26.67"));
}

void TstPanelMeter::valuesThatAreRefused_data()
{
    QTest::addColumn<int>("family");
    QTest::addColumn<QStringList>("values");
    QTest::addColumn<int>("problem");
    const int ohms = Lists::ResistanceLimits;
    const int degrees = Lists::TemperatureLimits;
    QTest::newRow("no name") << int(Lists::ObjectTypes) << QStringList("")
                             << int(Lists::NameMissing);
    QTest::newRow("name") << int(Lists::ObjectTypes) << QStringList("a") << int(Lists::NoProblem);
    QTest::newRow("coefficient") << int(Lists::Materials) << QStringList({"a", "0.004"})
                                 << int(Lists::NoProblem);
    QTest::newRow("no coefficient")
        << int(Lists::Materials) << QStringList({"a", ""}) << int(Lists::NotANumber);
    QTest::newRow("one bound") << ohms << QStringList({"a", "", "2" + milliohm})
                               << int(Lists::NoProblem);
    QTest::newRow("no bound") << ohms << QStringList({"a", "", ""}) << int(Lists::BoundsMissing);
    QTest::newRow("words") << ohms << QStringList({"a", "", "abc"}) << int(Lists::NotANumber);
    QTest::newRow("words beside a number")
        << degrees << QStringList({"a", "5", "--"}) << int(Lists::NotANumber);
    QTest::newRow("wrong way round, prefixes counted")
        << ohms << QStringList({"a", "2 \u2126", "3" + milliohm}) << int(Lists::LowAboveHigh);
    QTest::newRow("an ohm in letters")
        << ohms << QStringList({"a", "", "5 Ohm"}) << int(Lists::NotANumber);
    QTest::newRow("decimal comma")
        << ohms << QStringList({"a", "", "1,5" + milliohm}) << int(Lists::NotANumber);
    QTest::newRow("the sign of the unit in effect")
        << degrees << QStringList({"a", "", QStringLiteral("80 \u00B0C")}) << int(Lists::NoProblem);
    QTest::newRow("the sign of another unit")
        << degrees << QStringList({"a", "", QStringLiteral("80 \u00B0F")})
        << int(Lists::NotANumber);
    QTest::newRow("the same twice")
        << degrees << QStringList({"a", "5", "5"}) << int(Lists::NoProblem);
}

void TstPanelMeter::valuesThatAreRefused()
{
    QFETCH(int, family);
    QFETCH(QStringList, values);
    QTEST(int(Lists::problemOf(Lists::Family(family), values)), "problem");
}

// --- series

void TstPanelMeter::statistics()
{
    Series series(circumstances());
    // Differences in the last digits of a float.
    for (const float value : {100000.F, 100000.0625F, missing, 100000.125F, 99999.9375F})
        series.add(0, value);
    QCOMPARE(series.count(), 5);
    QCOMPARE(series.presentCount(), 4);
    QCOMPARE(series.minimum(), 99999.9375F);
    QCOMPARE(series.maximum(), 100000.125F);
    QCOMPARE(series.mean(), 100000.03125F);
    QCOMPARE(series.standardDeviation(), float(std::sqrt(0.01953125 / 3)));
}

void TstPanelMeter::statisticsWithoutReadings()
{
    Series series(circumstances());
    QVERIFY(std::isnan(series.minimum()));
    QVERIFY(std::isnan(series.mean()));
    series.add(0, missing);
    QVERIFY(std::isnan(series.mean()));
    series.add(0, 1);
    QCOMPARE(series.mean(), 1.F);
    QVERIFY(std::isnan(series.standardDeviation()));
}

void TstPanelMeter::outcomeOfASeries_data()
{
    QTest::addColumn<QVector<float>>("values");
    QTest::addColumn<int>("outcome");
    QTest::addColumn<int>("reason");
    const auto row = [](const char *name, const QVector<float> &values, Verdict::Outcome outcome,
                        Verdict::Reason reason) {
        QTest::newRow(name) << values << int(outcome) << int(reason);
    };
    row("empty", {}, Verdict::None, Verdict::NoLimit);
    row("every one passes", {0.001F, 0.002F}, Verdict::Pass, Verdict::Within);
    row("one fails", {0.001F, 0.003F, 0.001F}, Verdict::Fail, Verdict::TooHigh);
    row("one is missing", {0.001F, missing}, Verdict::None, Verdict::NothingMeasured);
    row("one is missing, one fails", {missing, 0.003F}, Verdict::Fail, Verdict::TooHigh);
    row("the first reason counts", {-0.001F, missing}, Verdict::None, Verdict::LeadsSwapped);
    row("the first failure counts", {0.0001F, 0.003F}, Verdict::Fail, Verdict::TooLow);
}

void TstPanelMeter::outcomeOfASeries()
{
    QFETCH(QVector<float>, values);
    Series series(circumstances(
        {QStringLiteral("joint"), QStringLiteral("0.5 m\u2126"), QStringLiteral("2 m\u2126")}));
    for (const float value : std::as_const(values))
        series.add(0, value);
    QTEST(int(series.verdict().outcome()), "outcome");
    QTEST(int(series.verdict().reason()), "reason");
}

void TstPanelMeter::nearestReading_data()
{
    QTest::addColumn<double>("seconds");
    QTest::addColumn<int>("index");
    QTest::newRow("before the first") << -1. << 0;
    QTest::newRow("exactly") << 0.4 << 1;
    QTest::newRow("nearer to the earlier") << 0.49 << 1;
    QTest::newRow("nearer to the later") << 0.51 << 2;
    QTest::newRow("after the last") << 9. << 2;
}

void TstPanelMeter::nearestReading()
{
    QFETCH(double, seconds);
    QCOMPARE(Series().nearest(seconds), -1);
    Series series(circumstances());
    for (const qint64 ms : {200, 400, 600})
        series.add(ms, 1);
    QTEST(series.nearest(seconds), "index");
}

void TstPanelMeter::axisInOnePrefix_data()
{
    QTest::addColumn<Quantity>("quantity");
    QTest::addColumn<double>("magnitude");
    QTest::addColumn<double>("divisor");
    QTest::addColumn<QString>("unit");
    QTest::newRow("micro") << Quantity::Resistance << 9.9e-4 << 1e-6
                           << QStringLiteral("\u03BC\u2126");
    QTest::newRow("milli") << Quantity::Resistance << 1e-3 << 1e-3 << QStringLiteral("m\u2126");
    QTest::newRow("none") << Quantity::Resistance << 1. << 1. << QStringLiteral("\u2126");
    QTest::newRow("kilo") << Quantity::Resistance << 1650. << 1e3 << QStringLiteral("k\u2126");
    QTest::newRow("henry") << Quantity::Inductance << 0.0153 << 1e-3 << "mH";
    QTest::newRow("degrees") << Quantity::Temperature << 120. << 1. << QStringLiteral("\u00B0C");
}

void TstPanelMeter::axisInOnePrefix()
{
    QFETCH(Quantity, quantity);
    QFETCH(double, magnitude);
    const AxisScale scale = AxisScale::ofValues(quantity, magnitude);
    QTEST(scale.divisor, "divisor");
    QTEST(scale.unit, "unit");
}

void TstPanelMeter::curveOfAnyLength()
{
    Envelope curve;
    for (int i = 0; i < Series::capacity; ++i)
        curve.add({double(i), i == 54321 ? 99. : std::sin(i)});
    const QVector<QPointF> points = curve.points();
    QVERIFY(points.size() <= 2 * Envelope::maxBuckets);
    QVERIFY(std::is_sorted(points.begin(), points.end(),
                           [](const QPointF &a, const QPointF &b) { return a.x() < b.x(); }));
    QVERIFY(points.contains(QPointF(54321, 99))); // no peak is lost
    QCOMPARE(curve.maximum(), 99.);
    QCOMPARE(curve.lastX(), Series::capacity - 1.);
}

void TstPanelMeter::curveWithGaps()
{
    Envelope curve;
    curve.add({0, 1});
    curve.add({1, qQNaN()});
    curve.add({2, 3});
    QCOMPARE(curve.points().size(), 3);
    QVERIFY(std::isnan(curve.points().at(1).y()));
    QCOMPARE(curve.minimum(), 1.);
    curve.clear();
    QVERIFY(curve.isEmpty());
}

void TstPanelMeter::seriesAsAFile()
{
    SeriesConditions conditions =
        circumstances({QStringLiteral("busbar, \"new\""), QString(), QStringLiteral("2 m\u2126")});
    conditions.meterName = QStringLiteral("QERN KTV-420");
    conditions.serialNumber = QStringLiteral("CH20417");
    conditions.format.method = ValueBox::Round_R_TempCompensation;
    conditions.material = QStringLiteral("Copper");
    conditions.alpha = 0.00393;
    conditions.objectType = QStringLiteral("Transformer");
    conditions.objectName = QStringLiteral("T1");
    conditions.interval = 200;
    Series series(conditions);
    series.add(0, 0.001F);
    series.add(201, missing);
    series.add(86400001, 0.0012347F);
    const QString expected = QStringLiteral("meter,\"QERN KTV-420\"\r\n"
                                            "serial number,\"CH20417\"\r\n"
                                            "quantity,resistance\r\n"
                                            "unit,ohm\r\n"
                                            "test current,10.0 A\r\n"
                                            "object type,\"Transformer\"\r\n"
                                            "object name,\"T1\"\r\n"
                                            "material,\"Copper\"\r\n"
                                            "temperature coefficient in 1/K,0.00393\r\n"
                                            "limit,\"busbar, \"\"new\"\"\"\r\n"
                                            "low limit,\"\"\r\n"
                                            "high limit,\"2 m\u2126\"\r\n"
                                            "verdict,\r\n"
                                            "reason,nothing measured\r\n"
                                            "start,2024-03-01T09:30:00\r\n"
                                            "interval in s,0.2\r\n"
                                            "count,2\r\n"
                                            "minimum,0.001\r\n"
                                            "maximum,0.0012347\r\n"
                                            "mean,0.00111735\r\n"
                                            "standard deviation,0.0001659579\r\n"
                                            "\r\n"
                                            "number,time,seconds,value,shown,verdict\r\n"
                                            "1,2024-03-01T09:30:00.000,0.000,0.001,"
                                            "\"1.0000 m\u2126\",pass\r\n"
                                            "2,2024-03-01T09:30:00.201,0.201,,\"--- \u2126\",\r\n"
                                            "3,2024-03-02T09:30:00.001,86400.001,0.0012347,"
                                            "\"1.2347 m\u2126\",pass\r\n");
    const QByteArray csv = SeriesFile::csv(SeriesFile::head(series), series);
    QCOMPARE(QString::fromUtf8(csv).split("\r\n"), expected.split("\r\n"));
}

void TstPanelMeter::namesInAFile_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("field");
    QTest::newRow("quotes") << "the \"new\" one"
                            << "\"the \"\"new\"\" one\"";
    QTest::newRow("line feed") << "a\nb"
                               << "\"a\nb\"";
    QTest::newRow("formula") << "=1+1"
                             << "\"'=1+1\"";
    QTest::newRow("formula that begins with a plus") << "+a"
                                                     << "\"'+a\"";
    QTest::newRow("formula that begins with a minus") << "-a"
                                                      << "\"'-a\"";
    QTest::newRow("formula that begins with an at sign") << "@A1"
                                                         << "\"'@A1\"";
    QTest::newRow("an equals sign within") << "a=1"
                                           << "\"a=1\"";
}

void TstPanelMeter::namesInAFile()
{
    QFETCH(QString, name);
    QFETCH(QString, field);
    SeriesConditions conditions = circumstances({name, QStringLiteral("-5 m\u2126"), name});
    conditions.objectType = name;
    conditions.objectName = name;
    conditions.material = name;
    const QString head = QString::fromUtf8(SeriesFile::head(Series(conditions)));
    for (const char *line : {"object type", "object name", "material", "limit", "high limit"})
        QVERIFY2(head.contains(QStringLiteral("\n%1,%2\r\n").arg(QLatin1String(line), field)),
                 line);
    // A number needs no apostrophe.
    QVERIFY(head.contains(QStringLiteral("\nlow limit,\"-5 m\u2126\"\r\n")));
}

void TstPanelMeter::temperaturesInAFile()
{
    SeriesConditions conditions =
        circumstances({QStringLiteral("winding"), QString(), QStringLiteral("26.67")});
    conditions.format = {Quantity::Temperature, ValueBox::Round_Static, ValueBox::testI_None};
    useUnit(ValueBox::Temp_Fahrenheit);
    Series series(conditions);
    series.add(0, 20);
    series.add(1000, 22.5F);
    const QString csv = QString::fromUtf8(SeriesFile::csv(SeriesFile::head(series), series));
    for (const QString &line :
         {QStringLiteral("unit,degree Celsius"), QStringLiteral("test current,"),
          QStringLiteral("high limit,\"80 \u00B0F\""), QStringLiteral("verdict,pass"),
          QStringLiteral("mean,21.25"),
          QStringLiteral("2,2024-03-01T09:30:01.000,1.000,22.5,"
                         "\"72.5 \u00B0F\",pass")})
        QVERIFY2(csv.contains(QLatin1Char('\n') + line + QStringLiteral("\r\n")),
                 qPrintable(line + QLatin1Char('\n') + csv));
}

void TstPanelMeter::seriesFollowsTheUnit()
{
    SeriesConditions conditions = circumstances();
    conditions.format = {Quantity::Temperature, ValueBox::Round_Static, ValueBox::testI_None};
    Series series(conditions);
    series.add(0, 20);
    QCOMPARE(series.text(0), QStringLiteral("20.0 \u00B0C"));
    useUnit(ValueBox::Temp_Fahrenheit);
    series.refreshTexts();
    QCOMPARE(series.text(0), QStringLiteral("68.0 \u00B0F"));
}

void TstPanelMeter::recorderEndsByItself()
{
    Stores stores;
    stores.recorder.setWanted(3);
    stores.recorder.setInterval(1);
    QSignalSpy added(&stores.recorder, &Recorder::added);
    QVERIFY(!stores.recorder.isUnsaved());
    stores.recorder.start();
    QVERIFY(stores.recorder.isRunning());
    QTRY_VERIFY(!stores.recorder.isRunning());
    QCOMPARE(added.size(), 3);
    QCOMPARE(stores.recorder.series().count(), 3);
    QVERIFY(stores.recorder.isUnsaved());
    QCOMPARE(
        stores.counters.get_dictionary(KTV_Liczniki::Licznik_RejestracjaObiektowRezystancyjnych),
        1);
}

void TstPanelMeter::recorderKeepsItsConditions()
{
    Stores stores;
    stores.recorder.setWanted(1);
    stores.recorder.setInterval(1);
    stores.setup.setObject(QStringLiteral("Motor"), QStringLiteral("M1"));
    stores.recorder.start();
    QTRY_VERIFY(!stores.recorder.isRunning());
    stores.setup.setQuantity(Quantity::Temperature);
    stores.setup.setObject(QString(), QString());
    useUnit(ValueBox::Temp_Kelvin);
    stores.recorder.refreshTexts();
    const Series &series = stores.recorder.series();
    QCOMPARE(series.count(), 1);
    QCOMPARE(series.conditions().objectName, QStringLiteral("M1"));
    QVERIFY(series.text(0).endsWith(milliohm));
    QVERIFY(stores.recorder.isUnsaved());
}

void TstPanelMeter::countIsThatOfTheStart()
{
    Stores stores;
    stores.recorder.setInterval(1000000);
    stores.recorder.setWanted(3);
    stores.recorder.start();
    stores.recorder.setWanted(1); // as a factory reset does
    stores.hardware.deliver(0.001F);
    QVERIFY(stores.recorder.isRunning());
    stores.hardware.deliver(0.001F);
    stores.hardware.deliver(0.001F);
    QVERIFY(!stores.recorder.isRunning());
    QCOMPARE(stores.recorder.series().conditions().wanted, 3);
}

void TstPanelMeter::savedInTheUnitAtThatMoment()
{
    Stores stores;
    stores.setup.setQuantity(Quantity::Temperature);
    stores.setup.setLimit({QStringLiteral("winding"), QString(), QStringLiteral("30")});
    record(stores, {20});
    auto pool = std::make_unique<BusyPool>();
    stores.recorder.save();
    useUnit(ValueBox::Temp_Kelvin); // before a thread of the pool writes the file
    stores.recorder.refreshTexts();
    pool.reset();
    const QStringList lines = saved(stores.recorder);
    QVERIFY2(lines.contains(QStringLiteral("high limit,\"30 \u00B0C\"")),
             qPrintable(lines.join('\n')));
    QVERIFY(lines.value(lines.size() - 2).contains(QStringLiteral("\"20.0 \u00B0C\"")));
}

void TstPanelMeter::longSeriesIsSavedCompletely()
{
    Stores stores;
    stores.setup.setQuantity(Quantity::Temperature);
    record(stores, QVector<float>(Series::capacity, 20));
    QCOMPARE(stores.recorder.series().count(), Series::capacity);
    QVERIFY(!stores.recorder.isRunning());
    useUnit(ValueBox::Temp_Fahrenheit); // every text has to be made again
    stores.recorder.refreshTexts();
    const QStringList lines = saved(stores.recorder);
    QVERIFY(!stores.recorder.isUnsaved());
    const QString last = lines.value(lines.size() - 2);
    QVERIFY2(last.startsWith(QStringLiteral("%1,").arg(Series::capacity)), qPrintable(last));
    QVERIFY2(last.endsWith(QStringLiteral(",20,\"68.0 \u00B0F\",")), qPrintable(last));
    const auto first = lines.indexOf(QStringLiteral("number,time,seconds,value,shown,verdict")) + 1;
    QCOMPARE(int(lines.size() - 1 - first), Series::capacity);
}

void TstPanelMeter::seriesKeepsItsTexts()
{
    Stores stores;
    NumericalValueBox::SetCurrentMeter(KTV_Configuration::KTV_4200);
    stores.setup.setCurrent(ValueBox::testI_150A);
    record(stores, {0.0001F, 0.0002F, 0.0003F});
    const Series &series = stores.recorder.series();
    const QChar *const text = series.text(0).constData();
    const QString shown = series.text(0);
    const QString mean = series.figures().mean;
    QVERIFY(!shown.startsWith(QLatin1Char('-')));
    NumericalValueBox::SetCurrentMeter(KTV_Configuration::KTV_420); // has no 150 A
    useUnit(ValueBox::Temp_Kelvin);
    stores.recorder.refreshTexts();
    QCOMPARE(series.text(0).constData(), text); // not made a second time
    QCOMPARE(series.figures().mean, mean);
    QVERIFY(saved(stores.recorder).join(QString()).contains(shown));
}

void TstPanelMeter::textsAreMadeAFewAtATime()
{
    SeriesConditions conditions = circumstances();
    conditions.format = {Quantity::Temperature, ValueBox::Round_Static, ValueBox::testI_None};
    Series series(conditions);
    for (int i = 0; i < 5; ++i)
        series.add(i, 20);
    QVERIFY(series.makeTexts(1)); // no text is missing
    useUnit(ValueBox::Temp_Kelvin);
    series.refreshTexts();
    QVERIFY(!series.makeTexts(2));
    QVERIFY(!series.makeTexts(2));
    series.add(5, 20);
    QVERIFY(series.makeTexts(2));
    useUnit(ValueBox::Temp_Celsius); // has no effect on texts that exist already
    for (int i = 0; i < series.count(); ++i)
        QCOMPARE(series.text(i), QStringLiteral("293.0 K"));
}

void TstPanelMeter::nothingStartsWhileASeriesIsSaved()
{
    Stores stores;
    record(stores, {0.001F});
    QSignalSpy state(&stores.recorder, &Recorder::stateChanged);
    {
        const BusyPool pool;
        stores.recorder.save();
        QVERIFY(stores.recorder.isSaving());
        QCOMPARE(state.size(), 1);
        stores.recorder.start();
        stores.recorder.save();
        QVERIFY(!stores.recorder.isRunning());
        QCOMPARE(stores.recorder.series().count(), 1);
    }
    QVERIFY(!saved(stores.recorder).isEmpty());
    QVERIFY(!stores.recorder.isSaving());
    stores.recorder.start();
    QVERIFY(stores.recorder.isRunning());
}

// --- one measurement

void TstPanelMeter::measurementIsTheMeanOfSix()
{
    Bench bench;
    QSignalSpy changed(&bench.measurement, &Measurement::changed);
    QVERIFY(!bench.measurement.isDone());
    bench.setup.setObject(QStringLiteral("Motor"), QStringLiteral("M1"));
    bench.measure({0.001F, 0.003F});
    QVERIFY(bench.measurement.isRunning());
    QCOMPARE(bench.measurement.reading().text, QStringLiteral("2.000 m\u2126"));
    QVERIFY(bench.measurement.lastResult().text.isEmpty());
    for (const float value : {0.001F, 0.003F, 0.001F, 0.0042F})
        bench.hardware.deliver(value);
    QVERIFY(!bench.measurement.isRunning());
    QVERIFY(bench.measurement.isDone());
    QCOMPARE(bench.measurement.reading().text, QStringLiteral("2.200 m\u2126"));
    QCOMPARE(bench.measurement.lastResult().text, QStringLiteral("2.200 m\u2126"));
    QCOMPARE(bench.measurement.lastResult().objectName, QStringLiteral("M1"));
    QCOMPARE(int(bench.measurement.verdict().reason()), int(Verdict::NoLimit));
    QCOMPARE(bench.counters.get_dictionary(KTV_Liczniki::Licznik_PomiarObiektowRezystancyjnych), 1);
    QVERIFY(changed.size() >= 7);
    bench.hardware.deliver(1); // has no receiver any more
    QCOMPARE(bench.measurement.reading().text, QStringLiteral("2.200 m\u2126"));
}

void TstPanelMeter::hardwareServesOneAtATime()
{
    Bench bench;
    bench.measure({0.001F});
    bench.recorder.start();
    QVERIFY(!bench.recorder.isRunning());
    bench.recorder.stop(); // the running measurement is not the recorder's
    QVERIFY(bench.measurement.isRunning());
    bench.measurement.stop();
    QVERIFY(!bench.measurement.isRunning());
    bench.recorder.start();
    bench.measurement.start();
    bench.hardware.deliver(0.005F);
    QVERIFY(!bench.measurement.isRunning());
    QCOMPARE(bench.recorder.series().count(), 1);
    QCOMPARE(bench.measurement.reading().text, QStringLiteral("1.0000 m\u2126"));
    QCOMPARE(bench.counters.get_dictionary(KTV_Liczniki::Licznik_PomiarObiektowRezystancyjnych), 0);
}

void TstPanelMeter::measurementIsForgottenWithItsSetup()
{
    Bench bench;
    bench.measure({0.001F, 0.001F, 0.001F, 0.001F, 0.001F, 0.001F});
    QVERIFY(bench.measurement.isDone());
    bench.setup.setCurrent(ValueBox::testI_1A);
    QVERIFY(!bench.measurement.isDone());
    QCOMPARE(int(bench.measurement.reading().range), int(Reading::Missing));
    QVERIFY(!bench.measurement.lastResult().text.isEmpty()); // the last result can still be printed
    bench.setup.setQuantity(Quantity::Temperature);
    bench.measure({20});
    useUnit(ValueBox::Temp_Kelvin);
    bench.measurement.refresh();
    QCOMPARE(bench.measurement.reading().text, QStringLiteral("293.0 K"));
}

void TstPanelMeter::measurementIsJudged()
{
    Bench bench;
    bench.preferences.setSoundOn(false);
    const auto outcome = [&bench](const QString &high) {
        bench.setup.setLimit({QStringLiteral("joint"), QString(), high});
        bench.measure({0.001F, 0.001F, 0.001F, 0.001F, 0.001F, 0.001F});
        return int(bench.measurement.verdict().outcome());
    };
    QCOMPARE(outcome(QStringLiteral("1.5 m\u2126")), int(Verdict::Pass));
    QCOMPARE(outcome(QStringLiteral("0.5 m\u2126")), int(Verdict::Fail));
    QCOMPARE(outcome(QStringLiteral("abc")), int(Verdict::None));
    QCOMPARE(int(bench.measurement.verdict().reason()), int(Verdict::LimitUnreadable));
}

// --- settings

void TstPanelMeter::settersEmitSignals()
{
    Stores stores;
    QSignalSpy changed(&stores.setup, &Setup::changed);
    stores.setup.setCurrent(ValueBox::testI_1A);
    stores.setup.setMaterial(QStringLiteral("Copper"), 0.00393);
    stores.setup.setLimit({QStringLiteral("a"), QString(), QStringLiteral("1")});
    stores.setup.setObject(QStringLiteral("Motor"), QStringLiteral("M1"));
    stores.setup.setTestObject(TestObject());
    stores.setup.setQuantity(Quantity::Inductance);
    QCOMPARE(changed.size(), 6);
    QSignalSpy settings(&stores.recorder, &Recorder::settingsChanged);
    stores.recorder.setClient(QStringLiteral("a"));
    stores.recorder.setInterval(5000);
    stores.recorder.setWanted(10);
    QCOMPARE(settings.size(), 3);
    Preferences preferences(stores.settings, stores.path + QStringLiteral("panel.ini"));
    QSignalSpy unit(&preferences, &Preferences::temperatureUnitChanged);
    preferences.setTemperatureUnit(ValueBox::Temp_Kelvin);
    QCOMPARE(unit.size(), 1);
    QCOMPARE(NumericalValueBox::getTempUnit(), ValueBox::Temp_Kelvin);
    QSignalSpy keyboard(&preferences, &Preferences::keyboardChanged);
    preferences.setUsesScreenKeyboard(false);
    QCOMPARE(keyboard.size(), 1);
    QSignalSpy brightness(&preferences, &Preferences::brightnessChanged);
    preferences.setBrightness(60);
    QCOMPARE(brightness.size(), 1);
    QSignalSpy appearance(&preferences, &Preferences::appearanceChanged);
    preferences.setDark(true);
    QCOMPARE(appearance.size(), 1);
    QSignalSpy sound(&preferences, &Preferences::soundChanged);
    preferences.setSoundOn(true);
    preferences.setVolume(30);
    QCOMPARE(sound.size(), 2);
}

void TstPanelMeter::factorySettingsEmitSignals()
{
    Stores stores;
    Preferences preferences(stores.settings, stores.path + QStringLiteral("panel.ini"));
    preferences.setBrightness(60);
    QSignalSpy unit(&preferences, &Preferences::temperatureUnitChanged);
    QSignalSpy appearance(&preferences, &Preferences::appearanceChanged);
    QSignalSpy sound(&preferences, &Preferences::soundChanged);
    QSignalSpy brightness(&preferences, &Preferences::brightnessChanged);
    QSignalSpy keyboard(&preferences, &Preferences::keyboardChanged);
    preferences.restoreFactorySettings();
    for (const QSignalSpy *spy : {&unit, &appearance, &sound, &brightness, &keyboard})
        QCOMPARE(spy->size(), 1);
    QCOMPARE(preferences.brightness(), 50);
}

void TstPanelMeter::lastSettingComesBack()
{
    Stores stores;
    stores.setup.setCurrent(ValueBox::testI_1A);
    stores.setup.setLimit({QStringLiteral("joint"), QStringLiteral("1"), QStringLiteral("2")});
    stores.setup.setObject(QStringLiteral("Motor"), QStringLiteral("M1"));
    stores.setup.setQuantity(Quantity::Inductance);
    QVERIFY(stores.setup.limit().name.isEmpty());
    QCOMPARE(stores.setup.objectName(), QStringLiteral("M1")); // the same object
    stores.setup.setCurrent(ValueBox::testI_10mA);

    Setup later(stores.settings);
    later.load();
    QCOMPARE(later.current(), ValueBox::testI_1A);
    QCOMPARE(later.limit().high, QStringLiteral("2"));
    QCOMPARE(later.objectType(), QStringLiteral("Motor"));
    later.setQuantity(Quantity::Inductance);
    QCOMPARE(later.current(), ValueBox::testI_10mA);
}

void TstPanelMeter::currentFollowsTheCompensation()
{
    Stores stores;
    NumericalValueBox::SetCurrentMeter(KTV_Configuration::KTV_4200);
    stores.setup.setCurrent(ValueBox::testI_150A);
    QCOMPARE(stores.setup.current(), ValueBox::testI_150A);
    stores.setup.setMaterial(QStringLiteral("Copper"),
                             0.00393); // with compensation there are currents up to 100 A only
    QVERIFY(stores.setup.testCurrents().contains(stores.setup.current()));
    QVERIFY(stores.setup.current() != ValueBox::testI_150A);
}

// --- WiFi

void TstPanelMeter::namesOfNetworks_data()
{
    QTest::addColumn<QString>("printed");
    QTest::addColumn<QString>("readable");
    QTest::newRow("plain") << "Workshop Guest"
                           << "Workshop Guest";
    QTest::newRow("two bytes") << "K\\xC3\\xB6ln" << QStringLiteral("K\u00F6ln");
    QTest::newRow("small hexadecimal figures") << "K\\xc3\\xb6ln" << QStringLiteral("K\u00F6ln");
    QTest::newRow("no UTF-8") << "a\\xFF"
                              << "a\\xFF";
    QTest::newRow("cut within a letter") << "a\\xC3"
                                         << "a\\xC3";
    QTest::newRow("not to be printed") << "a\\x0Ab"
                                       << "a\\x0Ab";
}

void TstPanelMeter::namesOfNetworks()
{
    QFETCH(QString, printed);
    QTEST(NetworkName::readable(printed), "readable");
}

KTV_METER_TEST_MAIN(TstPanelMeter)

#include "tst_panel_meter.moc"
