#pragma once

#include "touch/KeyboardPolicy.h"

class Session;

/**
 * The keyboard layout of the library's language files. Not used if the user has connected a
 * keyboard.
 */
class LibraryKeyboard : public KeyboardPolicy
{
public:
    explicit LibraryKeyboard(Session &session) : m_session(session) { }

    bool isOnScreen() const override;
    QVector<QStringList> letters(bool isRegional, bool isBig) const override;
    QString regionalName() const override;
    QStringList units() const override;

private:
    Session &m_session;
};
