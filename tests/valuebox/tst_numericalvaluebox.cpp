#include "PlainSteps.h"
#include "Texts.h"

#include "support/LogCapture.h"
#include "support/Meter.h"

#include <valuebox/NumericalValueBox.h>

#include <QRandomGenerator>
#include <QtTest>

#include <cstring>

using namespace ValueBox;
using namespace Texts;
using DynamicRounding::Round_Current_I;
using DynamicRounding::RoundItem;

/** The value object: its state, its rows and the text on the screen. */
class TstNumericalValueBox : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();

    void newObjects();
    void fixedPrefixAndDecimals();
    void fixedRowStaysUntilReplaced();
    void ownRowIsReset();
    void objectOfText_data();
    void objectOfText();

    void shownText_data();
    void shownText();
    void notANumber();
    void infinities();
    void minusZero();
    void hugeValues();
    void textsBeforeTheyAreFilled();
    void customTexts_data();
    void customTexts();
    void customTextsBelowZero_data();
    void customTextsBelowZero();
    void inductance();
    void textsEditedBetween();
    void anyDigitsAndPrefix();
    void manyValues();

    void rowsAreKeptAndSearched();
    void noCurrentKeepsTheRows();
    void unknownMethodHasNoRows();
    void firstOfTwoSetsWins();
    void setWithoutRows();
    void rowBelowZero();
    void noRowsAtAll();
    void rowIndexOutOfRange();

    void roundRaisesTheTenthDecimal_data();
    void roundRaisesTheTenthDecimal();

    void debugLines();
    void silentWithoutTheFlag();
    void metaObject();
};

void TstNumericalValueBox::initTestCase()
{
    QVERIFY(NumericalValueBox::unitString.isEmpty());
    QVERIFY(NumericalValueBox::prefixString.isEmpty());
    QCOMPARE(NumericalValueBox::getTempUnit(), Temp_Celsius);
}

void TstNumericalValueBox::init()
{
    const LogCapture quiet;
    NumericalValueBox::prepareStaticDefaultValue(Temp_Celsius);
    NumericalValueBox::SetCurrentMeter(KTV_Configuration::KTV_420);
}

void TstNumericalValueBox::newObjects()
{
    NumericalValueBox plain;
    NumericalValueBox made(Unit_V, Round_L);
    for (NumericalValueBox *box : {&plain, &made}) {
        QVERIFY(std::isnan(box->realValue()));
        QVERIFY(!box->isNegativeAllowed());
        QVERIFY(!box->isDebug());
        QCOMPARE(box->findBestRange(1), -2);
        QCOMPARE(box->_calculatePrefixValue(1), 0.F);
        QVERIFY(std::isnan(box->getPrefixValue()));
        QVERIFY(std::isnan(box->getFormatedValue()));
        QVERIFY(std::isnan(box->getRealFormatedValue()));
    }
    QCOMPARE(plain.toString(), QStringLiteral("--- "));
    QCOMPARE(plain._unitAndPrefixToString(Prefix_m), QStringLiteral("m"));
    QCOMPARE(made.toString(), QStringLiteral("--- V"));
    QCOMPARE(made._unitAndPrefixToString(Prefix_k), QStringLiteral("kV"));
    plain.setRealValue(1.005F);
    QCOMPARE(plain.toString(), QStringLiteral("1.00"));
    plain.setRealValue(largest);
    QCOMPARE(plain.findBestRange(largest), 0);
    QObject parent;
    for (const NumericalValueBox *box :
         {new NumericalValueBox(&parent), new NumericalValueBox(Unit_A, Round_R, &parent),
          new NumericalValueBox(1, Unit_A, Prefix_m, 1, &parent),
          new NumericalValueBox(1, Unit_A, Prefix_m, Round_R, 1, &parent),
          new NumericalValueBox(QStringLiteral("1 A"), &parent)})
        QCOMPARE(box->parent(), &parent);
}

void TstNumericalValueBox::fixedPrefixAndDecimals()
{
    NumericalValueBox box(0.0123F, Unit_V, Prefix_m, 1);
    QCOMPARE(box.toString(), QStringLiteral("12.3 mV"));
    QCOMPARE(box.getPrefixValue(), 0.001F);
    QCOMPARE(box.getFormatedValue(), 12.3F);
    for (const auto &[value, text] : {std::pair {5000.F, "5000000.0 mV"}, {0.00004F, "0.0 mV"}}) {
        box.setRealValue(value);
        QCOMPARE(box.toString(), QString::fromLatin1(text));
    }
    box.setRealValue(1, testI_10A); // its own row is the same for all currents
    QCOMPARE(box.toString(), QStringLiteral("1000.0 mV"));
}

