#include <valuebox/NumericalValueBox.h>

#include <benchmark/benchmark.h>

using namespace ValueBox;

namespace {

void shownText(benchmark::State &state)
{
    NumericalValueBox::prepareStaticDefaultValue(Temp_Celsius);
    NumericalValueBox::SetCurrentMeter(KTV_Configuration::KTV_420);
    NumericalValueBox box(Unit_Ohm, Round_R);
    for (auto _ : state) {
        box.setRealValue(0.0012345F, testI_10A);
        benchmark::DoNotOptimize(box.toString());
    }
}
BENCHMARK(shownText);

} // namespace

BENCHMARK_MAIN();
