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

/** A card over the window, which cannot be used until the card is closed. Deletes itself then. */
class Sheet : public QWidget
{
    Q_OBJECT
public:
    void finish();

protected:
    /** @param somewhere any widget of the window */
    Sheet(Texts &texts, QWidget *somewhere);

    Texts &texts() { return m_texts; }
    QVBoxLayout *card() { return m_layout; }
    /** @param subject shown after the title, not translated */
    QLabel *addTitle(const Text &title, const QString &subject = QString());
    /** Shows the card; @p atTop leaves space for the keyboard. */
    void open(int width, bool atTop = false);
    void paintEvent(QPaintEvent *event) override;

private:
    Texts &m_texts;
    QWidget *m_card;
    QVBoxLayout *m_layout;
};

/** A list from which the user chooses a row. */
class PickSheet : public Sheet
{
    Q_OBJECT
public:
    PickSheet(Texts &texts, QWidget *somewhere, const Text &title, const QVector<TouchRow> &rows,
              int chosen, std::function<void(int index)> onChosen);
};

/** A question that is asked before something is lost. */
class ConfirmSheet : public Sheet
{
    Q_OBJECT
public:
    /** @param yesRole role of the button "yes": Danger if something is lost by it */
    ConfirmSheet(Texts &texts, QWidget *somewhere, const Text &question, const Text &yes,
                 std::function<void()> onYes, const QString &subject = QString(),
                 TouchButton::Role yesRole = TouchButton::Danger);
};

/** A message. */
class MessageSheet : public Sheet
{
    Q_OBJECT
public:
    MessageSheet(Texts &texts, QWidget *somewhere, const Text &title, const QString &message);
};

/** Lines of text to be entered. */
class FormSheet : public Sheet
{
    Q_OBJECT
public:
    struct Field
    {
        Text caption;
        TextField::Kind kind;
        QString value;
        bool keepsBlanks = false; ///< blanks at the ends are not removed
    };

    /**
     * @param onAccepted gets the lines; a text that it returns is shown as an error, and the sheet
     *        stays
     * @param subject shown after the title, not translated
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
 * Announces that the screen will not react for some time; then runs the work, which blocks the
 * interface's thread, and closes.
 */
class StillSheet : public Sheet
{
    Q_OBJECT
public:
    StillSheet(Texts &texts, QWidget *somewhere, const Text &what, std::function<void()> work);
};

/** Shows that something is being done, and for how long. */
class BusySheet : public Sheet
{
    Q_OBJECT
public:
    BusySheet(Texts &texts, QWidget *somewhere, const Text &what);

private:
    QElapsedTimer m_since;
    QTimer m_tick;
};
