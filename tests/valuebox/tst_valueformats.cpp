#include "PlainSteps.h"
#include "Texts.h"

#include "support/Meter.h"

#include <valuebox/NumericalValueBox.h>

#include <QRandomGenerator>
#include <QtTest>

using namespace ValueBox;
using namespace Texts;

Q_DECLARE_METATYPE(Units)
Q_DECLARE_METATYPE(UnitPrefixs)

/** Texts made without a value object: fixed formats, temperatures, and the texts of units. */
class TstValueFormats : public QObject
{
    Q_OBJECT
private slots:
    void init() { NumericalValueBox::prepareStaticDefaultValue(Temp_Celsius); }

    void textsBeforeTheyAreFilled();
    void defaultTexts_data();
    void defaultTexts();
    void unknownTemperatureUnit();
    void customTexts();
    void listsOfAnotherLength();
    void unknownKeys();
    void coefficientUnit();

    void fixedFormat_data();
    void fixedFormat();
    void inductionCurrent_data();
    void inductionCurrent();
    void voltageDrop_data();
    void voltageDrop();
    void voltageDropUsesTheTexts();

    void temperature_data();
    void temperature();
    void temperatureInManySteps_data();
    void temperatureInManySteps();
    void temperatureResetsTheTexts();
    void missingTemperatureKeepsTheTexts();
};

void TstValueFormats::textsBeforeTheyAreFilled()
{
    NumericalValueBox::unitString.clear();
    NumericalValueBox::prefixString.clear();
    QCOMPARE(NumericalValueBox::formatTemperature(NaN), QStringLiteral("--- "));
    QCOMPARE(NumericalValueBox::autoFormat(1.5F, Unit_V, Prefix_m, 1, false),
             QStringLiteral("1500.0 "));
    QCOMPARE(NumericalValueBox::formatDeltaU(-1, testI_1A, false), QStringLiteral("< 0 "));
}

void TstValueFormats::defaultTexts_data()
{
    QTest::addColumn<int>("temperatureUnit");
    QTest::addColumn<QString>("text");
    QTest::newRow("Celsius") << 0
                             << "\u00B0"
                                "C";
    QTest::newRow("Fahrenheit") << 1
                                << "\u00B0"
                                   "F";
    QTest::newRow("Kelvin") << 2 << "K";
}

void TstValueFormats::defaultTexts()
{
    QFETCH(int, temperatureUnit);
    QFETCH(QString, text);
    NumericalValueBox::unitString.insert(Units(9), "gone");
    NumericalValueBox::prefixString.insert(UnitPrefixs(12), "gone");
    NumericalValueBox::prepareStaticDefaultValue(TemperatureUnit(temperatureUnit));
    QCOMPARE(int(NumericalValueBox::getTempUnit()), temperatureUnit);
    QCOMPARE(int(NumericalValueBox::_tUnit), temperatureUnit);
    const QHash<Units, QString> units {{Unit_None, ""},
                                       {Unit_A, "A"},
                                       {Unit_V, "V"},
                                       {Unit_Temperature, text},
                                       {Unit_Ohm, QString(QChar(0x2126))}};
    const QHash<UnitPrefixs, QString> prefixes {{Prefix_G, "G"}, {Prefix_M, "M"},
                                                {Prefix_k, "k"}, {Prefix_None, ""},
                                                {Prefix_m, "m"}, {Prefix_u, QString(QChar(0x03BC))},
                                                {Prefix_n, "n"}};
    QCOMPARE(NumericalValueBox::unitString, units);
    QCOMPARE(NumericalValueBox::prefixString, prefixes);
    const QStringList byNumber {"", "A", "V", text, QString(QChar(0x2126))};
    for (int number = 0; number < byNumber.size(); ++number) // clients store these numbers
        QCOMPARE(NumericalValueBox::getUnit(Units(number)), byNumber.at(number));
    for (auto unit = units.begin(); unit != units.end(); ++unit) {
        QCOMPARE(NumericalValueBox::getUnit(unit.key()), unit.value());
        QCOMPARE(NumericalValueBox::_enumUnitsToString(unit.key()), unit.value());
    }
    for (auto prefix = prefixes.begin(); prefix != prefixes.end(); ++prefix) {
        QCOMPARE(NumericalValueBox::getUnitPrefix(prefix.key()), prefix.value());
        QCOMPARE(NumericalValueBox::_enumUnitPrefixsToString(prefix.key()), prefix.value());
    }
    // Texts edited by a client are used until the defaults are set again.
    NumericalValueBox::unitString[Unit_A] = "Amp";
    QCOMPARE(NumericalValueBox::getUnit(Unit_A), QStringLiteral("Amp"));
    NumericalValueBox::prepareStaticDefaultValue(TemperatureUnit(temperatureUnit));
    QCOMPARE(NumericalValueBox::unitString, units);
}

