#pragma once

#include <QFutureWatcher>
#include <QPointer>
#include <QSize>
#include <QTimer>
#include <QVector>
#include <QWidget>

class Context;
class HelpPage;
class Page;
class QLabel;
class QStackedWidget;
class Session;
class SignalBars;
class TouchButton;

/**
 * The panel's window: a header, a rail with a button for each page at the left, and the current
 * page. A small window has a menu instead of the rail.
 */
class Window : public QWidget
{
    Q_OBJECT
public:
    /** @param size in pixels; all fonts and lengths are scaled to it */
    explicit Window(Context &context, const QSize &size = QSize(800, 480));
    /** Waits until the first state of WiFi has been read. */
    ~Window() override;

    /**
     * Shows what the user sees at the first start after an installation: the choice of a language.
     */
    void welcome();
    /** Shows the page with this index on the rail. */
    void showPage(int index);

protected:
    /** Asks the user first if an unsaved series would be lost. */
    void closeEvent(QCloseEvent *event) override;

private:
    QWidget *makeHeader();
    QWidget *makeRail();
    QWidget *inScroller(QWidget *page) const;
    Page *page(int index) const { return m_pages.at(index); }
    void chooseFromMenu();
    void showHelp();
    void refreshHeader();
    void refreshRecording();
    void askForWifi();

    Session &session() const;

    Context &m_context;
    QStackedWidget *m_stack;
    QVector<Page *> m_pages;
    QVector<TouchButton *> m_buttons; ///< on the rail; empty for a small window
    HelpPage *m_help;
    int m_current = -1;
    QLabel *m_meter;
    TouchButton *m_recording;
    QLabel *m_alert;
    QLabel *m_clock;
    SignalBars *m_bars;
    QFutureWatcher<int> m_wifiState; ///< state at the start; later changes come by signal
    TouchButton *m_helpButton;
    QTimer m_tick;
    QTimer m_recordingTick;
    QPointer<QWidget> m_closingQuestion;
    bool m_isDropped = false; ///< the user has agreed to lose the series
};