void TstNumericalValueBox::fixedRowStaysUntilReplaced()
{
    NumericalValueBox box(0.0005F, Unit_Ohm, Prefix_None, Round_R, 3);
    QCOMPARE(box.toString(), "0.001 " + ohm);
    box.setRealValue(0.0006F);
    QCOMPARE(box.toString(), "0.001 " + ohm);
    box.setRealValue(0.0006F, testI_10A);
    QCOMPARE(box.toString(), "600.0 " + micro + ohm);

    NumericalValueBox other(0.0005F, Unit_Ohm, Prefix_None, Round_R, 3);
    other.setRoundMetod(Round_R);
    QCOMPARE(other.toString(), QStringLiteral("---"));
    other.setRealValue(0.0005F);
    QCOMPARE(other.toString(), QStringLiteral("---"));
    other.setRoundMetod(Round_Static);
    QCOMPARE(other.toString(), QStringLiteral("---")); // no rows until a value is set
    other.setRealValue(0.0005F);
    QCOMPARE(other.toString(), "0.001 " + ohm); // its own row again
}

void TstNumericalValueBox::ownRowIsReset()
{
    NumericalValueBox box(0.0123F, Unit_V, Prefix_m, 1);
    box.prepareRound_Static();
    QCOMPARE(box.toString(), QStringLiteral("0.01 V"));
    box.prepareRound_Static();
    box.setRealValue(7);
    QCOMPARE(box.toString(), QStringLiteral("7.00 V"));
    NumericalValueBox ofTable(Unit_Ohm, Round_R);
    ofTable.setRealValue(0.5F, testI_1A);
    ofTable.prepareRound_Static();
    QCOMPARE(ofTable.toString(), "500.0 m" + ohm); // rows of the table are not changed
}

void TstNumericalValueBox::objectOfText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<float>("value");
    QTest::addColumn<QString>("shown");
    QTest::newRow("two decimals, no prefix, whatever the text")
        << "12.50 m" + ohm << 0.0125F << "0.01 " + ohm;
    QTest::newRow("kilo") << "9.99 kV" << 9990.F << "9990.00 V";
    QTest::newRow("no unit") << "5.5" << 5.5F << "5.50";
    QTest::newRow("over range") << "> 199.99 m" + ohm << 0.19999F << "0.20 " + ohm;
    QTest::newRow("no number") << "---" << NaN << "--- ";
    QTest::newRow("no number, no unit either") << "--- V" << NaN << "--- ";
    QTest::newRow("empty") << "" << NaN << "--- ";
}

void TstNumericalValueBox::objectOfText()
{
    QFETCH(QString, text);
    QFETCH(float, value);
    QFETCH(QString, shown);
    const NumericalValueBox box(text);
    QVERIFY(same(box.realValue(), value));
    QCOMPARE(box.toString(), shown);
    QVERIFY(same(NumericalValueBox::getValue(text), value));
}

void TstNumericalValueBox::shownText_data()
{
    QTest::addColumn<float>("value");
    QTest::addColumn<int>("current");
    QTest::addColumn<bool>("isNegativeAllowed");
    QTest::addColumn<QString>("text");
    QTest::addColumn<float>("readBack");
    const QString mohm = "m" + ohm;
    const QString uohm = micro + ohm;
    QTest::newRow("missing value") << NaN << 10 << false << "--- " + ohm << NaN;
    QTest::newRow("zero") << 0.F << 10 << false << "0.0 " + uohm << 0.F;
    QTest::newRow("lowest row") << 12.34e-6F << 10 << false << "12.3 " + uohm << 12.3e-6F;
    QTest::newRow("a row's maximum") << 0.0009999F << 10 << false << "999.9 " + uohm << 999.9e-6F;
    QTest::newRow("second row") << 0.001F << 10 << false << "1.0000 " + mohm << 0.001F;
    QTest::newRow("above the last row") << 5.F << 10 << false << "> 199.99 " + mohm << 0.19999F;
    QTest::newRow("negative") << -0.5F << 10 << false << "< 0 " + uohm << 0.F;
    QTest::newRow("negative, allowed") << -0.0015F << 10 << true << "-1.5000 " + mohm << -0.0015F;
    QTest::newRow("last decimal, negative")
        << -0.0000001F << 10 << true << "-0.1 " + uohm << -1e-7F;
    QTest::newRow("negative that rounds to zero") << -1e-9F << 10 << true << "0.0 " + uohm << 0.F;
    QTest::newRow("negative beyond the range")
        << -5.F << 10 << true << "> 199.99 " + mohm << 0.19999F;
    QTest::newRow("current without rows") << 0.5F << 20 << false << "---" << NaN;
    QTest::newRow("no current") << 0.5F << -1 << false << "---" << NaN;
    QTest::newRow("negative without rows") << -0.5F << 20 << false << "---" << NaN;
    QTest::newRow("above the only row") << 2500.F << 0 << false << "> 1999.9 " + ohm << 1999.9F;
}

