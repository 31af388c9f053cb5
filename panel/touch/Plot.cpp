#include "touch/Plot.h"

#include "touch/Theme.h"

#include <QEvent>
#include <QMouseEvent>
#include <QVBoxLayout>

#include <qwt_plot.h>
#include <qwt_plot_canvas.h>
#include <qwt_plot_curve.h>
#include <qwt_plot_grid.h>
#include <qwt_plot_layout.h>
#include <qwt_plot_marker.h>
#include <qwt_scale_draw.h>
#include <qwt_scale_widget.h>
#include <qwt_symbol.h>
#include <qwt_text.h>

#include <algorithm>
#include <cmath>

namespace {

/** A curve with gaps where values are missing. */
class Curve : public QwtPlotCurve
{
public:
    void drawSeries(QPainter *painter, const QwtScaleMap &xMap, const QwtScaleMap &yMap,
                    const QRectF &canvas, int from, int to) const override
    {
        const int last = to < 0 ? int(dataSize()) - 1 : to;
        const auto isGap = [this](int i) { return std::isnan(sample(i).y()); };
        for (int begin = from; begin <= last;) {
            int end = begin;
            while (end <= last && !isGap(end))
                ++end;
            if (end > begin)
                QwtPlotCurve::drawSeries(painter, xMap, yMap, canvas, begin, end - 1);
            begin = end + 1;
        }
    }
};

/** Numbers with as many decimals as are needed to tell the ticks apart. */
class Numbers : public QwtScaleDraw
{
public:
    QwtText label(double value) const override
    {
        const QList<double> ticks = scaleDiv().ticks(QwtScaleDiv::MajorTick);
        const double step = ticks.size() > 1 ? ticks.at(1) - ticks.at(0) : 1;
        // A step of 0.25 needs one more decimal than its magnitude suggests.
        const double digits = std::ceil(-std::log10(std::abs(step)) - 1e-9);
        int decimals = std::clamp(int(digits), 0, 9);
        const double scaled = std::abs(step) * std::pow(10, decimals);
        if (std::abs(scaled - std::round(scaled)) > 1e-6)
            ++decimals;
        const bool isZero = std::abs(value) < std::abs(step) / 1000;
        return QString::number(isZero ? 0 : value, 'f', decimals);
    }
};

} // namespace

Plot::Plot(const QString &name, QWidget *parent)
    : QWidget(parent)
    , m_plot(new QwtPlot)
    , m_curve(new Curve)
    , m_mark(new QwtPlotMarker)
{
    setObjectName(name);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_plot);
    auto *grid = new QwtPlotGrid;
    grid->attach(m_plot);
    m_curve->attach(m_plot);
    m_mark->setLineStyle(QwtPlotMarker::VLine);
    m_mark->attach(m_plot);
    m_mark->hide();
    m_plot->plotLayout()->setAlignCanvasToScales(true);
    m_plot->setMinimumSize(Theme::px(120), Theme::px(100));
    m_plot->canvas()->installEventFilter(this);
    m_plot->canvas()->setCursor(Qt::ArrowCursor);
    for (const int axis : {int(QwtPlot::xBottom), int(QwtPlot::yLeft)}) {
        auto *numbers = new Numbers; // owned by the axis
        numbers->enableComponent(QwtAbstractScaleDraw::Backbone, false);
        numbers->setTickLength(QwtScaleDiv::MinorTick, 0);
        numbers->setTickLength(QwtScaleDiv::MediumTick, 0);
        numbers->setTickLength(QwtScaleDiv::MajorTick, Theme::px(4));
        m_plot->setAxisScaleDraw(axis, numbers);
        m_plot->setAxisMaxMajor(axis, 5);
    }
    dress();
}

// --- what is shown

void Plot::clear()
{
    m_envelope.clear();
    unmark();
}

void Plot::add(double x, double y)
{
    m_envelope.add({x, y});
}

void Plot::setAxes(const Axis &x, const Axis &y)
{
    m_x = x;
    m_y = y;
    const struct
    {
        int axis;
        const QString &unit;
    } titles[] = {{QwtPlot::xBottom, x.unit}, {QwtPlot::yLeft, y.unit}};
    for (const auto &named : titles) {
        QwtText title(named.unit);
        QFont font = this->font();
        font.setPixelSize(Theme::px(13));
        title.setFont(font);
        title.setColor(Theme::current().quiet);
        m_plot->setAxisTitle(named.axis, title);
    }
}

void Plot::setBounds(const QVector<Bound> &bounds)
{
    for (QwtPlotMarker *line : std::as_const(m_lines)) {
        line->detach();
        delete line;
    }
    m_lines.clear();
    m_bounds = bounds;
    for (int i = 0; i < bounds.size(); ++i) {
        auto *line = new QwtPlotMarker;
        line->setLineStyle(QwtPlotMarker::HLine);
        line->attach(m_plot);
        m_lines += line;
    }
}

void Plot::mark(const QPointF &point, const QString &text)
{
    m_marked = point;
    QwtText label(text);
    QFont font = this->font();
    font.setPixelSize(Theme::px(15));
    font.setBold(true);
    label.setFont(font);
    label.setColor(Theme::current().text);
    label.setBackgroundBrush(Theme::current().surface);
    m_mark->setLabel(label);
    const bool isRight = point.x() > m_envelope.lastX() / 2;
    m_mark->setLabelAlignment((isRight ? Qt::AlignLeft : Qt::AlignRight) | Qt::AlignTop);
    m_mark->setSpacing(Theme::px(6));
    m_mark->show();
    refresh();
}

