#pragma once

#include "common/Page.h"

#include <functional>

class TouchButton;
class TouchList;

/** Networks in reach, known networks, and the present connection. */
class WifiPage : public Page
{
    Q_OBJECT
public:
    WifiPage(Texts &texts, Session &session);

    void enter() override;
    void leave() override;

private:
    void layOut();
    void refresh();
    QString noteText() const;
    void refreshState();
    void refreshButtons();
    QString stateText() const;
    QString detailsText() const;
    QString chosenName() const;

    void chooseToJoin();
    void askPassPhrase(const QString &name);
    void askHidden();
    void join(const QString &name, const QString &key);
    void showJoined(const QString &name, Networks::Outcome outcome);
    /** Shows a StillSheet, and then runs work that blocks the interface's thread. */
    void block(std::function<void()> work);

    Networks &networks() const { return session().networks(); }

    TouchList *m_list;
    QLabel *m_note;
    QLabel *m_state;
    QLabel *m_details;
    TouchButton *m_hidden;
    TouchButton *m_power;
    TouchButton *m_join;
    TouchButton *m_prefer;
    TouchButton *m_forget;
};
