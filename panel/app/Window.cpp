#include "app/Window.h"

#include "app/Context.h"
#include "pages/AboutPage.h"
#include "pages/HelpPage.h"
#include "pages/LanguageSheet.h"
#include "pages/ListsPage.h"
#include "pages/MeasurePage.h"
#include "pages/RecordPage.h"
#include "pages/SettingsPage.h"
#include "pages/SoundPage.h"
#include "pages/UsbPage.h"
#include "pages/WifiPage.h"
#include "pages/Words.h"
#include "touch/Buttons.h"
#include "touch/Indicators.h"
#include "touch/Keyboard.h"
#ifdef KTV_PLATFORM_STANDIN
#include "pages/AccessoriesPage.h"
#endif

#include <configuration/KTV_Configuration.h>
#include <datasource/KTV_DataSource.h>
#include <language/LangSerwis.h>
#include <wifi/KTV_Connection.h>
#include <wifi/Network.h>

#include <QHBoxLayout>
#include <QStackedWidget>
#include <QTime>
#include <QVBoxLayout>
#include <QtConcurrent>

#include <memory>

namespace {

constexpr int windowWidth = 800;
constexpr int windowHeight = 480;
constexpr int headerHeight = 48;
constexpr int railWidth = 140;
constexpr int clockInterval = 1000; // ms

template <typename PageClass> Page *make(Texts &texts, Session &session)
{
    return new PageClass(texts, session);
}

struct PageRow
{
    const char *topic; ///< of its help; also its name on the rail
    Text title;
    Page *(*make)(Texts &texts, Session &session);
};

const PageRow pages[] = {
    {"Measure", Text {"Main", "measure", "Measure"}, make<MeasurePage>},
    {"Record", Text {"Panel", "record", "Record"}, make<RecordPage>},
    {"Lists", Text {"Panel", "lists", "Lists"}, make<ListsPage>},
    {"WiFi", Text {"Panel", "wifi", "WiFi"}, make<WifiPage>},
    {"USB", Text {"Panel", "usb", "USB"}, make<UsbPage>},
    {"Sound", Text {"Panel", "sound", "Sound"}, make<SoundPage>},
    {"Settings", Text {"Main", "settings", "Settings"}, make<SettingsPage>},
#ifdef KTV_PLATFORM_STANDIN
    {"Accessories", Text {"Panel", "accessories", "Accessories"}, make<AccessoriesPage>},
#endif
    {"About", Text {"Panel", "about", "About"}, make<AboutPage>},
};

int barsOf(int state)
{
    return state - WiFi::Network::wifi_States_Connect_0;
}

} // namespace

Window::Window(Context &context)
    : m_context(context)
    , m_stack(new QStackedWidget)
    , m_help(new HelpPage(context.texts(), context.session()))
{
    setFixedSize(windowWidth, windowHeight);
    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(0);
    rows->addWidget(makeHeader());
    auto *columns = new QHBoxLayout;
    columns->setSpacing(0);
    columns->addWidget(makeRail());
    columns->addWidget(m_stack, 1);
    rows->addLayout(columns, 1);
    new Keyboard(context.texts(), context.keyboard(), this);

    for (const PageRow &page : pages)
        m_stack->addWidget(page.make(context.texts(), session()));
    m_stack->addWidget(m_help);
    connect(m_help, &HelpPage::closed, this, [this] { showPage(m_current); });

    context.texts().keep(this, [this] { refreshHeader(); });
    connect(&session(), &Session::meterChanged, this, &Window::refreshHeader);
    connect(&session().preferences(), &Preferences::appearanceChanged, this,
            qOverload<>(&Window::update));
    connect(&session().library(), &KTV_DataSource::changeFreeSpaceAlert, this,
            &Window::refreshHeader);
    connect(session().library().getConnection(), &WiFi::KTV_Connection::WiFi_State_Change, m_bars,
            [this](int state) { m_bars->setLevel(barsOf(state)); });
    connect(&m_tick, &QTimer::timeout, this, &Window::refreshHeader);
    m_tick.start(clockInterval);
    session().library().updateTimeDisk();
    askForWifi();
    showPage(0);
}

