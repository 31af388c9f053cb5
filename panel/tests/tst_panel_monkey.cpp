#include "PanelFixture.h"

#include "support/Volume.h"

#include <QDir>
#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QTimer>

#include <algorithm>
#include <memory>

namespace {

constexpr int cardSize = 2000; // blocks

/** Measures for how long the event loop does not run. */
class Watchdog
{
public:
    Watchdog()
    {
        QObject::connect(&m_timer, &QTimer::timeout, [this] { look(); });
        m_timer.start(interval);
        m_sinceLook.start();
    }

    /** @param action what is being done from now on */
    void note(const QString &action) { m_action = action; }
    void look()
    {
        const qint64 stall = m_sinceLook.restart() - interval;
        if (stall <= longest)
            return;
        ++m_count;
        if (stall > m_worst) {
            m_worst = stall;
            m_worstAction = m_action;
        }
    }
    QString report() const
    {
        return QStringLiteral("%1 stalls above %2 ms, the worst %3 ms at: %4")
            .arg(m_count)
            .arg(longest)
            .arg(m_worst)
            .arg(m_worstAction);
    }
    int count() const { return m_count; }

private:
    static constexpr int interval = 5; // ms
    static constexpr int longest = 100; // ms

    QTimer m_timer;
    QElapsedTimer m_sinceLook;
    QString m_action;
    int m_count = 0;
    qint64 m_worst = 0;
    QString m_worstAction;
};

} // namespace

/**
 * Touches and types at random on every page in every language, while the WiFi interface goes up and
 * down and the card becomes full: the panel must not crash. The same KTV_MONKEY_SEED gives the same
 * touches. Visits every page once, or repeats this for KTV_MONKEY_MINUTES; then a stall of the
 * event loop is a failure, too.
 */
class TstPanelMonkey : public QObject
{
    Q_OBJECT
private slots:
    void touches();

private:
    void visit(PanelFixture &panel, const QString &page);
    void touch(PanelFixture &panel);
    void disturb(Volume &card);

    QRandomGenerator m_random;
    std::unique_ptr<Watchdog> m_watchdog;
    int m_touches = 0;
};

/** Touches the centre of a random widget, or now and then a random point. */
void TstPanelMonkey::touch(PanelFixture &panel)
{
    QList<QWidget *> widgets = panel.window.findChildren<QWidget *>();
    const auto isOutOfReach = [](const QWidget *widget) {
        return !widget->isVisible() || widget->objectName().isEmpty();
    };
    widgets.erase(std::remove_if(widgets.begin(), widgets.end(), isOutOfReach), widgets.end());
    const int chosen = m_random.bounded(int(widgets.size()) + 1);
    QPoint point(m_random.bounded(panel.window.width()), m_random.bounded(panel.window.height()));
    QString name = QStringLiteral("anything");
    if (chosen < widgets.size()) {
        const QWidget *widget = widgets.at(chosen);
        name = widget->objectName();
        point = widget->mapTo(&panel.window, widget->rect().center());
    }
    m_watchdog->note(QStringLiteral("touch %1, %2").arg(m_touches).arg(name));
    panel.finger.tapAt(point);
    ++m_touches;
    QTest::qWait(int(m_random.bounded(10U)));
}

void TstPanelMonkey::disturb(Volume &card)
{
    if (m_random.bounded(3) == 0)
        card.fillUp();
    else
        card.fill(m_random.bounded(cardSize * 3 / 4)); // the alerts begin at 70 percent
    const QString state = m_random.bounded(2) ? QStringLiteral("up") : QStringLiteral("down");
    QProcess::startDetached("/usr/bin/ip", {"link", "set", "wlan0", state});
}

void TstPanelMonkey::visit(PanelFixture &panel, const QString &page)
{
    constexpr int touchesEach = 6;
    panel.finger.tap(page); // fails if a sheet covers the button
    for (int i = 0; i < touchesEach; ++i)
        touch(panel);
    if (panel.finger.find("key.done"))
        panel.finger.type(QString::number(m_random.generate()));
}

void TstPanelMonkey::touches()
{
    Volume card("/media/sdcard", cardSize);
    for (const char *folder : {"Clients", "Log", "Update", "UserData"})
        QDir("/media/sdcard").mkpath(folder);
    QLoggingCategory::setFilterRules("default.debug=false"); // there are too many lines
    const int seed = qEnvironmentVariable("KTV_MONKEY_SEED", "1").toInt();
    const double minutes = qEnvironmentVariable("KTV_MONKEY_MINUTES").toDouble();
    m_random.seed(quint32(seed));
    QElapsedTimer time;
    time.start();
    auto panel = std::make_unique<PanelFixture>();
    QStringList pages;
    for (const QWidget *widget : panel->window.findChildren<QWidget *>())
        if (widget->objectName().startsWith("nav."))
            pages += widget->objectName();
    QVERIFY(pages.size() > 5);
    m_watchdog = std::make_unique<Watchdog>();
    do {
        for (const char *language : {"EN", "PL", "DE", "US"}) {
            panel->session.setLanguage(language);
            for (const QString &page : std::as_const(pages))
                visit(*panel, page);
            disturb(card);
        }
    } while (double(time.elapsed()) < minutes * 60000);
    qInfo("seed %d, %d touches; %s", seed, m_touches, qPrintable(m_watchdog->report()));
#if !defined(__SANITIZE_ADDRESS__)
    if (minutes > 0) // other tests that run at the same time cause stalls
        QVERIFY2(m_watchdog->count() == 0, qPrintable(m_watchdog->report()));
#endif
    m_watchdog.reset();
}

KTV_PANEL_TEST_MAIN(TstPanelMonkey)
#include "tst_panel_monkey.moc"