void TstValueFormats::unknownTemperatureUnit()
{
    for (const int unknown : {3, -1, 100}) {
        NumericalValueBox::prepareStaticDefaultValue(TemperatureUnit(unknown));
        QCOMPARE(int(NumericalValueBox::getTempUnit()), unknown);
        QVERIFY(!NumericalValueBox::unitString.contains(Unit_Temperature));
        QCOMPARE(NumericalValueBox::unitString.size(), 4);
        QCOMPARE(NumericalValueBox::formatTemperature(20.6F), QStringLiteral("20.5 "));
    }
}

void TstValueFormats::customTexts()
{
    NumericalValueBox::unitString.insert(Units(9), "gone");
    NumericalValueBox::prefixString.insert(UnitPrefixs(12), "gone");
    NumericalValueBox::prepareStaticCustomtValue({"Amp", "Volt", "deg", "Ohm"},
                                                 {"giga", "mega", "kilo", "milli", "micro", "nano"},
                                                 Temp_Kelvin);
    QCOMPARE(NumericalValueBox::getTempUnit(), Temp_Kelvin);
    QCOMPARE(NumericalValueBox::unitString,
             (QHash<Units, QString> {{Unit_None, ""},
                                     {Unit_A, "Amp"},
                                     {Unit_V, "Volt"},
                                     {Unit_Temperature, "deg"},
                                     {Unit_Ohm, "Ohm"}}));
    QCOMPARE(NumericalValueBox::prefixString,
             (QHash<UnitPrefixs, QString> {{Prefix_G, "giga"},
                                           {Prefix_M, "mega"},
                                           {Prefix_k, "kilo"},
                                           {Prefix_None, ""},
                                           {Prefix_m, "milli"},
                                           {Prefix_u, "micro"},
                                           {Prefix_n, "nano"}}));
    QCOMPARE(NumericalValueBox::autoFormat(0.0125F, Unit_Ohm, Prefix_m, 1, false),
             QStringLiteral("12.5 milliOhm"));
}

void TstValueFormats::listsOfAnotherLength()
{
    const auto units = NumericalValueBox::unitString;
    const auto prefixes = NumericalValueBox::prefixString;
    for (const int size : {0, 1, 3, 5, 7}) {
        QStringList texts;
        for (int i = 0; i < size; ++i)
            texts += QString(i + 1, 'x');
        NumericalValueBox::prepareStaticCustomtValue(texts, texts, Temp_Fahrenheit);
        QCOMPARE(NumericalValueBox::unitString, units);
        QCOMPARE(NumericalValueBox::prefixString, prefixes);
        QCOMPARE(NumericalValueBox::getTempUnit(), Temp_Fahrenheit); // set all the same
    }
    // Each list is checked independently.
    NumericalValueBox::prepareStaticCustomtValue({"1", "2", "3", "4"}, {"1"}, Temp_Celsius);
    QCOMPARE(NumericalValueBox::getUnit(Unit_Ohm), QStringLiteral("4"));
    QCOMPARE(NumericalValueBox::prefixString, prefixes);
    NumericalValueBox::prepareStaticDefaultValue(Temp_Celsius);
    NumericalValueBox::prepareStaticCustomtValue({"1", "2", "3"}, {"1", "2", "3", "4", "5", "6"},
                                                 Temp_Celsius);
    QCOMPARE(NumericalValueBox::unitString, units);
    QCOMPARE(NumericalValueBox::getUnitPrefix(Prefix_n), QStringLiteral("6"));
}

void TstValueFormats::unknownKeys()
{
    QCOMPARE(NumericalValueBox::getUnit(Units(42)), QString());
    QCOMPARE(NumericalValueBox::getUnitPrefix(UnitPrefixs(1)), QString());
    const NumericalValueBox box(1, Units(42), UnitPrefixs(1), 1);
    QCOMPARE(box.toString(), QStringLiteral("0.1"));
    QCOMPARE(NumericalValueBox::unitString.size(), 5); // asking for a text adds no entry
    QCOMPARE(NumericalValueBox::prefixString.size(), 7);
}

