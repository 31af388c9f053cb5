#include "Texts.h"

#include "support/Meter.h"

#include <valuebox/NumericalValueBox.h>

#include <QRandomGenerator>
#include <QtTest>

using namespace ValueBox;
using namespace Texts;

Q_DECLARE_METATYPE(Units)
Q_DECLARE_METATYPE(UnitPrefixs)

namespace {

// Values that no parse produces by accident.
constexpr auto untouchedUnit = Units(77);
constexpr auto untouchedPrefix = UnitPrefixs(55);

struct Parsed
{
    explicit Parsed(const QString &text)
    {
        ok = NumericalValueBox::parse(text, value, precision, unit, prefix);
    }

    bool ok = false;
    float value = -1;
    int precision = -1;
    Units unit = untouchedUnit;
    UnitPrefixs prefix = untouchedPrefix;
};

} // namespace

/** Texts read back into numbers. */
class TstValueParsing : public QObject
{
    Q_OBJECT
private slots:
    void init() { NumericalValueBox::prepareStaticDefaultValue(Temp_Celsius); }

    void texts_data();
    void texts();
    void everyUnitAndPrefix();
    void temperatureUnits();
    void customTexts_data();
    void customTexts();
    void equalTextsGiveTheSmallestKey();
    void textsBeforeTheyAreFilled();
    void numbersAreThoseOfQt();
};

void TstValueParsing::texts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<float>("value");
    QTest::addColumn<int>("precision");
    QTest::addColumn<Units>("unit");
    QTest::addColumn<UnitPrefixs>("prefix");
    const QString mohm = "m" + ohm;
    QTest::newRow("milli") << "12.50 " + mohm << true << 0.0125F << 2 << Unit_Ohm << Prefix_m;
    QTest::newRow("micro") << "999.9 " + micro + ohm << true << 999.9e-6F << 1 << Unit_Ohm
                           << Prefix_u;
    QTest::newRow("whole number") << "999 k" + ohm << true << 999000.F << 0 << Unit_Ohm << Prefix_k;
    QTest::newRow("no prefix") << "1.5 V" << true << 1.5F << 1 << Unit_V << Prefix_None;
    QTest::newRow("negative") << "-1.5 mA" << true << -0.0015F << 1 << Unit_A << Prefix_m;
    QTest::newRow("no unit part") << "12.345" << true << 12.345F << 3 << untouchedUnit
                                  << untouchedPrefix;
    QTest::newRow("prefix alone") << "12 m" << true << 0.012F << 0 << untouchedUnit << Prefix_m;
    QTest::newRow("unknown unit") << "12 H" << true << 12.F << 0 << untouchedUnit << Prefix_None;
    QTest::newRow("prefix before an unknown unit")
        << "12 mH" << true << 12.F << 0 << untouchedUnit << Prefix_None;
    QTest::newRow("only endings count")
        << "12 V/m" << true << 0.012F << 0 << untouchedUnit << Prefix_m;
    QTest::newRow("case counts") << "12 v" << true << 12.F << 0 << untouchedUnit << Prefix_None;
    QTest::newRow("every unit text is removed, wherever it is")
        << "12 VmV" << true << 0.012F << 0 << Unit_V << Prefix_m;
    QTest::newRow("nothing is left of the unit")
        << "12 VV" << true << 12.F << 0 << Unit_V << Prefix_None;
    QTest::newRow("over range") << "> 10.000 V" << true << 10.F << 3 << Unit_V << Prefix_None;
    QTest::newRow("below zero") << "< 0 " + mohm << true << 0.F << 0 << Unit_Ohm << Prefix_m;
    QTest::newRow("over range without a unit")
        << "> 10.0" << false << NaN << 0 << untouchedUnit << untouchedPrefix;
    QTest::newRow("three parts lose the first")
        << "1 2.50 mV" << true << 0.0025F << 2 << Unit_V << Prefix_m;
    QTest::newRow("four parts keep it") << "1 V 3 4" << true << 1.F << 0 << Unit_V << Prefix_None;
    QTest::newRow("two blanks make an empty part")
        << "1.5  V" << false << NaN << 0 << untouchedUnit << untouchedPrefix;
    QTest::newRow("three blanks, unit part empty")
        << "1.5   V" << true << 1.5F << 1 << untouchedUnit << Prefix_None;
    QTest::newRow("blanks around") << "  1.5 V\t\n" << true << 1.5F << 1 << Unit_V << Prefix_None;
    QTest::newRow("blanks before") << "  1.5 V" << true << 1.5F << 1 << Unit_V << Prefix_None;
    QTest::newRow("a line's end") << "1.5 V\n" << true << 1.5F << 1 << Unit_V << Prefix_None;
    QTest::newRow("missing value")
        << "---" << false << NaN << 0 << untouchedUnit << untouchedPrefix;
    QTest::newRow("missing value with a unit")
        << "--- " + ohm << false << NaN << 0 << untouchedUnit << untouchedPrefix;
    QTest::newRow("empty") << "" << false << NaN << 0 << untouchedUnit << untouchedPrefix;
    QTest::newRow("blanks") << "   " << false << NaN << 0 << untouchedUnit << untouchedPrefix;
    QTest::newRow("no number, still a precision")
        << "ab.cde V" << false << NaN << 3 << untouchedUnit << untouchedPrefix;
    QTest::newRow("characters after the first point")
        << "1.2.3 V" << false << NaN << 3 << untouchedUnit << untouchedPrefix;
    QTest::newRow("decimal comma")
        << "1,5 V" << false << NaN << 0 << untouchedUnit << untouchedPrefix;
    QTest::newRow("exponent") << "1.5e3 V" << true << 1500.F << 3 << Unit_V << Prefix_None;
    QTest::newRow("point without a fraction")
        << "12. V" << true << 12.F << 0 << Unit_V << Prefix_None;
    QTest::newRow("fraction alone") << ".5 V" << true << 0.5F << 1 << Unit_V << Prefix_None;
    QTest::newRow("plus sign") << "+.25 V" << true << 0.25F << 2 << Unit_V << Prefix_None;
    QTest::newRow("infinite") << "inf V" << true << infinity << 0 << Unit_V << Prefix_None;
    QTest::newRow("beyond a float")
        << "1e39 V" << false << NaN << 0 << untouchedUnit << untouchedPrefix;
    QTest::newRow("half degree") << "20.5 " + degree + "C" << true << 20.5F << 1 << Unit_Temperature
                                 << Prefix_None;
    QTest::newRow("single precision before the prefix")
        << "19.999 " + mohm << true << float(double(19.999F) * 0.001) << 3 << Unit_Ohm << Prefix_m;
}

