#pragma once

#include "pages/Page.h"

#include <QSet>
#include <QStringList>

#include <functional>

namespace WiFi {
class KTV_Connection;
class Network;
} // namespace WiFi
class TouchButton;
class TouchList;

/** Networks in reach and known ones, and the connection as it is now. */
class WifiPage : public Page
{
    Q_OBJECT
public:
    WifiPage(Texts &texts, Session &session);
    /** Takes what the library has already sent: nobody else would delete it. */
    ~WifiPage() override;

    void enter() override;
    void leave() override;

private:
    /** A network in reach. */
    struct Cell
    {
        QString name;
        int bars;
        bool isProtected;
    };

    void layOut();
    WiFi::KTV_Connection &connection() const;
    void takeScan(QList<WiFi::Network *> *networks);
    void takeDetails(WiFi::Network *network);
    void readKnown();
    void refresh();
    void refreshDetails();
    void refreshButtons();
    QString chosenName() const;
    void join();
    void add(const QString &name, const QString &key);
    /** Says that it takes its time, and then keeps the interface's thread as long as it does. */
    void block(const std::function<void()> &work);

    QVector<Cell> m_cells;
    QSet<QString> m_known;
    bool m_isScanned = false;
    int m_state = 0;
    QString m_name;
    QString m_address;
    QString m_mask;
    QString m_broadcast;

    TouchList *m_list;
    QLabel *m_note;
    QLabel *m_stateText;
    QLabel *m_details;
    TouchButton *m_power;
    TouchButton *m_join;
    TouchButton *m_prefer;
    TouchButton *m_forget;
};
