#pragma once

#include <QPointF>
#include <QVector>

/**
 * A curve of any length, kept as the few points that a screen can show: neighbours share a bucket,
 * of which the lowest and the highest stay. Adding a point costs the same however many there are.
 */
class Envelope
{
public:
    static constexpr int mostBuckets = 1000;

    void clear();
    /** @param point further right than the ones before; a y of NaN leaves a gap */
    void add(const QPointF &point);
    /** The points to be drawn, from left to right; NaN for a gap. */
    QVector<QPointF> points() const;
    bool isEmpty() const { return m_buckets.isEmpty(); }
    // Of all points that were added; NaN when there was none.
    double minimum() const { return m_minimum; }
    double maximum() const { return m_maximum; }
    double lastX() const { return m_lastX; }

private:
    struct Bucket
    {
        QPointF low; ///< a y of NaN: nothing but gaps
        QPointF high;
        void take(const QPointF &point);
    };

    void halve();

    QVector<Bucket> m_buckets;
    int m_bucketSize = 1; ///< points that share one
    int m_inLast = 0; ///< points in the last one
    double m_minimum = qQNaN();
    double m_maximum = qQNaN();
    double m_lastX = 0;
};
