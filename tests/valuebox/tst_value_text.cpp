#include "support/LogCapture.h"
#include "support/Meter.h"

#include <valuebox/NumericalValueBox.h>

#include <QtTest>

#include <cmath>
#include <limits>

using namespace ValueBox;

namespace {

const QString ohm(QChar(0x2126));
const QString micro(QChar(0x03BC));
constexpr float NaN = std::numeric_limits<float>::quiet_NaN();

} // namespace

/** The text on the screen, and what it reads back as. */
class TstValueText : public QObject
{
    Q_OBJECT
private slots:
    void init();

    void shownText_data();
    void shownText();
};

void TstValueText::init()
{
    NumericalValueBox::prepareStaticDefaultValue(Temp_Celsius);
    NumericalValueBox::SetCurrentMeter(KTV_Configuration::KTV_420);
}

void TstValueText::shownText_data()
{
    QTest::addColumn<float>("value");
    QTest::addColumn<int>("current");
    QTest::addColumn<bool>("isNegativeAllowed");
    QTest::addColumn<QString>("text");
    QTest::addColumn<float>("readBack");
    const QString mohm = "m" + ohm;
    QTest::newRow("missing value") << NaN << 10 << false << "--- " + ohm << NaN;
    QTest::newRow("lowest row") << 0.0000123F << 10 << false << "12.3 " + micro + ohm << 12.3e-6F;
    QTest::newRow("a row's maximum")
        << 0.0009999F << 10 << false << "999.9 " + micro + ohm << 999.9e-6F;
    QTest::newRow("second row") << 0.001F << 10 << false << "1.0000 " + mohm << 0.001F;
    QTest::newRow("above the last row") << 5.F << 10 << false << "> 199.99 " + mohm << 0.19999F;
    QTest::newRow("negative") << -0.5F << 10 << false << "< 0 " + micro + ohm << 0.F;
    QTest::newRow("negative, allowed") << -0.0015F << 10 << true << "-1.5000 " + mohm << -0.0015F;
    QTest::newRow("negative that rounds to zero")
        << -1e-9F << 10 << true << "0.0 " + micro + ohm << 0.F;
    QTest::newRow("current without rows") << 0.5F << 20 << false << "---" << NaN;
}

void TstValueText::shownText()
{
    QFETCH(float, value);
    QFETCH(int, current);
    QFETCH(bool, isNegativeAllowed);
    QFETCH(QString, text);
    QFETCH(float, readBack);
    NumericalValueBox box(Unit_Ohm, Round_R);
    box.setNegativeAllowed(isNegativeAllowed);
    box.setRealValue(value, current);
    QCOMPARE(box.toString(), text);
    QCOMPARE(box.getRealFormatedValue(), readBack);
}

KTV_METER_TEST_MAIN(TstValueText)
#include "tst_value_text.moc"
