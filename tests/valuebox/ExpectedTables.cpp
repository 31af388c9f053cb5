#include "ExpectedTables.h"

#include <QHash>
#include <QStringList>

namespace ExpectedTables {

namespace {

// Each line: family, quantity (C: temperature-compensated), current, and rows of maximum:decimals
// and prefix.
constexpr char lines[] = R"(
420  R  10: 0.0009999:1u 0.0019999:4m 0.019999:3m 0.199995:2m
420  R   3: 0.19999:2m 0.9999:1m 1.99995:4
420  R   2: 0.9999:1m 1.9999:4 19.9995:3
420  R   1: 199.995:2
420  R   0: 1999.95:1
420  RC 10: 0.0009999:1u 0.0019999:4m 0.019999:3m 0.199995:2m 0.9999:1m 1.9999:4 19.999:3 199.99:2 1999.9:1 9990:2k 99900:1k 999000:0k 10000000:2M
420  RC  3: 0.19999:2m 0.9999:1m 1.99995:4 19.999:3 199.99:2 1999.9:1 9990:2k 99900:1k 999000:0k 10000000:2M
420  RC  2: 0.9999:1m 1.9999:4 19.9995:3 199.99:2 1999.9:1 9990:2k 99900:1k 999000:0k 10000000:2M
420  RC  1: 199.995:2 1999.9:1 9990:2k 99900:1k 999000:0k 10000000:2M
420  RC  0: 1999.95:1 9990:2k 99900:1k 999000:0k 10000000:2M
4200 R 200: 0.0009999:1u
4200 R 190: 0.0009999:1u
4200 R 180: 0.0009999:1u
4200 R 170: 0.0009999:1u
4200 R 160: 0.0009999:1u
4200 R 150: 0.0009999:1u
4200 R 140: 0.0009999:1u
4200 R 130: 0.0009999:1u
4200 R 120: 0.0009999:1u
4200 R 110: 0.0009999:1u
4200 R 100: 0.0009999:1u 0.0019999:4m
4200 R  90: 0.0009999:1u 0.0019999:4m
4200 R  80: 0.0009999:1u 0.0019999:4m
4200 R  70: 0.0009999:1u 0.0019999:4m
4200 R  60: 0.0009999:1u 0.0019999:4m
4200 R  50: 0.0009999:1u 0.0039999:4m
4200 R  40: 0.0009999:1u 0.0039999:4m
4200 R  30: 0.0009999:1u 0.0039999:4m
4200 R  20: 0.0009999:1u 0.0079999:4m
4200 R  10: 0.0009999:1u 0.0019999:4m 0.019999:3m 0.199995:2m
4200 R   3: 0.19999:2m 0.9999:1m 1.99995:4
4200 R   2: 0.9999:1m 1.9999:4 19.9995:3
4200 R   1: 199.995:2
4200 R   0: 1999.95:1
4200 RC 200: 0.0009999:1u
4200 RC 100: 0.0009999:1u 0.0019999:4m
4200 RC 90: 0.0009999:1u 0.0019999:4m
4200 RC 80: 0.0009999:1u 0.0019999:4m
4200 RC 70: 0.0009999:1u 0.0019999:4m
4200 RC 60: 0.0009999:1u 0.0019999:4m
4200 RC 50: 0.0009999:1u 0.0039999:4m
4200 RC 40: 0.0009999:1u 0.0039999:4m
4200 RC 30: 0.0009999:1u 0.0039999:4m
4200 RC 20: 0.0009999:1u 0.0079999:4m
4200 RC 10: 0.0009999:1u 0.0019999:4m 0.019999:3m 0.199995:2m 1999.9:1 9990:2k 99900:1k 999000:0k 10000000:2M
4200 RC  3: 0.19999:2m 0.9999:1m 1.99995:4 19.999:3 199.99:2 1999.9:1 9990:2k 99900:1k 999000:0k 10000000:2M
4200 RC  2: 0.9999:1m 1.9999:4 19.9995:3 199.99:2 1999.9:1 9990:2k 99900:1k 999000:0k 10000000:2M
4200 RC  1: 199.995:2 1999.9:1 9990:2k 99900:1k 999000:0k 10000000:2M
4200 RC  0: 1999.95:1 9990:2k 99900:1k 999000:0k 10000000:2M
both L  10: 0.0009999:1u 0.0019999:4m 0.019999:3m 0.19999:2m 0.9999:1m 1.9999:4 19.999:3
both L   3: 0.0009999:2m 0.0019999:2m 0.019999:2m 0.19999:2m 0.9999:1m 1.9999:4 19.999:3 199.99:2
both L   2: 0.0009999:1m 0.0019999:1m 0.019999:1m 0.19999:1m 0.9999:1m 1.9999:4 19.999:3 199.99:2 1999.9:1
both L   1: 0.0009999:2 0.0019999:2 0.019999:2 0.19999:2 0.9999:2 1.9999:2 19.999:2 199.99:2 1999.9:1
both L   0: 0.0009999:1 0.0019999:1 0.019999:1 0.19999:1 0.9999:1 1.9999:1 19.999:1 199.99:1 1999.9:1
both LC 10: 0.0009999:1u 0.0019999:4m 0.019999:3m 0.19999:2m 0.9999:1m 1.9999:4 19.999:3 199.99:2 1999.9:1 9990:2k 99900:1k 999000:0k 10000000:2M
both LC  3: 0.0009999:2m 0.0019999:2m 0.019999:2m 0.19999:2m 0.9999:1m 1.9999:4 19.999:3 199.99:2 1999.9:1 9990:2k 99900:1k 999000:0k 10000000:2M
both LC  2: 0.0009999:1m 0.0019999:1m 0.019999:1m 0.19999:1m 0.9999:1m 1.9999:4 19.999:3 199.99:2 1999.9:1 9990:2k 99900:1k 999000:0k 10000000:2M
both LC  1: 0.0009999:2 0.0019999:2 0.019999:2 0.19999:2 0.9999:2 1.9999:2 19.999:2 199.99:2 1999.9:1 9990:2k 99900:1k 999000:0k 10000000:2M
both LC  0: 0.0009999:1 0.0019999:1 0.019999:1 0.19999:1 0.9999:1 1.9999:1 19.999:1 199.99:1 1999.9:1 9990:2k 99900:1k 999000:0k 10000000:2M
)";

Row parsedRow(const QString &word)
{
    static const QHash<QString, int> prefixes {{"u", -6}, {"m", -3}, {"", 0}, {"k", 3}, {"M", 6}};
    const QStringList parts = word.split(QLatin1Char(':'));
    return {parts.at(0).toFloat(), parts.at(1).left(1).toInt(), prefixes.value(parts.at(1).mid(1))};
}

QString familyOf(KTV_Configuration::MeterModels model)
{
    static const QHash<int, QString> families {{KTV_Configuration::KTV_410, "420"},
                                               {KTV_Configuration::KTV_420, "420"},
                                               {KTV_Configuration::PLX_420, "420"},
                                               {KTV_Configuration::KTV_4200, "4200"},
                                               {KTV_Configuration::KTV_4400, "4200"}};
    return families.value(model);
}

} // namespace

