#pragma once

#include "touch/Envelope.h"

#include <QPolygonF>
#include <QVector>
#include <QWidget>

/** What a plot draws, in pixels of its widget. */
struct PlotPicture
{
    struct Tick
    {
        double position;
        QString label;
    };
    struct BoundLine
    {
        double y;
        QString text;
        bool isInView; ///< if not, only the text is drawn, at the edge
        bool isInUpperHalf;
    };

    QRectF canvas;
    QVector<Tick> xTicks;
    QVector<Tick> yTicks;
    QVector<QPolygonF> curves; ///< the parts of the curve between gaps
    QVector<BoundLine> bounds;
    QPointF mark;
};

/**
 * Plots a curve over time to which points are added at the right. A touch emits the time at that
 * place.
 */
class Plot : public QWidget
{
    Q_OBJECT
public:
    /** A horizontal line at a value. */
    struct Bound
    {
        double value;
        QString text;
    };

    explicit Plot(const QString &name, QWidget *parent = nullptr);

    void clear();
    /** @param y NaN leaves a gap */
    void add(double x, double y);
    /** An axis: its values are divided by the divisor, and its name is the unit. */
    struct Axis
    {
        double divisor = 1;
        QString unit;
    };
    void setAxes(const Axis &x, const Axis &y);
    void setBounds(const QVector<Bound> &bounds);
    /** Marks a point of the curve and shows the text beside it. */
    void mark(const QPointF &point, const QString &text);
    void unmark();
    QString markedText() const { return m_markedText; } ///< empty if no point is marked
    /** Draws the points added so far. */
    void refresh() { update(); }
    PlotPicture picture() const;

signals:
    /** The plot was touched at this time. */
    void touched(double x);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;

private:
    /** Range of an axis, in the unit of the added points. */
    struct Range
    {
        double low;
        double high;
    };
    /** Maps a range to pixels of the canvas. */
    struct Map
    {
        Range range;
        double low; ///< the pixel of the range's low end
        double high;
        double operator()(double value) const
        {
            return low + (value - range.low) / (range.high - range.low) * (high - low);
        }
    };

    Range timeRange() const;
    Range valueRange() const;
    QRectF canvas(const QStringList &yLabels) const;
    void ask(const QPoint &finger);
    void paintAxes(QPainter &painter, const PlotPicture &picture) const;
    static void paintBounds(QPainter &painter, const PlotPicture &picture);
    void paintMark(QPainter &painter, const PlotPicture &picture) const;

    Envelope m_envelope;
    Axis m_x;
    Axis m_y;
    QPointF m_marked;
    QString m_markedText;
    QVector<Bound> m_bounds;
};
