#include "touch/Indicators.h"

#include "touch/Theme.h"

#include <QPainter>

#include <algorithm>

namespace {

constexpr int barCount = 4;

// Of a ValueDisplay, in pixels.
constexpr int captionSize = 15;
constexpr int captionHeight = 20;
constexpr int largestNumber = 96;
constexpr int tallestVerdict = 58; // a line of letters half as high as the number

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

int widthOf(const QString &text, QFont font, int size, bool bold = false)
{
    font.setPixelSize(size);
    font.setBold(bold);
    return QFontMetrics(font).horizontalAdvance(text);
}

QRect insideOf(const QRect &card)
{
    const int side = Theme::px(16);
    const int top = Theme::px(10);
    return card.adjusted(side, top, -side, -top);
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
    QPainter painter(this);
    paintCard(painter, rect());
    useFont(painter, Theme::px(captionSize));
    painter.setPen(Theme::current().quiet);
    painter.drawText(insideOf(rect()), Qt::AlignLeft | Qt::AlignTop, m_caption);
    paintValue(painter);
    paintVerdict(painter);
}

QRect ValueDisplay::valueArea() const
{
    return insideOf(rect()).adjusted(0, Theme::px(captionHeight), 0, -verdictArea().height());
}

QRect ValueDisplay::verdictArea() const
{
    const QRect lower = insideOf(rect()).adjusted(0, Theme::px(captionHeight), 0, 0);
    const int height = std::min(lower.height() * 2 / 5, Theme::px(tallestVerdict));
    return lower.adjusted(0, lower.height() - height, 0, 0);
}

QString ValueDisplay::unit() const
{
    return m_text.section(QLatin1Char(' '), -1);
}

QString ValueDisplay::number() const
{
    return m_text.chopped(unit().size()).trimmed();
}

int ValueDisplay::unitSize() const
{
    const QRect area = valueArea();
    const int signWidth = m_state == Idle ? 0 : area.height();
    int size = std::min(area.height(), Theme::px(largestNumber));
    while (size > Theme::px(24)
           && signWidth + widthOf(number(), font(), size) + size / 4
                   + widthOf(unit(), font(), size / 2)
               > area.width())
        size -= 4;
    return size / 2;
}

int ValueDisplay::verdictSize() const
{
    int size = unitSize();
    while (widthOf(m_verdict, font(), size, true) > verdictArea().width() * 3 / 5
           && size > Theme::px(16))
        size -= 2;
    return size;
}

void ValueDisplay::paintValue(QPainter &painter) const
{
    const Theme &theme = Theme::current();
    const QRect area = valueArea();
    const int unitSize = this->unitSize();
    const int size = 2 * unitSize;
    const int unitWidth = widthOf(unit(), font(), unitSize);
    const int left = area.right() - widthOf(number(), font(), size) - size / 4 - unitWidth;
    useFont(painter, size);
    const int base =
        area.center().y() + (painter.fontMetrics().ascent() - painter.fontMetrics().descent()) / 2;
    painter.setPen(m_state == Failed ? theme.alarm : theme.text);
    painter.drawText(left, base, number());
    useFont(painter, unitSize);
    painter.setPen(theme.quiet);
    painter.drawText(area.right() - unitWidth, base, unit());
    const int signSize = std::min(area.height(), Theme::px(72)) - Theme::px(4);
    paintSign(painter, QRect(area.left(), area.center().y() - signSize / 2, signSize, signSize),
              m_state);
}

void ValueDisplay::paintSign(QPainter &painter, const QRectF &area, State state)
{
    if (state == Idle)
        return;
    const Theme &theme = Theme::current();
    const auto at = [&area](double x, double y) {
        return QPointF(area.left() + area.width() * x, area.top() + area.height() * y);
    };
    QPen stroke(theme.surface, area.width() / 9, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    painter.setPen(Qt::NoPen);
    if (state == Passed) {
        painter.setBrush(theme.accent);
        painter.drawEllipse(area);
        painter.setPen(stroke);
        painter.drawPolyline(QVector<QPointF> {at(0.27, 0.52), at(0.44, 0.69), at(0.74, 0.34)});
    } else if (state == Failed) {
        painter.setBrush(theme.alarm);
        painter.drawRect(area);
        painter.setPen(stroke);
        painter.drawLine(at(0.28, 0.28), at(0.72, 0.72));
        painter.drawLine(at(0.72, 0.28), at(0.28, 0.72));
    } else {
        stroke.setColor(theme.quiet);
        stroke.setWidthF(area.width() / 14);
        painter.setPen(stroke);
        painter.setBrush(Qt::NoBrush);
        painter.drawPolygon(
            QVector<QPointF> {at(0.5, 0.04), at(0.96, 0.5), at(0.5, 0.96), at(0.04, 0.5)});
        painter.drawLine(at(0.36, 0.5), at(0.64, 0.5));
    }
    painter.setBrush(Qt::NoBrush);
}

void ValueDisplay::paintVerdict(QPainter &painter) const
{
    const Theme &theme = Theme::current();
    const QRect area = verdictArea();
    useFont(painter, verdictSize(), true);
    painter.setPen(m_state == Failed       ? theme.alarm
                       : m_state == Passed ? theme.accent
                       : m_state == Idle   ? theme.quiet
                                           : theme.text);
    const int taken = painter.fontMetrics().horizontalAdvance(m_verdict);
    painter.drawText(area, Qt::AlignLeft | Qt::AlignVCenter, m_verdict);

    useFont(painter, Theme::px(captionSize));
    painter.setPen(m_state == Failed ? theme.alarm : theme.text);
    const QRect right = area.adjusted(taken + Theme::px(16), 0, 0, 0);
    const auto elided = [&](const QString &text) {
        return painter.fontMetrics().elidedText(text, Qt::ElideRight, right.width());
    };
    painter.drawText(right, Qt::AlignRight | Qt::AlignTop, elided(m_reason));
    painter.setPen(theme.quiet);
    painter.drawText(right, Qt::AlignRight | Qt::AlignBottom, elided(m_note));
}

// --- VerdictLabel

VerdictLabel::VerdictLabel(const QString &name, QWidget *parent) : QWidget(parent)
{
    setObjectName(name);
    setFixedHeight(Theme::px(30));
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void VerdictLabel::setVerdict(const QString &text, ValueDisplay::State state)
{
    m_text = text;
    m_state = state;
    update();
}

void VerdictLabel::paintEvent(QPaintEvent *)
{
    const Theme &theme = Theme::current();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QRect inside = rect().adjusted(0, 1, 0, -1);
    if (m_state != ValueDisplay::Idle) {
        ValueDisplay::paintSign(painter, {inside.topLeft(), QSize(height() - 2, height() - 2)},
                                m_state);
        inside.setLeft(height() + Theme::px(6));
    }
    useFont(painter, Theme::px(18), true);
    painter.setPen(m_state == ValueDisplay::Failed       ? theme.alarm
                       : m_state == ValueDisplay::Passed ? theme.accent
                                                         : theme.text);
    painter.drawText(inside, Qt::AlignLeft | Qt::AlignVCenter,
                     painter.fontMetrics().elidedText(m_text, Qt::ElideRight, inside.width()));
}

// --- SignalBars

SignalBars::SignalBars(QWidget *parent) : QWidget(parent)
{
    setFixedSize(Theme::px(26), Theme::px(18));
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
    setFixedHeight(Theme::px(14));
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
    painter.drawRoundedRect(rect(), height() / 2., height() / 2.);
    QRectF full(rect());
    full.setWidth(full.width() * std::clamp(double(m_percent), 0., 100.) / 100);
    if (full.width() < full.height())
        return; // too narrow for its round ends
    painter.setBrush(m_isAlarm ? theme.alarm : theme.accent);
    painter.drawRoundedRect(full, height() / 2., height() / 2.);
}
