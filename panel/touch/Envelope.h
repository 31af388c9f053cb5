#pragma once

#include <QPointF>
#include <QVector>

/**
 * A curve of any length, reduced to as many points as a screen can show: neighbouring points share
 * a bucket, and of each bucket the lowest and the highest point are kept. The time to add a point
 * does not depend on their number.
 */
class Envelope
{
public:
    static constexpr int maxBuckets = 1000;

    void clear();
    /** @param point to the right of all earlier ones; a y of NaN leaves a gap */
    void add(const QPointF &point);
    /** The points to be drawn, from left to right; NaN for a gap. */
    QVector<QPointF> points() const;
    bool isEmpty() const { return m_buckets.isEmpty(); }
    // Of all points that were added; NaN if there are none.
    double minimum() const { return m_minimum; }
    double maximum() const { return m_maximum; }
    double lastX() const { return m_lastX; }

private:
    struct Bucket
    {
        QPointF low; ///< a y of NaN: the bucket has only gaps
        QPointF high;
        void take(const QPointF &point);
    };

    void halve();

    QVector<Bucket> m_buckets;
    int m_bucketSize = 1; ///< number of points in a full bucket
    int m_inLast = 0; ///< number of points in the last bucket
    double m_minimum = qQNaN();
    double m_maximum = qQNaN();
    double m_lastX = 0;
};
