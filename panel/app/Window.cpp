#include "app/Window.h"

#include "app/Context.h"
#include "common/LanguageSheet.h"
#include "common/Words.h"
#include "pages/AboutPage.h"
#include "pages/HelpPage.h"
#include "pages/ListsPage.h"
#include "pages/MeasurePage.h"
#include "pages/RecordPage.h"
#include "pages/SettingsPage.h"
#include "pages/SoundPage.h"
#include "pages/UsbPage.h"
#include "pages/WifiPage.h"
#include "touch/Buttons.h"
#include "touch/ElidedLabel.h"
#include "touch/Indicators.h"
#include "touch/Keyboard.h"
#include "touch/Sheets.h"
#include "touch/Theme.h"
#ifdef KTV_PLATFORM_STANDIN
#include "pages/AccessoriesPage.h"
#endif

#include <configuration/KTV_Configuration.h>
#include <datasource/KTV_DataSource.h>
#include <language/LangSerwis.h>
#include <wifi/KTV_Connection.h>
#include <wifi/Network.h>

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QScrollArea>
#include <QStackedWidget>
#include <QTime>
#include <QVBoxLayout>
#include <QtConcurrent>

#include <algorithm>
#include <memory>

namespace {

constexpr int headerHeight = 48;
constexpr int railWidth = 140;
constexpr int clockInterval = 1000; // ms
constexpr int recordingInterval = 250; // ms; readings may come faster than a person can read

template <typename PageClass> Page *make(Texts &texts, Session &session)
{
    return new PageClass(texts, session);
}

struct PageRow
{
    const char *topic; ///< topic of its help; also part of its button's name
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

int pageOf(const char *topic)
{
    const PageRow *const row =
        std::find_if(std::begin(pages), std::end(pages),
                     [topic](const PageRow &page) { return qstrcmp(page.topic, topic) == 0; });
    return int(row - std::begin(pages));
}

int barsOf(int state)
{
    return state - WiFi::Network::wifi_States_Connect_0;
}

} // namespace

Window::Window(Context &context, const QSize &size) : m_context(context)
{
    Theme::fit(size);
    setFixedSize(size);
    m_stack = new QStackedWidget;
    m_help = new HelpPage(context.texts(), session());
    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(0);
    QWidget *header = makeHeader();
    rows->addWidget(header);
    auto *columns = new QHBoxLayout;
    columns->setSpacing(0);
    if (!Theme::isCompact())
        columns->addWidget(makeRail());
    auto *pageColumn = new QVBoxLayout;
    pageColumn->addWidget(m_stack);
    columns->addLayout(pageColumn, 1);
    rows->addLayout(columns, 1);
    auto *keyboard = new Keyboard(context.texts(), context.keyboard(), this);
    // The page shrinks to leave space for the keyboard, and a small window hides its header, too. A
    // sheet is at the top of the window and needs no change.
    connect(keyboard, &Keyboard::opened, pageColumn,
            [this, header, pageColumn](const QWidget *field, int height) {
                if (!m_stack->isAncestorOf(field))
                    return;
                pageColumn->setContentsMargins(0, 0, 0, height);
                header->setVisible(!Theme::isCompact());
            });
    connect(keyboard, &Keyboard::closed, pageColumn, [header, pageColumn] {
        pageColumn->setContentsMargins(0, 0, 0, 0);
        header->show();
    });

    for (const PageRow &row : pages) {
        m_pages += row.make(context.texts(), session());
        m_stack->addWidget(inScroller(m_pages.last()));
    }
    m_stack->addWidget(m_help);
    connect(m_help, &HelpPage::closed, this, [this] { showPage(m_current); });

    context.texts().applyNowAndOnChange(this, [this] {
        refreshHeader();
        refreshRecording();
    });
    connect(&session(), &Session::meterChanged, this, &Window::refreshHeader);
    connect(&session().recorder(), &Recorder::stateChanged, this, &Window::refreshRecording);
    connect(&m_recordingTick, &QTimer::timeout, this, &Window::refreshRecording);
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

void Window::closeEvent(QCloseEvent *event)
{
    const Recorder &recorder = session().recorder();
    if (m_isDropped || (!recorder.isRunning() && !recorder.isUnsaved()))
        return;
    event->ignore();
    if (m_closingQuestion)
        return;
    m_closingQuestion = new ConfirmSheet(
        m_context.texts(), this,
        Text {"Panel", "confirmClose", "The series is not saved. Close the panel and lose it?"},
        Text {"Panel", "dropSeries", "Drop the series"}, [this] {
            m_isDropped = true;
            close();
        });
}

QWidget *Window::makeHeader()
{
    auto *header = new QWidget;
    header->setObjectName(QStringLiteral("header"));
    header->setFixedHeight(Theme::px(headerHeight));
    auto *row = new QHBoxLayout(header);
    row->setContentsMargins(Theme::margin(), 0, 0, 0);
    row->setSpacing(Theme::margin());
    if (Theme::isCompact()) {
        row->setContentsMargins(0, 0, 0, 0);
        auto *menu = new TouchButton(QStringLiteral("nav.menu"), TouchButton::Navigation);
        menu->setFixedSize(Theme::px(56), Theme::px(headerHeight));
        menu->setText(QStringLiteral("\u2630"));
        connect(menu, &QPushButton::clicked, this, &Window::chooseFromMenu);
        row->addWidget(menu);
    }
    m_meter = new QLabel;
    m_meter->setObjectName(QStringLiteral("header.meter"));
    m_recording = new TouchButton(QStringLiteral("header.recording"), TouchButton::Navigation);
    m_recording->setProperty("role", QStringLiteral("recording"));
    m_recording->hide();
    connect(m_recording, &QPushButton::clicked, this, [this] { showPage(pageOf("Record")); });
    m_alert =
        new ElidedLabel(QStringLiteral("header.alert")); // the page About shows the complete text
    m_alert->setProperty("role", QStringLiteral("alarm"));
    m_clock = new QLabel;
    m_bars = new SignalBars;
    m_helpButton = new TouchButton(QStringLiteral("nav.Help"), TouchButton::Navigation);
    m_helpButton->setFixedSize(Theme::px(64), Theme::px(headerHeight));
    m_helpButton->setText(QStringLiteral("?"));
    m_helpButton->setStyleSheet(
        Theme::scaled(QStringLiteral("font-size: 22px; padding: 0 0 0 22px; border: none;")));
    m_helpButton->setCheckable(true);
    connect(m_helpButton, &QPushButton::clicked, this, &Window::showHelp);
    row->addWidget(m_meter);
    row->addStretch(1);
    row->addWidget(m_recording);
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
    rail->setFixedWidth(Theme::px(railWidth));
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
                [this, index = int(m_buttons.size())] { showPage(index); });
        column->addWidget(button, 1);
        m_buttons += button;
    }
    return rail;
}

