#pragma once

#include "common/Page.h"

class Gauge;
class QGridLayout;
class QLayout;

/** Shows model and versions of the meter, its usage counters, and how full the memory card is. */
class AboutPage : public Page
{
    Q_OBJECT
public:
    AboutPage(Texts &texts, Session &session);
    void enter() override;

private:
    QVBoxLayout *makeIdentity();
    QVBoxLayout *makeCounters();
    QVBoxLayout *under(const Text &title, QLayout *facts);
    void layOutCard();
    QLabel *addFact(QGridLayout *grid, const Text &caption, const char *name);
    void refresh();

    QLabel *m_model;
    QLabel *m_serial;
    QLabel *m_interface;
    QLabel *m_system;
    QVector<QLabel *> m_counters;
    QLabel *m_card;
    QLabel *m_disk;
    QLabel *m_alert;
    Gauge *m_gauge;
};
