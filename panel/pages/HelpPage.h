#pragma once

#include "common/Page.h"

#include <QStringList>

class QTextBrowser;
class TouchButton;

/** Shows the help pages of the page that was shown before. */
class HelpPage : public Page
{
    Q_OBJECT
public:
    HelpPage(Texts &texts, Session &session);

    void setTopic(const QString &topic);
    void enter() override { refresh(); }

signals:
    void closed();

private:
    void refresh();
    void show(int index);

    QString m_topic;
    QStringList m_files;
    int m_index = 0;
    QTextBrowser *m_text;
    QLabel *m_number;
    TouchButton *m_previous;
    TouchButton *m_next;
};
