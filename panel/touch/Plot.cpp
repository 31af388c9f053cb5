#include "touch/Plot.h"

#include "touch/Theme.h"
#include "touch/Ticks.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {

constexpr int maxSteps = 5; // along an axis

// In pixels of a window of 800 x 480.
constexpr int labelSize = 12;
constexpr int titleSize = 13;
constexpr int markSize = 15;
constexpr int tickLength = 4;
constexpr int titleGap = 2;

QFont letters(const QFont &font, int size, bool bold = false)
{
    QFont sized = font;
    sized.setPixelSize(Theme::px(size));
    sized.setBold(bold);
    return sized;
}

template <typename Map>
QVector<PlotPicture::Tick> placed(const Ticks &ticks, double divisor, const Map &map)
{
    QVector<PlotPicture::Tick> placed;
    for (int i = 0; i < ticks.values.size(); ++i)
        placed.append({map(ticks.values.at(i) * divisor), ticks.labels.at(i)});
    return placed;
}

} // namespace

Plot::Plot(const QString &name, QWidget *parent) : QWidget(parent)
{
    setObjectName(name);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setMinimumSize(Theme::px(120), Theme::px(100));
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
}

void Plot::setBounds(const QVector<Bound> &bounds)
{
    m_bounds = bounds;
}

void Plot::mark(const QPointF &point, const QString &text)
{
    m_marked = point;
    m_markedText = text;
    refresh();
}

void Plot::unmark()
{
    m_markedText.clear();
    refresh();
}

Plot::Range Plot::timeRange() const
{
    return {0, std::max(m_envelope.lastX(), 1.)};
}

Plot::Range Plot::valueRange() const
{
    const bool hasValues = !std::isnan(m_envelope.minimum());
    const Range values =
        hasValues ? Range {m_envelope.minimum(), m_envelope.maximum()} : Range {0, 1};
    const double span = std::max(values.high - values.low, std::abs(values.high) * 1e-4);
    Range reached = values;
    for (const Bound &bound : m_bounds) {
        reached.low = std::min(reached.low, bound.value);
        reached.high = std::max(reached.high, bound.value);
    }
    // Bounds are in view unless they are so far away that the curve would look like a straight
    // line.
    constexpr double flattest = 20;
    const Range range = reached.high - reached.low <= flattest * span ? reached : values;
    double margin = std::max((range.high - range.low) / 10, span / 10);
    if (margin == 0)
        margin = m_y.divisor; // all values are 0
    return {range.low - margin, range.high + margin};
}

QRectF Plot::canvas(const QStringList &yLabels) const
{
    const QFontMetricsF label(letters(font(), labelSize));
    const QFontMetricsF title(letters(font(), titleSize));
    double widest = 0;
    for (const QString &text : yLabels)
        widest = std::max(widest, label.horizontalAdvance(text));
    const double beside = 2 * Theme::px(tickLength) + title.height() + Theme::px(titleGap);
    return QRectF(rect()).adjusted(beside + widest, label.height() / 2, -label.height(),
                                   -beside - label.height());
}

PlotPicture Plot::picture() const
{
    PlotPicture picture;
    picture.canvas = rect();
    if (m_envelope.isEmpty())
        return picture;
    const Range times = timeRange();
    const Range values = valueRange();
    const auto ticksOf = [](const Range &range, double divisor) {
        return Ticks::between(range.low / divisor, range.high / divisor, maxSteps);
    };
    const Ticks yTicks = ticksOf(values, m_y.divisor);
    picture.canvas = canvas(yTicks.labels);
    const Map x {times, picture.canvas.left(), picture.canvas.right()};
    const Map y {values, picture.canvas.bottom(), picture.canvas.top()};
    picture.xTicks = placed(ticksOf(times, m_x.divisor), m_x.divisor, x);
    picture.yTicks = placed(yTicks, m_y.divisor, y);
    picture.curves.resize(1);
    for (const QPointF &point : m_envelope.points()) {
        if (std::isnan(point.y()))
            picture.curves.append(QPolygonF());
        else
            picture.curves.last().append({x(point.x()), y(point.y())});
    }
    for (const Bound &bound : m_bounds) {
        const bool isAbove = bound.value > values.high;
        const bool isBelow = bound.value < values.low;
        const char16_t *const arrow = isAbove ? u" \u2191" : isBelow ? u" \u2193" : u"";
        picture.bounds.append({y(std::clamp(bound.value, values.low, values.high)),
                               bound.text + QString::fromUtf16(arrow), !isAbove && !isBelow,
                               bound.value > (values.low + values.high) / 2});
    }
    picture.mark = {x(m_marked.x()), y(m_marked.y())};
    return picture;
}

// --- how it looks

