#pragma once

#include "common/Page.h"

class Choice;
class TextField;
class TouchButton;
class TouchList;

/** Searches and edits the library's five pick lists. */
class ListsPage : public Page
{
    Q_OBJECT
public:
    ListsPage(Texts &texts, Session &session);

    void enter() override { refresh(); }

private:
    void layOut();
    Lists &lists() const { return session().lists(); }
    void refresh();
    void setSearching(bool isSearching);
    void refreshButtons();
    const Lists::Entry *chosenEntry() const;
    void edit(bool isNew);
    void remove();
    QString take(bool isNew, int id, const QStringList &values);

    Lists::Family m_current = Lists::ObjectTypes;
    QVector<Lists::Entry> m_entries;
    Choice *m_family;
    TextField *m_search;
    TouchButton *m_clear;
    TouchList *m_list;
    QLabel *m_empty;
    QWidget *m_buttons;
    TouchButton *m_add;
    TouchButton *m_rename;
    TouchButton *m_delete;
};
