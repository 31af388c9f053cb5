// Texts of units and prefixes that a client has edited.

#include "Target.h"

#include <valuebox/NumericalValueBox.h>

using namespace ValueBox;

void prepareTarget()
{
    NumericalValueBox::SetCurrentMeter(KTV_Configuration::KTV_4200);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzInput input(data, size);
    QStringList units;
    QStringList prefixes;
    for (int i = input.ConsumeIntegralInRange<int>(0, 5); i > 0; --i)
        units += consumeText(input, 8);
    for (int i = input.ConsumeIntegralInRange<int>(0, 7); i > 0; --i)
        prefixes += consumeText(input, 8);
    const auto temperature = TemperatureUnit(input.ConsumeIntegralInRange<int>(-1, 3));
    NumericalValueBox::prepareStaticDefaultValue(Temp_Celsius);
    NumericalValueBox::prepareStaticCustomtValue(units, prefixes, temperature);
    if (input.ConsumeBool()) // clients may also edit the tables
        NumericalValueBox::unitString.insert(Units(input.ConsumeIntegralInRange<int>(-1, 6)),
                                             consumeText(input, 300));
    if (input.ConsumeBool())
        NumericalValueBox::prefixString.insert(
            UnitPrefixs(input.ConsumeIntegralInRange<int>(-12, 12)), consumeText(input, 300));
    if (input.ConsumeBool())
        NumericalValueBox::prefixString.clear();
    NumericalValueBox box(Units(input.ConsumeIntegralInRange<int>(-1, 6)),
                          RoundMetods(input.ConsumeIntegralInRange<int>(0, 4)));
    box.setRealValue(input.ConsumeFloatingPoint<float>(), input.ConsumeIntegralInRange(-1, 210));
    const QString shown = box.toString();
    for (const QString &text : {shown, consumeText(input)}) {
        float value = 0;
        int precision = 0;
        auto unit = Unit_None;
        auto prefix = Prefix_None;
        NumericalValueBox::parse(text, value, precision, unit, prefix);
        NumericalValueBox::getUnit(unit);
        NumericalValueBox::getUnitPrefix(prefix);
    }
    box.getRealFormatedValue();
    NumericalValueBox::formatTemperature(input.ConsumeFloatingPoint<float>());
    return 0;
}
