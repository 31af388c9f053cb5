#pragma once

#include <QSize>
#include <QWidget>

/**
 * Shown while the library starts, which blocks the interface's thread for seconds. It is a sign,
 * because texts in the user's language exist only after the start.
 */
class StartPicture : public QWidget
{
    Q_OBJECT
public:
    explicit StartPicture(const QSize &size);

    /** Shows the picture and returns when it has been painted, after 2 s at most. */
    void present();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    bool m_isPainted = false;
};
