#pragma once

#include <QWidget>

class QLabel;
class QSlider;

/**
 * Sets a percentage: a slider between two buttons, and the number. Its parts are called NAME.less,
 * NAME.slider, NAME.more and NAME.percent.
 */
class PercentSlider : public QWidget
{
    Q_OBJECT
public:
    /** @param least the lowest percentage that can be set */
    PercentSlider(const QString &name, int least, QWidget *parent = nullptr);

    /** Shows a percentage without emitting a signal. */
    void setPercent(int percent);

signals:
    void changed(int percent);

private:
    void showFigure();

    QSlider *m_slider;
    QLabel *m_figure;
};
