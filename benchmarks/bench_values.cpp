#include "Comparison.h"
#include "ValueFormatters.h"
#include "ValueSamples.h"

#include <valuebox/NumericalValueBox.h>

#include <benchmark/benchmark.h>

#include <array>
#include <charconv>
#include <cstring>

using namespace ValueBox;

namespace {

/**
 * The floor: a number's exact digits, computed with integers for known prefix and decimals, and one
 * QString. No tables, no rules, no unit.
 */
QString digitsAndOneString(const ValueSample &sample)
{
    quint32 bits = 0;
    std::memcpy(&bits, &sample.scaled, sizeof bits);
    static constexpr quint32 powers[] = {1, 10, 100, 1000, 10000};
    const quint64 mantissa = (bits & 0x7FFFFFU) | 0x800000U;
    const quint64 product = mantissa * powers[sample.digits];
    const int shift = 150 - int(bits >> 23);
    const quint64 number =
        shift > 0 ? (product + (quint64(1) << (shift - 1))) >> shift : product << -shift;
    QChar buffer[24];
    QChar *const end = buffer + 24;
    QChar *out = end;
    auto rest = quint32(number);
    for (int i = 0; i < sample.digits; ++i, rest /= 10)
        *--out = QLatin1Char(char('0' + rest % 10));
    if (sample.digits > 0)
        *--out = QLatin1Char('.');
    do {
        *--out = QLatin1Char(char('0' + rest % 10));
        rest /= 10;
    } while (rest != 0);
    return QString(out, int(end - out));
}

/** Works on the samples one after another. */
template <typename Work> auto withEach(ValueSamples samples, Work work)
{
    return [samples = std::make_shared<ValueSamples>(std::move(samples)), work] {
        benchmark::DoNotOptimize(work(samples->next()));
    };
}

QString textOfBox(const ValueSample &sample)
{
    sample.box->setRealValue(sample.value, sample.current);
    return sample.box->toString();
}

QString textOfNewBox(const ValueSample &sample)
{
    NumericalValueBox box(Unit_Ohm, Round_R);
    box.setRealValue(sample.value, sample.current);
    return box.toString();
}

void texts(Comparison &comparison)
{
    const auto oneCurrent = [] { return ValueSamples::resistances({testI_10A}); };
    const auto threeCurrents = [] {
        return ValueSamples::resistances({testI_10A, testI_1A, testI_100mA});
    };
    Comparison::Row row {"value \u2192 text, one box, rows of its current", 1.5};
    row.allocations = 1;
    comparison.compare(row, withEach(oneCurrent(), textOfBox),
                       withEach(oneCurrent(), digitsAndOneString));
    comparison.compare({"the same, three currents in random order"},
                       withEach(threeCurrents(), textOfBox),
                       withEach(threeCurrents(), digitsAndOneString));
    comparison.compare({"the same, a new box for each value", 2.5},
                       withEach(oneCurrent(), textOfNewBox),
                       withEach(oneCurrent(), digitsAndOneString));
    for (const ValueFormatter &formatter : valueFormatters())
        comparison.compare({formatter.name}, withEach(ValueSamples::recording(), textOfBox),
                           withEach(ValueSamples::recording(), formatter.format));
}

/** setRealValue() with a current, and the number that its text shows. */
float shownNumber(const ValueSample &sample)
{
    sample.box->setRealValue(sample.value, sample.current);
    return sample.box->getRealFormatedValue();
}

float parsedNumber(const ValueSample &sample)
{
    float value = 0;
    int precision = 0;
    Units unit = Unit_None;
    UnitPrefixs prefix = Prefix_None;
    NumericalValueBox::parse(sample.text, value, precision, unit, prefix);
    return value;
}

/** The number at the start of a text; the unit is ignored. */
float leadingNumber(const ValueSample &sample)
{
    std::array<char, 32> buffer {};
    char *end = buffer.data();
    for (const QChar character : sample.text)
        *end++ = character.toLatin1();
    const char *start = buffer.data() + (buffer[0] == '>' ? 2 : 0);
    float value = 0;
    std::from_chars(start, end, value);
    return value;
}

void numbers(Comparison &comparison)
{
    comparison.compare({"text \u2192 value", 1.6},
                       withEach(ValueSamples::recording(), parsedNumber),
                       withEach(ValueSamples::recording(), leadingNumber));
    comparison.compare({"value \u2192 value as it is shown"},
                       withEach(ValueSamples::recording(), shownNumber),
                       withEach(ValueSamples::recording(), leadingNumber));
}

void otherTexts(Comparison &comparison)
{
    const auto beside = [&comparison](const char *name, auto work) {
        comparison.compare({name}, withEach(ValueSamples::recording(), work),
                           withEach(ValueSamples::recording(), digitsAndOneString));
    };
    beside("temperature", [](const ValueSample &sample) {
        return NumericalValueBox::formatTemperature(sample.value);
    });
    const auto volts = [](const ValueSample &sample) { return sample.scaled * 1e-3F; };
    beside("autoFormat()", [volts](const ValueSample &sample) {
        return NumericalValueBox::autoFormat(volts(sample), Unit_V, Prefix_m, 3, false);
    });
    beside("autoFormat() without zeros", [volts](const ValueSample &sample) {
        return NumericalValueBox::autoFormat(volts(sample), Unit_V, Prefix_m, 3, true);
    });
    beside("voltage drop", [](const ValueSample &sample) {
        return NumericalValueBox::formatDeltaU(sample.value, sample.current, false);
    });
}

void construction(Comparison &comparison)
{
    comparison.compare(
        {"a new box, beside a QObject"},
        [] {
            NumericalValueBox box(Unit_Ohm, Round_R);
            benchmark::DoNotOptimize(&box);
        },
        [] {
            QObject object;
            benchmark::DoNotOptimize(&object);
        });
}

} // namespace

int main(int argc, char *argv[])
{
    return benchmarkMain(argc, argv, [](Comparison &comparison) {
        texts(comparison);
        numbers(comparison);
        otherTexts(comparison);
        construction(comparison);
    });
}
