#pragma once

#include <QFutureWatcher>
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

/** The panel: a header, a rail of pages at the left, and the page that is chosen. */
class Window : public QWidget
{
    Q_OBJECT
public:
    explicit Window(Context &context);
    /** Waits for the tools that tell the state of WiFi, if they are still at it. */
    ~Window() override;

    /** Greets after an installation: the language first. */
    void welcome();
    /** Shows a page by its number on the rail. */
    void showPage(int index);

private:
    QWidget *makeHeader();
    QWidget *makeRail();
    void showHelp();
    void refreshHeader();
    void askForWifi();

    Session &session() const;

    Context &m_context;
    QStackedWidget *m_stack;
    QVector<TouchButton *> m_buttons;
    HelpPage *m_help;
    int m_current = -1;
    QLabel *m_meter;
    QLabel *m_alert;
    QLabel *m_clock;
    SignalBars *m_bars;
    QFutureWatcher<int> m_wifiState; ///< as it was at the start; later changes come by signal
    TouchButton *m_helpButton;
    QTimer m_tick;
};
