#include "pages/WifiPage.h"

#include "touch/Buttons.h"
#include "touch/Sheets.h"
#include "touch/Theme.h"

#include <datasource/KTV_DataSource.h>
#include <wifi/KTV_Connection.h>
#include <wifi/Network.h>

#include <QCoreApplication>
#include <QRegularExpression>
#include <QTextCodec>
#include <QVBoxLayout>

#include <algorithm>
#include <memory>

using WiFi::KTV_Connection;
using WiFi::Network;

namespace {

constexpr int detailsWidth = 250;
/** Long enough for the sheet to be seen before the thread is kept. */
constexpr int paintTime = 60; // ms

/** A name's bytes: scans show what is not plain ASCII as the tool prints it, \xC3. */
QByteArray unescaped(const QString &printed)
{
    static const QRegularExpression escape(QStringLiteral("\\\\x([0-9A-Fa-f]{2})"));
    QByteArray bytes;
    int end = 0;
    for (auto escapes = escape.globalMatch(printed); escapes.hasNext();) {
        const QRegularExpressionMatch match = escapes.next();
        bytes += printed.midRef(end, match.capturedStart() - end).toUtf8();
        bytes += char(match.capturedRef(1).toInt(nullptr, 16));
        end = match.capturedEnd();
    }
    return bytes + printed.midRef(end).toUtf8();
}

/** A name as people know it, and as it is joined by; one that is no text stays as printed. */
QString readable(const QString &printed)
{
    const QByteArray bytes = unescaped(printed);
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    const QString name =
        QTextCodec::codecForName("UTF-8")->toUnicode(bytes.constData(), bytes.size(), &state);
    const QVector<uint> characters = name.toUcs4();
    const bool isText = state.invalidChars == 0 && state.remainingChars == 0
        && std::all_of(characters.begin(), characters.end(), qOverload<uint>(&QChar::isPrint));
    return isText ? name : printed;
}

} // namespace

WifiPage::WifiPage(Context &context)
    : Page(context)
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
            this->context(), this, Text {"WiFi", "forget", "Forget this network"},
            Text {"Dialogs", "yes", "Yes"},
            [this] { block([this, name = chosenName()] { connection().DeleteNetwork(name); }); });
    });
    context.keep(this, [this] { refresh(); });
}

WifiPage::~WifiPage()
{
    WifiPage::leave();
    connection().disconnect(this);
    QCoreApplication::sendPostedEvents(this, QEvent::MetaCall);
}

void WifiPage::layOut()
{
    context().translate(m_join, Text {"WiFi", "connect", "Connect"});
    context().translate(m_prefer, Text {"Panel", "prefer", "Prefer"});
    context().translate(m_forget, Text {"Panel", "forget", "Forget"});
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
            m_cells.prepend({readable(network->ESSID),
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
        row.detail = row.isMarked ? context().text(Text {"Panel", "known", "known"})
            : cell.isProtected    ? QString()
                                  : context().text(Text {"Panel", "open", "open"});
        rows += row;
    }
    QStringList others = outOfReach.values();
    others.sort();
    for (const QString &name : std::as_const(others)) {
        TouchRow row;
        row.title = name;
        row.bars = 0;
        row.isMarked = true;
        row.detail = context().text(Text {"Panel", "known", "known"});
        rows += row;
    }
    m_list->setRows(rows);

    const bool hasAdapter = !connection().getInterfaceName().isEmpty();
    if (!hasAdapter)
        m_note->setText(context().text(Text {"WiFi", "noAdapter", "No WiFi adapter"}));
    else if (!m_isScanned)
        m_note->setText(context().text(Text {"WiFi", "scanning", "Searching"}));
    else if (m_cells.isEmpty())
        m_note->setText(context().text(Text {"WiFi", "noNetworks", "No networks in reach"}));
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
                         ? context().text(Text {"WiFi", "off", "Switch WiFi off"})
                         : context().text(Text {"WiFi", "on", "Switch WiFi on"}));
    if (m_state >= Network::wifi_States_Connect_0)
        m_stateText->setText(context().text(Text {"WiFi", "connected", "Connected"}));
    else if (m_state == Network::wifi_States_Connecting)
        m_stateText->setText(context().text(Text {"WiFi", "connecting", "Connecting"}));
    else
        m_stateText->setText(context().text(Text {"WiFi", "disconnected", "Not connected"}));

    QString details;
    const auto add = [&](const Text &caption, QString value) {
        if (value.startsWith(QLatin1Char(':')))
            value.remove(0, 1);
        if (!value.isEmpty())
            details += QStringLiteral("<p style='margin: 0 0 10px 0'>%1<br>"
                                      "<span style='color:%3; font-size:17px'>%2</span></p>")
                           .arg(context().text(caption), value.toHtmlEscaped(),
                                Theme::current().text.name());
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
    new FormSheet(context(), this, Text {"WiFi", "connect", "Connect"},
                  {{Text {"WiFi", "passphrase", "Pass phrase"}, TextField::Letters, QString()}},
                  [this, name](const QStringList &lines) {
                      constexpr int shortest = 8;
                      constexpr int longest = 63;
                      const int length = lines.first().size();
                      if (length < shortest || length > longest)
                          return context().text(Text {"WiFi", "passphraseLength",
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
        new BusySheet(context(), this, Text {"Panel", "wifiChanging", "Changing the networks"});
    QTimer::singleShot(paintTime, this, [this, busy, work] {
        work();
        busy->finish();
        readKnown();
        refresh();
    });
}