void TstNumericalValueBox::shownText()
{
    QFETCH(float, value);
    QFETCH(int, current);
    QFETCH(bool, isNegativeAllowed);
    QFETCH(QString, text);
    QFETCH(float, readBack);
    NumericalValueBox box(Unit_Ohm, Round_R);
    box.setNegativeAllowed(isNegativeAllowed);
    QCOMPARE(box.isNegativeAllowed(), isNegativeAllowed);
    box.setRealValue(value, current);
    QVERIFY(same(box.realValue(), value));
    QCOMPARE(box.toString(), text);
    QVERIFY2(qFuzzyCompare(box.getRealFormatedValue(), readBack)
                 || same(box.getRealFormatedValue(), readBack),
             qPrintable(QString::number(double(box.getRealFormatedValue()), 'g', 9)));
}

void TstNumericalValueBox::notANumber()
{
    NumericalValueBox box(Unit_Ohm, Round_R);
    box.setRealValue(0.5F, testI_1A);
    QCOMPARE(box.findBestRange(NaN), 3);
    QVERIFY(std::isnan(box._calculatePrefixValue(NaN)));
    QCOMPARE(box._valueFormat(NaN, 0), QStringLiteral("nan"));
    box.setRealValue(NaN, testI_1A);
    QCOMPARE(box.toString(), "--- " + ohm);
    QCOMPARE(box._valueFormat(0.5F, 0), QStringLiteral("---"));
    QVERIFY(std::isnan(box.getPrefixValue()));
    QVERIFY(std::isnan(box.getFormatedValue()));
    QVERIFY(std::isnan(box.getRealFormatedValue()));
    box.setNegativeAllowed(true);
    box.setRealValue(-NaN, testI_1A);
    QCOMPARE(box.toString(), "--- " + ohm);
}

void TstNumericalValueBox::infinities()
{
    NumericalValueBox box(Unit_Ohm, Round_R);
    box.setRealValue(infinity, testI_1A);
    QCOMPARE(box.toString(), "> 2.0000 " + ohm); // 1.99995F is above 1.99995
    QCOMPARE(box.getFormatedValue(), 2.F);
    QCOMPARE(box._valueFormat(infinity, 0), QStringLiteral("inf"));
    box.setRealValue(-infinity, testI_1A);
    QCOMPARE(box.toString(), "< 0 m" + ohm);
    box.setNegativeAllowed(true);
    QCOMPARE(box.toString(), "> 2.0000 " + ohm);
    NumericalValueBox own(infinity, Unit_V, Prefix_None, 0);
    QCOMPARE(own.toString(), QStringLiteral("> 340282346638528859811704183484516925440 V"));
}

void TstNumericalValueBox::minusZero()
{
    NumericalValueBox box(-0.F, Unit_V, Prefix_None, 2);
    QCOMPARE(box.findBestRange(-0.F), 0);
    for (const bool isNegativeAllowed : {false, true}) {
        box.setNegativeAllowed(isNegativeAllowed);
        QCOMPARE(box.toString(), QStringLiteral("0.00 V"));
    }
    // _valueFormat() keeps the sign of a value that rounds to zero, but has none for minus zero.
    QCOMPARE(box._valueFormat(-0.F, 0), QStringLiteral("0.00"));
    QCOMPARE(box._valueFormat(-0.001F, 0), QStringLiteral("-0.00"));
    box.setRealValue(-0.001F);
    QCOMPARE(box.toString(), QStringLiteral("0.00 V"));
    box.setRealValue(-0.005F); // the float is above the decimal number in magnitude
    QCOMPARE(box.toString(), QStringLiteral("0.00 V"));
    box.setRealValue(-0.0051F);
    QCOMPARE(box.toString(), QStringLiteral("-0.01 V"));
}

