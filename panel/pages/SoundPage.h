#pragma once

#include "common/Page.h"

class Choice;
class PercentSlider;

/** Plays every tone, and sets the volume. */
class SoundPage : public Page
{
    Q_OBJECT
public:
    SoundPage(Texts &texts, Session &session);

    void leave() override;

private:
    void layOut();
    void refresh();

    Choice *m_switch;
    PercentSlider *m_volume;
};
