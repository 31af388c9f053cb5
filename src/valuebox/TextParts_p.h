#pragma once

#include "valuebox/FixedPoint_p.h"

namespace Internal {

/**
 * The parts of a text such as "> -199.99 mΩ". Its length is computed first, so that making the text
 * takes one allocation.
 */
struct TextParts
{
    QLatin1String marker;
    bool hasMinus = false;
    FixedPoint number;
    bool hasBlank = false;
    QStringView prefix;
    QStringView unit;

    QString toString() const
    {
        QString text(marker.size() + int(hasMinus) + number.size() + int(hasBlank)
                         + int(prefix.size() + unit.size()),
                     Qt::Uninitialized);
        QChar *out = const_cast<QChar *>(text.constData()) + text.size(); // not shared yet
        out = writeBefore(out, unit);
        out = writeBefore(out, prefix);
        if (hasBlank)
            *--out = QLatin1Char(' ');
        out = number.writeBefore(out);
        if (hasMinus)
            *--out = QLatin1Char('-');
        writeBefore(out, marker);
        return text;
    }

private:
    template <typename Text> static QChar *writeBefore(QChar *end, const Text &text)
    {
        for (auto character = text.end(); character != text.begin();)
            *--end = QChar(*--character); // mostly one or two characters: not worth a function call
        return end;
    }
};

/** A number's text with its sign. */
inline QString toText(const FixedPoint &number)
{
    return TextParts {{}, number.isNegative(), number, false, {}, {}}.toString();
}

/** QString::number(value, 'f', decimals). */
inline QString fixedText(float value, int decimals)
{
    const auto number = FixedPoint::of(value, decimals);
    return number ? toText(*number) : QString::number(double(value), 'f', decimals);
}

} // namespace Internal
