#pragma once

#include "meter/AxisScale.h"
#include "meter/Limit.h"
#include "meter/Reading.h"
#include "meter/Verdict.h"

#include <QDateTime>
#include <QString>
#include <QVector>

#include <optional>

/** The object, meter and settings with which a series was recorded. */
struct SeriesConditions
{
    ReadingFormat format;
    QString meterName;
    QString serialNumber;
    QString material; ///< empty: not compensated
    double alpha = 0; ///< temperature coefficient of the material, in 1/K
    Limit limit;
    QString objectType;
    QString objectName;
    int interval = 0; ///< ms
    int wanted = 0; ///< number of readings after which the series ends by itself
    QDateTime start;
};

/** The statistics of a series as they are shown; empty without readings. */
struct SeriesFigures
{
    QString count;
    QString minimum;
    QString maximum;
    QString mean;
    QString deviation; ///< such as "0.247 µΩ"; empty for less than two readings
};

/**
 * Readings over time. A reading is compared with the limit, added to the statistics and given its
 * text when it is added. Texts do not change, even if another serial number is set; only those of
 * temperatures follow the current unit.
 */
class Series
{
public:
    static constexpr int capacity = 100000;

    Series() = default;
    explicit Series(SeriesConditions conditions);

    const SeriesConditions &conditions() const { return m_conditions; }
    void add(qint64 msSinceStart, float value);
    int count() const { return int(m_values.size()); }
    bool isEmpty() const { return m_values.isEmpty(); }

    float value(int index) const { return m_values.at(index); } ///< NaN for a missing one
    /** The value in the unit in which it is shown; temperatures in the current unit. */
    double shown(int index) const;
    /** Since the start. */
    double seconds(int index) const { return double(m_times.at(index)) / 1000; }
    QDateTime time(int index) const { return m_conditions.start.addMSecs(m_times.at(index)); }
    /** The text of a reading; that of a temperature is made again after its unit has changed. */
    const QString &text(int index) const;
    Verdict verdict(int index) const { return m_verdicts.at(index); }

    // Statistics of the values that are not missing, in the base unit; NaN if there are too few.
    int presentCount() const { return m_present; }
    float minimum() const { return m_minimum; }
    float maximum() const { return m_maximum; }
    float mean() const;
    float standardDeviation() const; ///< of a sample: the divisor is the count less one

    int failed() const { return m_failed; }
    /**
     * The verdict of the first reading that fails, else of the first without a verdict; so the
     * series passes only if every reading does.
     */
    Verdict verdict() const { return m_verdict; }

    /**
     * The statistics as texts. They are made by the first call after a reading, and do not change
     * until the next one.
     */
    const SeriesFigures &figures() const;

    AxisScale valueScale() const; ///< for an axis that shows all values
    TimeScale timeScale() const; ///< for an axis that ends at the last reading

    /** Index of the reading nearest in time; -1 for none. */
    int nearest(double seconds) const;

    /**
     * To be called after a change of the unit of temperature: the texts of temperatures are made
     * again when they are next needed.
     */
    void refreshTexts();
    /** Makes up to @p most missing texts. @return whether all exist now */
    bool makeTexts(int most) const;

private:
    QString deviationText() const;

    SeriesConditions m_conditions;
    QVector<float> m_values;
    QVector<qint64> m_times; ///< ms since the start
    QVector<Verdict> m_verdicts;
    mutable QVector<QString> m_texts; ///< null: not made yet
    mutable int m_firstMissing = 0; ///< no text before this index is missing
    mutable std::optional<SeriesFigures> m_figures;
    int m_present = 0;
    float m_minimum = std::numeric_limits<float>::quiet_NaN();
    float m_maximum = std::numeric_limits<float>::quiet_NaN();
    double m_mean = 0;
    double m_squares = 0; ///< sum of the squared distances from the mean
    int m_failed = 0;
    Verdict m_verdict;
};
