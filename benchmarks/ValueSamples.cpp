#include "ValueSamples.h"

#include <QRandomGenerator>

#include <cmath>
#include <utility>

using namespace ValueBox;
using DynamicRounding::Round_Current_I;

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

/** The same numbers in each run of the program. */
QRandomGenerator &numbers()
{
    static QRandomGenerator generator(42);
    return generator;
}

void prepare(KTV_Configuration::MeterModels model)
{
    NumericalValueBox::prepareStaticDefaultValue(Temp_Celsius);
    NumericalValueBox::SetCurrentMeter(model);
}

} // namespace

NumericalValueBox *ValueSamples::addBox(RoundMetods method)
{
    m_boxes.push_back(std::make_unique<NumericalValueBox>(Unit_Ohm, method));
    return m_boxes.back().get();
}

void ValueSamples::add(NumericalValueBox *box, const Round_Current_I &set)
{
    constexpr double lowest = 1e-6; // ohms
    const double top = double(set.items.last()->maximum) * 1.1; // a few are above it
    ValueSample sample {};
    sample.box = box;
    sample.current = set.current;
    sample.value = float(lowest * std::pow(top / lowest, numbers().generateDouble()));
    box->setRealValue(sample.value, sample.current);
    const int index = qMin(box->findBestRange(sample.value), set.items.size() - 1);
    const auto *row = set.items.at(index);
    sample.scaled = float(double(qMin(sample.value, row->maximum)) / std::pow(10., row->prefix));
    sample.digits = row->digits;
    sample.unit = box->_unitAndPrefixToString(UnitPrefixs(row->prefix));
    sample.text = box->toString();
    m_samples.push_back(sample);
}

ValueSamples ValueSamples::resistances(std::initializer_list<testI> currents)
{
    prepare(KTV_Configuration::KTV_420);
    ValueSamples samples;
    auto *box = samples.addBox(Round_R);
    while (samples.m_samples.size() < size) {
        const testI current = currents.begin()[numbers().bounded(int(currents.size()))];
        for (const Round_Current_I *set : std::as_const(NumericalValueBox::tableRound_R)) {
            if (set->current == current)
                samples.add(box, *set);
        }
    }
    return samples;
}

ValueSamples ValueSamples::recording()
{
    constexpr int runLength = 64;
    prepare(KTV_Configuration::KTV_4200);
    ValueSamples samples;
    for (const Quantity &quantity : quantities)
        samples.addBox(quantity.method);
    while (samples.m_samples.size() < size) {
        const auto kind = std::size_t(numbers().bounded(int(samples.m_boxes.size())));
        const Table &table = quantities[kind].table;
        const auto *set = table.at(numbers().bounded(table.size()));
        for (int i = 0; i < runLength; ++i)
            samples.add(samples.m_boxes[kind].get(), *set);
    }
    return samples;
}