QVector<Set> sets(KTV_Configuration::MeterModels model, ValueBox::RoundMetods method)
{
    const QString family = familyOf(model);
    const QString quantity = QStringList {"", "R", "L", "RC", "LC"}.value(method);
    QVector<Set> result;
    for (const QString &line : QString::fromLatin1(lines).split('\n', Qt::SkipEmptyParts)) {
        QStringList words = line.section(": ", 0, 0).split(' ', Qt::SkipEmptyParts);
        if (family.isEmpty() || (words.at(0) != family && words.at(0) != "both")
            || words.at(1) != quantity)
            continue;
        Set set {ValueBox::testI(words.at(2).toInt()), {}};
        for (const QString &word : line.section(": ", 1).split(' '))
            set.rows += parsedRow(word);
        result += set;
    }
    return result;
}

const QVector<KTV_Configuration::MeterModels> &models()
{
    static const QVector<KTV_Configuration::MeterModels> all {
        KTV_Configuration::KTV_410, KTV_Configuration::KTV_420, KTV_Configuration::KTV_4200,
        KTV_Configuration::KTV_4400, KTV_Configuration::PLX_420};
    return all;
}

const QVector<ValueBox::RoundMetods> &methods()
{
    static const QVector<ValueBox::RoundMetods> all {ValueBox::Round_R, ValueBox::Round_L,
                                                     ValueBox::Round_R_TempCompensation,
                                                     ValueBox::Round_L_TempCompensation};
    return all;
}

} // namespace ExpectedTables
