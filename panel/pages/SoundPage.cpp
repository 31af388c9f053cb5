#include "pages/SoundPage.h"

#include "touch/Buttons.h"
#include "touch/Theme.h"

#include <datasource/KTV_DataSource.h>
#include <sound/BuzzerClass.h>

#include <QGridLayout>
#include <QSlider>
#include <QVBoxLayout>

using Buzzer::BuzzerClass;

namespace {

constexpr int volumeStep = 10; // percent
constexpr int stepWidth = 56;

struct ToneRow
{
    BuzzerClass::Tone tone;
    bool isLoop;
    Text name;
};

const ToneRow tones[] = {
    {BuzzerClass::Tone_Measure_Pass, false, Text {"Measure", "pass", "Pass"}},
    {BuzzerClass::Tone_Measure_Fail, false, Text {"Measure", "fail", "Fail"}},
    {BuzzerClass::Tone_Question, false, Text {"Panel", "toneQuestion", "Question"}},
    {BuzzerClass::Tone_Decline, false, Text {"Panel", "toneDecline", "Decline"}},
    {BuzzerClass::Tone_Error, false, Text {"Dialogs", "error", "Error"}},
    {BuzzerClass::Tone_Error_Measure, false, Text {"Panel", "toneMeasureError", "Measuring error"}},
    {BuzzerClass::Tone_Fuse, false, Text {"Panel", "toneFuse", "Fuse test"}},
    {BuzzerClass::Tone_Saved, false, Text {"Panel", "toneSaved", "Saved"}},
    {BuzzerClass::Tone_Notice, false, Text {"Panel", "toneNotice", "Notice"}},
    {BuzzerClass::Tone_Melody, false, Text {"Panel", "toneMelody", "Melody"}},
    {BuzzerClass::Tone_Alarm, true, Text {"Panel", "toneAlarm", "Alarm, repeated"}},
};
constexpr int toneColumns = 4;

} // namespace

SoundPage::SoundPage(Context &context)
    : Page(context)
    , m_switch(new Choice(QStringLiteral("sound.switch"), 2))
    , m_percent(label(QStringLiteral("sound.percent"), "title"))
    , m_volume(new QSlider(Qt::Horizontal))
{
    layOut();
    connect(m_switch, &Choice::chosen, this, [this](int index) {
        this->context().setSoundOn(index == 0);
        leave();
        refresh();
    });
    connect(m_volume, &QSlider::valueChanged, this, [this](int percent) {
        this->context().setVolume(percent);
        m_percent->setText(QStringLiteral("%1 %").arg(percent));
    });
    context.keep(this, [this] { refresh(); });
}

void SoundPage::layOut()
{
    context().translate(m_switch->part(0), Text {"Sound", "on", "Sounds on"});
    context().translate(m_switch->part(1), Text {"Sound", "off", "Sounds off"});
    column()->addWidget(m_switch);

    auto *grid = new QGridLayout;
    grid->setSpacing(Theme::gap);
    int index = 0;
    const auto add = [&](TouchButton *button) {
        button->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Expanding);
        button->setStyleSheet(QStringLiteral("font-size: 15px; padding: 0 4px;"));
        grid->addWidget(button, index / toneColumns, index % toneColumns);
        ++index;
    };
    for (const ToneRow &row : tones) {
        auto *button =
            new TouchButton(QStringLiteral("sound.tone.%1").arg(static_cast<int>(row.tone)));
        context().translate(button, row.name);
        connect(button, &QPushButton::clicked, this, [this, row] {
            if (!context().isSoundOn())
                return;
            m_isLooping = row.isLoop;
            library().Buzzer(row.tone, row.isLoop);
        });
        add(button);
    }
    auto *stop = new TouchButton(QStringLiteral("sound.stop"), TouchButton::Danger);
    context().translate(stop, Text {"Panel", "silence", "Silence"});
    connect(stop, &QPushButton::clicked, this, [this] {
        m_isLooping = true;
        leave();
    });
    add(stop);
    column()->addLayout(grid, 1);

    auto *volume = new QHBoxLayout;
    volume->setSpacing(Theme::gap);
    auto *less = new TouchButton(QStringLiteral("sound.less"));
    less->setText(QStringLiteral("\u2212"));
    auto *more = new TouchButton(QStringLiteral("sound.more"));
    more->setText(QStringLiteral("+"));
    for (TouchButton *button : {less, more})
        button->setFixedWidth(stepWidth);
    m_volume->setObjectName(QStringLiteral("sound.volume"));
    m_volume->setRange(0, 100);
    m_volume->setPageStep(volumeStep);
    m_volume->setMinimumHeight(Theme::target);
    m_volume->setFocusPolicy(Qt::NoFocus);
    m_percent->setFixedWidth(76);
    m_percent->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    connect(less, &QPushButton::clicked, this,
            [this] { m_volume->setValue(m_volume->value() - volumeStep); });
    connect(more, &QPushButton::clicked, this,
            [this] { m_volume->setValue(m_volume->value() + volumeStep); });
    volume->addWidget(caption(Text {"Sound", "volume", "Volume"}));
    volume->addWidget(less);
    volume->addWidget(m_volume, 1);
    volume->addWidget(more);
    volume->addWidget(m_percent);
    column()->addLayout(volume);
}

void SoundPage::leave()
{
    if (m_isLooping)
        library().Buzzer(BuzzerClass::Tone_Empty, true);
    m_isLooping = false;
}

void SoundPage::refresh()
{
    m_switch->setCurrent(context().isSoundOn() ? 0 : 1);
    const int percent = context().volume();
    const QSignalBlocker blocker(m_volume);
    m_volume->setValue(percent);
    m_percent->setText(QStringLiteral("%1 %").arg(percent));
}
