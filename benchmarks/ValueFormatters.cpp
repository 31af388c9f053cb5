#include "ValueFormatters.h"

#include <charconv>

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

QString withToChars(const ValueSample &sample)
{
    char buffer[64];
    char *end = std::to_chars(buffer, buffer + sizeof buffer, sample.scaled,
                              std::chars_format::fixed, sample.digits)
                    .ptr;
    return QString::fromLatin1(buffer, int(end - buffer));
}

/** The rules of NumericalValueBox, one after another, with the functions of QString. */
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

} // namespace

const std::vector<ValueFormatter> &valueFormatters()
{
    static const std::vector<ValueFormatter> all {
        {"beside std::to_chars and one QString", withToChars},
        {"beside QString::number() and its unit", numberAndConcatenation},
        {"beside the rules one by one, with QString", stepByStep},
#ifdef HAVE_FMT
        {"beside fmt", withFmt},
#endif
#ifdef HAVE_ICU
        {"beside ICU", withIcu},
#endif
#ifdef HAVE_KFORMAT
        {"beside KFormat", withKFormat},
#endif
#ifdef HAVE_SIGROK
        {"beside libsigrok", withSigrok},
#endif
    };
    return all;
}