Window::~Window()
{
    m_wifiState.waitForFinished();
}

Session &Window::session() const
{
    return m_context.session();
}

void Window::welcome()
{
    new LanguageSheet(m_context.texts(), session(), this, Text {"Main", "welcome", "Welcome"});
}

QWidget *Window::makeHeader()
{
    auto *header = new QWidget;
    header->setObjectName(QStringLiteral("header"));
    header->setFixedHeight(headerHeight);
    auto *row = new QHBoxLayout(header);
    row->setContentsMargins(16, 0, 0, 0);
    row->setSpacing(16);
    m_meter = new QLabel;
    m_meter->setObjectName(QStringLiteral("header.meter"));
    m_alert = new QLabel;
    m_alert->setObjectName(QStringLiteral("header.alert"));
    m_alert->setProperty("role", QStringLiteral("alarm"));
    m_clock = new QLabel;
    m_bars = new SignalBars;
    m_helpButton = new TouchButton(QStringLiteral("nav.Help"), TouchButton::Navigation);
    m_helpButton->setFixedSize(64, headerHeight);
    m_helpButton->setText(QStringLiteral("?"));
    m_helpButton->setStyleSheet(
        QStringLiteral("font-size: 22px; padding: 0 0 0 22px; border: none;"));
    m_helpButton->setCheckable(true);
    connect(m_helpButton, &QPushButton::clicked, this, &Window::showHelp);
    row->addWidget(m_meter);
    row->addStretch(1);
    row->addWidget(m_alert);
    row->addWidget(m_bars);
    row->addWidget(m_clock);
    row->addWidget(m_helpButton);
    return header;
}

QWidget *Window::makeRail()
{
    auto *rail = new QWidget;
    rail->setObjectName(QStringLiteral("rail"));
    rail->setFixedWidth(railWidth);
    auto *column = new QVBoxLayout(rail);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    for (const PageRow &page : pages) {
        auto *button = new TouchButton(QStringLiteral("nav.") + QLatin1String(page.topic),
                                       TouchButton::Navigation);
        button->setCheckable(true);
        button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
        m_context.texts().translate(button, page.title);
        connect(button, &QPushButton::clicked, this,
                [this, index = m_buttons.size()] { showPage(index); });
        column->addWidget(button, 1);
        m_buttons += button;
    }
    return rail;
}

void Window::showPage(int index)
{
    if (index != m_current && m_current >= 0)
        static_cast<Page *>(m_stack->widget(m_current))->leave();
    const bool isNew = index != m_current;
    m_current = index;
    for (int i = 0; i < m_buttons.size(); ++i)
        m_buttons.at(i)->setChecked(i == index);
    m_helpButton->setChecked(false);
    m_stack->setCurrentIndex(index);
    if (isNew)
        static_cast<Page *>(m_stack->widget(index))->enter();
}

void Window::showHelp()
{
    if (m_stack->currentWidget() == m_help) {
        showPage(m_current);
        return;
    }
    m_helpButton->setChecked(true);
    m_help->setTopic(QLatin1String(pages[m_current].topic));
    m_stack->setCurrentWidget(m_help);
    m_help->enter();
}

void Window::askForWifi()
{
    connect(&m_wifiState, &QFutureWatcher<int>::finished, m_bars,
            [this] { m_bars->setLevel(barsOf(m_wifiState.result())); });
    m_wifiState.setFuture(QtConcurrent::run([connection = session().library().getConnection()] {
        const std::unique_ptr<WiFi::Network> now(connection->getWiFi_Info());
        return now->state;
    }));
}

void Window::refreshHeader()
{
    const KTV_Configuration *meter = session().library().getMainConfig();
    m_meter->setText(meter->get_MeterFullName() + QStringLiteral("   ")
                     + meter->get_SerialNumber());
    m_alert->setText(Words::cardAlert(m_context.texts(), session().library()));
    m_clock->setText(
        QTime::currentTime().toString(session().library().get_Lang()->getTimeFormat()));
}