void TstValueParsing::texts()
{
    QFETCH(QString, text);
    QFETCH(bool, ok);
    QFETCH(float, value);
    QFETCH(int, precision);
    QFETCH(Units, unit);
    QFETCH(UnitPrefixs, prefix);
    const Parsed parsed(text);
    QCOMPARE(parsed.ok, ok);
    QVERIFY2(same(parsed.value, value), qPrintable(QString::number(double(parsed.value), 'g', 9)));
    QCOMPARE(parsed.precision, precision);
    QCOMPARE(parsed.unit, unit);
    QCOMPARE(parsed.prefix, prefix);
    QVERIFY(same(NumericalValueBox::getValue(text), value));
    QVERIFY(same(NumericalValueBox(text).realValue(), value));
}

void TstValueParsing::everyUnitAndPrefix()
{
    const struct
    {
        QString text;
        UnitPrefixs prefix;
        float value;
    } prefixes[] = {{"G", Prefix_G, 2.5e9F}, {"M", Prefix_M, 2.5e6F},  {"k", Prefix_k, 2.5e3F},
                    {"", Prefix_None, 2.5F}, {"m", Prefix_m, 2.5e-3F}, {micro, Prefix_u, 2.5e-6F},
                    {"n", Prefix_n, 2.5e-9F}};
    const struct
    {
        QString text;
        Units unit;
    } units[] = {{"A", Unit_A}, {"V", Unit_V}, {degree + "C", Unit_Temperature}, {ohm, Unit_Ohm}};
    for (const auto &unit : units) {
        for (const auto &prefix : prefixes) {
            const Parsed parsed("2.5 " + prefix.text + unit.text);
            QVERIFY(parsed.ok);
            QCOMPARE(parsed.value, prefix.value);
            QCOMPARE(parsed.unit, unit.unit);
            QCOMPARE(parsed.prefix, prefix.prefix);
        }
    }
}

void TstValueParsing::temperatureUnits()
{
    NumericalValueBox::prepareStaticDefaultValue(Temp_Kelvin);
    const Parsed kelvin("293.5 K");
    QCOMPARE(kelvin.unit, Unit_Temperature);
    QCOMPARE(kelvin.value, 293.5F); // no conversion
    QCOMPARE(Parsed("20.5 " + degree + "C").unit, untouchedUnit);
    NumericalValueBox::prepareStaticDefaultValue(Temp_Fahrenheit);
    QCOMPARE(Parsed("68.5 " + degree + "F").unit, Unit_Temperature);
}

