#include "touch/ElidedLabel.h"

#include <QPainter>

ElidedLabel::ElidedLabel(const QString &name, QWidget *parent) : QLabel(parent)
{
    setObjectName(name);
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Preferred);
}

QSize ElidedLabel::minimumSizeHint() const
{
    constexpr int letters = 8;
    const QSize whole = QLabel::minimumSizeHint();
    return {qMin(whole.width(), letters * fontMetrics().averageCharWidth()), whole.height()};
}

void ElidedLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    const QRect area = contentsRect();
    painter.drawText(area, int(Qt::AlignVCenter | Qt::AlignLeft),
                     fontMetrics().elidedText(text(), Qt::ElideRight, area.width()));
}
