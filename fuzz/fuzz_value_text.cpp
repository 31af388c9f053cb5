// Texts of values, read and shown again.

#include "Target.h"

#include <valuebox/NumericalValueBox.h>

#include <cmath>

using namespace ValueBox;

void prepareTarget()
{
    NumericalValueBox::prepareStaticDefaultValue(Temp_Celsius);
    NumericalValueBox::SetCurrentMeter(KTV_Configuration::KTV_420);
}

namespace {

bool isSame(float a, float b)
{
    return a == b || (std::isnan(a) && std::isnan(b));
}

/** Apart from the last digits of a float; also if both are NaN. */
bool isClose(float a, float b)
{
    return isSame(a, b) || std::abs(a - b) <= 1e-6F * std::abs(a);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = QString::fromUtf8(bytesOf(data, size));
    float value = 0;
    int precision = 0;
    auto unit = Unit_None;
    auto prefix = Prefix_None;
    const bool isNumber = NumericalValueBox::parse(text, value, precision, unit, prefix);
    FUZZ_EXPECT(isNumber || std::isnan(value));
    FUZZ_EXPECT(isSame(NumericalValueBox::getValue(text), value));
    FUZZ_EXPECT(precision >= 0 && precision <= text.size());
    FUZZ_EXPECT(isSame(NumericalValueBox(text).realValue(), value));
    NumericalValueBox box(unit, Round_R);
    for (const auto *set : NumericalValueBox::tableRound_R) {
        box.setRealValue(value, set->current);
        const QString shown = box.toString();
        FUZZ_EXPECT(!shown.isEmpty());
        // What is shown can be read and shown again, and then it no longer changes.
        box.setRealValue(NumericalValueBox::getValue(shown), set->current);
        const float again = NumericalValueBox::getValue(box.toString());
        FUZZ_EXPECT(isClose(again, NumericalValueBox::getValue(shown)));
    }
    NumericalValueBox::testI_parse(text);
    return 0;
}