void TstValueFormats::coefficientUnit()
{
    const QString perKelvin = QString("K") + QChar(0x207B) + QChar(0x00B9);
    for (const TemperatureUnit unit : {Temp_Celsius, Temp_Fahrenheit, Temp_Kelvin}) {
        NumericalValueBox::prepareStaticDefaultValue(unit);
        QCOMPARE(NumericalValueBox::getAlphaUnit(), perKelvin);
    }
}

void TstValueFormats::fixedFormat_data()
{
    QTest::addColumn<float>("value");
    QTest::addColumn<Units>("unit");
    QTest::addColumn<UnitPrefixs>("prefix");
    QTest::addColumn<int>("digits");
    QTest::addColumn<bool>("trimZeros");
    QTest::addColumn<QString>("text");
    QTest::newRow("trimmed") << 1.5F << Unit_V << Prefix_None << 3 << true << "1.5 V";
    QTest::newRow("not trimmed") << 1.5F << Unit_V << Prefix_None << 3 << false << "1.500 V";
    QTest::newRow("nothing left to trim") << 2.F << Unit_V << Prefix_None << 3 << true << "2 V";
    QTest::newRow("zeros before the point stay")
        << 100.F << Unit_A << Prefix_None << 2 << true << "100 A";
    QTest::newRow("whole numbers are not trimmed")
        << 100.F << Unit_A << Prefix_None << 0 << true << "100 A";
    QTest::newRow("milli") << 0.0125F << Unit_Ohm << Prefix_m << 2 << false << "12.50 m" + ohm;
    QTest::newRow("micro") << 3e-6F << Unit_A << Prefix_u << 1 << false << "3.0 " + micro + "A";
    QTest::newRow("mega") << 1.5e6F << Unit_Ohm << Prefix_M << 1 << false << "1.5 M" + ohm;
    QTest::newRow("no texts") << 1.F << Unit_None << Prefix_None << 1 << false << "1.0 ";
    QTest::newRow("missing") << NaN << Unit_V << Prefix_m << 2 << true << "nan mV";
    QTest::newRow("infinite") << -infinity << Unit_V << Prefix_m << 2 << true << "-inf mV";
    QTest::newRow("negative") << -1.25F << Unit_V << Prefix_None << 1 << false << "-1.3 V";
    QTest::newRow("rounds to zero") << -0.001F << Unit_V << Prefix_None << 2 << false << "-0.00 V";
    QTest::newRow("rounds to zero, trimmed")
        << -0.001F << Unit_V << Prefix_None << 2 << true << "-0 V";
    QTest::newRow("minus zero") << -0.F << Unit_V << Prefix_None << 2 << false << "0.00 V";
    QTest::newRow("half away from zero")
        << 0.125F << Unit_V << Prefix_None << 2 << false << "0.13 V";
    QTest::newRow("the tenth decimal is not raised")
        << 0.1234567F << Unit_V << Prefix_None << 11 << false << "0.12345670164 V";
    QTest::newRow("negative decimals are six")
        << 1.5F << Unit_V << Prefix_None << -1 << false << "1.500000 V";
    QTest::newRow("large") << 1e20F << Unit_V << Prefix_None << 1 << true
                           << "100000002004087734272 V";
    QTest::newRow("large whole numbers are not trimmed either")
        << 687194767360.F << Unit_V << Prefix_None << 0 << true << "687194767360 V";
}

void TstValueFormats::fixedFormat()
{
    QFETCH(float, value);
    QFETCH(Units, unit);
    QFETCH(UnitPrefixs, prefix);
    QFETCH(int, digits);
    QFETCH(bool, trimZeros);
    QFETCH(QString, text);
    QCOMPARE(NumericalValueBox::autoFormat(value, unit, prefix, digits, trimZeros), text);
}

