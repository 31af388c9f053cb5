#include "pages/WifiPage.h"

#include "touch/Buttons.h"
#include "touch/Sheets.h"
#include "touch/Theme.h"
#include "touch/TouchList.h"

#include <QVBoxLayout>

#include <utility>

namespace {

constexpr int detailsWidth = 230;

constexpr Text scanningText = Text {"WiFi", "scanning", "Searching"};
constexpr Text lengthText =
    Text {"WiFi", "passphraseLength", "The pass phrase has 8 to 63 characters"};

} // namespace

WifiPage::WifiPage(Texts &texts, Session &session)
    : Page(texts, session)
    , m_list(new TouchList(QStringLiteral("wifi.list")))
    , m_note(label(QStringLiteral("wifi.note"), "quiet"))
    , m_state(label(QStringLiteral("wifi.state"), "title"))
    , m_details(label(QStringLiteral("wifi.details"), "quiet"))
    , m_hidden(new TouchButton(QStringLiteral("wifi.hidden")))
    , m_power(new TouchButton(QStringLiteral("wifi.power")))
    , m_join(new TouchButton(QStringLiteral("wifi.join"), TouchButton::Primary))
    , m_prefer(new TouchButton(QStringLiteral("wifi.prefer")))
    , m_forget(new TouchButton(QStringLiteral("wifi.forget"), TouchButton::Danger))
{
    layOut();
    connect(&session.networks(), &Networks::changed, this, &WifiPage::refresh);
    connect(&session.networks(), &Networks::joined, this, &WifiPage::showJoined);
    connect(m_list, &TouchList::chosen, this, &WifiPage::refreshButtons);
    connect(m_power, &QPushButton::clicked, this,
            [this] { networks().setOn(!networks().state().isOn); });
    connect(m_hidden, &QPushButton::clicked, this, &WifiPage::askHidden);
    connect(m_join, &QPushButton::clicked, this, &WifiPage::chooseToJoin);
    connect(m_prefer, &QPushButton::clicked, this,
            [this] { block([this, name = chosenName()] { networks().prefer(name); }); });
    connect(m_forget, &QPushButton::clicked, this, [this] {
        new ConfirmSheet(
            this->texts(), this, Text {"WiFi", "forget", "Forget this network"},
            Text {"Dialogs", "yes", "Yes"},
            [this, name = chosenName()] { block([this, name] { networks().forget(name); }); },
            chosenName());
    });
    texts.applyNowAndOnChange(this, [this] { refresh(); });
}

void WifiPage::layOut()
{
    texts().translate(m_hidden, Text {"Panel", "hiddenNetwork", "Hidden network"});
    texts().translate(m_join, Text {"WiFi", "connect", "Connect"});
    texts().translate(m_prefer, Text {"Panel", "prefer", "Prefer"});
    texts().translate(m_forget, Text {"Panel", "forget", "Forget"});
    for (QLabel *label : {m_note, m_state, m_details})
        label->setWordWrap(true);
    m_details->setTextFormat(Qt::RichText);
    auto *list = new QVBoxLayout;
    list->addWidget(m_list, 1);
    list->addWidget(m_note);
    auto *state = new QWidget;
    state->setFixedWidth(Theme::px(detailsWidth));
    auto *stateColumn = new QVBoxLayout(state);
    stateColumn->setContentsMargins(Theme::gap(), 0, 0, 0);
    stateColumn->setSpacing(Theme::gap());
    stateColumn->addWidget(m_state);
    stateColumn->addWidget(m_details);
    stateColumn->addStretch(1);
    stateColumn->addWidget(m_hidden);
    stateColumn->addWidget(m_power);
    auto *upper = new QHBoxLayout;
    upper->addLayout(list, 1);
    upper->addWidget(state);
    column()->addLayout(upper, 1);
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(Theme::gap());
    for (TouchButton *button : {m_join, m_prefer, m_forget})
        buttons->addWidget(button, 1);
    column()->addLayout(buttons);
}

void WifiPage::enter()
{
    networks().startWatching();
    refresh();
}

void WifiPage::leave()
{
    networks().stopWatching();
}

// --- showing

void WifiPage::refresh()
{
    QVector<TouchRow> rows;
    QSet<QString> outOfReach = networks().known();
    for (const Networks::Cell &cell : networks().cells()) {
        TouchRow row = TouchRow::of(cell.name);
        row.bars = cell.bars;
        row.isMarked = outOfReach.remove(cell.name);
        row.detail = row.isMarked ? text(Text {"Panel", "known", "known"})
            : cell.isProtected    ? QString()
                                  : text(Text {"Panel", "open", "open"});
        rows += row;
    }
    QStringList others = outOfReach.values();
    others.sort();
    for (const QString &name : std::as_const(others)) {
        TouchRow row = TouchRow::of(name, text(Text {"Panel", "known", "known"}));
        row.bars = 0;
        row.isMarked = true;
        rows += row;
    }
    m_list->setRows(rows);

    m_note->setText(noteText());
    refreshState();
    refreshButtons();
}

QString WifiPage::noteText() const
{
    if (!networks().state().hasAdapter)
        return {};
    if (networks().isScanLate())
        return text(Text {"Panel", "scanLate", "The scan took longer than 5 s; scanning again"});
    if (!networks().isScanned())
        return text(scanningText);
    return networks().cells().isEmpty() ? text(Text {"WiFi", "noNetworks", "No networks in reach"})
                                        : QString();
}