void TstNumericalValueBox::hugeValues()
{
    NumericalValueBox box(largest, Unit_V, Prefix_None, 2);
    QCOMPARE(box.toString(), QStringLiteral("340282346638528859811704183484516925440.00 V"));
    box.setRealValue(1e10F);
    QCOMPARE(box.toString(), QStringLiteral("10000000000.00 V"));
    box.setRealValue(68719472640.F); // just below 2^36
    QCOMPARE(box.toString(), QStringLiteral("68719472640.00 V"));
    box.setRealValue(68719476736.F);
    QCOMPARE(box.toString(), QStringLiteral("68719476736.00 V"));
    box.setNegativeAllowed(true);
    box.setRealValue(-1e20F);
    QCOMPARE(box.toString(), QStringLiteral("-100000002004087734272.00 V"));
    NumericalValueBox giga(largest, Unit_V, Prefix_n, 0); // infinite once scaled
    QCOMPARE(giga.toString(), QStringLiteral("inf nV"));
    QCOMPARE(giga.getFormatedValue(), infinity);
}

void TstNumericalValueBox::textsBeforeTheyAreFilled()
{
    NumericalValueBox::unitString.clear();
    NumericalValueBox::prefixString.clear();
    NumericalValueBox box(Unit_Ohm, Round_R);
    QCOMPARE(box.toString(), QStringLiteral("--- "));
    box.setRealValue(0.0015F, testI_10A);
    QCOMPARE(box.toString(), QStringLiteral("1.5000"));
    QCOMPARE(box.getRealFormatedValue(), 1.5F); // nothing shows that these are milliohms
    box.setRealValue(5, testI_10A);
    QCOMPARE(box.toString(), QStringLiteral("> 199.99"));
    box.setRealValue(-1, testI_10A);
    QCOMPARE(box.toString(), QStringLiteral("< 0"));
    QCOMPARE(NumericalValueBox::getUnit(Unit_Ohm), QString());
    QCOMPARE(NumericalValueBox::getUnitPrefix(Prefix_m), QString());
}

void TstNumericalValueBox::customTexts_data()
{
    QTest::addColumn<QString>("unit");
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<float>("value");
    QTest::addColumn<QString>("text");
    QTest::newRow("words") << "Ohm"
                           << "milli" << 0.005F << "5.0000 milliOhm";
    QTest::newRow("blanks are simplified") << " Ohm "
                                           << "m " << 0.005F << "5.0000 m Ohm";
    QTest::newRow("only blanks") << "  "
                                 << " " << 0.005F << "5.0000";
    QTest::newRow("tabs and non-breaking blanks") << "\tO\u00A0"
                                                  << "\n"
                                                  << 0.005F << "5.0000 O";
    QTest::newRow("hyphens make it missing") << "Oh---m"
                                             << "m" << 0.005F << "---";
    QTest::newRow("hyphens across both") << "-Ohm"
                                         << "m--" << 0.005F << "---";
    QTest::newRow("a hyphen stays") << "O-hm"
                                    << "m" << -0.005F << "-5.0000 mO-hm";
    QTest::newRow("a zero loses every hyphen") << "O-hm"
                                               << "m-" << 0.F << "0.0000 mOhm";
    QTest::newRow("sign and zero lose every hyphen") << "O-hm"
                                                     << "m" << -1e-12F << "0.0000 mOhm";
    QTest::newRow("a sign joins no hyphens") << "--"
                                             << "m" << -0.005F << "-5.0000 m--";
    QTest::newRow("over range, hyphens") << "V"
                                         << "---" << 9.F << "---";
    QTest::newRow("over range keeps hyphens") << "-V"
                                              << "m" << 9.F << "> 9.0000 m-V";
    QTest::newRow("both empty") << ""
                                << "" << -0.005F << "-5.0000";
}

void TstNumericalValueBox::customTexts()
{
    QFETCH(QString, unit);
    QFETCH(QString, prefix);
    QFETCH(float, value);
    QFETCH(QString, text);
    Round_Current_I set(testI_1A, nullptr);
    set.items.append(new RoundItem(0.009F, 4, -3));
    const auto tableBefore = NumericalValueBox::tableRound_R;
    NumericalValueBox::tableRound_R = {&set};
    NumericalValueBox::unitString[Unit_Ohm] = unit;
    NumericalValueBox::prefixString[Prefix_m] = prefix;
    NumericalValueBox box(Unit_Ohm, Round_R);
    box.setNegativeAllowed(true);
    box.setRealValue(value, testI_1A);
    QCOMPARE(box.toString(), text);
    const float shown = std::abs(value);
    QCOMPARE(box.toString(),
             PlainSteps::shown(qMin(shown, 0.009F), shown > 0.009F, value < 0 && shown <= 0.009F, 4,
                               -3, prefix + unit));
    NumericalValueBox::tableRound_R = tableBefore;
}

