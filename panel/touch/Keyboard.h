#pragma once

#include <QLineEdit>
#include <QPointer>
#include <QVector>
#include <QWidget>

class KeyboardPolicy;
class QHBoxLayout;
class QPushButton;
class Texts;

/** A line of text that is entered with the keyboard on the screen, which it opens and closes. */
class TextField : public QLineEdit
{
    Q_OBJECT
public:
    enum Kind
    {
        Letters,
        Number,
        NumberWithUnit ///< a number, with keys for units
    };

    TextField(const QString &name, Kind kind, QWidget *parent = nullptr);
    Kind kind() const { return m_kind; }
    /** Takes the focus and opens the keyboard. */
    void write();

signals:
    void written(); ///< The keyboard has been opened.
    void finished(); ///< The keyboard has been closed.
    void accepted(); ///< The keyboard's last key was touched.

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    const Kind m_kind;
};

/**
 * The keyboard at the bottom of the window, one for all fields. The policy has the letters; the
 * symbols of ASCII are on a separate page, so that every pass phrase can be typed. Keys are called
 * "key.a", "key.shift", "key.done" and so on.
 */
class Keyboard : public QWidget
{
    Q_OBJECT
public:
    /** @param policy is read again each time the keyboard is opened */
    Keyboard(Texts &texts, const KeyboardPolicy &policy, QWidget *window);

    /** The keyboard of the widget's window. */
    static Keyboard *of(const QWidget *widget);

    void open(TextField *field);
    void close(const TextField *field);

signals:
    /** The keyboard covers the lower part of the window. */
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
