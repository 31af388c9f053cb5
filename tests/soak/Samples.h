#pragma once

#include <QString>

#include <array>
#include <vector>

/** Samples of what a long-running program uses, over time, and whether that grows. */
class Samples
{
public:
    /** Takes a sample; when there are too many, every other one is dropped. */
    void take(double seconds);

    /**
     * Compares the minimum of the last quarter with that of the second: short peaks do not count,
     * nor growth during the first quarter. @return a line for each quantity that has grown
     */
    QString growth() const;
    QString summary() const;
    /** A plot of each quantity over time, one below the other. */
    QByteArray svg(const QString &title) const;

private:
    static constexpr int quantityCount = 5;
    struct Sample
    {
        double seconds;
        std::array<qint64, quantityCount> values;
    };

    qint64 least(std::size_t quantity, std::size_t quarter) const;

    std::vector<Sample> m_samples;
};
