#include "ExpectedTables.h"
#include "PlainSteps.h"
#include "Texts.h"

#include "support/LogCapture.h"
#include "support/Meter.h"

#include <valuebox/NumericalValueBox.h>

#include <QRandomGenerator>
#include <QtTest>

using namespace ValueBox;
using namespace Texts;
using DynamicRounding::Round_Current_I;
using DynamicRounding::RoundItem;

Q_DECLARE_METATYPE(RoundMetods)

namespace {

const QList<Round_Current_I *> &tableOf(RoundMetods method)
{
    const QVector<const QList<Round_Current_I *> *> tables {
        nullptr, &NumericalValueBox::tableRound_R, &NumericalValueBox::tableRound_L,
        &NumericalValueBox::tableRound_R_TempCompensation,
        &NumericalValueBox::tableRound_L_TempCompensation};
    return *tables.at(method);
}

/**
 * A text such as "10: 0.0009999/1/-6 0.0019999/4/-3", with nine digits, so that different floats
 * have different texts.
 */
template <typename Rows> QString described(testI current, const Rows &rows)
{
    QStringList words {QString::number(current) + ':'};
    for (const auto &row : rows)
        words += QStringLiteral("%1/%2/%3")
                     .arg(double(row.maximum), 0, 'g', 9)
                     .arg(row.digits)
                     .arg(row.prefix);
    return words.join(' ');
}

QStringList described(const QList<Round_Current_I *> &table)
{
    QStringList result;
    for (const Round_Current_I *set : table) {
        QVector<RoundItem> rows;
        for (const RoundItem *row : set->items)
            rows += *row;
        result += described(set->current, rows);
    }
    return result;
}

QStringList described(const QVector<ExpectedTables::Set> &sets)
{
    QStringList result;
    for (const auto &set : sets)
        result += described(set.current, set.rows);
    return result;
}

QString unitWithPrefix(int prefix)
{
    static const QHash<int, QString> prefixes {{6, "M"}, {3, "k"}, {0, ""}, {-3, "m"}, {-6, micro}};
    return prefixes.value(prefix) + ohm;
}

/** Text of a value shown with one set, made step by step. */
QString plainText(float value, bool isNegativeAllowed, const QVector<ExpectedTables::Row> &rows)
{
    if (value < 0 && !isNegativeAllowed)
        return "< 0 " + unitWithPrefix(rows.first().prefix);
    const float shown = value < 0 ? -value : value;
    for (const auto &row : rows) {
        if (row.maximum >= shown)
            return PlainSteps::shown(shown, false, value < 0, row.digits, row.prefix,
                                     unitWithPrefix(row.prefix));
    }
    const auto &last = rows.last();
    return PlainSteps::shown(last.maximum, true, false, last.digits, last.prefix,
                             unitWithPrefix(last.prefix));
}

} // namespace

/** Rounding tables by meter model and test current. */
class TstRoundingTables : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();

    void tablesAreEmptyAtFirst();
    void tablesOfModel_data();
    void tablesOfModel();
    void everyBoundary_data() { tablesOfModel_data(); }
    void everyBoundary();
    void textReadsBackIntoTheSameText_data() { tablesOfModel_data(); }
    void textReadsBackIntoTheSameText();

    void modelIsRecordedAndLogged_data();
    void modelIsRecordedAndLogged();
    void unknownModelLeavesTheTables();
    void everyFunctionFillsItsOwnPair();
    void setsOutliveTheTables();

    void copyIsDeep();
    void copyOfNullIsEmpty();
};

void TstRoundingTables::initTestCase()
{
    NumericalValueBox::prepareStaticDefaultValue(Temp_Celsius);
}

void TstRoundingTables::tablesAreEmptyAtFirst()
{
    for (const RoundMetods method : ExpectedTables::methods()) {
        QVERIFY(tableOf(method).isEmpty());
        NumericalValueBox box(Unit_Ohm, method);
        box.setRealValue(0.5F, testI_10A);
        QCOMPARE(box.findBestRange(0.5F), -2);
        QCOMPARE(box.toString(), QStringLiteral("---"));
    }
    QCOMPARE(NumericalValueBox::currentMeter, KTV_Configuration::MeterModels_NaN);
}

void TstRoundingTables::tablesOfModel_data()
{
    QTest::addColumn<KTV_Configuration::MeterModels>("model");
    QTest::addColumn<RoundMetods>("method");
    const auto names = QMetaEnum::fromType<KTV_Configuration::MeterModels>();
    for (const auto model : ExpectedTables::models()) {
        for (const auto method : ExpectedTables::methods())
            QTest::addRow("%s, method %d", names.valueToKey(model), method) << model << method;
    }
}

