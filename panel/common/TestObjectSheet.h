#pragma once

#include "touch/Sheets.h"

class Choice;
class FieldButton;
class QGridLayout;
class Setup;

/** The object under test, to be changed: what a person would do with leads and objects. */
class TestObjectSheet : public Sheet
{
    Q_OBJECT
public:
    TestObjectSheet(Texts &texts, Setup &setup, QWidget *somewhere);

    /** The object in a few words. */
    static QString summary(const Texts &texts, const Setup &setup);

private:
    void addQuantity(QGridLayout *grid, int quantity);
    void refresh();
    void step(int quantity, int direction);

    Setup &m_setup;
    QVector<FieldButton *> m_values;
    Choice *m_leads;
};
