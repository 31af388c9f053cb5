#pragma once

#include "common/Page.h"

class Choice;
class PercentSlider;

/** Every tone to be heard, and how loud. */
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
