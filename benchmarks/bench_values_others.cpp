// The same numbers through other formatters, as far as they were at hand when this was built.
// They are told prefix and decimals; only the value box finds them out.

#include "AllocationCount.h"
#include "ValueSamples.h"

#include <benchmark/benchmark.h>

#ifdef HAVE_FMT
#include <fmt/format.h>
#endif
#ifdef HAVE_ICU
#include <unicode/numberformatter.h>
#endif
#ifdef HAVE_KFORMAT
#include <KFormat>
#endif
#ifdef HAVE_SIGROK
#include <libsigrok/libsigrok.h>
#endif

using namespace ValueBox;

namespace {

template <typename Format> void run(benchmark::State &state, Format format)
{
    ValueSamples samples(KTV_Configuration::KTV_4200);
    const AllocationCounter allocations(state);
    for (auto _ : state)
        benchmark::DoNotOptimize(format(samples.next()));
}

/** The value box's rules, one after another, with the functions of QString. */
QString stepByStep(const ValueSample &sample)
{
    QString text = NumericalValueBox::round(double(sample.scaled), uint(sample.digits))
        + QLatin1Char(' ') + sample.unit;
    if (text.contains(QLatin1String("---")))
        text = QStringLiteral("---");
    bool ok = false;
    if (text.split(QLatin1Char(' ')).first().toDouble(&ok) == 0 && ok)
        text.remove(QLatin1Char('-'));
    return text.simplified();
}

QString numberAndConcatenation(const ValueSample &sample)
{
    return QString::number(double(sample.scaled), 'f', sample.digits) + QLatin1Char(' ')
        + sample.unit;
}

#ifdef HAVE_FMT
QString withFmt(const ValueSample &sample)
{
    char buffer[64];
    const auto result =
        fmt::format_to_n(buffer, sizeof buffer, "{:.{}f} {}", sample.scaled, sample.digits, "mOhm");
    return QString::fromLatin1(buffer, int(result.size));
}
#endif

#ifdef HAVE_ICU
QString withIcu(const ValueSample &sample)
{
    static const auto formatters = [] {
        std::vector<icu::number::LocalizedNumberFormatter> all;
        for (int digits = 0; digits <= 4; ++digits)
            all.push_back(icu::number::NumberFormatter::withLocale(icu::Locale::getRoot())
                              .grouping(UNUM_GROUPING_OFF)
                              .precision(icu::number::Precision::fixedFraction(digits)));
        return all;
    }();
    UErrorCode status = U_ZERO_ERROR;
    const icu::UnicodeString number = formatters[std::size_t(sample.digits)]
                                          .formatDouble(double(sample.scaled), status)
                                          .toString(status);
    return QString(reinterpret_cast<const QChar *>(number.getBuffer()), number.length())
        + QLatin1Char(' ') + sample.unit;
}
#endif

#ifdef HAVE_KFORMAT
QString withKFormat(const ValueSample &sample)
{
    static const KFormat format(QLocale::c());
    return format.formatValue(double(sample.scaled), sample.unit, sample.digits,
                              KFormat::UnitPrefix::Unity);
}
#endif

#ifdef HAVE_SIGROK
QString withSigrok(const ValueSample &sample)
{
    float value = sample.value;
    int digits = sample.digits;
    const char *prefix = sr_analog_si_prefix(&value, &digits);
    char buffer[64];
    const int size = std::snprintf(buffer, sizeof buffer, "%.*f %s%s", qMax(digits, 0),
                                   double(value), prefix, "Ohm");
    return QString::fromUtf8(buffer, size);
}
#endif

BENCHMARK_CAPTURE(run, step_by_step, stepByStep)->Name("others/rules_step_by_step");
BENCHMARK_CAPTURE(run, number, numberAndConcatenation)->Name("others/QString::number+concat");
#ifdef HAVE_FMT
BENCHMARK_CAPTURE(run, fmt, withFmt)->Name("others/fmt");
#endif
#ifdef HAVE_ICU
BENCHMARK_CAPTURE(run, icu, withIcu)->Name("others/ICU");
#endif
#ifdef HAVE_KFORMAT
BENCHMARK_CAPTURE(run, kformat, withKFormat)->Name("others/KFormat");
#endif
#ifdef HAVE_SIGROK
BENCHMARK_CAPTURE(run, sigrok, withSigrok)->Name("others/libsigrok");
#endif

} // namespace