void TstNumericalValueBox::customTextsBelowZero_data()
{
    QTest::addColumn<QString>("unit");
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<QString>("text");
    QTest::newRow("words") << "Ohm"
                           << "milli"
                           << "< 0 milliOhm";
    QTest::newRow("blanks are simplified") << " Ohm "
                                           << "m "
                                           << "< 0 m Ohm";
    QTest::newRow("a hyphen stays") << "O-hm"
                                    << "m"
                                    << "< 0 mO-hm";
    QTest::newRow("hyphens make it missing") << "Oh---m"
                                             << "m"
                                             << "---";
    QTest::newRow("hyphens across both") << "-Ohm"
                                         << "m--"
                                         << "---";
}

void TstNumericalValueBox::customTextsBelowZero()
{
    QFETCH(QString, unit);
    QFETCH(QString, prefix);
    QFETCH(QString, text);
    NumericalValueBox::unitString[Unit_Ohm] = unit;
    NumericalValueBox::prefixString[Prefix_m] = prefix;
    const NumericalValueBox box(-0.005F, Unit_Ohm, Prefix_m, 1);
    QCOMPARE(box.toString(), text);
}

void TstNumericalValueBox::inductance()
{
    NumericalValueBox box(Unit_None, Round_L);
    box.setRealValue(0.0125F, testI_10A);
    QCOMPARE(box.toString(), QStringLiteral("12.500 m")); // the interface adds the "H"
    QCOMPARE(box.getRealFormatedValue(), 0.0125F);
    box.setRealValue(1.2345F, testI_10A);
    QCOMPARE(box.toString(), QStringLiteral("1.2345"));
    QCOMPARE(box.getRealFormatedValue(), 1.2345F);
    box.setRealValue(NaN, testI_10A);
    QCOMPARE(box.toString(), QStringLiteral("--- "));
}

void TstNumericalValueBox::textsEditedBetween()
{
    NumericalValueBox box(0.0125F, Unit_Ohm, Prefix_m, 1);
    QString &unit = NumericalValueBox::unitString[Unit_Ohm];
    QCOMPARE(box.toString(), "12.5 m" + ohm);
    unit = "R"; // through a reference that was taken before
    QCOMPARE(box.toString(), QStringLiteral("12.5 mR"));
    QCOMPARE(NumericalValueBox::getValue("12.5 mR"), 0.0125F);
    NumericalValueBox::prefixString.insert(Prefix_m, "milli ");
    QCOMPARE(box.toString(), QStringLiteral("12.5 milli R"));
    NumericalValueBox::unitString.remove(Unit_Ohm);
    QCOMPARE(box.toString(), QStringLiteral("12.5 milli"));
    NumericalValueBox::prefixString = {};
    QCOMPARE(box.toString(), QStringLiteral("12.5"));
    NumericalValueBox::prepareStaticDefaultValue(Temp_Celsius);
    QCOMPARE(box.toString(), "12.5 m" + ohm);
}

void TstNumericalValueBox::anyDigitsAndPrefix()
{
    NumericalValueBox::prefixString.insert(UnitPrefixs(-12), QStringLiteral("p"));
    for (const float value : {0.F, 1.23456789F, 0.00098765432F, 123456.789F, 4.5e-10F, 3e-11F}) {
        for (int digits = -3; digits <= 14; ++digits) {
            for (const int prefix : {-400, -12, -9, -6, -3, -2, 0, 1, 3, 6, 9, 12, 400}) {
                const NumericalValueBox box(value, Unit_V, UnitPrefixs(prefix), digits);
                const QString unit = NumericalValueBox::getUnitPrefix(UnitPrefixs(prefix)) + "V";
                const QString text = PlainSteps::shown(value, false, false, digits, prefix, unit);
                if (box.toString() != text)
                    QFAIL(qPrintable(QStringLiteral("%1, %2 digits, prefix %3: %4")
                                         .arg(text)
                                         .arg(digits)
                                         .arg(prefix)
                                         .arg(box.toString())));
            }
        }
    }
}