void TstValueFormats::inductionCurrent_data()
{
    QTest::addColumn<float>("amperes");
    QTest::addColumn<QString>("text");
    QTest::newRow("0.001 as a float lies above the bound") << 0.001F << "1.0 mA";
    QTest::newRow("just below 0.001") << previous(0.001F) << "1.00 mA";
    QTest::newRow("0.01 as a float lies below the bound") << 0.01F << "10.0 mA";
    QTest::newRow("just above 0.01") << next(0.01F) << "10 mA";
    QTest::newRow("0.1 as a float lies above the bound") << 0.1F << "0.10 A";
    QTest::newRow("just below 0.1") << previous(0.1F) << "100 mA";
    QTest::newRow("1, inclusive") << 1.F << "1.00 A";
    QTest::newRow("just above 1") << next(1.F) << "1.0 A";
    QTest::newRow("just below 1") << previous(1.F) << "1.00 A";
    QTest::newRow("100, inclusive") << 100.F << "100.0 A";
    QTest::newRow("just above 100") << next(100.F) << "100 A";
    QTest::newRow("200, inclusive") << 200.F << "200 A";
    QTest::newRow("just above 200") << next(200.F) << "---";
    QTest::newRow("infinite") << infinity << "---";
    QTest::newRow("not a number") << NaN << "---";
    QTest::newRow("zero") << 0.F << "0.00 mA";
    QTest::newRow("negative") << -2.F << "-2000.00 mA";
    QTest::newRow("minus infinite") << -infinity << "-inf mA";
    QTest::newRow("inside") << 0.0056789F << "5.7 mA";
    QTest::newRow("scaled in single precision") << 0.000625F << "0.63 mA"; // a tie, then
}

void TstValueFormats::inductionCurrent()
{
    QFETCH(float, amperes);
    QFETCH(QString, text);
    QCOMPARE(NumericalValueBox::formatIinduction(amperes), text);
}

void TstValueFormats::voltageDrop_data()
{
    QTest::addColumn<float>("volts");
    QTest::addColumn<int>("current");
    QTest::addColumn<bool>("limited");
    QTest::addColumn<QString>("text");
    const auto add = [](float volts, int current, bool limited, const char *text) {
        QTest::addRow("%.9g V, current %d%s", double(volts), current, limited ? ", limited" : "")
            << volts << current << limited << QString::fromLatin1(text);
    };
    // The floats 0.019, 0.19999 and 1.9999 differ from the bounds, which are doubles.
    const bool isBelow19m = double(0.019F) < 0.019;
    const bool isBelow200m = double(0.19999F) < 0.19999;
    const bool isBelow2 = double(1.9999F) < 1.9999;
    QVERIFY(isBelow19m && !isBelow200m && isBelow2);
    for (const int current : {-1, 4, 10, 20, 200}) {
        add(0.0123456F, current, false, "12.346 mV");
        add(0.019F, current, false, "19.000 mV");
        add(next(0.019F), current, false, "19.00 mV");
        add(previous(0.19999F), current, false, "199.99 mV");
        add(0.19999F, current, false, "0.2000 V");
        add(1.9999F, current, false, "1.9999 V");
        add(next(1.9999F), current, false, "2.000 V");
        add(previous(10), current, false, "10.000 V");
        add(10, current, false, "> 10.000 V");
        add(NaN, current, false, "> 10.000 V");
    }
    for (const int current : {0, 1, 2, 3}) {
        add(0, current, false, "0.0000 V");
        add(0.0123456F, current, false, "0.0123 V");
        add(1.9999F, current, false, "1.9999 V");
        add(next(1.9999F), current, false, "2.000 V");
        add(previous(10), current, false, "10.000 V");
        add(10, current, false, "> 10.000 V");
        add(NaN, current, false, "> 10.000 V");
        add(0.0123456F, current, true, "0.0123 V");
        add(previous(2.5F), current, true, "2.5000 V");
        add(2.5F, current, true, "> 2.5 V");
        add(NaN, current, true, "> 2.5 V");
        add(infinity, current, true, "> 2.5 V");
    }
    add(0.019F, 10, true, "19.000 mV");
    add(next(0.019F), 10, true, "19.00 mV");
    add(previous(0.19999F), 10, true, "199.99 mV");
    add(0.19999F, 10, true, "0.2000 V");
    add(1.9999F, 10, true, "1.9999 V");
    add(next(1.9999F), 10, true, "> 1.9999 V");
    add(NaN, 10, true, "> 1.9999 V");
    for (const int current : {-1, 4, 20, 100, 200}) {
        add(0.0123456F, current, true, "12.35 mV");
        add(previous(0.19999F), current, true, "199.99 mV");
        add(0.19999F, current, true, "> 199.99 mV");
        add(NaN, current, true, "> 199.99 mV");
    }
    for (const int current : {-1, 0, 3, 10, 200}) {
        for (const bool limited : {false, true}) {
            add(-1e-9F, current, limited, "< 0 V");
            add(-infinity, current, limited, "< 0 V");
        }
    }
    add(-0.F, 10, true, "0.000 mV");
    add(0.5F, -1, false, "0.5000 V");
}

