#pragma once

#include "touch/Sheets.h"

class Session;

/** Lets the user choose one of the meter's languages. */
class LanguageSheet : public PickSheet
{
    Q_OBJECT
public:
    LanguageSheet(Texts &texts, Session &session, QWidget *somewhere, const Text &title);

    /**
     * The language's name in that language: "Deutsch" for "DE"; the code if its name is not known
     * here.
     */
    static QString nameOf(const QString &code);

private:
    static QStringList codes(const Session &session);
    static QVector<TouchRow> rows(const Session &session);
};