void Plot::paintEvent(QPaintEvent *)
{
    const Theme &theme = Theme::current();
    const PlotPicture picture = this->picture();
    QPainter painter(this);
    painter.fillRect(picture.canvas, theme.surface);
    paintAxes(painter, picture);
    painter.setClipRect(picture.canvas);
    painter.setPen(QPen(theme.accent, std::max(1, Theme::px(2))));
    for (const QPolygonF &curve : picture.curves)
        painter.drawPolyline(curve);
    paintBounds(painter, picture);
    if (!m_markedText.isEmpty())
        paintMark(painter, picture);
}

void Plot::paintAxes(QPainter &painter, const PlotPicture &picture) const
{
    const Theme &theme = Theme::current();
    const QRectF &canvas = picture.canvas;
    const double length = Theme::px(tickLength);
    painter.setFont(letters(font(), labelSize));
    const double height = painter.fontMetrics().height();
    for (const PlotPicture::Tick &tick : picture.xTicks) {
        painter.setPen(theme.line);
        painter.drawLine(QPointF(tick.position, canvas.top()),
                         QPointF(tick.position, canvas.bottom() + length));
        painter.setPen(theme.quiet);
        painter.drawText(QRectF(tick.position - canvas.width() / 2, canvas.bottom() + 2 * length,
                                canvas.width(), height),
                         Qt::AlignCenter, tick.label);
    }
    for (const PlotPicture::Tick &tick : picture.yTicks) {
        painter.setPen(theme.line);
        painter.drawLine(QPointF(canvas.left() - length, tick.position),
                         QPointF(canvas.right(), tick.position));
        painter.setPen(theme.quiet);
        painter.drawText(QRectF(0, tick.position - height, canvas.left() - 2 * length, 2 * height),
                         Qt::AlignRight | Qt::AlignVCenter, tick.label);
    }
    if (picture.xTicks.isEmpty())
        return;
    painter.setFont(letters(font(), titleSize));
    painter.drawText(
        QRectF(canvas.left(), canvas.bottom(), canvas.width(), this->height() - canvas.bottom()),
        Qt::AlignHCenter | Qt::AlignBottom, m_x.unit);
    painter.save();
    painter.rotate(-90);
    painter.drawText(QRectF(-canvas.bottom(), 0, canvas.height(), canvas.left()),
                     Qt::AlignHCenter | Qt::AlignTop, m_y.unit);
    painter.restore();
}

void Plot::paintBounds(QPainter &painter, const PlotPicture &picture)
{
    const QRectF &canvas = picture.canvas;
    painter.setFont(letters(painter.font(), labelSize));
    painter.setPen(QPen(Theme::current().alarm, 1, Qt::DashLine));
    const double height = painter.fontMetrics().height() + 2 * Theme::px(titleGap);
    for (const PlotPicture::BoundLine &bound : picture.bounds) {
        if (bound.isInView)
            painter.drawLine(QPointF(canvas.left(), bound.y), QPointF(canvas.right(), bound.y));
        painter.drawText(QRectF(canvas.left(), bound.isInUpperHalf ? bound.y : bound.y - height,
                                canvas.width() - Theme::px(titleGap), height),
                         Qt::AlignRight | Qt::AlignVCenter, bound.text);
    }
}

void Plot::paintMark(QPainter &painter, const PlotPicture &picture) const
{
    const Theme &theme = Theme::current();
    const QRectF &canvas = picture.canvas;
    const QPointF &at = picture.mark;
    painter.setPen(QPen(theme.quiet, 1, Qt::DashLine));
    painter.drawLine(QPointF(at.x(), canvas.top()), QPointF(at.x(), canvas.bottom()));
    painter.setFont(letters(font(), markSize, true));
    QRectF label(QPointF(), painter.fontMetrics().size(0, m_markedText));
    const double space = Theme::px(6);
    const bool isInRightHalf = at.x() > canvas.center().x();
    label.moveTopLeft(
        {isInRightHalf ? at.x() - space - label.width() : at.x() + space, canvas.top() + space});
    painter.fillRect(label, theme.surface);
    painter.setPen(theme.text);
    painter.drawText(label, Qt::AlignCenter, m_markedText);
    if (std::isnan(at.y()))
        return; // a reading without a value is nowhere on the curve
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(theme.accent, 2));
    painter.setBrush(theme.surface);
    painter.drawEllipse(at, Theme::px(5), Theme::px(5));
}

// --- touches

void Plot::mousePressEvent(QMouseEvent *event)
{
    ask(event->pos());
}

void Plot::mouseMoveEvent(QMouseEvent *event)
{
    ask(event->pos());
}

void Plot::ask(const QPoint &finger)
{
    const QRectF area = picture().canvas;
    if (!m_envelope.isEmpty() && area.contains(finger))
        emit touched((finger.x() - area.left()) / area.width() * timeRange().high);
}
