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
    /** How the numbers on the axes are written: each is divided first. */
    void setAxes(double xDivisor, const QString &xUnit, double yDivisor, const QString &yUnit);
    void setBounds(const QVector<Bound> &bounds);
    /** Marks a point, with its text. */
    void mark(const QPointF &point, const QString &text);
    void unmark();
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
    void dress();
    void scale();

    Envelope m_envelope;
    QVector<Bound> m_bounds;
    QwtPlot *m_plot;
    QwtPlotCurve *m_curve; ///< owned by the plot, as are the markers
    QVector<QwtPlotMarker *> m_lines;
    QwtPlotMarker *m_mark;
};
