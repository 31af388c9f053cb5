#pragma once

#include "meter/AxisScale.h"
#include "meter/Limit.h"
#include "meter/Reading.h"
#include "meter/Verdict.h"

#include <QDateTime>
#include <QString>
#include <QVector>

#include <optional>

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
    int wanted = 0; ///< readings after which it ends by itself
    QDateTime start;
};

/** The figures of a series as they are shown; empty where there is no reading. */
struct SeriesFigures
{
    QString count;
    QString minimum;
    QString maximum;
    QString mean;
    QString deviation; ///< with three figures: "0.247 µΩ"; empty for less than two readings
};

/**
 * Readings over time. Each one is judged, goes into the statistics and gets its text when it is
 * added. Texts stay as they were shown, also when the meter becomes another one: only those of
 * temperatures follow the unit in effect.
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
    /** The value in the unit in which it is shown: of temperatures, the one in effect. */
    double shown(int index) const;
    /** Since the start. */
    double seconds(int index) const { return double(m_times.at(index)) / 1000; }
    QDateTime time(int index) const { return m_conditions.start.addMSecs(m_times.at(index)); }
    /** Made anew when it is a temperature and its unit has changed. */
    const QString &text(int index) const;
    Verdict verdict(int index) const { return m_verdicts.at(index); }

    // Of the values that are not missing, in the base unit; NaN where there are too few.
    int presentCount() const { return m_present; }
    float minimum() const { return m_minimum; }
    float maximum() const { return m_maximum; }
    float mean() const;
    float standardDeviation() const; ///< of a sample: divided by one less than the count

    int failed() const { return m_failed; }
    /** That of the first reading that fails; else of the first without a verdict: it passes when
     * every reading does. */
    Verdict verdict() const { return m_verdict; }

    /** As texts; they stay as they were when somebody first asked after the last reading. */
    const SeriesFigures &figures() const;

    AxisScale valueScale() const; ///< of an axis that shows all values
    TimeScale timeScale() const; ///< of an axis that reaches to the last reading

    /** Index of the reading nearest in time; -1 for none. */
    int nearest(double seconds) const;

    /** The unit of temperatures has changed: their texts are made anew, when they are asked for. */
    void takeUnit();
    /** Makes up to @p most texts that are missing. @return whether all are there now */
    bool makeTexts(int most) const;

private:
    QString deviationText() const;

    SeriesConditions m_conditions;
    QVector<float> m_values;
    QVector<qint64> m_times; ///< ms since the start
    QVector<Verdict> m_verdicts;
    mutable QVector<QString> m_texts; ///< null: not made yet
    mutable int m_firstMissing = 0; ///< no text before it is
    mutable std::optional<SeriesFigures> m_figures;
    int m_present = 0;
    float m_minimum = std::numeric_limits<float>::quiet_NaN();
    float m_maximum = std::numeric_limits<float>::quiet_NaN();
    double m_mean = 0;
    double m_squares = 0; ///< sum of the squared distances from the mean
    int m_failed = 0;
    Verdict m_verdict;
};
