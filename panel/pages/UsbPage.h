#pragma once

#include "common/Page.h"

#include <QPointer>

class BusySheet;
class TouchList;

/** What the USB port shows itself as, and who owns its serial line. */
class UsbPage : public Page
{
    Q_OBJECT
public:
    UsbPage(Texts &texts, Session &session);

    void enter() override;

private:
    void switchTo(int choice);
    void finish(bool isWell);
    void refresh();
    QString failure() const;

    QPointer<BusySheet> m_busy;
    bool m_hasFailed = false;
    TouchList *m_choices;
    QLabel *m_note;
};
