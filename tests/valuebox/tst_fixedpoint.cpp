#include "PlainSteps.h"
#include "Texts.h"

#include "support/Meter.h"

#include <valuebox/NumericalValueBox_p.h>
#include <valuebox/TextParts_p.h>

#include <QRandomGenerator>
#include <QtTest>

#include <cstring>

using namespace Texts;
using Internal::FixedPoint;
using Internal::fixedText;

namespace {

float ofBits(quint32 bits)
{
    float value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

/** Compares a float's text with Qt's. @return a description of the difference */
bool isTextOfQt(float value, int decimals)
{
    const QString text = fixedText(value, decimals);
    const QString expected = QString::number(double(value), 'f', decimals);
    if (text == expected)
        return true;
    qWarning("%.9g with %d decimals: %s instead of %s", double(value), decimals, qPrintable(text),
             qPrintable(expected));
    return false;
}

} // namespace

/** Fixed-point texts computed with integers equal those of QString::number(). */
class TstFixedPoint : public QObject
{
    Q_OBJECT
private slots:
    void randomFloats();
    void floatsOfAMeter();
    void ties();
    void edges();
    void numbersThatDoNotFit();
    void quotientsAsProducts();
    void tenthDecimalNeverChangesTheEighth();
    void tenthDecimalMayChangeTheNinth();
    void whiteSpaceIsThatOfQt();
};

void TstFixedPoint::randomFloats()
{
    QRandomGenerator random(11);
    for (int i = 0; i < 600000; ++i)
        QVERIFY(isTextOfQt(ofBits(random.generate()), int(random.generate() % 14U)));
}

void TstFixedPoint::floatsOfAMeter()
{
    QRandomGenerator random(12);
    for (int i = 0; i < 1500000; ++i) { // 1e-12 to 1e12, and every number of decimals
        const quint32 bits = random.generate();
        const quint32 exponent = 87U + (bits >> 23U) % 80U;
        QVERIFY(isTextOfQt(ofBits((bits & 0x807FFFFFU) | (exponent << 23U)), i % 12));
    }
}

void TstFixedPoint::ties()
{
    // Exact halves of the last decimal, and the floats beside them.
    QRandomGenerator random(13);
    int exact = 0;
    for (int decimals = 0; decimals <= 11; ++decimals) {
        for (int i = 0; i < 20000; ++i) {
            // k / 2^(decimals + 1) with k odd has exactly decimals + 1 decimals, the last a 5.
            const quint32 odd = (random.generate() >> (8U + random.generate() % 20U)) | 1U;
            const float tie = std::ldexp(float(odd), -(decimals + 1));
            if (double(tie) == std::ldexp(double(odd), -(decimals + 1)))
                ++exact;
            for (const float value : {previous(tie), tie, next(tie), -tie})
                QVERIFY(isTextOfQt(value, decimals));
        }
    }
    QVERIFY(exact > 200000);
    QCOMPARE(fixedText(0.125F, 2), QStringLiteral("0.13")); // printf says 0.12
    QCOMPARE(fixedText(2.5F, 0), QStringLiteral("3"));
    QCOMPARE(fixedText(-0.5F, 0), QStringLiteral("-1"));
}

void TstFixedPoint::edges()
{
    for (int decimals = 0; decimals <= 13; ++decimals) {
        for (quint32 exponent = 0; exponent <= 255; ++exponent) { // from zero to infinity and NaN
            for (const quint32 mantissa : {0U, 1U, 0x3FFFFFU, 0x400000U, 0x7FFFFEU, 0x7FFFFFU}) {
                for (const quint32 sign : {0U, 0x80000000U})
                    QVERIFY(isTextOfQt(ofBits(sign | (exponent << 23U) | mantissa), decimals));
            }
        }
        // Around the powers of ten, where the number of digits changes.
        for (int power = -12; power <= 12; ++power) {
            const float ten = QString("1e%1").arg(power).toFloat();
            for (const float value : {previous(ten), ten, next(ten), 5 * ten, previous(5 * ten)})
                QVERIFY(isTextOfQt(value, decimals));
        }
    }
    for (const int decimals : {-1000, -128, -7, -1, 12, 20, 60})
        QVERIFY(isTextOfQt(1.2345F, decimals));
}

void TstFixedPoint::numbersThatDoNotFit()
{
    QVERIFY(!FixedPoint::of(NaN, 2));
    QVERIFY(!FixedPoint::of(infinity, 2));
    QVERIFY(!FixedPoint::of(-infinity, 2));
    QVERIFY(!FixedPoint::of(largest, 2));
    QVERIFY(!FixedPoint::of(1, -1));
    QVERIFY(!FixedPoint::of(1, FixedPoint::maxDecimals + 1));
    QVERIFY(FixedPoint::of(1, FixedPoint::maxDecimals).has_value());
    QVERIFY(FixedPoint::of(42.9F, 8).has_value());
    QVERIFY(!FixedPoint::of(43.F, 8)); // more than 32 bits
    QCOMPARE(FixedPoint::of(-0.001F, 2)->digits(), 0U);
    QVERIFY(FixedPoint::of(-0.001F, 2)->isNegative());
    QVERIFY(!FixedPoint::of(-0.F, 2)->isNegative());
}

void TstFixedPoint::quotientsAsProducts()
{
    const auto isQuotient = [](float value, int prefix) {
        return same(Internal::scaled(value, prefix), float(double(value) / std::pow(10., prefix)));
    };
    QRandomGenerator random(16);
    int halfway = 0;
    for (int i = 0; i < 3000000; ++i) {
        const int prefix = -int(random.generate() % 11U);
        QVERIFY(isQuotient(ofBits(random.generate()), prefix));
        // The product of a float and 10^n, halfway between two floats: an odd 25-bit number
        // that 5^n divides.
        const int zeros = 1 + i % 9;
        const auto factor = quint32(std::lround(std::pow(5., zeros)));
        const quint32 odd = (((1U << 24U) + random.generate() % (1U << 24U)) / factor) | 1U;
        const quint32 product = odd * factor;
        if (product >> 24U != 1 || odd == 0)
            continue;
        ++halfway;
        const float value = std::ldexp(float(odd), int(random.generate() % 60U) - 60);
        for (const float near : {previous(value), value, next(value), -value})
            QVERIFY(isQuotient(near, -zeros));
    }
    QVERIFY(halfway > 1000000);
    for (const int prefix : {-1000, -11, -10, 0, 1, 3, 6, 9, 10, 40, 1000})
        QVERIFY(isQuotient(1.2345F, prefix));
}

void TstFixedPoint::tenthDecimalNeverChangesTheEighth()
{
    QRandomGenerator random(14);
    int raised = 0;
    for (int i = 0; i < 300000; ++i) {
        // Around numbers whose tenth decimal is a 5, small enough for a float to have it.
        const quint64 units = random.generate64() % (quint64(1) << (4 + i % 32));
        auto value = float(double(units * 10 + 5) * 1e-10);
        value = i % 3 == 0 ? value : (i % 3 == 1 ? next(value) : previous(value));
        if (i % 2 == 0)
            value = -value;
        if (QString::number(double(value), 'f', 10).endsWith('5'))
            ++raised;
        for (int decimals = 6; decimals <= 8; ++decimals) {
            const QString text = Internal::roundedText(value, {0, decimals, 0});
            if (text != PlainSteps::rounded(double(value), decimals))
                QFAIL(qPrintable(text));
        }
    }
    QVERIFY(raised > 20000);
}

void TstFixedPoint::tenthDecimalMayChangeTheNinth()
{
    // So texts with nine decimals and more have to be made by QString.
    QRandomGenerator random(15);
    int changed = 0;
    for (int i = 0; i < 100000; ++i) {
        const auto value = float(double((random.generate() % 2000000U) * 10U + 5U) * 1e-10);
        for (int decimals = 9; decimals <= 11; ++decimals) {
            const QString expected = PlainSteps::rounded(double(value), decimals);
            if (expected != QString::number(double(value), 'f', decimals))
                ++changed;
            QCOMPARE(Internal::roundedText(value, {0, decimals, 0}), expected);
            QVERIFY(!Internal::roundedNumber(value, {0, decimals, 0}));
        }
    }
    QVERIFY(changed > 1000);
}

void TstFixedPoint::whiteSpaceIsThatOfQt()
{
    for (int code = 0; code <= 0xFFFF; ++code)
        QCOMPARE(Internal::isSpace(QChar(ushort(code))), QChar(ushort(code)).isSpace());
}

KTV_METER_TEST_MAIN(TstFixedPoint)
#include "tst_fixedpoint.moc"
