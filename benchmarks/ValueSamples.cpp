#include "ValueSamples.h"

#include <QRandomGenerator>

#include <cmath>

using namespace ValueBox;

namespace {

constexpr std::size_t runLength = 64;
constexpr double lowest = 1e-6; // ohms or henries

struct Quantity
{
    RoundMetods method;
    const QList<DynamicRounding::Round_Current_I *> &table;
};

const Quantity quantities[] = {
    {Round_R, NumericalValueBox::tableRound_R},
    {Round_L, NumericalValueBox::tableRound_L},
    {Round_R_TempCompensation, NumericalValueBox::tableRound_R_TempCompensation},
    {Round_L_TempCompensation, NumericalValueBox::tableRound_L_TempCompensation},
};

} // namespace

ValueSamples::ValueSamples(KTV_Configuration::MeterModels model)
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    NumericalValueBox::prepareStaticDefaultValue(Temp_Celsius);
    NumericalValueBox::SetCurrentMeter(model);
    for (const Quantity &quantity : quantities)
        m_boxes.push_back(std::make_unique<NumericalValueBox>(Unit_Ohm, quantity.method));

    QRandomGenerator random(42);
    while (m_samples.size() < size) {
        const auto kind = std::size_t(random.bounded(int(m_boxes.size())));
        const auto &table = quantities[kind].table;
        const auto *set = table.at(random.bounded(table.size()));
        const double top = double(set->items.last()->maximum) * 1.1; // a few are above it
        for (std::size_t i = 0; i < runLength; ++i) {
            ValueSample sample {};
            sample.box = m_boxes[kind].get();
            sample.current = set->current;
            sample.value = float(lowest * std::pow(top / lowest, random.generateDouble()));
            sample.box->setRealValue(sample.value, sample.current);
            const int index = qMin(sample.box->findBestRange(sample.value), set->items.size() - 1);
            const auto *row = set->items.at(index);
            sample.scaled =
                float(double(qMin(sample.value, row->maximum)) / std::pow(10., row->prefix));
            sample.digits = row->digits;
            sample.unit = sample.box->_unitAndPrefixToString(UnitPrefixs(row->prefix));
            sample.text = sample.box->toString();
            m_samples.push_back(sample);
        }
    }
}
