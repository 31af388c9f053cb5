#pragma once

#include "common/Page.h"

class Choice;
class FieldButton;
class PercentSlider;
class TouchButton;

/** The user's settings. */
class SettingsPage : public Page
{
    Q_OBJECT
public:
    SettingsPage(Texts &texts, Session &session);

private:
    void layOut();
    void refresh();
    void restoreFactorySettings();
    Preferences &preferences() const { return session().preferences(); }

    FieldButton *m_language;
    Choice *m_temperature;
    Choice *m_theme;
    Choice *m_keyboard;
    PercentSlider *m_brightness;
    TouchButton *m_reset;
};
