#include "valuebox/NumericalValueBox.h"

#include <algorithm>
#include <iterator>
#include <limits>

namespace ValueBox {

namespace {

struct TestCurrent
{
    testI code;
    const char *label;
    float amperes;
    float below; ///< measured currents below this, in amperes, belong to the code
};

// A measured current belongs to the first code whose current times 1.1 is above it. So from 120 A
// on, a code's own current belongs to the code below. The labels of 20 A to 90 A say "mA". Both are
// kept: stored texts and the interface depend on them.
// clang-format off
constexpr TestCurrent testCurrents[] = {
    {testI_1mA, "1 mA", 0.001F, 0.0011F},
    {testI_10mA, "10 mA", 0.01F, 0.011F},
    {testI_100mA, "100 mA", 0.1F, 0.11F},
    {testI_1A, "1 A", 1.F, 1.1F},
    {testI_10A, "10 A", 10.F, 11.F},
    {testI_20A, "20 mA", 20.F, 22.F},
    {testI_30A, "30 mA", 30.F, 33.F},
    {testI_40A, "40 mA", 40.F, 44.F},
    {testI_50A, "50 mA", 50.F, 55.F},
    {testI_60A, "60 mA", 60.F, 66.F},
    {testI_70A, "70 mA", 70.F, 77.F},
    {testI_80A, "80 mA", 80.F, 88.F},
    {testI_90A, "90 mA", 90.F, 99.F},
    {testI_100A, "100 A", 100.F, 110.F},
    {testI_110A, "110 A", 110.F, 121.F},
    {testI_120A, "120 A", 120.F, 132.F},
    {testI_130A, "130 A", 130.F, 143.F},
    {testI_140A, "140 A", 140.F, 154.F},
    {testI_150A, "150 A", 150.F, 165.F},
    {testI_160A, "160 A", 160.F, 176.F},
    {testI_170A, "170 A", 170.F, 187.F},
    {testI_180A, "180 A", 180.F, 198.F},
    {testI_190A, "190 A", 190.F, 209.F},
    {testI_200A, "200 A", 200.F, 220.F},
};
// clang-format on

/** First current for which the condition is true; null for none. */
template <typename Condition> const TestCurrent *firstWhere(Condition condition)
{
    const auto *found = std::find_if(std::begin(testCurrents), std::end(testCurrents), condition);
    return found == std::end(testCurrents) ? nullptr : found;
}

testI codeOf(const TestCurrent *current)
{
    return current ? current->code : testI_None;
}

} // namespace

testI NumericalValueBox::testI_parse(const QString &label)
{
    return codeOf(firstWhere(
        [&label](const TestCurrent &current) { return label == QLatin1String(current.label); }));
}

bool NumericalValueBox::MergeTestI(testI a, testI b)
{
    return a == b;
}

float NumericalValueBox::ConvertTestI_ToFlota(testI code)
{
    const TestCurrent *found =
        firstWhere([code](const TestCurrent &current) { return current.code == code; });
    return found ? found->amperes : std::numeric_limits<float>::quiet_NaN();
}

testI NumericalValueBox::roundTestIValue(float amperes)
{
    return codeOf(
        firstWhere([amperes](const TestCurrent &current) { return amperes < current.below; }));
}

} // namespace ValueBox