void TstValueParsing::customTexts_data()
{
    QTest::addColumn<QStringList>("units");
    QTest::addColumn<QStringList>("prefixes");
    QTest::addColumn<QString>("text");
    QTest::addColumn<float>("value");
    QTest::addColumn<Units>("unit");
    QTest::addColumn<UnitPrefixs>("prefix");
    const QStringList units {"A", "VA", "xVA", "aba"};
    const QStringList prefixes {"G", "MG", "k", "xmG", "u", "n"};
    QTest::newRow("longest unit of three")
        << units << prefixes << "1 xVA" << 1.F << Unit_Temperature << Prefix_None;
    QTest::newRow("longest that fits")
        << units << prefixes << "1 VA" << 1.F << Unit_V << Prefix_None;
    QTest::newRow("the short one") << units << prefixes << "1 kA" << 1000.F << Unit_A << Prefix_k;
    QTest::newRow("longest prefix of three")
        << units << prefixes << "1 xmGA" << 0.001F << Unit_A << Prefix_m;
    QTest::newRow("longest prefix that fits")
        << units << prefixes << "1 MGA" << 1e6F << Unit_A << Prefix_M;
    QTest::newRow("short prefix") << units << prefixes << "1 GA" << 1e9F << Unit_A << Prefix_G;
    QTest::newRow("texts are taken away from the left")
        // Prefix "kba", which is none.
        << units << prefixes << "1 kababa" << 1.F << Unit_Ohm << Prefix_None;
    QTest::newRow("what is left may join to a prefix")
        << units << prefixes << "1 xabamGaba" << 0.001F << Unit_Ohm << Prefix_m;
    QTest::newRow("a unit with a blank is out of reach")
        << QStringList {"A", "V", "deg C", "C"} << prefixes << "1 deg C" << NaN << untouchedUnit
        << untouchedPrefix;
    QTest::newRow("empty texts never match")
        << QStringList {"", "", "", ""} << QStringList {"", "", "", "", "", ""} << "1 kV" << 1.F
        << untouchedUnit << Prefix_None;
}

void TstValueParsing::customTexts()
{
    QFETCH(QStringList, units);
    QFETCH(QStringList, prefixes);
    QFETCH(QString, text);
    QFETCH(float, value);
    QFETCH(Units, unit);
    QFETCH(UnitPrefixs, prefix);
    NumericalValueBox::prepareStaticCustomtValue(units, prefixes, Temp_Celsius);
    // Independent of the order of a hash.
    for (int buckets = 0; buckets < 200; buckets += 10) {
        NumericalValueBox::unitString.reserve(buckets);
        NumericalValueBox::prefixString.reserve(buckets);
        const Parsed parsed(text);
        QVERIFY(same(parsed.value, value));
        QCOMPARE(parsed.unit, unit);
        QCOMPARE(parsed.prefix, prefix);
    }
}

void TstValueParsing::equalTextsGiveTheSmallestKey()
{
    NumericalValueBox::prepareStaticCustomtValue({"X", "X", "X", "X"},
                                                 {"p", "p", "p", "p", "p", "p"}, Temp_Celsius);
    for (int buckets = 0; buckets < 200; buckets += 10) {
        NumericalValueBox::unitString.reserve(buckets);
        NumericalValueBox::prefixString.reserve(buckets);
        const Parsed parsed("1 pX");
        QCOMPARE(parsed.unit, Unit_A);
        QCOMPARE(parsed.prefix, Prefix_n);
    }
}

void TstValueParsing::textsBeforeTheyAreFilled()
{
    NumericalValueBox::unitString.clear();
    NumericalValueBox::prefixString.clear();
    const Parsed parsed("12.5 m" + ohm);
    QVERIFY(parsed.ok);
    QCOMPARE(parsed.value, 12.5F);
    QCOMPARE(parsed.unit, untouchedUnit);
    QCOMPARE(parsed.prefix, Prefix_None);
}

void TstValueParsing::numbersAreThoseOfQt()
{
    QRandomGenerator random(3);
    const auto check = [](const QString &number) {
        bool ok = false;
        float expected = number.toFloat(&ok);
        if (!ok)
            expected = NaN;
        const Parsed parsed(number);
        // The sign of a zero counts, too.
        return parsed.ok == ok && same(parsed.value, expected)
            && (std::isnan(expected) || std::signbit(parsed.value) == std::signbit(expected));
    };
    for (int i = 0; i < 300000; ++i) {
        QString number = QString::number(random.generate64() >> (random.generate() % 64U));
        const int decimals = int(random.generate() % 20U);
        number = number.rightJustified(decimals + 1, '0');
        if (decimals > 0 || i % 50 == 0)
            number.insert(number.size() - decimals, '.');
        if (i % 3 == 0)
            number.prepend('-');
        if (!check(number))
            QFAIL(qPrintable(number));
    }
    for (int i = 0; i < 40000; ++i) {
        // Very close to the middle between two floats, where every bit of a double matters.
        const quint32 odd = 1U << 24U | random.generate() >> 8U | 1U;
        const quint32 middle = odd << random.generate() % 3U;
        const int zeros = int(random.generate() % 10U);
        const QString number = QString::number(middle) + '.' + QString(zeros, '0')
            + QString::number(1 + random.generate() % 9U);
        if (!check(number))
            QFAIL(qPrintable(number));
    }
    for (const char *number : {"0",
                               "-0",
                               "-0.0",
                               "00",
                               "007.50",
                               "999999999999999",
                               "9999999999999999",
                               "-",
                               "+",
                               ".",
                               "-.",
                               "-.5",
                               "5.",
                               "1e5",
                               "0x10",
                               "1_0",
                               "nan",
                               "-inf",
                               "١",
                               "1.5f",
                               "--1",
                               "1-",
                               "1,000",
                               "16777217",
                               "0.000000000000001",
                               "0.0000000000000000000000000000000000000000000001"})
        QVERIFY2(check(QString::fromUtf8(number)), number);
}

KTV_METER_TEST_MAIN(TstValueParsing)
#include "tst_valueparsing.moc"
