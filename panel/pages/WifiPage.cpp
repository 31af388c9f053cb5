#include "pages/WifiPage.h"

#include "meter/NetworkName.h"
#include "touch/Buttons.h"
#include "touch/Sheets.h"
#include "touch/Theme.h"
#include "touch/TouchList.h"

#include <datasource/KTV_DataSource.h>
#include <wifi/KTV_Connection.h>
#include <wifi/Network.h>

#include <QCoreApplication>
#include <QVBoxLayout>

#include <memory>

using WiFi::KTV_Connection;
using WiFi::Network;

namespace {

constexpr int detailsWidth = 250;
/** Long enough for the sheet to be seen before the thread is kept. */
constexpr int paintTime = 60; // ms

} // namespace

WifiPage::WifiPage(Texts &texts, Session &session)
    : Page(texts, session)
    , m_list(new TouchList(QStringLiteral("wifi.list")))
    , m_note(label(QStringLiteral("wifi.note"), "quiet"))
    , m_stateText(label(QStringLiteral("wifi.state"), "title"))
    , m_details(label(QStringLiteral("wifi.details"), "quiet"))
    , m_power(new TouchButton(QStringLiteral("wifi.power")))
    , m_join(new TouchButton(QStringLiteral("wifi.join"), TouchButton::Primary))
    , m_prefer(new TouchButton(QStringLiteral("wifi.prefer")))
    , m_forget(new TouchButton(QStringLiteral("wifi.forget"), TouchButton::Danger))
{
    layOut();
    connect(&connection(), &KTV_Connection::WiFi_Scan, this, &WifiPage::takeScan);
    connect(&connection(), &KTV_Connection::WiFi_DetailState_Change, this, &WifiPage::takeDetails);
    connect(&connection(), &KTV_Connection::WiFi_State_Change, this, [this](int state) {
        m_state = state;
        refreshDetails();
    });
    connect(m_list, &TouchList::chosen, this, &WifiPage::refreshButtons);
    connect(m_power, &QPushButton::clicked, this,
            [this] { connection().set_wifi_Enable(m_state <= Network::wifi_States_OFF); });
    connect(m_join, &QPushButton::clicked, this, &WifiPage::join);
    connect(m_prefer, &QPushButton::clicked, this, [this] {
        block([this, name = chosenName()] { connection().SetPreferedNetwork(name); });
    });
    connect(m_forget, &QPushButton::clicked, this, [this] {
        new ConfirmSheet(
            this->texts(), this, Text {"WiFi", "forget", "Forget this network"},
            Text {"Dialogs", "yes", "Yes"},
            [this] { block([this, name = chosenName()] { connection().DeleteNetwork(name); }); });
    });
    texts.keep(this, [this] { refresh(); });
}

WifiPage::~WifiPage()
{
    WifiPage::leave();
    connection().disconnect(this);
    QCoreApplication::sendPostedEvents(this, QEvent::MetaCall);
}

void WifiPage::layOut()
{
    texts().translate(m_join, Text {"WiFi", "connect", "Connect"});
    texts().translate(m_prefer, Text {"Panel", "prefer", "Prefer"});
    texts().translate(m_forget, Text {"Panel", "forget", "Forget"});
    m_stateText->setWordWrap(true);
    m_details->setWordWrap(true);
    auto *networks = new QVBoxLayout;
    networks->addWidget(m_list, 1);
    networks->addWidget(m_note);
    auto *state = new QWidget;
    state->setFixedWidth(detailsWidth);
    auto *stateColumn = new QVBoxLayout(state);
    stateColumn->setContentsMargins(Theme::gap, 0, 0, 0);
    stateColumn->addWidget(m_stateText);
    stateColumn->addWidget(m_details);
    stateColumn->addStretch(1);
    stateColumn->addWidget(m_power);
    auto *upper = new QHBoxLayout;
    upper->addLayout(networks, 1);
    upper->addWidget(state);
    column()->addLayout(upper, 1);
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(Theme::gap);
    for (TouchButton *button : {m_join, m_prefer, m_forget})
        buttons->addWidget(button, 1);
    column()->addLayout(buttons);
}

KTV_Connection &WifiPage::connection() const
{
    return *library().getConnection();
}

void WifiPage::enter()
{
    // An adapter may have been plugged in since.
    if (connection().getInterfaceName().isEmpty())
        connection().findWifiInterfaceName();
    connection().DetailInfoScan(true);
    connection().ScanNetwork(true);
    m_isScanned = false;
    readKnown();
    refresh();
}

void WifiPage::leave()
{
    connection().ScanNetwork(false);
    connection().DetailInfoScan(false);
}

// --- what the library tells

void WifiPage::takeScan(QList<Network *> *networks)
{
    const std::unique_ptr<QList<Network *>> owned(networks);
    m_isScanned = true;
    m_cells.clear();
    if (owned) {
        for (const Network *network : std::as_const(*owned))
            m_cells.prepend({NetworkName::readable(network->ESSID),
                             network->state - Network::wifi_States_Connect_0,
                             network->encryption}); // the weakest came first
        qDeleteAll(*owned);
    }
    refresh();
}

