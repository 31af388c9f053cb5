#pragma once

#include <QChar>
#include <QString>

#include <cmath>
#include <limits>

/** Texts and numbers that the tests of values share. */
namespace Texts {

const QString ohm(QChar(0x2126)); // the ohm sign, not the Greek letter
const QString micro(QChar(0x03BC)); // the Greek letter, not the micro sign
const QString degree(QChar(0x00B0));

constexpr float NaN = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float largest = std::numeric_limits<float>::max();

inline float next(float value)
{
    return std::nextafter(value, infinity);
}

inline float previous(float value)
{
    return std::nextafter(value, -infinity);
}

/** Equal, or both NaN. */
inline bool same(float a, float b)
{
    return a == b || (std::isnan(a) && std::isnan(b));
}

} // namespace Texts
