#pragma once

#include "meter/Limit.h"
#include "meter/Reading.h"
#include "meter/Verdict.h"

#include <QDateTime>
#include <QString>
#include <QVector>

/** What a series was recorded of, and with. */
struct SeriesConditions
{
    Form form;
    QString meterName;
    QString serialNumber;
    QString material; ///< empty: not compensated
    double alpha = 0; ///< of the material, in 1/K
    Limit limit;
    QString objectType;
    QString objectName;
    int interval = 0; ///< ms
    QDateTime start;
};

/**
 * Readings over time. Each one is judged, and goes into the statistics, when it is added; its text
 * is made once, when somebody first asks for it.
 */
class Series
{
public:
    static constexpr int capacity = 100000;

    Series() = default;
    explicit Series(SeriesConditions conditions);

    const SeriesConditions &conditions() const { return m_conditions; }
    void add(qint64 msSinceStart, float value);
    int count() const { return m_values.size(); }
    bool isEmpty() const { return m_values.isEmpty(); }

    float value(int index) const { return m_values.at(index); } ///< NaN for a missing one
    /** Since the start. */
    double seconds(int index) const { return static_cast<double>(m_times.at(index)) / 1000; }
    QDateTime time(int index) const { return m_conditions.start.addMSecs(m_times.at(index)); }
    const QString &text(int index) const;
    Verdict verdict(int index) const { return m_verdicts.at(index); }

    // Of the values that are not missing, in the base unit; NaN where there are too few.
    int presentCount() const { return m_present; }
    float minimum() const { return m_minimum; }
    float maximum() const { return m_maximum; }
    float mean() const;
    float standardDeviation() const; ///< of a sample: divided by one less than the count

    int passed() const { return m_passed; }
    int failed() const { return m_failed; }
    /** Fails with its first reading that fails; passes when every reading does. */
    Verdict::Outcome outcome() const;

    /** Index of the reading nearest in time; -1 for none. */
    int nearest(double seconds) const;

    /** The unit of temperatures has changed: texts are made anew. */
    void forgetTexts();
    /** Makes the texts that nobody has asked for yet; they belong to the interface's thread. */
    void makeTexts() const;

private:
    SeriesConditions m_conditions;
    QVector<float> m_values;
    QVector<qint64> m_times; ///< ms since the start
    QVector<Verdict> m_verdicts;
    mutable QVector<QString> m_texts;
    int m_present = 0;
    float m_minimum = std::numeric_limits<float>::quiet_NaN();
    float m_maximum = std::numeric_limits<float>::quiet_NaN();
    double m_mean = 0;
    double m_squares = 0; ///< sum of the squared distances from the mean
    int m_passed = 0;
    int m_failed = 0;
};
