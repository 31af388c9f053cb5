#include "pages/SettingsPage.h"

#include "common/LanguageSheet.h"
#include "touch/Buttons.h"
#include "touch/PercentSlider.h"
#include "touch/Theme.h"

#include <datasource/KTV_DataSource.h>
#include <language/LangSerwis.h>

#include <QGridLayout>
#include <QVBoxLayout>

namespace {

constexpr int leastBrightness =
    10; // percent; with less the user could not see how to raise it again

/** Indexed by ValueBox::TemperatureUnit. */
const Text temperatureUnits[] = {
    Text {"Units", "celsius", "°C"},
    Text {"Units", "fahrenheit", "°F"},
    Text {"Units", "kelvin", "K"},
};

} // namespace

SettingsPage::SettingsPage(Texts &texts, Session &session)
    : Page(texts, session)
    , m_language(new FieldButton(QStringLiteral("settings.language")))
    , m_temperature(new Choice(QStringLiteral("settings.temperature"), std::size(temperatureUnits)))
    , m_theme(new Choice(QStringLiteral("settings.theme"), 2))
    , m_keyboard(new Choice(QStringLiteral("settings.keyboard"), 2))
    , m_brightness(new PercentSlider(QStringLiteral("settings.brightness"), leastBrightness))
    , m_reset(new TouchButton(QStringLiteral("settings.reset"), TouchButton::Danger))
{
    layOut();
    connect(m_language, &QPushButton::clicked, this, [this] {
        new LanguageSheet(this->texts(), this->session(), this,
                          Text {"Settings", "language", "Language"});
    });
    connect(m_temperature, &Choice::chosen, this, [this](int unit) {
        preferences().setTemperatureUnit(ValueBox::TemperatureUnit(unit));
    });
    connect(m_theme, &Choice::chosen, this,
            [this](int theme) { preferences().setDark(theme == 1); });
    connect(m_keyboard, &Choice::chosen, this,
            [this](int choice) { preferences().setUsesScreenKeyboard(choice == 0); });
    connect(m_brightness, &PercentSlider::changed, &preferences(), &Preferences::setBrightness);
    connect(&session.recorder(), &Recorder::stateChanged, this, &SettingsPage::refresh);
    texts.applyNowAndOnChange(this, [this] { refresh(); });
}

void SettingsPage::layOut()
{
    texts().translate(m_language, Text {"Settings", "language", "Language"});
    for (size_t unit = 0; unit < std::size(temperatureUnits); ++unit)
        texts().translate(m_temperature->part(int(unit)), temperatureUnits[unit]);
    texts().translate(m_theme->part(0), Text {"Panel", "light", "Light"});
    texts().translate(m_theme->part(1), Text {"Panel", "dark", "Dark"});
    texts().translate(m_keyboard->part(0), Text {"Panel", "onScreen", "On the screen"});
    texts().translate(m_keyboard->part(1), Text {"Panel", "connectedKeyboard", "Connected"});
    texts().translate(m_reset, Text {"Settings", "factoryReset", "Restore factory settings"});
    connect(m_reset, &QPushButton::clicked, this, [this] {
        new ConfirmSheet(
            this->texts(), this,
            Text {"Dialogs", "confirmReset", "All settings and lists will be lost. Go on?"},
            Text {"Settings", "factoryReset", "Restore factory settings"},
            [this] { restoreFactorySettings(); });
    });

    column()->addWidget(m_language);
    auto *grid = new QGridLayout;
    grid->setVerticalSpacing(Theme::px(12));
    grid->setHorizontalSpacing(Theme::margin());
    const struct
    {
        Text caption;
        QWidget *choice;
    } rows[] = {
        {Text {"Settings", "temperatureUnit", "Temperature unit"}, m_temperature},
        {Text {"Panel", "appearance", "Appearance"}, m_theme},
        {Text {"Panel", "keyboard", "Keyboard"}, m_keyboard},
        {Text {"Settings", "brightness", "Brightness"}, m_brightness},
    };
    for (int row = 0; row < int(std::size(rows)); ++row) {
        grid->addWidget(caption(rows[row].caption), row, 0);
        grid->addWidget(rows[row].choice, row, 1);
    }
    grid->setColumnStretch(1, 1);
    column()->addSpacing(Theme::gap());
    column()->addLayout(grid);
    column()->addStretch(1);
    column()->addWidget(m_reset);
}

void SettingsPage::restoreFactorySettings()
{
    new StillSheet(texts(), this, Text {"Settings", "factoryReset", "Restore factory settings"},
                   [this] { session().restoreFactorySettings(); });
}

void SettingsPage::refresh()
{
    m_language->setValue(LanguageSheet::nameOf(library().get_Lang()->getCurrentLang()));
    m_temperature->setCurrent(preferences().temperatureUnit());
    m_theme->setCurrent(preferences().isDark() ? 1 : 0);
    m_keyboard->setCurrent(preferences().usesScreenKeyboard() ? 0 : 1);
    m_brightness->setPercent(preferences().brightness());
    m_reset->setEnabled(session().canRestoreFactorySettings());
}
