#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

/** The keys of the keyboard on the screen, and whether it is used. */
class KeyboardPolicy
{
public:
    KeyboardPolicy() = default;
    KeyboardPolicy(const KeyboardPolicy &) = delete;
    KeyboardPolicy &operator=(const KeyboardPolicy &) = delete;
    virtual ~KeyboardPolicy() = default;

    /** Whether the keyboard is shown; false if the user has connected one. */
    virtual bool isOnScreen() const = 0;
    /** Rows of keys: letters and digits, or only the letters of the language. */
    virtual QVector<QStringList> letters(bool isRegional, bool isBig) const = 0;
    /** Text of the key that shows the language's own letters. */
    virtual QString regionalName() const = 0;
    /** Units for which there are keys when a number is entered. */
    virtual QStringList units() const = 0;
};
