#pragma once

#include "touch/Sheets.h"

class Choice;
class Context;
class FieldButton;

/** The object under test, to be changed: what a person would do with leads and objects. */
class ObjectSheet : public Sheet
{
    Q_OBJECT
public:
    ObjectSheet(Context &context, QWidget *somewhere);

    /** The object in a few words. */
    static QString summary(Context &context);

private:
    void refresh();
    void step(int quantity, int direction);

    Context &m_context;
    QVector<FieldButton *> m_values;
    Choice *m_leads;
};
