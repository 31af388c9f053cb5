// Compares the texts of random values with those made step by step with Qt's own functions. Too
// slow for the tests; to be run by hand after a change in how texts are made:
//     cmake --build build/dev --target check_value_texts
//     build/dev/tests/valuebox/check_value_texts 100000000
#include "PlainSteps.h"

#include <valuebox/NumericalValueBox.h>

#include <QRandomGenerator>

#include <cmath>
#include <cstdio>
#include <cstring>

using namespace ValueBox;
using DynamicRounding::Round_Current_I;
using DynamicRounding::RoundItem;

namespace {

using Table = QList<Round_Current_I *>;

struct Quantity
{
    RoundMetods method;
    const Table &table;
};

const Quantity quantities[] = {
    {Round_R, NumericalValueBox::tableRound_R},
    {Round_L, NumericalValueBox::tableRound_L},
    {Round_R_TempCompensation, NumericalValueBox::tableRound_R_TempCompensation},
    {Round_L_TempCompensation, NumericalValueBox::tableRound_L_TempCompensation},
};

/** Any float, or one of either sign with a magnitude that a meter shows. */
float randomValue(QRandomGenerator &random)
{
    quint32 bits = random.generate();
    if (random.generate() % 4U != 0) {
        const quint32 exponent = 100U + random.generate() % 52U; // 7e-9 to 3e7
        bits = (bits & 0x807FFFFFU) | (exponent << 23U);
    }
    float value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

QString expectedText(float value, bool isNegativeAllowed, const Round_Current_I &set)
{
    const auto unit = [](const RoundItem &row) {
        return NumericalValueBox::getUnitPrefix(UnitPrefixs(row.prefix))
            + NumericalValueBox::getUnit(Unit_Ohm);
    };
    const RoundItem &last = *set.items.last();
    if (std::isnan(value))
        return "--- " + NumericalValueBox::getUnit(Unit_Ohm);
    if (value < 0 && !isNegativeAllowed)
        return "< 0 " + unit(*set.items.first());
    const float magnitude = value < 0 ? -value : value;
    for (const RoundItem *row : set.items) {
        if (row->maximum >= magnitude)
            return PlainSteps::shown(magnitude, false, value < 0, row->digits, row->prefix,
                                     unit(*row));
    }
    return PlainSteps::shown(last.maximum, true, false, last.digits, last.prefix, unit(last));
}

} // namespace

int main(int argc, char *argv[])
{
    const long count = argc > 1 ? std::atol(argv[1]) : 1000000;
    QRandomGenerator random(argc > 2 ? quint32(std::atol(argv[2])) : 1U);
    NumericalValueBox::prepareStaticDefaultValue(Temp_Celsius);
    long differences = 0;
    for (long i = 0; i < count; ++i) {
        constexpr long eachModel = 1000000;
        if (i % eachModel == 0)
            NumericalValueBox::SetCurrentMeter(
                i / eachModel % 2 == 0 ? KTV_Configuration::KTV_420 : KTV_Configuration::KTV_4200);
        const Quantity &quantity = quantities[random.generate() % 4U];
        const auto *set = quantity.table.at(random.bounded(quantity.table.size()));
        const bool isNegativeAllowed = random.generate() % 2U == 0;
        const float value = randomValue(random);
        NumericalValueBox box(Unit_Ohm, quantity.method);
        box.setNegativeAllowed(isNegativeAllowed);
        box.setRealValue(value, set->current);
        const QString text = box.toString();
        const QString expected = expectedText(value, isNegativeAllowed, *set);
        if (text != expected) {
            ++differences;
            std::printf("%.9g at current %d: %s instead of %s\n", double(value), int(set->current),
                        qPrintable(text), qPrintable(expected));
        }
    }
    std::printf("%ld values, %ld differences\n", count, differences);
    return differences == 0 ? 0 : 1;
}
