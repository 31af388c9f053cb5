#include "PlainSteps.h"

#include <cmath>

namespace PlainSteps {

QString rounded(double value, int digits)
{
    const QString text = QString::number(value, 'f', 10);
    if (text.right(1) == "5" && text.contains("."))
        return QString::number(double((text + "1").toFloat()), 'f', digits);
    return QString::number(value, 'f', digits);
}

QString scaledAndRounded(float value, int digits, int prefix)
{
    return rounded(double(float(double(value) / std::pow(10., prefix))), digits);
}

QString shown(float value, bool isAbove, bool isNegative, int digits, int prefix,
              const QString &unitWithPrefix)
{
    QString text = scaledAndRounded(value, digits, prefix) + " " + unitWithPrefix;
    if (isAbove)
        text = "> " + text;
    if (isNegative)
        text = "-" + text;
    if (text.contains("---"))
        text = "---";
    bool ok = false;
    if (text.section(' ', 0, 0).toDouble(&ok) == 0 && ok)
        text.remove('-');
    return text.simplified();
}

QString halfDegrees(float temperature)
{
    const float oneDecimal = QString::number(double(temperature), 'f', 1).toFloat();
    const QString whole = QString::number(double(std::floor(oneDecimal)), 'f', 0);
    return whole + (std::fmod(double(oneDecimal), 1.0) < 0.5 ? ".0" : ".5");
}

} // namespace PlainSteps
