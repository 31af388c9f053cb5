#pragma once

#include "touch/Envelope.h"

#include <QVector>
#include <QWidget>

class QwtPlot;
class QwtPlotCurve;
class QwtPlotMarker;

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
    QString markedText() const; ///< empty if no point is marked
    /** Draws the points added so far; does nothing while the plot is hidden. */
    void refresh();

signals:
    /** The plot was touched at this time. */
    void touched(double x);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void changeEvent(QEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    /** Range of the value axis, in the unit of the values. */
    struct Range
    {
        double low;
        double high;
    };

    void dress();
    void scale();
    Range valueRange() const;
    void draw(const Bound &bound, QwtPlotMarker *line, const Range &range) const;
    QPointF divided(const QPointF &point) const;

    Envelope m_envelope;
    Axis m_x;
    Axis m_y;
    QPointF m_marked;
    QVector<Bound> m_bounds;
    QwtPlot *m_plot;
    QwtPlotCurve *m_curve; ///< owned by the plot, as are the markers
    QVector<QwtPlotMarker *> m_lines;
    QwtPlotMarker *m_mark;
};
