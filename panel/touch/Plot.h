#pragma once

#include "touch/Envelope.h"

#include <QVector>
#include <QWidget>

class QwtPlot;
class QwtPlotCurve;
class QwtPlotMarker;

/** A curve over time that grows at its right end, with axes; a touch asks for the point there. */
class Plot : public QWidget
{
    Q_OBJECT
public:
    /** A horizontal line, by its number on the value axis. */
    struct Bound
    {
        double value;
        QString text;
    };

    explicit Plot(const QString &name, QWidget *parent = nullptr);

    void clear();
    /** @param y NaN leaves a gap */
    void add(double x, double y);
    /** An axis: what it shows is divided, and named by a unit. */
    struct Axis
    {
        double divisor = 1;
        QString unit;
    };
    void setAxes(const Axis &x, const Axis &y);
    void setBounds(const QVector<Bound> &bounds);
    /** Marks a point that has been added, with its text. */
    void mark(const QPointF &point, const QString &text);
    void unmark();
    QString markedText() const; ///< empty while none is marked
    /** Draws what has been added; does nothing while the plot is not seen. */
    void refresh();

signals:
    /** A finger asks for the point at this time. */
    void touched(double x);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void changeEvent(QEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    /** Of the value axis, in the unit of the values. */
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
