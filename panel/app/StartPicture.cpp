#include "app/StartPicture.h"

#include "touch/Theme.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QPainter>

StartPicture::StartPicture(const QSize &size)
{
    setFixedSize(size);
}

void StartPicture::present()
{
    constexpr int patience =
        2000; // ms; a window that is covered or not on a screen is never painted
    show();
    const QDeadlineTimer end(patience);
    while (!m_isPainted && !end.hasExpired())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, int(end.remainingTime()));
    QCoreApplication::processEvents(); // the framebuffer is written after paintEvent()
}

void StartPicture::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), Theme::current().background);
    QFont letter = font();
    letter.setPixelSize(height() / 3);
    painter.setFont(letter);
    painter.setPen(Theme::current().accent);
    painter.drawText(rect(), Qt::AlignCenter, QStringLiteral("\u2126"));
    m_isPainted = true;
}