void TstValueFormats::voltageDrop()
{
    QFETCH(float, volts);
    QFETCH(int, current);
    QFETCH(bool, limited);
    QFETCH(QString, text);
    QCOMPARE(NumericalValueBox::formatDeltaU(volts, testI(current), limited), text);
}

void TstValueFormats::voltageDropUsesTheTexts()
{
    NumericalValueBox::unitString[Unit_V] = "Volt";
    NumericalValueBox::prefixString[Prefix_m] = "milli";
    NumericalValueBox::prefixString[Prefix_None] = "*";
    const auto text = [](float volts, testI current, bool limited) {
        return NumericalValueBox::formatDeltaU(volts, current, limited);
    };
    QCOMPARE(text(-1, testI_1A, false), QStringLiteral("< 0 Volt"));
    QCOMPARE(text(0.01F, testI_20A, false), QStringLiteral("10.000 milliVolt"));
    QCOMPARE(text(5, testI_20A, true), QStringLiteral("> 199.99 milliVolt"));
    QCOMPARE(text(50, testI_20A, false), QStringLiteral("> 10.000 Volt"));
    QCOMPARE(text(5, testI_20A, false), QStringLiteral("5.000 *Volt"));
}

void TstValueFormats::temperature_data()
{
    QTest::addColumn<int>("unit");
    QTest::addColumn<float>("celsius");
    QTest::addColumn<QString>("text");
    const QString celsius = " " + degree + "C";
    const QString fahrenheit = " " + degree + "F";
    QTest::newRow("one decimal first, down") << 0 << 20.04F << "20.0" + celsius;
    QTest::newRow("one decimal first, up") << 0 << 20.96F << "21.0" + celsius;
    QTest::newRow("below the half") << 0 << 20.4F << "20.0" + celsius;
    QTest::newRow("the half") << 0 << 20.5F << "20.5" + celsius;
    QTest::newRow("rounds to the half") << 0 << 20.45F << "20.5" + celsius;
    QTest::newRow("above the half") << 0 << 20.9F << "20.5" + celsius;
    QTest::newRow("zero") << 0 << 0.F << "0.0" + celsius;
    QTest::newRow("minus zero") << 0 << -0.F << "0.0" + celsius;
    QTest::newRow("rounds to minus zero") << 0 << -0.04F << "0.0" + celsius;
    QTest::newRow("just below zero") << 0 << -0.06F << "-1.0" + celsius;
    QTest::newRow("negative goes down") << 0 << -3.2F << "-4.0" + celsius;
    QTest::newRow("negative past the half") << 0 << -3.7F << "-4.0" + celsius;
    QTest::newRow("negative whole") << 0 << -3.F << "-3.0" + celsius;
    QTest::newRow("Fahrenheit") << 1 << 100.F << "212.0" + fahrenheit;
    QTest::newRow("Fahrenheit below zero") << 1 << -40.F << "-40.0" + fahrenheit;
    QTest::newRow("Kelvin") << 2 << 0.F << "273.0 K"; // 273.15 as a float is 273.1
    QTest::newRow("Kelvin, half") << 2 << 20.4F << "293.5 K";
    QTest::newRow("missing") << 0 << NaN << "---" + celsius;
    QTest::newRow("infinite") << 1 << infinity << "---" + fahrenheit;
    QTest::newRow("minus infinite") << 2 << -infinity << "--- K";
    QTest::newRow("huge") << 0 << 1e20F << "100000002004087734272.0" + celsius;
    QTest::newRow("huge, negative") << 0 << -1e20F << "-100000002004087734272.0" + celsius;
    QTest::newRow("infinite once converted") << 1 << largest << "inf.5" + fahrenheit;
}

