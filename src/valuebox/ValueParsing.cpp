#include "valuebox/FixedPoint_p.h"
#include "valuebox/NumericalValueBox.h"
#include "valuebox/NumericalValueBox_p.h"

#include <algorithm>
#include <array>

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

/** A unit or prefix whose text is at the end of a unit part; an empty text if there is none. */
template <typename Key> struct Ending
{
    Key key {};
    QStringView text;
};

/**
 * Takes the longest text, and of equal texts the smallest key, so that the result does not depend
 * on the order of the hash.
 */
template <typename Key, typename Entries>
Ending<Key> longestEnding(QStringView part, const Entries &entries)
{
    Ending<Key> best;
    if (part.isEmpty())
        return best;
    const QChar last = part.back();
    for (const auto &entry : entries) {
        const QStringView text = entry.text.source();
        if (text.isEmpty() || text.back() != last || !endsWith(part, text))
            continue;
        if (text.size() > best.text.size()
            || (text.size() == best.text.size() && entry.key < best.key))
            best = {entry.key, text};
    }
    return best;
}

/**
 * Reads a plain decimal number, as toString() writes it, up to a space. Numbers of up to 15 digits
 * are exact in double precision, so a single division gives the double nearest to the text.
 * @return the number's end; null, with nothing read, if the text does not start with such a number
 */
const QChar *readPlainNumber(QStringView text, ParsedText &content)
{
    constexpr int maxDigits = 15;
    static constexpr std::array<double, maxDigits + 1> powers {
        1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    const QChar *const end = text.end();
    const QChar *character = text.begin();
    const bool isNegative = character != end && *character == QLatin1Char('-');
    if (isNegative)
        ++character;
    const QChar *const start = character;
    const QChar *point = nullptr;
    quint64 digits = 0;
    for (; character != end; ++character) {
        const auto digit = quint32(character->unicode()) - '0';
        if (digit <= 9)
            digits = digits * 10 + digit;
        else if (*character == QLatin1Char('.') && !point)
            point = character;
        else if (*character == QLatin1Char(' '))
            break;
        else
            return nullptr;
    }
    const auto count = character - start - (point ? 1 : 0);
    const auto decimals = point ? character - point - 1 : 0;
    if (count > maxDigits || count == decimals || (point && decimals == 0))
        return nullptr;
    const double magnitude = double(digits) / powers[std::size_t(decimals)];
    content.value = float(isNegative ? -magnitude : magnitude);
    content.precision = int(decimals);
    content.isNumber = true;
    return character;
}

/** Reads a number in any form that QString accepts. */
void readAnyNumber(QStringView part, ParsedText &content)
{
    const auto point = part.indexOf(QLatin1Char('.'));
    content.precision = point < 0 ? 0 : int(part.size() - point - 1);
    const float number = part.toString().toFloat(&content.isNumber);
    content.value = content.isNumber ? number : std::numeric_limits<float>::quiet_NaN();
}

/** Whether @p text occurs in @p part at a place that starts before @p position. */
bool startsBefore(const QChar *position, QStringView text, QStringView part)
{
    for (const QChar *start = part.begin(); start != position; ++start) {
        if (std::equal(text.begin(), text.end(), start))
            return true;
    }
    return false;
}

/** Removes the unit's text from a unit part, wherever it occurs. */
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
        const QStringView before = part.chopped(unit.text.size());
        if (!startsBefore(before.end(), unit.text, part)) {
            part = before;
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

/** QStringView::trimmed(), but fast for texts without white space around them, as most are. */
QStringView trimmed(QStringView text)
{
    const bool isTrimmed = !text.isEmpty() && !isSpace(text.front()) && !isSpace(text.back());
    return isTrimmed ? text : text.trimmed();
}

/**
 * Reads a text of any form: its parts are separated by single spaces, and the first of three is
 * skipped.
 */
void readParts(QStringView text, ParsedText &content)
{
    const QLatin1Char blank(' ');
    constexpr int blanksWithMarker = 2; // "> 199.99 mΩ": the marker is skipped
    if (std::count(text.begin(), text.end(), blank) == blanksWithMarker)
        text = text.mid(text.indexOf(blank) + 1);
    const auto end = text.indexOf(blank);
    const QStringView number = end < 0 ? text : text.left(end);
    if (!readPlainNumber(number, content))
        readAnyNumber(number, content);
    if (!content.isNumber || end < 0)
        return;
    const QStringView rest = text.mid(end + 1);
    const auto unitEnd = rest.indexOf(blank);
    readUnit(unitEnd < 0 ? rest : rest.left(unitEnd), content);
}

} // namespace

ParsedText parsed(QStringView text)
{
    text = trimmed(text);
    ParsedText content;
    const QChar *const end = readPlainNumber(text, content);
    if (!end || std::count(end, text.end(), QLatin1Char(' ')) > 1)
        readParts(text, content);
    else if (end != text.end()) // such as "1.2345 mΩ", the usual case
        readUnit(QStringView(end + 1, text.end()), content);
    return content;
}

} // namespace Internal
