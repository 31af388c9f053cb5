#pragma once

#include "pages/ListFamilies.h"
#include "pages/Page.h"

class Choice;
class TouchButton;
class TouchList;

/** The five pick lists of the library: searched, added to, renamed and thinned out. */
class ListsPage : public Page
{
    Q_OBJECT
public:
    explicit ListsPage(Context &context);

    void enter() override { refresh(); }

private:
    void layOut();
    const ListFamily &family() const { return listFamilies().at(m_current); }
    KTV_DataList &lists() const;
    void refresh();
    void refreshButtons();
    const ListEntry *chosenEntry() const;
    void edit(bool isNew);
    void remove();
    QString problemOf(const QStringList &values) const;
    void changed();

    int m_current = 0;
    QVector<ListEntry> m_entries;
    Choice *m_family;
    TextField *m_search;
    TouchButton *m_clear;
    TouchList *m_list;
    QLabel *m_empty;
    TouchButton *m_add;
    TouchButton *m_rename;
    TouchButton *m_delete;
};