void WifiPage::refreshState()
{
    const Networks::State &state = networks().state();
    m_power->setEnabled(state.hasAdapter && state.isRead);
    m_power->setText(state.isOn ? text(Text {"WiFi", "off", "Switch WiFi off"})
                                : text(Text {"WiFi", "on", "Switch WiFi on"}));
    m_state->setText(stateText());
    m_details->setText(detailsText());
}

QString WifiPage::stateText() const
{
    const Networks::State &state = networks().state();
    if (!state.hasAdapter)
        return text(Text {"WiFi", "noAdapter", "No WiFi adapter"});
    if (!networks().joining().isEmpty())
        return text(Text {"Panel", "joiningNetwork", "Connecting to"}) + QLatin1Char(' ')
            + networks().joining();
    if (!state.isRead)
        return text(scanningText);
    if (state.isConnected)
        return text(Text {"WiFi", "connected", "Connected"});
    if (state.isAssociated)
        return text(Text {"Panel", "joiningNetwork", "Connecting to"}) + QLatin1Char(' ')
            + state.name;
    return state.isOn ? text(Text {"WiFi", "disconnected", "Not connected"})
                      : text(Text {"Panel", "wifiOff", "WiFi is off"});
}

QString WifiPage::detailsText() const
{
    const Networks::State &state = networks().state();
    if (!state.isAssociated)
        return {};
    const struct
    {
        Text caption;
        const QString &value;
    } lines[] = {
        {Text {"Panel", "network", "Network"}, state.name},
        {Text {"WiFi", "address", "Address"}, state.address},
        {Text {"WiFi", "mask", "Network mask"}, state.mask},
        {Text {"WiFi", "broadcast", "Broadcast address"}, state.broadcast},
    };
    QString details;
    for (const auto &line : lines) {
        const bool isExtra = &line.value == &state.mask || &line.value == &state.broadcast;
        if (!line.value.isEmpty() && !(isExtra && Theme::isCompact()))
            details += Theme::scaled(QStringLiteral("<p style='margin: 0 0 6px 0'>%1<br>"
                                                    "<span style='color:%3; font-size:17px'>%2"
                                                    "</span></p>"))
                           .arg(text(line.caption), line.value.toHtmlEscaped(),
                                Theme::current().text.name());
    }
    return details;
}

void WifiPage::refreshButtons()
{
    const bool isKnown = networks().known().contains(chosenName());
    m_hidden->setEnabled(networks().state().hasAdapter);
    m_join->setEnabled(!chosenName().isEmpty());
    m_prefer->setEnabled(isKnown);
    m_forget->setEnabled(isKnown);
}

QString WifiPage::chosenName() const
{
    const auto row = m_list->chosenRow();
    return row ? row->title : QString();
}

// --- changing

void WifiPage::chooseToJoin()
{
    const QString name = chosenName();
    if (networks().isOpen(name))
        join(name, QString());
    else
        askPassPhrase(name);
}

void WifiPage::askPassPhrase(const QString &name)
{
    new FormSheet(
        texts(), this, Text {"WiFi", "connect", "Connect"},
        {{Text {"WiFi", "passphrase", "Pass phrase"}, TextField::Letters, QString(), true}},
        [this, name](const QStringList &lines) {
            if (!Networks::isPassPhrase(lines.first()))
                return text(lengthText);
            join(name, lines.first());
            return QString();
        },
        name);
}

void WifiPage::askHidden()
{
    new FormSheet(texts(), this, Text {"Panel", "hiddenNetwork", "Hidden network"},
                  {{Text {"Panel", "networkName", "Name of the network"}, TextField::Letters,
                    QString(), true},
                   {Text {"Panel", "openWhenEmpty", "Pass phrase; empty for an open network"},
                    TextField::Letters, QString(), true}},
                  [this](const QStringList &lines) {
                      if (lines.first().isEmpty())
                          return text(Text {"Dialogs", "enterName", "Enter a name"});
                      if (!lines.last().isEmpty() && !Networks::isPassPhrase(lines.last()))
                          return text(lengthText);
                      join(lines.first(), lines.last());
                      return QString();
                  });
}

void WifiPage::join(const QString &name, const QString &key)
{
    block([this, name, key] {
        if (!networks().join(name, key))
            fail();
    });
}

void WifiPage::showJoined(const QString &name, Networks::Outcome outcome)
{
    if (outcome == Networks::Joined)
        return; // the page already shows the new state
    session().tones().play(Buzzer::BuzzerClass::Tone_Decline);
    if (outcome == Networks::NotAnswering)
        new ConfirmSheet(
            texts(), this, Text {"Panel", "notReached", "Not joined: the network does not answer"},
            Text {"Panel", "tryAgain", "Try again"}, [this, name] { join(name, QString()); }, name,
            TouchButton::Primary);
    else
        new ConfirmSheet(
            texts(), this,
            outcome == Networks::NotFound
                ? Text {"Panel", "notFound",
                        "Not joined: not found, or the pass phrase may be wrong"}
                : Text {"Panel", "notJoined", "Not joined: the pass phrase may be wrong"},
            Text {"Panel", "enterAgain", "Enter it again"}, [this, name] { askPassPhrase(name); },
            name, TouchButton::Primary);
}

void WifiPage::block(std::function<void()> work)
{
    new StillSheet(texts(), this, Text {"Panel", "wifiChanging", "Changing the networks"},
                   std::move(work));
}