void TstRoundingTables::tablesOfModel()
{
    QFETCH(KTV_Configuration::MeterModels, model);
    QFETCH(RoundMetods, method);
    const auto expected = ExpectedTables::sets(model, method);
    QVERIFY(expected.size() >= 5);
    for (int times = 0; times < 2; ++times) { // filling them again gives the same rows
        NumericalValueBox::SetCurrentMeter(model);
        QCOMPARE(described(tableOf(method)), described(expected));
    }
}

void TstRoundingTables::everyBoundary()
{
    QFETCH(KTV_Configuration::MeterModels, model);
    QFETCH(RoundMetods, method);
    NumericalValueBox::SetCurrentMeter(model);
    NumericalValueBox box(Unit_Ohm, method);
    for (const auto &set : ExpectedTables::sets(model, method)) {
        for (int index = 0; index < set.rows.size(); ++index) {
            const float maximum = set.rows.at(index).maximum;
            const struct
            {
                float value;
                int index;
            } probes[] = {
                {previous(maximum), index},
                {maximum, index},
                {next(maximum), index + 1},
            };
            for (const auto &probe : probes) {
                for (const bool isNegativeAllowed : {false, true}) {
                    box.setNegativeAllowed(isNegativeAllowed);
                    box.setRealValue(probe.value, set.current);
                    QCOMPARE(box.findBestRange(probe.value), probe.index);
                    QCOMPARE(box.findBestRange(-probe.value), -1);
                    QCOMPARE(box.toString(), plainText(probe.value, isNegativeAllowed, set.rows));
                    const auto &row = set.rows.at(qMin(probe.index, set.rows.size() - 1));
                    const float shown = qMin(probe.value, set.rows.last().maximum);
                    const QString number =
                        PlainSteps::scaledAndRounded(shown, row.digits, row.prefix);
                    QCOMPARE(box.getFormatedValue(), number.toFloat());
                    QCOMPARE(box._valueFormat(shown, probe.index), number);
                    QCOMPARE(box.getPrefixValue(), float(std::pow(10., row.prefix)));

                    box.setRealValue(-probe.value, set.current);
                    QCOMPARE(box.toString(), plainText(-probe.value, isNegativeAllowed, set.rows));
                    QCOMPARE(box.getFormatedValue(), 0.F);
                    QCOMPARE(box.getPrefixValue(), float(std::pow(10., set.rows.first().prefix)));
                }
            }
        }
    }
}

void TstRoundingTables::textReadsBackIntoTheSameText()
{
    QFETCH(KTV_Configuration::MeterModels, model);
    QFETCH(RoundMetods, method);
    NumericalValueBox::SetCurrentMeter(model);
    NumericalValueBox box(Unit_Ohm, method);
    QRandomGenerator random(20240607);
    for (const auto &set : ExpectedTables::sets(model, method)) {
        float from = 0;
        for (int index = 0; index < set.rows.size(); ++index) {
            const auto row = set.rows.at(index);
            int sameRow = 0;
            QVector<float> values {next(from), row.maximum};
            for (int i = 0; i < 500; ++i)
                values +=
                    qMin(row.maximum, from + float(random.generateDouble()) * (row.maximum - from));
            for (const float value : values) {
                box.setRealValue(value, set.current);
                const QString text = box.toString();
                QCOMPARE(text, plainText(value, false, set.rows));
                const float readBack = box.getRealFormatedValue();
                const QString number = text.section(' ', 0, 0);
                const double scale = QString("1e%1").arg(row.prefix).toDouble();
                QCOMPARE(readBack, float(double(number.toFloat()) * scale));
                const double halfDecimal = std::pow(10., row.prefix - row.digits) * 0.51;
                QVERIFY(std::abs(double(readBack) - double(value)) <= halfDecimal);
                box.setRealValue(readBack, set.current);
                if (box.findBestRange(readBack) == index) {
                    QCOMPARE(box.toString(), text);
                    QCOMPARE(box.getRealFormatedValue(), readBack);
                    ++sameRow;
                } else {
                    // Read back, it may be in another row: "0.9999 mΩ" is then shown as "999.9 μΩ".
                    const float bound = readBack < value ? from : row.maximum;
                    QVERIFY(std::abs(double(bound) - double(value)) <= halfDecimal);
                }
            }
            // The range of a row may be smaller than its last decimal, for instance with henries at
            // 1 mA.
            const bool isWide = row.maximum - from > 20 * std::pow(10., row.prefix - row.digits);
            QVERIFY(!isWide || sameRow > values.size() * 9 / 10);
            from = row.maximum;
        }
    }
}

void TstRoundingTables::modelIsRecordedAndLogged_data()
{
    QTest::addColumn<int>("model");
    for (int model = KTV_Configuration::MeterModels_NaN; model <= KTV_Configuration::PLX_420 + 1;
         ++model)
        QTest::addRow("model %d", model) << model;
}

