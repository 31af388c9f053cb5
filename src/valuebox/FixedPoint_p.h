#pragma once

#include <QString>

#include <optional>

namespace Internal {

/** 10^exponent; exact to the last bit for the exponents that prefixes have. */
double powerOfTen(int exponent);

/** Value divided by 10^prefix in double precision, as single precision. */
inline float scaled(float value, int prefix)
{
    return float(double(value) / powerOfTen(prefix));
}

/**
 * A single-precision number in fixed-point notation, worked out with integers.
 *
 * Such a number is a 24-bit integer times a power of two. Times 10^decimals it still fits 64
 * bits, so one shift with half added gives exactly the digits of QString::number(value, 'f',
 * decimals): the exact binary value rounded, ties away from zero.
 */
class FixedPoint
{
public:
    static constexpr int maximumDecimals = 11;

    /** Nothing for numbers that do not fit: not finite, very large, too many decimals. */
    static std::optional<FixedPoint> of(float value, int decimals);

    /** Whether all shown digits are zero. */
    bool isZero() const { return m_digits == 0; }
    /** Magnitude in units of the last decimal. */
    quint64 digits() const { return m_digits; }
    /** Whether the number is below zero, also when its digits are not. */
    bool isNegative() const { return m_isNegative; }
    /** Characters of the magnitude's text. */
    int size() const { return m_size; }
    /** Writes the magnitude's text. @return its end */
    QChar *write(QChar *out) const;

private:
    FixedPoint(quint64 digits, int decimals, bool isNegative);

    quint64 m_digits;
    int m_decimals;
    int m_size;
    bool m_isNegative;
};

/** QString::number(value, 'f', decimals) with a sign for every number below zero. */
QString fixedText(float value, int decimals);

} // namespace Internal
