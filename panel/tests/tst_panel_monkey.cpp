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
        m_schedule.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
        QObject::connect(&m_timer, &QTimer::timeout, [this] { look(); });
        m_timer.start(interval);
        m_sinceLook.start();
        m_last = scheduled();
    }

    /** @param action what is being done from now on */
    void note(const QString &action) { m_action = action; }
    /** What the test itself has done since the last look does not count. */
    void forget()
    {
        m_sinceLook.restart();
        m_last = scheduled();
    }
    QString report() const
    {
        return QStringLiteral("%1 stalls above %2 ms; %3 more that the host caused, the worst %4")
            .arg(m_own.size())
            .arg(longest)
            .arg(m_countOfHost)
            .arg(m_worstOfHost);
    }
    /** One line for each stall that is not the host's. */
    const QStringList &stalls() const { return m_own; }

private:
    static constexpr int interval = 5; // ms
    static constexpr int longest = 100; // ms

    /** What the kernel has counted for the thread of the interface, in ms. */
    struct Scheduled
    {
        qint64 ran = 0;
        qint64 waited = 0; ///< ready to run, while other threads had the processors
    };

    Scheduled scheduled()
    {
        constexpr qint64 nanoseconds = 1000000; // in a millisecond
        m_schedule.seek(0);
        const QList<QByteArray> numbers = m_schedule.readAll().split(' ');
        return {numbers.value(0).toLongLong() / nanoseconds,
                numbers.value(1).toLongLong() / nanoseconds};
    }

    void look()
    {
        const qint64 stall = m_sinceLook.restart() - interval;
        const Scheduled now = scheduled();
        const qint64 ran = now.ran - m_last.ran;
        const qint64 waited = now.waited - m_last.waited;
        m_last = now;
        if (stall <= longest)
            return;
        const QString text =
            QStringLiteral("%1 ms (ran %2 ms, waited %3 ms for a processor) at: %4")
                .arg(stall)
                .arg(ran)
                .arg(waited)
                .arg(m_action);
        if (stall - waited > longest) {
            m_own += text;
            return;
        }
        ++m_countOfHost;
        if (stall > m_longestOfHost) {
            m_longestOfHost = stall;
            m_worstOfHost = text;
        }
    }

    QTimer m_timer;
    QElapsedTimer m_sinceLook;
    QFile m_schedule {QStringLiteral("/proc/thread-self/schedstat")};
    Scheduled m_last;
    QString m_action;
    QStringList m_own;
    // Stalls that were too long only because the thread waited for a processor.
    int m_countOfHost = 0;
    qint64 m_longestOfHost = 0;
    QString m_worstOfHost = QStringLiteral("none");
};

} // namespace

/**
 * Touches and types at random on every page in every language, while the WiFi interface goes up and
 * down and the card becomes full: the panel must not crash. The same KTV_MONKEY_SEED gives the same
 * touches. Visits every page once, or repeats this for KTV_MONKEY_MINUTES; then a stall of the
 * event loop is a failure, too, unless the thread was ready to run and had no processor.
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
            m_watchdog->forget();
        }
    } while (double(time.elapsed()) < minutes * 60000);
    qInfo("seed %d, %d touches; %s", seed, m_touches, qPrintable(m_watchdog->report()));
    for (const QString &stall : m_watchdog->stalls())
        qInfo("stall: %s", qPrintable(stall));
#if !defined(__SANITIZE_ADDRESS__)
    if (minutes > 0) // the short form runs beside other tests, for whose disk accesses it waits
        QCOMPARE(m_watchdog->stalls().join('\n'), QString());
#endif
    m_watchdog.reset();
}

KTV_PANEL_TEST_MAIN(TstPanelMonkey)
#include "tst_panel_monkey.moc"
