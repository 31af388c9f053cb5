#pragma once

#include <QSize>
#include <QWidget>

/**
 * What is seen while the library starts, which keeps the interface's thread for seconds: a sign
 * that needs no language, for the languages come with the library.
 */
class StartPicture : public QWidget
{
    Q_OBJECT
public:
    explicit StartPicture(const QSize &size);

    /** Shows the picture, and returns when it has been painted. */
    void present();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    bool m_isPainted = false;
};
