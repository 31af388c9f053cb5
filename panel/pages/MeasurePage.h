#pragma once

#include "common/Page.h"

#include <functional>

class Choice;
class FieldButton;
class TouchButton;
class ValueDisplay;

/** A single measurement: its setup, the mean of the readings so far, and the verdict. */
class MeasurePage : public Page
{
    Q_OBJECT
public:
    MeasurePage(Texts &texts, Session &session);

    void leave() override;

private:
    void layOut();
    void refresh();
    void refreshValue();
    void toggle();

    void chooseMeter();
    void writeMeter();
    void chooseCurrent();
    void chooseMaterial();
    void chooseLimit();
    void chooseObject();
    void chooseEntry(const Text &title, Lists::Family family, const QString &now,
                     const std::function<void(const QString &)> &take);

    Setup &setup() const { return session().setup(); }
    Measurement &measurement() const { return session().measurement(); }

    Choice *m_quantity;
    ValueDisplay *m_display;
    FieldButton *m_meter;
    FieldButton *m_current;
    FieldButton *m_compensation;
    FieldButton *m_limit;
    FieldButton *m_object;
    FieldButton *m_testObject;
    TouchButton *m_start;
};
