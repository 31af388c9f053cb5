#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

/** What the keyboard on the screen offers, and whether it is wanted. */
class KeyboardPolicy
{
public:
    KeyboardPolicy() = default;
    KeyboardPolicy(const KeyboardPolicy &) = delete;
    KeyboardPolicy &operator=(const KeyboardPolicy &) = delete;
    virtual ~KeyboardPolicy() = default;

    /** Whether there is to be a keyboard on the screen; one may be connected instead. */
    virtual bool isOnScreen() const = 0;
    /** Rows of keys: letters and figures, or the letters of the language only. */
    virtual QVector<QStringList> letters(bool isRegional, bool isBig) const = 0;
    /** What the key of the language's own letters says. */
    virtual QString regionalName() const = 0;
    /** Units that are offered behind a number. */
    virtual QStringList units() const = 0;
};