void TstRoundingTables::modelIsRecordedAndLogged()
{
    QFETCH(int, model);
    const LogCapture log;
    NumericalValueBox::SetCurrentMeter(KTV_Configuration::MeterModels(model));
    QCOMPARE(int(NumericalValueBox::currentMeter), model);
    QCOMPARE(log.lines(),
             QStringList(QStringLiteral("NumericalValueBox::SetCurrentMeter(%1)").arg(model)));
}

void TstRoundingTables::unknownModelLeavesTheTables()
{
    NumericalValueBox::SetCurrentMeter(KTV_Configuration::KTV_4200);
    const auto before = NumericalValueBox::tableRound_R;
    for (const int unknown : {0, 6, -1}) {
        NumericalValueBox::SetCurrentMeter(KTV_Configuration::MeterModels(unknown));
        QCOMPARE(NumericalValueBox::tableRound_R, before); // the same objects
    }
}

void TstRoundingTables::everyFunctionFillsItsOwnPair()
{
    NumericalValueBox::tableRound_R.clear();
    NumericalValueBox::tableRound_L.clear();
    NumericalValueBox::tableRound_R_TempCompensation.clear();
    NumericalValueBox::tableRound_L_TempCompensation.clear();
    const auto sizes = [] {
        return QVector<int> {int(NumericalValueBox::tableRound_R.size()),
                             int(NumericalValueBox::tableRound_R_TempCompensation.size()),
                             int(NumericalValueBox::tableRound_L.size()),
                             int(NumericalValueBox::tableRound_L_TempCompensation.size())};
    };
    NumericalValueBox::prepareRound_R_KTV420();
    QCOMPARE(sizes(), (QVector<int> {5, 5, 0, 0}));
    NumericalValueBox::prepareRound_L_KTV420();
    QCOMPARE(sizes(), (QVector<int> {5, 5, 5, 5}));
    NumericalValueBox::prepareRound_R_KTV4200();
    QCOMPARE(sizes(), (QVector<int> {24, 15, 5, 5}));
    const auto inductance = NumericalValueBox::tableRound_L;
    const auto resistance = NumericalValueBox::tableRound_R;
    NumericalValueBox::prepareRound_L_KTV4200();
    QCOMPARE(NumericalValueBox::tableRound_R, resistance);
    QVERIFY(NumericalValueBox::tableRound_L != inductance);
    QCOMPARE(described(NumericalValueBox::tableRound_L), described(inductance));
}

void TstRoundingTables::setsOutliveTheTables()
{
    NumericalValueBox::SetCurrentMeter(KTV_Configuration::KTV_4200);
    NumericalValueBox box(Unit_Ohm, Round_R);
    box.setRealValue(0.0075F, testI_20A);
    const QString text = "7.5000 m" + ohm;
    QCOMPARE(box.toString(), text);
    NumericalValueBox::SetCurrentMeter(KTV_Configuration::KTV_420); // has no 20 A
    QCOMPARE(box.toString(), text);
    box.setRealValue(0.0075F, testI_20A); // for the same current the table is not searched again
    QCOMPARE(box.toString(), text);
    box.setRealValue(0.0075F, testI_10A);
    QCOMPARE(box.toString(), "7.500 m" + ohm);
    box.setRealValue(0.0075F, testI_20A);
    QCOMPARE(box.toString(), QStringLiteral("---"));
}

void TstRoundingTables::copyIsDeep()
{
    Round_Current_I original(testI_1A, nullptr);
    original.items = {new RoundItem(0.5F, 3, -3), new RoundItem(7.F, 1, 0)};
    Round_Current_I copy(&original);
    Round_Current_I based(testI_20A, &original);
    QCOMPARE(copy.current, testI_1A);
    QCOMPARE(based.current, testI_20A);
    for (const Round_Current_I *made : {&copy, &based}) {
        QCOMPARE(made->items.size(), 2);
        for (int i = 0; i < 2; ++i)
            QVERIFY(made->items.at(i) != original.items.at(i));
    }
    original.items.first()->digits = 9;
    QCOMPARE(described({&copy}), QStringList("3: 0.5/3/-3 7/1/0"));
    QCOMPARE(described({&based}), QStringList("20: 0.5/3/-3 7/1/0"));
}

void TstRoundingTables::copyOfNullIsEmpty()
{
    const Round_Current_I copy(nullptr);
    QCOMPARE(copy.current, testI_None);
    QVERIFY(copy.items.isEmpty());
    const Round_Current_I based(testI_10A, nullptr);
    QCOMPARE(based.current, testI_10A);
    QVERIFY(based.items.isEmpty());
}

KTV_METER_TEST_MAIN(TstRoundingTables)
#include "tst_roundingtables.moc"