void TstNumericalValueBox::manyValues()
{
    QRandomGenerator random(1);
    const struct
    {
        int digits;
        UnitPrefixs prefix;
    } rows[] = {{0, Prefix_k}, {1, Prefix_u},    {2, Prefix_m}, {2, Prefix_M}, {3, Prefix_None},
                {4, Prefix_m}, {8, Prefix_None}, {9, Prefix_n}, {9, Prefix_m}, {11, Prefix_G}};
    for (const auto &row : rows) {
        NumericalValueBox box(0, Unit_Ohm, row.prefix, row.digits);
        box.setNegativeAllowed(true);
        const QString unit = NumericalValueBox::getUnitPrefix(row.prefix) + ohm;
        for (int i = 0; i < 20000; ++i) {
            quint32 bits = random.generate();
            if (i % 4 != 0) // most of them in the range of a meter: 1e-9 to 1e9
                bits = (bits & 0x807FFFFFU) | ((97U + (bits >> 23U) % 60U) << 23U);
            float value = 0;
            std::memcpy(&value, &bits, sizeof value);
            if (!std::isfinite(value))
                continue;
            box.setRealValue(value);
            const QString text =
                PlainSteps::shown(std::abs(value), false, value < 0, row.digits, row.prefix, unit);
            if (box.toString() != text)
                QFAIL(qPrintable(text + " but " + box.toString()));
        }
    }
}

void TstNumericalValueBox::rowsAreKeptAndSearched()
{
    NumericalValueBox box(Unit_Ohm, Round_R);
    box.setRealValue(0.0005F, 10);
    QCOMPARE(box.toString(), "500.0 " + micro + ohm);
    NumericalValueBox::tableRound_R.clear();
    box.setRealValue(0.0006F, 10); // kept: for the same current the table is not searched again
    QCOMPARE(box.toString(), "600.0 " + micro + ohm);
    box.setRoundMetod(Round_R); // forces a new search
    box.setRealValue(0.0006F, 10);
    QCOMPARE(box.toString(), QStringLiteral("---"));
    NumericalValueBox::prepareRound_R_KTV420();
    box.setRealValue(0.0006F, 10); // had no rows, so the table is searched again
    QCOMPARE(box.toString(), "600.0 " + micro + ohm);
    box.setRealValue(0.0006F, testI_1A);
    QCOMPARE(box.toString(), "0.60 m" + ohm);
    box.setRealValue(0.0006F, -5); // a code like any other
    QCOMPARE(box.toString(), QStringLiteral("---"));
    box.setRealValue(2500, testI_1mA);
    QCOMPARE(box.toString(), "> 1999.9 " + ohm);
    box.setRoundMetod(Round_R_TempCompensation);
    QCOMPARE(box.toString(), QStringLiteral("---"));
    box.setRealValue(2500, testI_1mA);
    QCOMPARE(box.toString(), "2.50 k" + ohm);
}

void TstNumericalValueBox::noCurrentKeepsTheRows()
{
    NumericalValueBox box(Unit_Ohm, Round_R);
    box.setRealValue(0.5F, testI_1A);
    box.setRealValue(0.25F);
    QCOMPARE(box.toString(), "250.0 m" + ohm);
    box.setRealValue(0.125F, testI_None);
    QCOMPARE(box.toString(), "125.00 m" + ohm);
    box.setRealValue(0.75F, -1);
    QCOMPARE(box.toString(), "750.0 m" + ohm);
}

void TstNumericalValueBox::unknownMethodHasNoRows()
{
    for (const int unknown : {5, -1, 1000}) {
        NumericalValueBox box(Unit_Ohm, Round_R);
        box.setRealValue(0.5F, testI_1A);
        box.setRoundMetod(RoundMetods(unknown));
        box.setRealValue(0.5F, testI_1A);
        QCOMPARE(box.toString(), QStringLiteral("---"));
        QCOMPARE(box.realValue(), 0.5F);
        // The fixed row of an object stays in use even then, until a value with a current is set.
        NumericalValueBox fixed(0.5F, Unit_Ohm, Prefix_m, RoundMetods(unknown), 0);
        fixed.setRealValue(0.25F);
        QCOMPARE(fixed.toString(), "250 m" + ohm);
        fixed.setRealValue(0.25F, testI_1A);
        QCOMPARE(fixed.toString(), QStringLiteral("---"));
    }
}

void TstNumericalValueBox::firstOfTwoSetsWins()
{
    Round_Current_I first(testI_70A, nullptr);
    first.items.append(new RoundItem(10, 1, 0));
    Round_Current_I second(testI_70A, nullptr);
    second.items.append(new RoundItem(10, 3, 0));
    NumericalValueBox::tableRound_L = {&first, &second};
    NumericalValueBox box(Unit_None, Round_L);
    box.setRealValue(2, testI_70A);
    QCOMPARE(box.toString(), QStringLiteral("2.0"));
    // Clients may edit the rows of the public tables, and values use the edited rows.
    first.items.first()->digits = 2;
    QCOMPARE(box.toString(), QStringLiteral("2.00"));
    first.items.append(new RoundItem(20, 0, 0));
    box.setRealValue(15);
    QCOMPARE(box.toString(), QStringLiteral("15"));
}

