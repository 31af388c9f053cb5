#include "valuebox/FixedPoint_p.h"

#include <array>
#include <cmath>
#include <cstring>
#include <limits>

namespace Internal {

namespace {

static_assert(std::numeric_limits<float>::is_iec559 && sizeof(float) == sizeof(quint32));

constexpr int mantissaBits = 23;
constexpr quint32 hiddenBit = 1U << mantissaBits;
constexpr quint32 exponentMask = 0xFF;
constexpr int exponentBias = 127 + mantissaBits;
constexpr int longestShift = 63;
/** 2^24 * 2^largestExponent * 10^8 is below 2^63. */
constexpr int largestExponent = 12;
constexpr int decimalsOfLargeNumbers = 8;

constexpr std::array<quint64, 20> powersOfTen {1U,
                                               10U,
                                               100U,
                                               1000U,
                                               10000U,
                                               100000U,
                                               1000000U,
                                               10000000U,
                                               100000000U,
                                               1000000000U,
                                               10000000000U,
                                               100000000000U,
                                               1000000000000U,
                                               10000000000000U,
                                               100000000000000U,
                                               1000000000000000U,
                                               10000000000000000U,
                                               100000000000000000U,
                                               1000000000000000000U,
                                               10000000000000000000U};

int countDigits(quint64 number)
{
    int count = 1;
    while (count < int(powersOfTen.size()) && number >= powersOfTen[std::size_t(count)])
        ++count;
    return count;
}

/** Writes digits backwards, with the point where the decimals end. */
class BackwardWriter
{
public:
    BackwardWriter(QChar *end, int decimals) : m_out(end), m_untilPoint(decimals) { }

    void put(quint32 digit)
    {
        *--m_out = QChar(ushort('0' + digit));
        if (--m_untilPoint == 0)
            *--m_out = QLatin1Char('.');
    }

private:
    QChar *m_out;
    int m_untilPoint;
};

} // namespace

double powerOfTen(int exponent)
{
    static constexpr int largest = 9;
    static constexpr std::array<double, 2 * largest + 1> powers {
        1e-9, 1e-8, 1e-7, 1e-6, 1e-5, 1e-4, 1e-3, 1e-2, 1e-1, 1e0,
        1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9};
    if (exponent < -largest || exponent > largest)
        return std::pow(10.0, exponent);
    return powers[std::size_t(exponent + largest)];
}

FixedPoint::FixedPoint(quint64 digits, int decimals, bool isNegative)
    : m_digits(digits)
    , m_decimals(decimals)
    , m_size(qMax(countDigits(digits), decimals + 1) + (decimals > 0 ? 1 : 0))
    , m_isNegative(isNegative)
{ }

std::optional<FixedPoint> FixedPoint::of(float value, int decimals)
{
    if (decimals < 0 || decimals > maximumDecimals)
        return std::nullopt;
    quint32 bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    const quint32 storedExponent = (bits >> mantissaBits) & exponentMask;
    quint64 mantissa = bits & (hiddenBit - 1);
    if (storedExponent != 0)
        mantissa |= hiddenBit;
    const int exponent = int(qMax(storedExponent, 1U)) - exponentBias;
    const quint64 product = mantissa * powersOfTen[std::size_t(decimals)];
    quint64 digits = 0;
    if (exponent > 0) {
        if (exponent > largestExponent || decimals > decimalsOfLargeNumbers)
            return std::nullopt;
        digits = product << exponent;
    } else if (exponent == 0) {
        digits = product;
    } else if (exponent >= -longestShift) {
        digits = (product + (quint64(1) << (-exponent - 1))) >> -exponent;
    } // else less than half of the last decimal
    return FixedPoint(digits, decimals, value < 0);
}

QChar *FixedPoint::write(QChar *out) const
{
    QChar *const end = out + m_size;
    BackwardWriter writer(end, m_decimals);
    constexpr quint32 base = 10;
    quint64 wide = m_digits;
    int left = m_size - (m_decimals > 0 ? 1 : 0);
    for (; wide > std::numeric_limits<quint32>::max(); --left) {
        writer.put(quint32(wide % base));
        wide /= base;
    }
    auto narrow = quint32(wide); // 64-bit divisions are slow on 32-bit ARM
    for (; left > 0; --left) {
        writer.put(narrow % base);
        narrow /= base;
    }
    return end;
}

QString fixedText(float value, int decimals)
{
    const auto number = FixedPoint::of(value, decimals);
    if (!number)
        return QString::number(double(value), 'f', decimals);
    const int sign = number->isNegative() ? 1 : 0;
    QString text(sign + number->size(), Qt::Uninitialized);
    QChar *out = text.data();
    if (number->isNegative())
        *out++ = QLatin1Char('-');
    number->write(out);
    return text;
}

} // namespace Internal
