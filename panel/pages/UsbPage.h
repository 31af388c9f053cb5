#pragma once

#include "common/Page.h"

#include <QPointer>

class BusySheet;
class TouchList;

/** Shows and changes the USB port's mode and the owner of its serial line. */
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