void WifiPage::takeDetails(Network *network)
{
    const std::unique_ptr<Network> owned(network);
    m_state = network->state;
    m_name = network->ESSID;
    m_address = network->address;
    m_mask = network->mask;
    m_broadcast = network->broadcast;
    refresh();
}

void WifiPage::readKnown()
{
    const std::unique_ptr<QList<Network *>> known(connection().GetMyNetwork());
    m_known.clear();
    for (const Network *network : std::as_const(*known))
        m_known += network->ESSID;
    qDeleteAll(*known);
}

// --- showing

void WifiPage::refresh()
{
    QVector<TouchRow> rows;
    QSet<QString> outOfReach = m_known;
    for (const Cell &cell : std::as_const(m_cells)) {
        TouchRow row;
        row.title = cell.name;
        row.bars = qMax(0, cell.bars);
        row.isMarked = outOfReach.remove(cell.name);
        row.detail = row.isMarked ? text(Text {"Panel", "known", "known"})
            : cell.isProtected    ? QString()
                                  : text(Text {"Panel", "open", "open"});
        rows += row;
    }
    QStringList others = outOfReach.values();
    others.sort();
    for (const QString &name : std::as_const(others)) {
        TouchRow row;
        row.title = name;
        row.bars = 0;
        row.isMarked = true;
        row.detail = text(Text {"Panel", "known", "known"});
        rows += row;
    }
    m_list->setRows(rows);

    const bool hasAdapter = !connection().getInterfaceName().isEmpty();
    if (!hasAdapter)
        m_note->setText(text(Text {"WiFi", "noAdapter", "No WiFi adapter"}));
    else if (!m_isScanned)
        m_note->setText(text(Text {"WiFi", "scanning", "Searching"}));
    else if (m_cells.isEmpty())
        m_note->setText(text(Text {"WiFi", "noNetworks", "No networks in reach"}));
    else
        m_note->clear();
    refreshDetails();
    refreshButtons();
}

void WifiPage::refreshDetails()
{
    const bool hasAdapter = !connection().getInterfaceName().isEmpty();
    m_power->setEnabled(hasAdapter);
    m_power->setText(m_state > Network::wifi_States_OFF
                         ? text(Text {"WiFi", "off", "Switch WiFi off"})
                         : text(Text {"WiFi", "on", "Switch WiFi on"}));
    if (m_state >= Network::wifi_States_Connect_0)
        m_stateText->setText(text(Text {"WiFi", "connected", "Connected"}));
    else if (m_state == Network::wifi_States_Connecting)
        m_stateText->setText(text(Text {"WiFi", "connecting", "Connecting"}));
    else
        m_stateText->setText(text(Text {"WiFi", "disconnected", "Not connected"}));

    QString details;
    const auto add = [&](const Text &caption, QString value) {
        if (value.startsWith(QLatin1Char(':')))
            value.remove(0, 1);
        if (!value.isEmpty())
            details += QStringLiteral("<p style='margin: 0 0 10px 0'>%1<br>"
                                      "<span style='color:%3; font-size:17px'>%2</span></p>")
                           .arg(text(caption), value.toHtmlEscaped(), Theme::current().text.name());
    };
    if (m_state >= Network::wifi_States_Connecting) {
        add(Text {"Panel", "network", "Network"}, m_name);
        add(Text {"WiFi", "address", "Address"}, m_address);
        add(Text {"WiFi", "mask", "Network mask"}, m_mask);
        add(Text {"WiFi", "broadcast", "Broadcast address"}, m_broadcast);
    }
    m_details->setText(details);
}

void WifiPage::refreshButtons()
{
    const QString name = chosenName();
    const bool isKnown = m_known.contains(name);
    m_join->setEnabled(!name.isEmpty());
    m_prefer->setEnabled(isKnown);
    m_forget->setEnabled(isKnown);
}

QString WifiPage::chosenName() const
{
    return m_list->chosenRow() ? m_list->chosenRow()->title : QString();
}

// --- changing

void WifiPage::join()
{
    const QString name = chosenName();
    for (const Cell &cell : std::as_const(m_cells)) {
        if (cell.name == name && !cell.isProtected) {
            add(name, QString());
            return;
        }
    }
    new FormSheet(texts(), this, Text {"WiFi", "connect", "Connect"},
                  {{Text {"WiFi", "passphrase", "Pass phrase"}, TextField::Letters, QString()}},
                  [this, name](const QStringList &lines) {
                      constexpr int shortest = 8;
                      constexpr int longest = 63;
                      const int length = lines.first().size();
                      if (length < shortest || length > longest)
                          return text(Text {"WiFi", "passphraseLength",
                                            "The pass phrase has 8 to 63 characters"});
                      add(name, lines.first());
                      return QString();
                  });
}

void WifiPage::add(const QString &name, const QString &key)
{
    block([this, name, key] {
        if (!connection().AddNetwork(name, key))
            fail();
    });
}

void WifiPage::block(const std::function<void()> &work)
{
    auto *busy =
        new BusySheet(texts(), this, Text {"Panel", "wifiChanging", "Changing the networks"});
    QTimer::singleShot(paintTime, this, [this, busy, work] {
        work();
        busy->finish();
        readKnown();
        refresh();
    });
}
