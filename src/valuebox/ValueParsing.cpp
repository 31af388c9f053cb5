#include "valuebox/FixedPoint_p.h"
#include "valuebox/NumericalValueBox.h"
#include "valuebox/NumericalValueBox_p.h"

#include <algorithm>
#include <array>
#include <optional>

namespace ValueBox {

using Internal::ParsedText;

bool NumericalValueBox::parse(const QString &text, float &value, int &precision, Units &unit,
                              UnitPrefixs &prefix)
{
    const ParsedText content = Internal::parsed(text);
    value = content.value;
    precision = content.precision;
    if (content.hasUnit)
        unit = content.unit;
    if (content.hasPrefix)
        prefix = content.prefix;
    return content.isNumber;
}

float NumericalValueBox::getValue(const QString &text)
{
    return Internal::parsed(text).value;
}

} // namespace ValueBox

namespace Internal {

using ValueBox::NumericalValueBox;

namespace {

/** The entry whose text ends a unit part; a null text when there is none. */
template <typename Key> struct Ending
{
    Key key {};
    QStringView text;
};

/** The longest text counts, of equal ones the smallest key: the hash's order must not. */
template <typename Key>
Ending<Key> longestEnding(QStringView part, const QHash<Key, QString> &texts)
{
    Ending<Key> best;
    for (auto entry = texts.constBegin(); entry != texts.constEnd(); ++entry) {
        const QStringView text = *entry;
        if (text.isEmpty() || text.size() < best.text.size() || !part.endsWith(text))
            continue;
        if (text.size() > best.text.size() || entry.key() < best.key)
            best = {entry.key(), text};
    }
    return best;
}

/**
 * A plain decimal number, as toString() writes it: up to 15 digits and up to 15 decimals are
 * exact in double precision, and so one division gives the nearest number. Nothing otherwise.
 */
std::optional<float> plainNumber(QStringView text)
{
    constexpr int mostDigits = 15;
    static constexpr std::array<double, mostDigits + 1> powers {
        1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    const bool isNegative = text.startsWith(QLatin1Char('-'));
    if (isNegative)
        text = text.mid(1);
    if (text.isEmpty() || text.size() > mostDigits + 1)
        return std::nullopt;
    quint64 digits = 0;
    int count = 0;
    int pointAfter = -1;
    for (const QChar character : text) {
        const auto digit = quint32(character.unicode()) - '0';
        if (digit <= 9) {
            digits = digits * 10 + digit;
            ++count;
        } else if (character == QLatin1Char('.') && pointAfter < 0 && count > 0) {
            pointAfter = count;
        } else {
            return std::nullopt;
        }
    }
    if (count > mostDigits || pointAfter == count)
        return std::nullopt;
    const int decimals = pointAfter < 0 ? 0 : count - pointAfter;
    const double magnitude = double(digits) / powers[std::size_t(decimals)];
    return float(isNegative ? -magnitude : magnitude);
}

void readNumber(QStringView part, ParsedText &content)
{
    const auto point = part.indexOf(QLatin1Char('.'));
    content.precision = point < 0 ? 0 : int(part.size() - point - 1);
    if (const auto number = plainNumber(part)) {
        content.value = *number;
        content.isNumber = true;
        return;
    }
    const float number = part.toString().toFloat(&content.isNumber);
    if (content.isNumber)
        content.value = number;
}

/** What is left of a unit part without its unit's text, wherever that stands. */
QString without(QStringView unitText, QStringView part)
{
    return part.toString().remove(unitText.toString());
}

void readUnit(QStringView part, ParsedText &content)
{
    const auto unit = longestEnding(part, NumericalValueBox::unitString);
    QString rest;
    if (!unit.text.isEmpty()) {
        content.hasUnit = true;
        content.unit = unit.key;
        const auto start = part.size() - unit.text.size();
        if (part.indexOf(unit.text) == start) {
            part.truncate(start);
        } else {
            rest = without(unit.text, part);
            part = rest;
        }
    }
    content.hasPrefix = true;
    const auto prefix = longestEnding(part, NumericalValueBox::prefixString);
    if (!prefix.text.isEmpty()) {
        content.prefix = prefix.key;
        content.value = float(double(content.value) * powerOfTen(prefix.key));
    }
}

} // namespace

ParsedText parsed(QStringView text)
{
    const QLatin1Char blank(' ');
    ParsedText content;
    QStringView rest = text.trimmed();
    if (std::count(rest.begin(), rest.end(), blank)
        == 2) // "> 199.99 mΩ": the marker is not the number
        rest = rest.mid(rest.indexOf(blank) + 1);
    const auto numberEnd = rest.indexOf(blank);
    readNumber(numberEnd < 0 ? rest : rest.left(numberEnd), content);
    if (!content.isNumber || numberEnd < 0)
        return content;
    rest = rest.mid(numberEnd + 1);
    const auto unitEnd = rest.indexOf(blank);
    readUnit(unitEnd < 0 ? rest : rest.left(unitEnd), content);
    return content;
}

} // namespace Internal
