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

namespace {

bool endsWith(QStringView part, QStringView ending)
{
    return part.size() >= ending.size()
        && std::equal(ending.begin(), ending.end(), part.end() - ending.size());
}

/** The entry whose text ends a unit part; none if there is none. */
template <typename Key> struct Ending
{
    Key key {};
    QStringView text;
};

/** The longest text counts, of equal ones the smallest key: the order of a hash must not. */
template <typename Key, typename Entries>
Ending<Key> longestEnding(QStringView part, const Entries &entries)
{
    Ending<Key> best;
    for (const auto &entry : entries) {
        const QStringView text = *entry.text;
        if (text.isEmpty() || !endsWith(part, text) || text.size() < best.text.size())
            continue;
        if (text.size() > best.text.size() || entry.key < best.key)
            best = {entry.key, text};
    }
    return best;
}

/**
 * Reads a plain decimal number, as toString() writes it. Up to 15 digits are exact in double
 * precision, and so one division gives the number nearest to the text.
 * @return whether the part is such a number
 */
bool readPlainNumber(QStringView part, ParsedText &content)
{
    constexpr int mostDigits = 15;
    static constexpr std::array<double, mostDigits + 1> powers {
        1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    const QChar *character = part.begin();
    const bool isNegative = !part.isEmpty() && *character == QLatin1Char('-');
    if (isNegative)
        ++character;
    const QChar *const start = character;
    const QChar *point = nullptr;
    quint64 digits = 0;
    for (; character != part.end(); ++character) {
        const auto digit = quint32(character->unicode()) - '0';
        if (digit <= 9)
            digits = digits * 10 + digit;
        else if (*character == QLatin1Char('.') && !point)
            point = character;
        else
            return false;
    }
    const auto count = character - start - (point ? 1 : 0);
    const auto decimals = point ? character - point - 1 : 0;
    if (count > mostDigits || count == decimals || (point && decimals == 0))
        return false;
    const double magnitude = double(digits) / powers[std::size_t(decimals)];
    content.value = float(isNegative ? -magnitude : magnitude);
    content.precision = int(decimals);
    content.isNumber = true;
    return true;
}

void readNumber(QStringView part, ParsedText &content)
{
    if (readPlainNumber(part, content))
        return;
    const auto point = part.indexOf(QLatin1Char('.'));
    content.precision = point < 0 ? 0 : int(part.size() - point - 1);
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
    const auto unit = longestEnding<ValueBox::Units>(part, unitTexts.entries());
    QString rest;
    if (!unit.text.isEmpty()) {
        content.hasUnit = true;
        content.unit = unit.key;
        const QChar *const ending = part.end() - unit.text.size();
        if (std::search(part.begin(), part.end(), unit.text.begin(), unit.text.end()) == ending) {
            part = QStringView(part.begin(), ending);
        } else {
            rest = without(unit.text, part);
            part = rest;
        }
    }
    content.hasPrefix = true;
    const auto prefix = longestEnding<ValueBox::UnitPrefixs>(part, prefixTexts.entries());
    if (!prefix.text.isEmpty()) {
        content.prefix = prefix.key;
        content.value = float(double(content.value) * powerOfTen(prefix.key));
    }
}

/** A text without white space around it; most have none. */
QStringView trimmed(QStringView text)
{
    const bool isTrimmed = !text.isEmpty() && !isSpace(text.front()) && !isSpace(text.back());
    return isTrimmed ? text : text.trimmed();
}

/** Splits at single blanks. @return the number of parts, of which only the first ones are kept */
template <std::size_t Size>
std::size_t split(QStringView text, std::array<QStringView, Size> &parts)
{
    std::size_t count = 0;
    const QChar *start = text.begin();
    for (const QChar *character = start;; ++character) {
        if (character != text.end() && *character != QLatin1Char(' '))
            continue;
        if (count < Size)
            parts[count] = QStringView(start, character);
        ++count;
        if (character == text.end())
            return count;
        start = character + 1;
    }
}

} // namespace

ParsedText parsed(QStringView text)
{
    constexpr int partsWithMarker = 3; // "> 199.99 mΩ": the marker is not the number
    std::array<QStringView, partsWithMarker> parts;
    const std::size_t count = split(trimmed(text), parts);
    const std::size_t first = count == partsWithMarker ? 1 : 0;
    ParsedText content;
    readNumber(parts[first], content);
    if (content.isNumber && count - first > 1)
        readUnit(parts[first + 1], content);
    return content;
}

} // namespace Internal