void TstValueFormats::temperature()
{
    QFETCH(int, unit);
    QFETCH(float, celsius);
    QFETCH(QString, text);
    NumericalValueBox::prepareStaticDefaultValue(TemperatureUnit(unit));
    QCOMPARE(NumericalValueBox::formatTemperature(celsius), text);
}

void TstValueFormats::temperatureInManySteps_data()
{
    QTest::addColumn<int>("unit");
    QTest::addColumn<double>("factor");
    QTest::addColumn<double>("zeroCelsius");
    QTest::newRow("Celsius") << 0 << 1. << 0.;
    QTest::newRow("Fahrenheit") << 1 << 1.8 << 32.;
    QTest::newRow("Kelvin") << 2 << 1. << 273.15;
}

void TstValueFormats::temperatureInManySteps()
{
    QFETCH(int, unit);
    QFETCH(double, factor);
    QFETCH(double, zeroCelsius);
    NumericalValueBox::prepareStaticDefaultValue(TemperatureUnit(unit));
    QRandomGenerator random(5);
    const auto check = [=](float celsius) {
        const QString text = NumericalValueBox::formatTemperature(celsius);
        const QString expected =
            PlainSteps::halfDegrees(float(double(celsius) * factor + zeroCelsius)) + ' '
            + NumericalValueBox::getUnit(Unit_Temperature);
        if (text != expected)
            qWarning("%.9g: %s", double(celsius), qPrintable(text + " for " + expected));
        return text == expected;
    };
    const auto onScale = [=](float shown) { return float((double(shown) - zeroCelsius) / factor); };
    for (int step = -300000; step <= 300000; step += 7)
        QVERIFY(check(float(step) / 1000));
    // Values at which the tenth, and with it the half degree, changes; and the floats beside them.
    for (int twentieth = -10001; twentieth <= 10001; twentieth += 2) {
        const float celsius = onScale(float(twentieth) / 20);
        for (const float value : {previous(celsius), celsius, next(celsius)})
            QVERIFY(check(value));
    }
    for (int i = 0; i < 30000; ++i) {
        const float wide =
            std::ldexp(float(random.generateDouble()) - 0.5F, int(random.bounded(60)));
        QVERIFY(check(wide));
        QVERIFY(check(onScale(wide)));
    }
}

void TstValueFormats::temperatureResetsTheTexts()
{
    for (const TemperatureUnit unit : {Temp_Celsius, Temp_Fahrenheit, Temp_Kelvin}) {
        NumericalValueBox::prepareStaticDefaultValue(unit);
        const auto units = NumericalValueBox::unitString;
        const auto prefixes = NumericalValueBox::prefixString;
        NumericalValueBox::prepareStaticCustomtValue({"a", "v", "t", "o"},
                                                     {"1", "2", "3", "4", "5", "6"}, unit);
        const QString text = NumericalValueBox::formatTemperature(10);
        QVERIFY(text.endsWith(' ' + units.value(Unit_Temperature)));
        QCOMPARE(NumericalValueBox::unitString, units);
        QCOMPARE(NumericalValueBox::prefixString, prefixes);
        // A single text that was edited, added or removed is reset, too.
        NumericalValueBox::unitString[Unit_Temperature] = "x";
        NumericalValueBox::unitString.insert(Units(9), "y");
        NumericalValueBox::prefixString.remove(Prefix_m);
        QCOMPARE(NumericalValueBox::formatTemperature(10), text);
        QCOMPARE(NumericalValueBox::unitString, units);
        QCOMPARE(NumericalValueBox::prefixString, prefixes);
    }
    // The unit itself may be assigned while the texts of another one are in use.
    NumericalValueBox::prepareStaticDefaultValue(Temp_Celsius);
    NumericalValueBox::_tUnit = Temp_Kelvin;
    QCOMPARE(NumericalValueBox::formatTemperature(10), QStringLiteral("283.0 K"));
}

void TstValueFormats::missingTemperatureKeepsTheTexts()
{
    NumericalValueBox::unitString[Unit_Temperature] = "deg";
    for (const float missing : {NaN, infinity, -infinity})
        QCOMPARE(NumericalValueBox::formatTemperature(missing), QStringLiteral("--- deg"));
    QCOMPARE(NumericalValueBox::getUnit(Unit_Temperature), QStringLiteral("deg"));
}

KTV_METER_TEST_MAIN(TstValueFormats)
#include "tst_valueformats.moc"
