#pragma once

#include "touch/Sheets.h"

class Context;

/** The languages that the meter offers, in their own names. */
class LanguageSheet : public PickSheet
{
    Q_OBJECT
public:
    LanguageSheet(Context &context, QWidget *somewhere, const Text &title);

    /** "Deutsch" for "DE"; the code itself when nobody has told its name. */
    static QString nameOf(const QString &code);

private:
    static QStringList codes(Context &context);
    static QVector<TouchRow> rows(Context &context);
};
