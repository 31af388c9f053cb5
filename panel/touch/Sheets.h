#pragma once

#include "touch/Buttons.h"
#include "touch/Keyboard.h"
#include "touch/Text.h"
#include "touch/TouchList.h"

#include <QElapsedTimer>
#include <QStringList>
#include <QTimer>
#include <QVector>
#include <QWidget>

#include <functional>

class QLabel;
class QVBoxLayout;
class Texts;

/** A card over the whole window, which waits until the card is done with. Deletes itself. */
class Sheet : public QWidget
{
    Q_OBJECT
public:
    void finish();

protected:
    /** @param somewhere any widget of the window to be covered */
    Sheet(Texts &texts, QWidget *somewhere);

    Texts &texts() { return m_texts; }
    QVBoxLayout *card() { return m_layout; }
    /** @param subject what it is about, behind the title; in no language */
    QLabel *addTitle(const Text &title, const QString &subject = QString());
    /** Shows the card, at the top when there is something to be written. */
    void open(int width, bool atTop = false);
    void paintEvent(QPaintEvent *event) override;

private:
    Texts &m_texts;
    QWidget *m_card;
    QVBoxLayout *m_layout;
};

/** One of a list. */
class PickSheet : public Sheet
{
    Q_OBJECT
public:
    PickSheet(Texts &texts, QWidget *somewhere, const Text &title, const QVector<TouchRow> &rows,
              int chosen, std::function<void(int index)> onChosen);
};

/** A question whose answer may cost something. */
class ConfirmSheet : public Sheet
{
    Q_OBJECT
public:
    /** @param yesRole of the button: Danger, unless the answer costs nothing */
    ConfirmSheet(Texts &texts, QWidget *somewhere, const Text &question, const Text &yes,
                 std::function<void()> onYes, const QString &subject = QString(),
                 TouchButton::Role yesRole = TouchButton::Danger);
};

/** Something to be read. */
class MessageSheet : public Sheet
{
    Q_OBJECT
public:
    MessageSheet(Texts &texts, QWidget *somewhere, const Text &title, const QString &message);
};

/** Lines to be written. */
class FormSheet : public Sheet
{
    Q_OBJECT
public:
    struct Field
    {
        Text caption;
        TextField::Kind kind;
        QString value;
        bool keepsBlanks = false; ///< those at either end count
    };

    /**
     * @param onAccepted takes the lines; what it returns is shown as an error, if anything
     * @param subject what the lines are about, behind the title
     */
    FormSheet(Texts &texts, QWidget *somewhere, const Text &title, const QVector<Field> &fields,
              std::function<QString(const QStringList &lines)> onAccepted,
              const QString &subject = QString());

private:
    void accept();

    const QVector<Field> m_fields;
    QVector<TextField *> m_lines;
    QLabel *m_error = nullptr;
    std::function<QString(const QStringList &lines)> m_onAccepted;
};

/**
 * Says beforehand that the interface's thread is going to be kept, and with it the screen; then
 * runs the work and goes.
 */
class StillSheet : public Sheet
{
    Q_OBJECT
public:
    StillSheet(Texts &texts, QWidget *somewhere, const Text &what, std::function<void()> work);
};

/** Says that something takes its time, and how long it has been at it. */
class BusySheet : public Sheet
{
    Q_OBJECT
public:
    BusySheet(Texts &texts, QWidget *somewhere, const Text &what);

private:
    QElapsedTimer m_since;
    QTimer m_tick;
};
