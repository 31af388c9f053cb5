#pragma once

#include <QWidget>

class QLabel;
class QSlider;

/**
 * A percentage to be set: a slider between two buttons, and the figure. Its parts are called
 * NAME.less, NAME.slider, NAME.more and NAME.percent.
 */
class PercentSlider : public QWidget
{
    Q_OBJECT
public:
    /** @param least lowest percentage that can be set */
    PercentSlider(const QString &name, int least, QWidget *parent = nullptr);

    /** Shows a percentage without telling anybody. */
    void setPercent(int percent);

signals:
    void changed(int percent);

private:
    void showFigure();

    QSlider *m_slider;
    QLabel *m_figure;
};
