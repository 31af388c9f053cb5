#pragma once

#include "touch/Sheets.h"

class Choice;
class FieldButton;
class QGridLayout;
class Setup;

/** Changes the simulated object, as a person would connect another one or swap the leads. */
class TestObjectSheet : public Sheet
{
    Q_OBJECT
public:
    TestObjectSheet(Texts &texts, Setup &setup, QWidget *somewhere);

    /** A short description of the object. */
    static QString summary(const Texts &texts, const Setup &setup);

private:
    void addQuantity(QGridLayout *grid, int quantity);
    void refresh();
    void step(int quantity, int direction);

    Setup &m_setup;
    QVector<FieldButton *> m_values;
    Choice *m_leads;
};
