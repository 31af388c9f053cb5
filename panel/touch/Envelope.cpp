#include "touch/Envelope.h"

#include <cmath>

void Envelope::Bucket::take(const QPointF &point)
{
    if (std::isnan(low.y()) || point.y() < low.y())
        low = point;
    if (std::isnan(high.y()) || point.y() > high.y())
        high = point;
}

void Envelope::clear()
{
    *this = Envelope();
}

void Envelope::add(const QPointF &point)
{
    m_lastX = point.x();
    m_minimum = std::fmin(m_minimum, point.y());
    m_maximum = std::fmax(m_maximum, point.y());
    if (m_buckets.isEmpty() || m_inLast == m_bucketSize) {
        if (m_buckets.size() == maxBuckets)
            halve();
        m_buckets += Bucket {point, point};
        m_inLast = 1;
        return;
    }
    if (!std::isnan(point.y()))
        m_buckets.last().take(point);
    ++m_inLast;
}

void Envelope::halve()
{
    for (int i = 0; i < m_buckets.size() / 2; ++i) {
        Bucket both = m_buckets.at(2 * i);
        const Bucket &second = m_buckets.at(2 * i + 1);
        if (!std::isnan(second.low.y())) {
            both.take(second.low);
            both.take(second.high);
        }
        m_buckets[i] = both;
    }
    m_buckets.resize(m_buckets.size() / 2);
    m_bucketSize *= 2;
}

QVector<QPointF> Envelope::points() const
{
    QVector<QPointF> points;
    points.reserve(2 * m_buckets.size());
    for (const Bucket &bucket : m_buckets) {
        const bool isRising = bucket.low.x() <= bucket.high.x();
        points += isRising ? bucket.low : bucket.high;
        if (bucket.low.x() != bucket.high.x())
            points += isRising ? bucket.high : bucket.low;
    }
    return points;
}
