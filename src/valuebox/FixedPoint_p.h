#pragma once

#include <QString>
#include <QtAlgorithms>

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>

namespace Internal {

/** 10^exponent; exact to the last bit for the exponents that prefixes have. */
inline double powerOfTen(int exponent)
{
    constexpr int largest = 9;
    static constexpr std::array<double, 2 * largest + 1> powers {
        1e-9, 1e-8, 1e-7, 1e-6, 1e-5, 1e-4, 1e-3, 1e-2, 1e-1, 1e0,
        1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9};
    if (exponent < -largest || exponent > largest)
        return std::pow(10.0, exponent);
    const int index = exponent + largest;
    return powers[std::size_t(index)];
}

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

    FixedPoint(quint64 digits, int decimals, bool isNegative)
        : m_digits(digits)
        , m_decimals(decimals)
        , m_isNegative(isNegative)
    { }

    /** Magnitude in units of the last decimal. */
    quint64 digits() const { return m_digits; }
    /** Whether the number is below zero, also when its digits are not. */
    bool isNegative() const { return m_isNegative; }

    /** Drops the zeros that end the decimals, and with all of them the point. */
    void trimZeros();

    /** Characters of the magnitude's text. */
    int size() const
    {
        return qMax(countDigits(m_digits), m_decimals + 1) + (m_decimals > 0 ? 1 : 0);
    }
    /** Writes the magnitude's text of size() characters. @return its end */
    QChar *write(QChar *out, int size) const;

private:
    static constexpr quint32 base = 10;
    static constexpr std::array<quint64, 20> powersOfBase = [] {
        std::array<quint64, 20> powers {};
        quint64 power = 1;
        for (quint64 &entry : powers) {
            entry = power;
            power *= base;
        }
        return powers;
    }();

    static int countDigits(quint64 number);
    static QChar digit(quint64 value) { return QLatin1Char(char('0' + value)); }

    quint64 m_digits;
    int m_decimals;
    bool m_isNegative;
};

inline std::optional<FixedPoint> FixedPoint::of(float value, int decimals)
{
    static_assert(std::numeric_limits<float>::is_iec559 && sizeof(float) == sizeof(quint32));
    constexpr int mantissaBits = 23;
    constexpr quint32 hiddenBit = 1U << mantissaBits;
    constexpr quint32 exponentMask = 0xFF;
    constexpr int exponentBias = 127 + mantissaBits;
    constexpr int longestShift = 63;
    // 2^24 * 2^12 * 10^8 is below 2^63.
    constexpr int largestExponent = 12;
    constexpr int decimalsOfLargeNumbers = 8;

    if (decimals < 0 || decimals > maximumDecimals)
        return std::nullopt;
    quint32 bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    const quint32 storedExponent = (bits >> mantissaBits) & exponentMask;
    const quint64 mantissa = (bits & (hiddenBit - 1)) | (storedExponent != 0 ? hiddenBit : 0);
    const int exponent = int(qMax(storedExponent, 1U)) - exponentBias;
    const quint64 product = mantissa * powersOfBase[std::size_t(decimals)];
    quint64 digits = 0;
    if (exponent >= 0) {
        if (exponent > largestExponent || (exponent > 0 && decimals > decimalsOfLargeNumbers))
            return std::nullopt;
        digits = product << exponent;
    } else if (exponent >= -longestShift) {
        digits = (product + (quint64(1) << (-exponent - 1))) >> -exponent;
    } // else less than half of the last decimal
    return FixedPoint(digits, decimals, value < 0);
}

inline void FixedPoint::trimZeros()
{
    while (m_decimals > 0 && m_digits % base == 0) {
        m_digits /= base;
        --m_decimals;
    }
}

inline int FixedPoint::countDigits(quint64 number)
{
    // 1233 / 4096 is log10(2), a little more than enough for 64 bits.
    const int bits = 64 - int(qCountLeadingZeroBits(number | 1U));
    const int estimate = (bits * 1233) >> 12;
    return estimate + (number >= powersOfBase[std::size_t(estimate)] ? 1 : 0);
}

inline QChar *FixedPoint::write(QChar *out, int size) const
{
    QChar *const end = out + size;
    QChar *position = end;
    quint64 wide = m_digits;
    int decimalsLeft = m_decimals;
    for (; wide > std::numeric_limits<quint32>::max(); wide /= base) {
        *--position = digit(wide % base);
        if (--decimalsLeft == 0)
            *--position = QLatin1Char('.');
    }
    auto narrow = quint32(wide); // 64-bit divisions are slow on 32-bit ARM
    if (decimalsLeft > 0) {
        for (; decimalsLeft > 0; --decimalsLeft, narrow /= base)
            *--position = digit(narrow % base);
        *--position = QLatin1Char('.');
    }
    for (; position != out; narrow /= base)
        *--position = digit(narrow % base);
    return end;
}

} // namespace Internal
