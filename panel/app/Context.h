#pragma once

#include "app/LibraryKeyboard.h"
#include "app/LibraryTexts.h"
#include "meter/Session.h"

#include <QObject>

/**
 * What the panel consists of besides its window: the session, and the texts and the keyboard layout
 * for the screen.
 */
class Context : public QObject
{
    Q_OBJECT
public:
    explicit Context(QObject *parent = nullptr);

    Session &session() { return m_session; }
    LibraryTexts &texts() { return m_texts; }
    const KeyboardPolicy &keyboard() const { return m_keyboard; }

private:
    void applyAppearance();

    Session m_session;
    LibraryTexts m_texts;
    LibraryKeyboard m_keyboard;
};
