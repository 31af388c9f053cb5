#pragma once

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
    void addTitle(const Text &title);
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
    ConfirmSheet(Texts &texts, QWidget *somewhere, const Text &question, const Text &yes,
                 std::function<void()> onYes);
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
    };

    /** @param onAccepted takes the lines; what it returns is shown as an error, if anything */
    FormSheet(Texts &texts, QWidget *somewhere, const Text &title, const QVector<Field> &fields,
              std::function<QString(const QStringList &lines)> onAccepted);

private:
    void accept();

    QVector<TextField *> m_lines;
    QLabel *m_error = nullptr;
    std::function<QString(const QStringList &lines)> m_onAccepted;
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
