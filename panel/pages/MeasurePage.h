#pragma once

#include "pages/Page.h"

class Choice;
class FieldButton;
class TouchButton;
class ValueDisplay;

/** One measurement: readings until the value has settled, then the result is judged. */
class MeasurePage : public Page
{
    Q_OBJECT
public:
    explicit MeasurePage(Context &context);

    void leave() override;

private:
    void layOut();
    void refresh();
    void toggle();
    void takeReading(float value);
    void finish();
    void showValue(float value);
    void forgetResult();
    void takeSetup();

    void chooseMeter();
    void chooseCurrent();
    void chooseMaterial();
    void chooseLimit();

    Choice *m_kind;
    ValueDisplay *m_display;
    FieldButton *m_meter;
    FieldButton *m_current;
    FieldButton *m_compensation;
    FieldButton *m_limit;
    FieldButton *m_object;
    TouchButton *m_start;

    bool m_isMeasuring = false;
    QVector<float> m_readings;
    float m_value;
};
