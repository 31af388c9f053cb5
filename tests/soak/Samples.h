#pragma once

#include <QString>

#include <array>
#include <vector>

/** What a program that runs for long holds, over the time, and whether that grows. */
class Samples
{
public:
    /** Notes what is held now; of very many notes every other one is dropped. */
    void take(double seconds);

    /**
     * The least of the last quarter is not above the least of the second: what is held for a
     * moment does not count, nor what the first quarter is still to set up. @return what grows, a
     * line each; empty when all is flat
     */
    QString growth() const;
    QString summary() const;
    /** A plot of each quantity over the time, below one another. */
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
