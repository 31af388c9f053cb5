#include "ValueOptions.h"

#include <QJsonArray>
#include <QJsonObject>

#include <cmath>

using namespace ValueBox;
using DynamicRounding::Round_Current_I;
using DynamicRounding::RoundItem;

namespace {

constexpr int lowestDecade = -7;
constexpr int highestDecade = 7;

/** Power of ten of the last digit that a row shows. */
int lastDecimal(const RoundItem &row)
{
    return row.prefix - row.digits;
}

/** The row of a value; null above the last one. */
const RoundItem *rowOf(const Round_Current_I &set, double value)
{
    for (const RoundItem *row : set.items) {
        if (double(row->maximum) >= value)
            return row;
    }
    return nullptr;
}

/** A power of ten with its prefix: "100 n", "1 μ", "10 m", "1", "10 k". */
QString withPrefix(int power)
{
    const int prefix = int(std::floor(power / 3.)) * 3;
    const QString amount = QString::number(int(std::pow(10., power - prefix)));
    return amount + NumericalValueBox::getUnitPrefix(UnitPrefixs(prefix));
}

// --- text

constexpr int columnsOfDecade = 5;
constexpr int labelWidth = 8;

/**
 * Character for the power of ten of the last digit: 7 for 10^-7, 0 for ones, A for tens, B for
 * hundreds.
 */
QChar symbol(int power)
{
    return power <= 0 ? QLatin1Char(char('0' - power)) : QLatin1Char(char('A' + power - 1));
}

QString scale()
{
    QString line(labelWidth, QLatin1Char(' '));
    for (int decade = lowestDecade; decade < highestDecade; ++decade)
        line += withPrefix(decade).leftJustified(columnsOfDecade);
    return line + withPrefix(highestDecade);
}

QString line(const Round_Current_I &set)
{
    QString text = currentName(set.current).leftJustified(labelWidth);
    for (int column = lowestDecade * columnsOfDecade; column < highestDecade * columnsOfDecade;
         ++column) {
        const RoundItem *row = rowOf(set, std::pow(10., (column + 0.5) / columnsOfDecade));
        text += row ? symbol(lastDecimal(*row)) : QLatin1Char(' ');
    }
    while (text.endsWith(QLatin1Char(' ')))
        text.chop(1);
    return text;
}

QString drawText(const RowSets &table)
{
    QStringList lines {scale()};
    for (const Round_Current_I *set : table)
        lines += line(*set);
    lines += QStringLiteral("Last decimal shown: 7 for 10^-7, ... 1 for 0.1, 0 for 1, A for 10, "
                            "B for 100, C for 1000, D for 10000;\nnothing above the range.");
    return lines.join(QLatin1Char('\n'));
}

// --- SVG

constexpr int decadeSize = 48;
constexpr int left = 60;
constexpr int top = 20;
constexpr int legendWidth = 90;
constexpr int lowestDecimal = -8;
constexpr int highestDecimal = 5;

double x(double power)
{
    return left + (power - lowestDecade) * decadeSize;
}

double y(double power)
{
    return top + (highestDecimal - power) * decadeSize / 2.;
}

QString place(double position)
{
    return QString::number(position, 'f', 1);
}

QString element(double x1, double y1, double x2, double y2)
{
    return QStringLiteral("<line x1='%1' y1='%2' x2='%3' y2='%4' stroke='#ddd'/>")
        .arg(place(x1), place(y1), place(x2), place(y2));
}

QString words(double textX, double textY, const QString &text, const QString &attributes = {})
{
    return QStringLiteral("<text x='%1' y='%2' %4>%3</text>")
        .arg(place(textX), place(textY), text, attributes);
}

QStringList grid()
{
    QStringList lines;
    for (int power = lowestDecade; power <= highestDecade; ++power) {
        lines += element(x(power), y(lowestDecimal), x(power), y(highestDecimal));
        lines += words(x(power), y(lowestDecimal) + 16, withPrefix(power),
                       QStringLiteral("text-anchor='middle'"));
    }
    for (int power = lowestDecimal; power <= highestDecimal; ++power) {
        lines += element(x(lowestDecade), y(power), x(highestDecade), y(power));
        lines +=
            words(left - 6, y(power) + 4, withPrefix(power), QStringLiteral("text-anchor='end'"));
    }
    return lines;
}

/**
 * The steps of one current; drawn slightly below those of the next one, so that they do not hide
 * each other.
 */
QStringList steps(const Round_Current_I &set, int index, int count)
{
    const QString colour = QStringLiteral("hsl(%1,70%,45%)").arg(index * 300 / count);
    const double shift = (index - count / 2.) * decadeSize / 4. / count;
    QStringList points;
    double from = lowestDecade;
    for (const RoundItem *row : set.items) {
        const double to = std::log10(double(row->maximum));
        const QString height = place(y(lastDecimal(*row)) + shift);
        points += place(x(from)) + QLatin1Char(',') + height;
        points += place(x(to)) + QLatin1Char(',') + height;
        from = to;
    }
    return {QStringLiteral("<polyline fill='none' stroke-width='2' stroke='%1' points='%2'/>")
                .arg(colour, points.join(QLatin1Char(' '))),
            words(x(highestDecade) + 10, top + 12 * (index + 1), currentName(set.current),
                  QStringLiteral("fill='%1'").arg(colour))};
}

QString drawSvg(const RowSets &table)
{
    QStringList lines {QStringLiteral("<svg xmlns='http://www.w3.org/2000/svg' width='%1' "
                                      "height='%2' font-family='sans-serif' font-size='11'>")
                           .arg(int(x(highestDecade)) + legendWidth)
                           .arg(int(y(lowestDecimal)) + 40)};
    lines += QStringLiteral("<rect width='100%' height='100%' fill='white'/>");
    lines += grid();
    for (int i = 0; i < table.size(); ++i)
        lines += steps(*table.at(i), i, int(table.size()));
    lines += words(x(0), y(lowestDecimal) + 32, QStringLiteral("value"),
                   QStringLiteral("text-anchor='middle'"));
    lines += words(left, top - 6, QStringLiteral("last decimal shown"));
    lines += QStringLiteral("</svg>");
    return lines.join(QLatin1Char('\n'));
}

// --- JSON

QJsonArray toJson(const RowSets &table)
{
    QJsonArray sets;
    for (const Round_Current_I *set : table) {
        QJsonArray rows;
        for (const RoundItem *row : set->items)
            rows += QJsonObject {{QStringLiteral("maximum"), double(row->maximum)},
                                 {QStringLiteral("lastDecimal"), lastDecimal(*row)}};
        sets += QJsonObject {{QStringLiteral("current"), int(set->current)},
                             {QStringLiteral("rows"), rows}};
    }
    return sets;
}

} // namespace

int plotValues(const Call &call)
{
    const auto method = valueOf(methodWords, call.option("method"));
    if (!method)
        return misuse(QStringLiteral("--method knows %1").arg(wordList(methodWords)));
    const QString problem = prepareTables(call);
    if (!problem.isEmpty())
        return misuse(problem);
    const RowSets &table = tableOf(*method);
    call.print(toJson(table), call.isSet("svg") ? drawSvg(table) : drawText(table));
    return Success;
}
