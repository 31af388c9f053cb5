// Numbers of any bit pattern, and any code, through every formatter.

#include "Target.h"

#include <valuebox/NumericalValueBox.h>

#include <cstring>

using namespace ValueBox;

void prepareTarget()
{
    NumericalValueBox::prepareStaticDefaultValue(Temp_Celsius);
}

namespace {

template <typename Number, typename Bits> Number consumeNumber(FuzzInput &input)
{
    const auto bits = input.ConsumeIntegral<Bits>();
    Number number;
    static_assert(sizeof number == sizeof bits, "the bits make the number");
    std::memcpy(&number, &bits, sizeof number);
    return number;
}

template <typename Code> Code consumeCode(FuzzInput &input)
{
    // Mostly a code that exists.
    return input.ConsumeBool() ? Code(input.ConsumeIntegralInRange<int>(-12, 210))
                               : Code(input.ConsumeIntegral<int32_t>());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    constexpr int maxDigits = 400; // more would only add zeros
    FuzzInput input(data, size);
    NumericalValueBox::SetCurrentMeter(consumeCode<KTV_Configuration::MeterModels>(input));
    while (input.remaining_bytes() > 0) {
        const auto value = consumeNumber<float, uint32_t>(input);
        const auto wide = consumeNumber<double, uint64_t>(input);
        const auto unit = consumeCode<Units>(input);
        const auto prefix = consumeCode<UnitPrefixs>(input);
        const auto method = consumeCode<RoundMetods>(input);
        const auto current = consumeCode<testI>(input);
        const int digits = input.ConsumeIntegralInRange<int>(-2, maxDigits);
        NumericalValueBox box(unit, method);
        box.setNegativeAllowed(input.ConsumeBool());
        FUZZ_EXPECT(!box.toString().isEmpty());
        box.setRealValue(value, current);
        FUZZ_EXPECT(!box.toString().isEmpty());
        box.getRealFormatedValue();
        box.getFormatedValue();
        box.getPrefixValue();
        box._valueFormat(float(wide), input.ConsumeIntegral<int32_t>());
        const NumericalValueBox fixed(value, unit, prefix, method, digits);
        FUZZ_EXPECT(!fixed.toString().isEmpty());
        fixed.getRealFormatedValue();
        NumericalValueBox::round(wide, uint32_t(qMax(0, digits)));
        NumericalValueBox::autoFormat(value, unit, prefix, digits, input.ConsumeBool());
        NumericalValueBox::formatIinduction(value);
        NumericalValueBox::formatDeltaU(value, current, input.ConsumeBool());
        NumericalValueBox::formatTemperature(value);
        NumericalValueBox::roundTestIValue(value);
        NumericalValueBox::ConvertTestI_ToFlota(current);
        NumericalValueBox::MergeTestI(current, testI(digits));
    }
    return 0;
}
