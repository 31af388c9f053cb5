#pragma once

#include "touch/Sheets.h"

class Session;

/** The languages that the meter offers, in their own names. */
class LanguageSheet : public PickSheet
{
    Q_OBJECT
public:
    LanguageSheet(Texts &texts, Session &session, QWidget *somewhere, const Text &title);

    /** "Deutsch" for "DE"; the code itself when nobody has told its name. */
    static QString nameOf(const QString &code);

private:
    static QStringList codes(const Session &session);
    static QVector<TouchRow> rows(const Session &session);
};
