#include "Texts.h"

#include "support/Meter.h"

#include <valuebox/NumericalValueBox.h>

#include <QtTest>

using namespace ValueBox;
using namespace Texts;

/** Codes of the test currents. */
class TstTestCurrents : public QObject
{
    Q_OBJECT
private slots:
    void codes_data();
    void codes();
    void unknownLabels_data();
    void unknownLabels();
    void unknownCodes();
    void nearestCode_data();
    void nearestCode();
    void equality();
};

void TstTestCurrents::codes_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("label");
    QTest::addColumn<float>("amperes");
    QTest::newRow("1 mA") << 0 << "1 mA" << 0.001F;
    QTest::newRow("10 mA") << 1 << "10 mA" << 0.01F;
    QTest::newRow("100 mA") << 2 << "100 mA" << 0.1F;
    QTest::newRow("1 A") << 3 << "1 A" << 1.F;
    QTest::newRow("10 A") << 10 << "10 A" << 10.F;
    for (int amperes = 20; amperes <= 90; amperes += 10) // their labels say milliamperes
        QTest::addRow("%d A", amperes)
            << amperes << QString("%1 mA").arg(amperes) << float(amperes);
    for (int amperes = 100; amperes <= 200; amperes += 10)
        QTest::addRow("%d A", amperes) << amperes << QString("%1 A").arg(amperes) << float(amperes);
}

void TstTestCurrents::codes()
{
    QFETCH(int, code);
    QFETCH(QString, label);
    QFETCH(float, amperes);
    QCOMPARE(int(NumericalValueBox::testI_parse(label)), code);
    QCOMPARE(NumericalValueBox::ConvertTestI_ToFlota(testI(code)), amperes);
}

void TstTestCurrents::unknownLabels_data()
{
    QTest::addColumn<QString>("label");
    for (const char *label : {"", "1A", " 1 A", "1 A ", "1 a", "20 A", "90 A", "200 mA", "210 A",
                              "15 A", "1  A", "0", "10", "testI_1A"})
        QTest::newRow(label) << label;
}

void TstTestCurrents::unknownLabels()
{
    QFETCH(QString, label);
    QCOMPARE(NumericalValueBox::testI_parse(label), testI_None);
}

void TstTestCurrents::unknownCodes()
{
    for (const int code : {-2, -1, 4, 5, 9, 11, 15, 19, 21, 99, 105, 195, 201, 210, 1000})
        QVERIFY2(std::isnan(NumericalValueBox::ConvertTestI_ToFlota(testI(code))),
                 qPrintable(QString::number(code)));
}

void TstTestCurrents::nearestCode_data()
{
    QTest::addColumn<float>("amperes");
    QTest::addColumn<int>("code");
    const struct
    {
        float bound;
        int below;
        int from;
    } bounds[] = {{0.0011F, 0, 1},   {0.011F, 1, 2},    {0.11F, 2, 3},     {1.1F, 3, 10},
                  {11.F, 10, 20},    {22.F, 20, 30},    {33.F, 30, 40},    {44.F, 40, 50},
                  {55.F, 50, 60},    {66.F, 60, 70},    {77.F, 70, 80},    {88.F, 80, 90},
                  {99.F, 90, 100},   {110.F, 100, 110}, {121.F, 110, 120}, {132.F, 120, 130},
                  {143.F, 130, 140}, {154.F, 140, 150}, {165.F, 150, 160}, {176.F, 160, 170},
                  {187.F, 170, 180}, {198.F, 180, 190}, {209.F, 190, 200}, {220.F, 200, -1}};
    for (const auto &entry : bounds) {
        const auto bound = double(entry.bound);
        QTest::addRow("just below %g A", bound) << previous(entry.bound) << entry.below;
        QTest::addRow("%g A, exclusive", bound) << entry.bound << entry.from;
        QTest::addRow("just above %g A", bound) << next(entry.bound) << entry.from;
    }
    QTest::newRow("no code between 1 A and 10 A") << 2.F << 10;
    QTest::newRow("10.9 A") << 10.9F << 10;
    QTest::newRow("219.99 A") << 219.99F << 200;
    QTest::newRow("120 A lies below 1.1 times 110 A") << 120.F << 110;
    QTest::newRow("200 A lies below 1.1 times 190 A") << 200.F << 190;
    QTest::newRow("zero") << 0.F << 0;
    QTest::newRow("negative") << -50.F << 0;
    QTest::newRow("minus infinite") << -infinity << 0;
    QTest::newRow("infinite") << infinity << -1;
    QTest::newRow("not a number") << NaN << -1;
}

void TstTestCurrents::nearestCode()
{
    QFETCH(float, amperes);
    QFETCH(int, code);
    QCOMPARE(int(NumericalValueBox::roundTestIValue(amperes)), code);
}

void TstTestCurrents::equality()
{
    QVERIFY(NumericalValueBox::MergeTestI(testI_10A, testI_10A));
    QVERIFY(NumericalValueBox::MergeTestI(testI_None, testI_None));
    QVERIFY(!NumericalValueBox::MergeTestI(testI_10A, testI_20A));
    QVERIFY(!NumericalValueBox::MergeTestI(testI_None, testI(-2)));
}

KTV_METER_TEST_MAIN(TstTestCurrents)
#include "tst_testcurrents.moc"
