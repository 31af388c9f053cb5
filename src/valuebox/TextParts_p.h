#pragma once

#include "valuebox/FixedPoint_p.h"

namespace Internal {

/** "> -199.99 mΩ", part by part: its length is known first, and making it takes one allocation. */
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
        const int numberSize = number.size();
        QString text(marker.size() + int(hasMinus) + numberSize + int(hasBlank)
                         + int(prefix.size() + unit.size()),
                     Qt::Uninitialized);
        QChar *out = text.data();
        for (const char character : marker)
            *out++ = QLatin1Char(character);
        if (hasMinus)
            *out++ = QLatin1Char('-');
        out = number.write(out, numberSize);
        if (hasBlank)
            *out++ = QLatin1Char(' ');
        for (const QChar character : prefix)
            *out++ = character;
        for (const QChar character : unit)
            *out++ = character;
        return text;
    }
};

/** QString::number(value, 'f', decimals). */
inline QString fixedText(float value, int decimals)
{
    const auto number = FixedPoint::of(value, decimals);
    if (!number)
        return QString::number(double(value), 'f', decimals);
    return TextParts {{}, number->isNegative(), *number, false, {}, {}}.toString();
}

} // namespace Internal
