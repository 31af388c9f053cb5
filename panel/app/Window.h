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
 * The panel: a header, a rail of pages at the left, and the page that is chosen. A small window has
 * a menu in the rail's place.
 */
class Window : public QWidget
{
    Q_OBJECT
public:
    /** @param size in pixels; letters and what is touched follow it */
    explicit Window(Context &context, const QSize &size = QSize(800, 480));
    /** Waits for the tools that tell the state of WiFi, if they are still at it. */
    ~Window() override;

    /** Greets after an installation: the language first. */
    void welcome();
    /** Shows a page by its number on the rail. */
    void showPage(int index);

protected:
    /** Asks first where a series would be lost. */
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
    QVector<TouchButton *> m_buttons; ///< of the rail; none on a small window
    HelpPage *m_help;
    int m_current = -1;
    QLabel *m_meter;
    TouchButton *m_recording;
    QLabel *m_alert;
    QLabel *m_clock;
    SignalBars *m_bars;
    QFutureWatcher<int> m_wifiState; ///< as it was at the start; later changes come by signal
    TouchButton *m_helpButton;
    QTimer m_tick;
    QTimer m_recordingTick;
    QPointer<QWidget> m_closingQuestion;
    bool m_isDropped = false; ///< the series may be lost
};
