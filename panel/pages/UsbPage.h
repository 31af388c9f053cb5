#pragma once

#include "pages/Page.h"

#include <tools/Tools.h>

#include <QFutureWatcher>
#include <QPointer>

class BusySheet;
class TouchList;

/** What the USB port shows itself as, and who owns its serial line. */
class UsbPage : public Page
{
    Q_OBJECT
public:
    explicit UsbPage(Context &context);
    /** Waits until the port has been switched. */
    ~UsbPage() override;

    void enter() override;

private:
    struct State
    {
        QERNTools::Tools::USB_Mode mode = QERNTools::Tools::USB_None;
        QERNTools::Tools::RS232_Function owner = QERNTools::Tools::RS232_None;
    };

    void switchTo(int choice);
    void finished();
    void refresh();
    static int choiceOf(const State &state);

    QFutureWatcher<State> m_work; ///< one thread at a time for the port
    QPointer<BusySheet> m_busy;
    State m_state;
    int m_wanted = -1; ///< the choice that is being made; -1 while only looking
    bool m_hasFailed = false;
    TouchList *m_choices;
    QLabel *m_note;
};