QWidget *Window::inScroller(QWidget *page) const
{
    if (!Theme::isCompact())
        return page;
    auto *scroller = new QScrollArea;
    scroller->setFrameShape(QFrame::NoFrame);
    scroller->setWidgetResizable(true);
    scroller->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroller->setWidget(page);
    scrollByFinger(scroller);
    return scroller;
}

void Window::chooseFromMenu()
{
    QVector<TouchRow> rows;
    for (const PageRow &page : pages)
        rows += TouchRow::of(m_context.texts().text(page.title));
    new PickSheet(m_context.texts(), this, Text {"Panel", "pages", "Pages"}, rows, m_current,
                  [this](int index) { showPage(index); });
}

void Window::showPage(int index)
{
    if (index != m_current && m_current >= 0)
        page(m_current)->leave();
    const bool isNew = index != m_current;
    m_current = index;
    for (int i = 0; i < m_buttons.size(); ++i)
        m_buttons.at(i)->setChecked(i == index);
    m_helpButton->setChecked(false);
    m_stack->setCurrentIndex(index);
    if (isNew)
        page(index)->enter();
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
    m_meter->setText(Theme::isCompact() ? meter->get_MeterModelName()
                                        : meter->get_MeterFullName() + QStringLiteral("   ")
                             + meter->get_SerialNumber());
    m_alert->setText(Words::cardAlert(m_context.texts(), session().library()));
    m_clock->setText(
        QTime::currentTime().toString(session().library().get_Lang()->getTimeFormat()));
}

void Window::refreshRecording()
{
    const Recorder &recorder = session().recorder();
    QString text = QStringLiteral("\u25CF ");
    if (!Theme::isCompact())
        text += m_context.texts().text(Text {"Panel", "recording", "Recording"}) + QLatin1Char(' ');
    m_recording->setText(text
                         + QStringLiteral("%1 / %2")
                               .arg(recorder.series().count())
                               .arg(recorder.series().conditions().wanted));
    m_recording->setVisible(recorder.isRunning());
    if (recorder.isRunning() != m_recordingTick.isActive())
        recorder.isRunning() ? m_recordingTick.start(recordingInterval) : m_recordingTick.stop();
}
