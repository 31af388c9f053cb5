#pragma once

#include "common/Page.h"

class TouchButton;
class TouchList;

/**
 * What can be connected to the meter: label printer, QR code reader, USB stick with updates. A
 * maker's classes for them may have any functions, so this page uses those of the workstation's
 * stand-ins, and exists only with these.
 */
class AccessoriesPage : public Page
{
    Q_OBJECT
public:
    AccessoriesPage(Texts &texts, Session &session);

    void enter() override { refresh(); }

private:
    void layOut();
    void refresh();
    void print();
    QString labelText() const;

    QLabel *m_result;
    QLabel *m_code;
    QLabel *m_update;
    TouchButton *m_print;
    TouchButton *m_scan;
    TouchButton *m_check;
    TouchList *m_files;
    QLabel *m_noStick;
    QString m_scanned;
    bool m_isScanned = false;
};
