#include "touch/Indicators.h"

#include "touch/Theme.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace {

constexpr int barCount = 4;

void paintCard(QPainter &painter, const QRect &area)
{
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Theme::current().line);
    painter.setBrush(Theme::current().surface);
    painter.drawRoundedRect(QRectF(area).adjusted(0.5, 0.5, -0.5, -0.5), 6, 6);
}

void useFont(QPainter &painter, int size, bool bold = false)
{
    QFont font = painter.font();
    font.setPixelSize(size);
    font.setBold(bold);
    painter.setFont(font);
}

} // namespace

// --- ValueDisplay

ValueDisplay::ValueDisplay(const QString &name, QWidget *parent) : QWidget(parent)
{
    setObjectName(name);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void ValueDisplay::setValue(const QString &text)
{
    m_text = text;
    update();
}

void ValueDisplay::setCaption(const QString &caption)
{
    m_caption = caption;
    update();
}

void ValueDisplay::setVerdict(const QString &text, const QString &reason, State state)
{
    m_verdict = text;
    m_reason = reason;
    m_state = state;
    update();
}

void ValueDisplay::setNote(const QString &note)
{
    m_note = note;
    update();
}

void ValueDisplay::paintEvent(QPaintEvent *)
{
    const Theme &theme = Theme::current();
    QPainter painter(this);
    paintCard(painter, rect());
    const QRect inside = rect().adjusted(16, 10, -16, -10);

    useFont(painter, 15);
    painter.setPen(theme.quiet);
    painter.drawText(inside, Qt::AlignLeft | Qt::AlignTop, m_caption);
    painter.drawText(inside, Qt::AlignRight | Qt::AlignBottom, m_note);
    useFont(painter, 20, true);
    painter.setPen(m_state == Failed       ? theme.alarm
                       : m_state == Passed ? theme.accent
                                           : theme.quiet);
    painter.drawText(inside, Qt::AlignLeft | Qt::AlignBottom, m_verdict);
    paintValue(painter, inside.adjusted(0, 22, 0, -26));
}

void ValueDisplay::paintValue(QPainter &painter, const QRect &area) const
{
    const Theme &theme = Theme::current();
    const QString unit = m_text.section(QLatin1Char(' '), -1);
    const QString number = m_text.left(m_text.size() - unit.size()).trimmed();
    int size = std::min(area.height(), 92);
    int numberWidth = 0;
    int unitWidth = 0;
    for (; size > 24; size -= 4) {
        useFont(painter, size);
        numberWidth = painter.fontMetrics().horizontalAdvance(number);
        useFont(painter, size / 2);
        unitWidth = painter.fontMetrics().horizontalAdvance(unit);
        if (numberWidth + size / 4 + unitWidth <= area.width())
            break;
    }
    const int left = area.right() - numberWidth - size / 4 - unitWidth;
    useFont(painter, size);
    const int base =
        area.center().y() + (painter.fontMetrics().ascent() - painter.fontMetrics().descent()) / 2;
    painter.setPen(m_state == Failed ? theme.alarm : theme.text);
    painter.drawText(left, base, number);
    useFont(painter, size / 2);
    painter.setPen(theme.quiet);
    painter.drawText(area.right() - unitWidth, base, unit);
}

// --- SignalBars

SignalBars::SignalBars(QWidget *parent) : QWidget(parent)
{
    setFixedSize(26, 18);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void SignalBars::setLevel(int level)
{
    m_level = level;
    update();
}

void SignalBars::paint(QPainter &painter, const QRect &area, int level, const QColor &on,
                       const QColor &off)
{
    const int step = area.width() / barCount;
    for (int bar = 0; bar < barCount; ++bar) {
        const int height = area.height() * (bar + 1) / barCount;
        painter.fillRect(area.left() + bar * step, area.bottom() + 1 - height, step - 2, height,
                         bar < level ? on : off);
    }
}

void SignalBars::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), Theme::current().surface);
    paint(painter, rect(), m_level, Theme::current().text, Theme::current().line);
}

// --- Gauge

Gauge::Gauge(QWidget *parent) : QWidget(parent)
{
    setFixedHeight(14);
}

void Gauge::setPercent(float percent, bool isAlarm)
{
    m_percent = percent;
    m_isAlarm = isAlarm;
    update();
}

void Gauge::paintEvent(QPaintEvent *)
{
    const Theme &theme = Theme::current();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.line);
    painter.drawRoundedRect(rect(), 7, 7);
    QRectF full(rect());
    full.setWidth(full.width() * std::clamp(static_cast<double>(m_percent), 0., 100.) / 100);
    if (full.width() < full.height())
        return; // too little to be round
    painter.setBrush(m_isAlarm ? theme.alarm : theme.accent);
    painter.drawRoundedRect(full, 7, 7);
}

// --- Plot

Plot::Plot(const QString &name, QWidget *parent) : QWidget(parent)
{
    setObjectName(name);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void Plot::setValues(const QVector<float> &values)
{
    m_values = values;
    update();
}

void Plot::setScale(const QString &top, const QString &bottom)
{
    m_top = top;
    m_bottom = bottom;
    update();
}

void Plot::paintEvent(QPaintEvent *)
{
    const Theme &theme = Theme::current();
    QPainter painter(this);
    paintCard(painter, rect());
    const QRectF area = QRectF(rect()).adjusted(14, 30, -14, -30);
    painter.setPen(theme.line);
    constexpr int parts = 4;
    for (int part = 0; part <= parts; ++part) {
        const double y = std::round(area.top() + area.height() * part / parts) + 0.5;
        painter.drawLine(QPointF(area.left(), y), QPointF(area.right(), y));
    }
    useFont(painter, 14);
    painter.setPen(theme.quiet);
    painter.drawText(rect().adjusted(14, 7, -14, -7), Qt::AlignLeft | Qt::AlignTop, m_top);
    painter.drawText(rect().adjusted(14, 7, -14, -7), Qt::AlignLeft | Qt::AlignBottom, m_bottom);

    QVector<float> present = m_values;
    present.erase(std::remove_if(present.begin(), present.end(),
                                 [](float value) { return std::isnan(value); }),
                  present.end());
    if (present.isEmpty())
        return;
    const auto [low, high] = std::minmax_element(present.cbegin(), present.cend());
    const auto bottom = static_cast<double>(*low);
    const double span = static_cast<double>(*high) - bottom;
    const double step = area.width() / std::max(1, m_values.size() - 1);
    QPainterPath path;
    bool isGap = true; // missing values interrupt the line
    for (int i = 0; i < m_values.size(); ++i) {
        const auto value = static_cast<double>(m_values.at(i));
        const double part = span > 0 ? (value - bottom) / span : 0.5;
        const QPointF point(area.left() + step * i, area.bottom() - area.height() * part);
        if (!std::isnan(value))
            isGap ? path.moveTo(point) : path.lineTo(point);
        isGap = std::isnan(value);
    }
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(theme.accent, 2));
    painter.drawPath(path);
}