void Plot::unmark()
{
    m_mark->hide();
}

QString Plot::markedText() const
{
    return m_mark->isVisible() ? m_mark->label().text() : QString();
}

void Plot::refresh()
{
    if (!isVisible())
        return;
    // In the units of the axes, so that the ticks are at round numbers.
    QVector<QPointF> points = m_envelope.points();
    for (QPointF &point : points)
        point = divided(point);
    m_curve->setSamples(points);
    m_mark->setValue(divided(m_marked));
    scale();
    m_plot->replot();
}

QPointF Plot::divided(const QPointF &point) const
{
    return {point.x() / m_x.divisor, point.y() / m_y.divisor};
}

void Plot::scale()
{
    for (const int axis : {int(QwtPlot::xBottom), int(QwtPlot::yLeft)})
        m_plot->enableAxis(axis, !m_envelope.isEmpty());
    m_plot->setAxisScale(QwtPlot::xBottom, 0, std::max(m_envelope.lastX(), 1.) / m_x.divisor);
    const Range range = valueRange();
    m_plot->setAxisScale(QwtPlot::yLeft, range.low / m_y.divisor, range.high / m_y.divisor);
    for (int i = 0; i < m_lines.size(); ++i)
        draw(m_bounds.at(i), m_lines.at(i), range);
}

Plot::Range Plot::valueRange() const
{
    const bool hasValues = !std::isnan(m_envelope.minimum());
    const Range values =
        hasValues ? Range {m_envelope.minimum(), m_envelope.maximum()} : Range {0, 1};
    const double span = std::max(values.high - values.low, std::abs(values.high) * 1e-4);
    Range reached = values;
    for (const Bound &bound : std::as_const(m_bounds)) {
        reached.low = std::min(reached.low, bound.value);
        reached.high = std::max(reached.high, bound.value);
    }
    // Bounds are in view unless they are so far away that the curve would look like a straight
    // line.
    constexpr double flattest = 20;
    const Range range = reached.high - reached.low <= flattest * span ? reached : values;
    const double margin = std::max((range.high - range.low) / 10, span / 10);
    return {range.low - margin, range.high + margin};
}

void Plot::draw(const Bound &bound, QwtPlotMarker *line, const Range &range) const
{
    // A bound that is out of view is shown at the edge, with an arrow.
    const bool isAbove = bound.value > range.high;
    const bool isBelow = bound.value < range.low;
    const char16_t *const arrow = isAbove ? u" \u2191" : isBelow ? u" \u2193" : u"";
    QwtText text(bound.text + QString::fromUtf16(arrow));
    QFont font = this->font();
    font.setPixelSize(Theme::px(12));
    text.setFont(font);
    text.setColor(Theme::current().alarm);
    line->setYValue(std::clamp(bound.value, range.low, range.high) / m_y.divisor);
    line->setLinePen(Theme::current().alarm, 1, isAbove || isBelow ? Qt::NoPen : Qt::DashLine);
    const bool isInUpperHalf = bound.value > (range.low + range.high) / 2;
    line->setLabel(text);
    line->setLabelAlignment(Qt::AlignRight | (isInUpperHalf ? Qt::AlignBottom : Qt::AlignTop));
}

// --- how it looks

void Plot::dress()
{
    const Theme &theme = Theme::current();
    m_plot->setCanvasBackground(theme.surface);
    if (auto *canvas = qobject_cast<QwtPlotCanvas *>(m_plot->canvas())) {
        canvas->setFrameStyle(QFrame::NoFrame);
        canvas->setStyleSheet(QStringLiteral("QwtPlotCanvas { background: %1; border: none; }")
                                  .arg(theme.surface.name()));
    }
    for (QwtPlotItem *item : m_plot->itemList(QwtPlotItem::Rtti_PlotGrid))
        static_cast<QwtPlotGrid *>(item)->setPen(theme.line, 0);
    m_curve->setPen(theme.accent, std::max(1, Theme::px(2)));
    m_mark->setLinePen(theme.quiet, 1, Qt::DashLine);
    m_mark->setSymbol(new QwtSymbol(QwtSymbol::Ellipse, theme.surface, QPen(theme.accent, 2),
                                    QSize(Theme::px(10), Theme::px(10))));
    QFont font = this->font();
    font.setPixelSize(Theme::px(12));
    for (const int axis : {int(QwtPlot::xBottom), int(QwtPlot::yLeft)}) {
        m_plot->setAxisFont(axis, font);
        QPalette palette = m_plot->axisWidget(axis)->palette();
        palette.setColor(QPalette::Text, theme.quiet);
        palette.setColor(QPalette::WindowText, theme.line);
        m_plot->axisWidget(axis)->setPalette(palette);
        QwtText title = m_plot->axisTitle(axis);
        title.setColor(theme.quiet);
        m_plot->setAxisTitle(axis, title);
    }
}

void Plot::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() != QEvent::StyleChange && event->type() != QEvent::PaletteChange)
        return;
    dress();
    refresh();
}

void Plot::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    refresh();
}

bool Plot::eventFilter(QObject *watched, QEvent *event)
{
    const bool isTouch =
        event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseMove;
    if (watched == m_plot->canvas() && isTouch && !m_envelope.isEmpty()) {
        const int x = static_cast<QMouseEvent *>(event)->pos().x();
        emit touched(m_plot->invTransform(QwtPlot::xBottom, x) * m_x.divisor);
        return true;
    }
    return QWidget::eventFilter(watched, event);
}
