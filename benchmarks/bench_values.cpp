#include "AllocationCount.h"
#include "RatioReporter.h"
#include "ValueSamples.h"

#include <valuebox/NumericalValueBox.h>

#include <benchmark/benchmark.h>

#include <charconv>

using namespace ValueBox;

namespace {

KTV_Configuration::MeterModels modelOf(const benchmark::State &state)
{
    return KTV_Configuration::MeterModels(state.range(0));
}

void bothFamilies(benchmark::internal::Benchmark *benchmark)
{
    benchmark->ArgName("KTV");
    benchmark->Arg(KTV_Configuration::KTV_420)->Arg(KTV_Configuration::KTV_4200);
}

// --- the value box

/** setRealValue() with a current, and toString(). */
void toString(benchmark::State &state)
{
    ValueSamples samples(modelOf(state));
    const AllocationCounter allocations(state);
    for (auto _ : state) {
        const ValueSample &sample = samples.next();
        sample.box->setRealValue(sample.value, sample.current);
        benchmark::DoNotOptimize(sample.box->toString());
    }
}
BENCHMARK(toString)->Apply(bothFamilies);

/** Texts without a number of the value's own: missing, negative, above the range, no rows. */
void toStringOfNoNumber(benchmark::State &state)
{
    const ValueSamples samples(KTV_Configuration::KTV_420);
    NumericalValueBox box(Unit_Ohm, Round_R);
    const float values[] = {std::numeric_limits<float>::quiet_NaN(), -1, 5, 0};
    box.setRealValue(values[state.range(0)], state.range(0) == 3 ? testI_200A : testI_10A);
    const AllocationCounter allocations(state);
    for (auto _ : state)
        benchmark::DoNotOptimize(box.toString());
}
BENCHMARK(toStringOfNoNumber)->ArgName("case")->DenseRange(0, 3);

/** setRealValue() with a current, and the number that its text shows. */
void getRealFormatedValue(benchmark::State &state)
{
    ValueSamples samples(modelOf(state));
    const AllocationCounter allocations(state);
    for (auto _ : state) {
        const ValueSample &sample = samples.next();
        sample.box->setRealValue(sample.value, sample.current);
        benchmark::DoNotOptimize(sample.box->getRealFormatedValue());
    }
}
BENCHMARK(getRealFormatedValue)->Apply(bothFamilies);

void parse(benchmark::State &state)
{
    ValueSamples samples(modelOf(state));
    const AllocationCounter allocations(state);
    for (auto _ : state) {
        float value = 0;
        int precision = 0;
        Units unit = Unit_None;
        UnitPrefixs prefix = Prefix_None;
        benchmark::DoNotOptimize(
            NumericalValueBox::parse(samples.next().text, value, precision, unit, prefix));
        benchmark::DoNotOptimize(value);
    }
}
BENCHMARK(parse)->Apply(bothFamilies);

void formatTemperature(benchmark::State &state)
{
    ValueSamples samples(KTV_Configuration::KTV_420);
    const AllocationCounter allocations(state);
    float celsius = -20;
    for (auto _ : state) {
        celsius = celsius > 150 ? -20 : celsius + 0.37F;
        benchmark::DoNotOptimize(NumericalValueBox::formatTemperature(celsius));
    }
}
BENCHMARK(formatTemperature);

void autoFormat(benchmark::State &state)
{
    ValueSamples samples(KTV_Configuration::KTV_420);
    const AllocationCounter allocations(state);
    for (auto _ : state)
        benchmark::DoNotOptimize(NumericalValueBox::autoFormat(samples.next().value, Unit_Ohm,
                                                               Prefix_m, 3, state.range(0) != 0));
}
BENCHMARK(autoFormat)->ArgName("trimZeros")->Arg(0)->Arg(1);

void formatDeltaU(benchmark::State &state)
{
    ValueSamples samples(KTV_Configuration::KTV_420);
    const AllocationCounter allocations(state);
    for (auto _ : state) {
        const ValueSample &sample = samples.next();
        benchmark::DoNotOptimize(
            NumericalValueBox::formatDeltaU(sample.value, sample.current, false));
    }
}
BENCHMARK(formatDeltaU);

void construction(benchmark::State &state)
{
    const AllocationCounter allocations(state);
    for (auto _ : state) {
        NumericalValueBox box(Unit_Ohm, Round_R);
        benchmark::DoNotOptimize(&box);
    }
}
BENCHMARK(construction);

/** The least that an object of Qt costs. */
void constructionOfQObject(benchmark::State &state)
{
    const AllocationCounter allocations(state);
    for (auto _ : state) {
        QObject object;
        benchmark::DoNotOptimize(&object);
    }
}
BENCHMARK(constructionOfQObject);

// --- the floor

/** The standard's conversion into a buffer and one QString: no tables, no rules, no unit. */
void toStringFloor(benchmark::State &state)
{
    ValueSamples samples(modelOf(state));
    const AllocationCounter allocations(state);
    for (auto _ : state) {
        const ValueSample &sample = samples.next();
        char buffer[64];
        char *end = std::to_chars(buffer, buffer + sizeof buffer, sample.scaled,
                                  std::chars_format::fixed, sample.digits)
                        .ptr;
        benchmark::DoNotOptimize(QString::fromLatin1(buffer, int(end - buffer)));
    }
}
BENCHMARK(toStringFloor)->Name("floor/to_chars+QString")->Apply(bothFamilies);

/** The same with the unit, in the buffer's UTF-8. */
void toStringWithUnitFloor(benchmark::State &state)
{
    ValueSamples samples(modelOf(state));
    const QByteArray unit = " mOhm";
    const AllocationCounter allocations(state);
    for (auto _ : state) {
        const ValueSample &sample = samples.next();
        char buffer[64];
        char *end = std::to_chars(buffer, buffer + sizeof buffer, sample.scaled,
                                  std::chars_format::fixed, sample.digits)
                        .ptr;
        end = std::copy(unit.begin(), unit.end(), end);
        benchmark::DoNotOptimize(QString::fromLatin1(buffer, int(end - buffer)));
    }
}
BENCHMARK(toStringWithUnitFloor)->Name("floor/to_chars+unit+QString")->Apply(bothFamilies);

/** The number alone: the text is at hand as characters, and nobody asks for its unit. */
void parseFloor(benchmark::State &state)
{
    ValueSamples samples(modelOf(state));
    std::vector<QByteArray> numbers;
    for (int i = 0; i < 4096; ++i) {
        QString text = samples.next().text;
        numbers.push_back(text.remove(QStringLiteral("> ")).toUtf8());
    }
    std::size_t index = 0;
    const AllocationCounter allocations(state);
    for (auto _ : state) {
        const QByteArray &number = numbers[index = (index + 1) & 4095U];
        float value = 0;
        benchmark::DoNotOptimize(
            std::from_chars(number.constData(), number.constData() + number.size(), value).ptr);
        benchmark::DoNotOptimize(value);
    }
}
BENCHMARK(parseFloor)->Name("floor/from_chars")->Apply(bothFamilies);

} // namespace

int main(int argc, char *argv[])
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    const std::string text = "toString/KTV:3";
    RatioReporter reporter({{"toString/KTV:2", "floor/to_chars+QString/KTV:2"},
                            {text, "floor/to_chars+QString/KTV:3"},
                            {text, "floor/to_chars+unit+QString/KTV:3"},
                            {text, "others/fmt"},
                            {text, "others/QString::number+concat"},
                            {text, "others/libsigrok"},
                            {text, "others/ICU"},
                            {text, "others/KFormat"},
                            {text, "others/rules_step_by_step"},
                            {"parse/KTV:2", "floor/from_chars/KTV:2"},
                            {"parse/KTV:3", "floor/from_chars/KTV:3"},
                            {"construction", "constructionOfQObject"}});
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return 0;
}