void TstNumericalValueBox::setWithoutRows()
{
    Round_Current_I empty(testI_20A, nullptr);
    NumericalValueBox::tableRound_R.append(&empty);
    NumericalValueBox box(Unit_Ohm, Round_R);
    for (const bool isNegativeAllowed : {false, true}) {
        box.setNegativeAllowed(isNegativeAllowed);
        for (const float value : {0.F, 0.5F, -0.5F, infinity, -infinity}) {
            box.setRealValue(value, testI_20A);
            QCOMPARE(box.findBestRange(value), value < 0 ? -1 : 0);
            QCOMPARE(box.toString(), QStringLiteral("---"));
            QVERIFY(std::isnan(box.getPrefixValue()));
            QVERIFY(std::isnan(box.getFormatedValue()));
            QVERIFY(std::isnan(box.getRealFormatedValue()));
            for (const int index : {-2, -1, 0, 1})
                QCOMPARE(box._valueFormat(value, index), QStringLiteral("---"));
        }
    }
}

void TstNumericalValueBox::rowBelowZero()
{
    Round_Current_I set(testI_20A, nullptr);
    set.items.append(new RoundItem(-1.5F, 1, 0));
    NumericalValueBox::tableRound_R = {&set};
    NumericalValueBox box(Unit_V, Round_R);
    box.setRealValue(0, testI_20A);
    QCOMPARE(box.toString(), QStringLiteral("> -1.5 V"));
    QCOMPARE(box.getFormatedValue(), -1.5F);
    set.items.first()->maximum = -0.04F; // the number after a marker keeps its sign
    QCOMPARE(box.toString(), QStringLiteral("> -0.0 V"));
}

void TstNumericalValueBox::noRowsAtAll()
{
    NumericalValueBox box(Unit_Ohm, Round_R);
    box.setRealValue(0.5F);
    for (const float value : {0.5F, -0.5F, NaN})
        QCOMPARE(box.findBestRange(value), -2);
    QCOMPARE(box.getPrefixValue(), 0.F);
    QCOMPARE(box._calculatePrefixValue(-1), 0.F);
    QVERIFY(std::isnan(box._calculatePrefixValue(NaN)));
    for (const int index : {-2, -1, 0, 7})
        QCOMPARE(box._valueFormat(0.5F, index), QStringLiteral("---"));
    QVERIFY(std::isnan(box.getFormatedValue()));
    QCOMPARE(box.toString(), QStringLiteral("---"));
}

void TstNumericalValueBox::rowIndexOutOfRange()
{
    NumericalValueBox box(Unit_Ohm, Round_R);
    box.setRealValue(0.5F, testI_1A); // rows of 2/m, 1/m and 4 decimals
    QCOMPARE(box._valueFormat(0.5F, -2), QStringLiteral("---"));
    QCOMPARE(box._valueFormat(0.5F, -1), QStringLiteral("500.00"));
    QCOMPARE(box._valueFormat(0.5F, 1), QStringLiteral("500.0"));
    for (const int index : {2, 3, 1000})
        QCOMPARE(box._valueFormat(0.5F, index), QStringLiteral("0.5000"));
    QCOMPARE(box._calculatePrefixValue(-3), 0.001F);
    QCOMPARE(box._calculatePrefixValue(3), 1.F);
    QCOMPARE(box._calculatePrefixValue(0.1F), 0.001F);
}

void TstNumericalValueBox::roundRaisesTheTenthDecimal_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<uint>("digits");
    QTest::addColumn<QString>("text");
    QTest::newRow("plain") << 1.25 << 1U << "1.3";
    QTest::newRow("half away from zero") << -0.5 << 0U << "-1";
    QTest::newRow("tenth decimal raised, through single precision")
        << 0.1234567885 << 9U << "0.123456791";
    QTest::newRow("the same without a 5") << 0.1234567884 << 9U << "0.123456788";
    QTest::newRow("tenth decimal raised") << 0.00000000045 << 9U << "0.000000000";
    QTest::newRow("tenth decimal raised below zero") << -0.1234567885 << 9U << "-0.123456791";
    QTest::newRow("large, tenth decimal raised") << 16777217.0000000005 << 1U << "16777217.0";
    QTest::newRow("not a number") << double(NaN) << 2U << "nan";
    QTest::newRow("infinite") << -double(infinity) << 2U << "-inf";
    QTest::newRow("minus zero") << -0. << 2U << "0.00";
    QTest::newRow("rounds to zero") << -0.001 << 2U << "-0.00";
}

