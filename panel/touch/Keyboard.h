#pragma once

#include <QLineEdit>
#include <QPointer>
#include <QVector>
#include <QWidget>

class KeyboardPolicy;
class QHBoxLayout;
class QPushButton;
class Texts;

/** A line to be written with the keyboard on the screen, which it opens and closes. */
class TextField : public QLineEdit
{
    Q_OBJECT
public:
    enum Kind
    {
        Letters,
        Number,
        NumberWithUnit ///< a number, with keys for the units behind it
    };

    TextField(const QString &name, Kind kind, QWidget *parent = nullptr);
    Kind kind() const { return m_kind; }
    /** Takes the focus and opens the keyboard. */
    void write();

signals:
    void written(); ///< The keyboard opens.
    void finished(); ///< The keyboard has closed.
    void accepted(); ///< The keyboard's last key was touched.

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    const Kind m_kind;
};

/**
 * The keyboard at the bottom of the window, one for all fields. The policy says which letters
 * there are; the symbols of ASCII have a page of their own, so that every pass phrase can be typed.
 * Keys are called "key.a", "key.shift", "key.done" and so on.
 */
class Keyboard : public QWidget
{
    Q_OBJECT
public:
    /** @param policy is asked anew whenever the keyboard opens */
    Keyboard(Texts &texts, const KeyboardPolicy &policy, QWidget *window);

    /** The keyboard of the window that a widget is in. */
    static Keyboard *of(const QWidget *widget);

    void open(TextField *field);
    void close(const TextField *field);

signals:
    /** The lower part of the window is covered. */
    void opened(const QWidget *field, int height);
    void closed();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void build();
    QVector<QStringList> rows() const;
    void insert(const QString &text);
    void addTextRow(const QStringList &texts);
    void addLastRow();
    void addModeKeys(QHBoxLayout *row);
    QPushButton *addKey(QHBoxLayout *row, const char *name, const QString &text, int stretch);
    void finish();
    void place();

    const KeyboardPolicy &m_policy;
    QPointer<TextField> m_field;
    QWidget *m_keys = nullptr;
    bool m_isBig = false;
    bool m_isRegional = false;
    bool m_isSymbols = false;
};
