#include "touch/Ticks.h"

#include <cmath>

namespace {

struct Step
{
    double length;
    int decimals;
};

/** The smallest of ... 1, 2, 5, 10, 20 ... that divides the span into at most that many steps. */
Step roundStep(double span, int most)
{
    const double shortest = span / most;
    const double decade = std::floor(std::log10(shortest));
    const int decimals = std::max(0, -int(decade));
    const double unit = std::pow(10, decade);
    for (const int factor : {1, 2, 5}) {
        if (factor * unit >= shortest * (1 - 1e-9))
            return {factor * unit, decimals};
    }
    return {10 * unit, std::max(0, decimals - 1)};
}

} // namespace

Ticks Ticks::between(double low, double high, int most)
{
    Ticks ticks;
    const Step step = roundStep(high - low, most);
    // The tolerance keeps ticks at the ends in spite of rounding.
    const auto first = qint64(std::ceil(low / step.length - 1e-9));
    const auto last = qint64(std::floor(high / step.length + 1e-9));
    for (qint64 i = first; i <= last; ++i) {
        const double value = double(i) * step.length;
        ticks.values += value;
        ticks.labels += QString::number(value, 'f', step.decimals);
    }
    return ticks;
}
