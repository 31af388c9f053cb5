#pragma once

#include <QChar>
#include <QtAlgorithms>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>

namespace Internal {

/** 10^exponent; the nearest double for the exponents of prefixes. */
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

/** Powers of ten that are exact in double precision, and whose product with a float is, too. */
constexpr std::array<double, 10> exactPowersOfTen {1e0, 1e1, 1e2, 1e3, 1e4,
                                                   1e5, 1e6, 1e7, 1e8, 1e9};

/** Value divided by 10^prefix in double precision, as single precision. */
inline float scaled(float value, int prefix)
{
    // A division takes several times as long as a multiplication. Quotient and product differ only
    // in the last bits of a double. Both round to the same float unless the product, which is
    // exact, lies halfway between two floats.
    constexpr quint32 bitsBelowFloat = (1U << 29U) - 1;
    constexpr quint32 halfway = 1U << 28U;
    const quint32 zeros = 0U - quint32(prefix);
    if (Q_LIKELY(zeros < exactPowersOfTen.size())) {
        const double product = double(value) * exactPowersOfTen[zeros];
        quint64 bits = 0;
        std::memcpy(&bits, &product, sizeof bits);
        if (Q_LIKELY((quint32(bits) & bitsBelowFloat) != halfway))
            return float(product);
    }
    return float(double(value) / powerOfTen(prefix));
}

/**
 * A single-precision number in fixed-point notation: the exact binary value rounded to a number of
 * decimals, ties away from zero, as QString::number(value, 'f', decimals) does it.
 *
 * A float has 24 significant bits, and 10^8 has 19 apart from its factors of two, so their product
 * is exact in double precision. Adding a half is exact if the sum is an integer; otherwise its
 * rounding error is far smaller than the distance to the next integer.
 */
class FixedPoint
{
public:
    static constexpr int maxDecimals = 8;

    /** Whether a number fits: finite, at most maxDecimals, and at most 32 bits. */
    static bool fits(float value, int decimals)
    {
        constexpr double limit = 4294967296.; // 2^32
        return decimals >= 0 && decimals <= maxDecimals
            && roundedUnits(value, decimals) < limit; // false for NaN
    }
    /** The number, or nothing if it does not fit. */
    static std::optional<FixedPoint> of(float value, int decimals)
    {
        return fits(value, decimals) ? std::optional(FixedPoint(value, decimals)) : std::nullopt;
    }

    /** @pre fits(value, decimals) */
    FixedPoint(float value, int decimals)
        : FixedPoint(quint32(roundedUnits(value, decimals)), decimals, value < 0)
    { }
    FixedPoint(quint32 digits, int decimals, bool isNegative)
        : m_digits(digits)
        , m_decimals(decimals)
        , m_isNegative(isNegative)
    { }

    /** Magnitude in units of the last decimal. */
    quint32 digits() const { return m_digits; }
    /** Whether the number is below zero, even if all of its digits are zero. */
    bool isNegative() const { return m_isNegative; }

    /** Removes trailing zeros of the decimals, and the decimal point if no decimal is left. */
    void trimZeros();

    /** Characters of the magnitude's text. */
    int size() const
    {
        return qMax(countDigits(m_digits), m_decimals + 1) + (m_decimals > 0 ? 1 : 0);
    }
    /** Writes the magnitude's text before @p end. @return its start */
    QChar *writeBefore(QChar *end) const;

private:
    static constexpr quint32 base = 10;

    /**
     * Magnitude in units of the last decimal, plus a half: its integer part is the rounded
     * magnitude.
     */
    static double roundedUnits(float value, int decimals)
    {
        static_assert(std::numeric_limits<float>::is_iec559
                      && std::numeric_limits<double>::is_iec559);
        return std::fabs(double(value)) * exactPowersOfTen[std::size_t(decimals)] + 0.5;
    }
    static int countDigits(quint32 number);

    quint32 m_digits;
    int m_decimals;
    bool m_isNegative;
};

inline void FixedPoint::trimZeros()
{
    while (m_decimals > 0 && m_digits % base == 0) {
        m_digits /= base;
        --m_decimals;
    }
}

inline int FixedPoint::countDigits(quint32 number)
{
    // The table has one entry for each position of the number's highest bit. Its upper half holds
    // the most digits that such a number can have; from that the smallest number with so many
    // digits is subtracted. Adding the number itself leaves one digit less in the upper half if the
    // number is smaller than that. This needs no branch that a processor could mispredict.
    static constexpr auto digitsOfBits = [] {
        std::array<quint64, 32> all {};
        quint64 power = base;
        quint64 digits = 1;
        for (std::size_t bit = 0; bit < all.size(); ++bit) {
            const bool isPowerAmong = power < (quint64(2) << bit);
            digits += isPowerAmong ? 1 : 0;
            all[bit] = (digits << 32) - (isPowerAmong ? power : 0);
            power *= isPowerAmong ? base : 1;
        }
        return all;
    }();
    const auto bit = 31 - qCountLeadingZeroBits(number | 1U);
    return int((digitsOfBits[bit] + number) >> 32);
}

inline QChar *FixedPoint::writeBefore(QChar *end) const
{
    // Two digits per step: half as many divisions, each by a constant.
    using Pair = std::array<QChar, 2>;
    static constexpr quint32 pairCount = base * base;
    static constexpr auto pairs = [] {
        std::array<Pair, pairCount> all {};
        for (quint32 i = 0; i < pairCount; ++i)
            all[i] = {QChar('0' + i / base), QChar('0' + i % base)};
        return all;
    }();
    quint32 rest = m_digits;
    QChar *out = end;
    const auto writePair = [&out, &rest] {
        out -= 2;
        std::copy_n(pairs[rest % pairCount].begin(), 2, out);
        rest /= pairCount;
    };
    const auto writeDigit = [&out, &rest] {
        *--out = ushort('0' + rest % base);
        rest /= base;
    };
    if (m_decimals > 0) {
        for (int left = m_decimals; left > 1; left -= 2)
            writePair();
        if (m_decimals % 2 != 0)
            writeDigit();
        *--out = QLatin1Char('.');
    }
    while (rest >= pairCount)
        writePair();
    // One digit or two are left, written without a branch that a processor could mispredict: if
    // there is only one, the second digit of the pair overwrites the first.
    QChar *const start = out - (rest >= base ? 2 : 1);
    *start = pairs[rest][0];
    *--out = pairs[rest][1];
    return start;
}

} // namespace Internal