void TstNumericalValueBox::roundRaisesTheTenthDecimal()
{
    QFETCH(double, value);
    QFETCH(uint, digits);
    QFETCH(QString, text);
    QCOMPARE(NumericalValueBox::round(value, digits), text);
    QCOMPARE(PlainSteps::rounded(value, int(digits)), text);
}

void TstNumericalValueBox::debugLines()
{
    LogCapture log;
    NumericalValueBox box(Unit_Ohm, Round_R);
    box.setDebug(true);
    QVERIFY(box.isDebug());
    box.setRealValue(0.123456789F);
    box.setRealValue(0.00123456F, testI_10A);
    box.setRealValue(1234567.F, 20);
    box.setRealValue(-0.000025F, -1);
    QCOMPARE(log.lines(),
             QStringList({"NumericalValueBox::setRealValue:0.123457 testI_Index_enum:-1",
                          "NumericalValueBox::setRealValue:0.00123456 testI_Index_enum:10",
                          "NumericalValueBox::setRealValue:1.23457e+06 testI_Index:20",
                          "NumericalValueBox::setRealValue:-2.5e-05 testI_Index:-1"}));

    const struct
    {
        float value;
        int current;
        QStringList lines;
    } texts[] = {
        {0.0015F, 10, {"NumericalValueBox::toString()= 1.5000 m" + ohm}},
        {NaN, 10, {"NumericalValueBox::toString()= --- (nan)"}},
        {1.23456789F,
         20,
         {"NumericalValueBox::toString()= --- [2] (1.23457)",
          "NumericalValueBox::toString()= ---"}},
        {-0.000025F,
         20,
         {"NumericalValueBox::toString()= --- [2] (-2.5e-05)",
          "NumericalValueBox::toString()= ---"}},
        {NaN, 20, {"NumericalValueBox::toString()= --- (nan)"}}, // and no line about missing rows
        {-1, 10, {"NumericalValueBox::toString()= < 0 " + micro + ohm}},
    };
    for (const auto &text : texts) {
        box.setRealValue(text.value, text.current);
        log.clear();
        box.toString();
        QCOMPARE(log.lines(), QStringList("NumericalValueBox::toString()") + text.lines);
        log.clear();
        box.getRealFormatedValue(); // reads the shown text
        QCOMPARE(log.lines(), QStringList("NumericalValueBox::toString()") + text.lines);
    }

    box.setNegativeAllowed(true);
    box.setRealValue(-0.000025F, 20);
    log.clear();
    box.toString();
    QCOMPARE(log.lines().value(1), // with its sign, which the text of a number would have, too
             QStringLiteral("NumericalValueBox::toString()= --- [2] (-2.5e-05)"));

    Round_Current_I empty(testI_30A, nullptr); // a set that is in use but has no rows
    NumericalValueBox::tableRound_R.append(&empty);
    box.setRealValue(1, testI_30A);
    log.clear();
    box.toString();
    QCOMPARE(log.lines(),
             QStringList({"NumericalValueBox::toString()", "NumericalValueBox::toString()= ---"}));

    NumericalValueBox fixed(Unit_Ohm, Round_Static);
    fixed.setDebug(true);
    log.clear();
    fixed.setRealValue(0.5F, testI_10A);
    QCOMPARE(log.lines(), QStringList("NumericalValueBox::setRealValue:0.5 testI_Index_enum:10"));
}

void TstNumericalValueBox::silentWithoutTheFlag()
{
    const LogCapture log;
    NumericalValueBox box(Unit_Ohm, Round_R);
    box.setRealValue(0.5F, testI_1A);
    QVERIFY(!box.toString().isEmpty());
    box.setRealValue(NaN);
    QVERIFY(!box.toString().isEmpty());
    QCOMPARE(log.lines(), QStringList());
}

void TstNumericalValueBox::metaObject()
{
    NumericalValueBox box;
    const QMetaObject *meta = box.metaObject();
    QCOMPARE(meta->className(), "ValueBox::NumericalValueBox");
    // The class has no signals of its own.
    QCOMPARE(meta->methodCount(), QObject::staticMetaObject.methodCount());
    QCOMPARE(meta->propertyCount(), QObject::staticMetaObject.propertyCount());
    QVERIFY(qobject_cast<NumericalValueBox *>(static_cast<QObject *>(&box)));
}

KTV_METER_TEST_MAIN(TstNumericalValueBox)
#include "tst_numericalvaluebox.moc"
