#include "pages/SoundPage.h"

#include "touch/Buttons.h"
#include "touch/PercentSlider.h"
#include "touch/Theme.h"

#include <sound/BuzzerClass.h>

#include <QGridLayout>
#include <QVBoxLayout>

using Buzzer::BuzzerClass;

namespace {

struct ToneRow
{
    BuzzerClass::Tone tone;
    bool isLoop;
    Text name;
};

const ToneRow tones[] = {
    {BuzzerClass::Tone_Measure_Pass, false, Text {"Measure", "pass", "Pass"}},
    {BuzzerClass::Tone_Measure_Fail, false, Text {"Measure", "fail", "Fail"}},
    {BuzzerClass::Tone_Series_Fail, false, Text {"Panel", "toneSeriesFail", "Series failed"}},
    {BuzzerClass::Tone_Question, false, Text {"Panel", "toneQuestion", "Question"}},
    {BuzzerClass::Tone_Decline, false, Text {"Panel", "toneDecline", "Decline"}},
    {BuzzerClass::Tone_Decline_Short, false, Text {"Panel", "toneDeclineShort", "Short decline"}},
    {BuzzerClass::Tone_Error, false, Text {"Dialogs", "error", "Error"}},
    {BuzzerClass::Tone_Error_Measure, false, Text {"Panel", "toneMeasureError", "Measuring error"}},
    {BuzzerClass::Tone_Error_Device, false, Text {"Panel", "toneDeviceError", "Device fault"}},
    {BuzzerClass::Tone_Fuse, false, Text {"Panel", "toneFuse", "Fuse test"}},
    {BuzzerClass::Tone_Saved, false, Text {"Panel", "toneSaved", "Saved"}},
    {BuzzerClass::Tone_Notice, false, Text {"Panel", "toneNotice", "Notice"}},
    {BuzzerClass::Tone_Melody, false, Text {"Panel", "toneMelody", "Melody"}},
    {BuzzerClass::Tone_Alarm, true, Text {"Panel", "toneAlarm", "Alarm, repeated"}},
};
constexpr int toneColumns = 4;

} // namespace

SoundPage::SoundPage(Texts &texts, Session &session)
    : Page(texts, session)
    , m_switch(new Choice(QStringLiteral("sound.switch"), 2))
    , m_volume(new PercentSlider(QStringLiteral("sound"), 0))
{
    layOut();
    Preferences &preferences = session.preferences();
    connect(m_switch, &Choice::chosen, &preferences,
            [&preferences](int index) { preferences.setSoundOn(index == 0); });
    connect(m_volume, &PercentSlider::changed, &preferences, &Preferences::setVolume);
    connect(&preferences, &Preferences::soundChanged, this, [this] {
        if (!this->session().preferences().isSoundOn())
            leave();
        refresh();
    });
    texts.applyNowAndOnChange(this, [this] { refresh(); });
}

void SoundPage::layOut()
{
    texts().translate(m_switch->part(0), Text {"Sound", "on", "Sounds on"});
    texts().translate(m_switch->part(1), Text {"Sound", "off", "Sounds off"});
    column()->addWidget(m_switch);

    auto *grid = new QGridLayout;
    grid->setSpacing(Theme::gap());
    int index = 0;
    const auto add = [&](TouchButton *button, int columns) {
        button->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Expanding);
        button->setStyleSheet(Theme::scaled(QStringLiteral("font-size: 15px; padding: 0 4px;")));
        grid->addWidget(button, index / toneColumns, index % toneColumns, 1, columns);
        ++index;
    };
    for (const ToneRow &row : tones) {
        auto *button = new TouchButton(QStringLiteral("sound.tone.%1").arg(int(row.tone)));
        texts().translate(button, row.name);
        connect(button, &QPushButton::clicked, this, [this, row] {
            row.isLoop ? session().tones().repeat(row.tone) : session().tones().play(row.tone);
        });
        add(button, 1);
    }
    auto *stop = new TouchButton(QStringLiteral("sound.stop"), TouchButton::Danger);
    texts().translate(stop, Text {"Panel", "silence", "Silence"});
    connect(stop, &QPushButton::clicked, &session().tones(), &Tones::silence);
    add(stop, toneColumns - index % toneColumns); // fills the rest of its row
    column()->addLayout(grid, 1);

    auto *volume = new QHBoxLayout;
    volume->setSpacing(Theme::gap());
    volume->addWidget(caption(Text {"Sound", "volume", "Volume"}));
    volume->addWidget(m_volume, 1);
    column()->addLayout(volume);
}

void SoundPage::leave()
{
    if (session().tones().isRepeating())
        session().tones().silence();
}

void SoundPage::refresh()
{
    m_switch->setCurrent(session().preferences().isSoundOn() ? 0 : 1);
    m_volume->setPercent(session().preferences().volume());
}
