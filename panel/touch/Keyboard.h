#pragma once

#include <QLineEdit>
#include <QPointer>
#include <QVector>
#include <QWidget>

class Context;

/** A line to be written with the keyboard on the screen, which it opens and closes. */
class TextField : public QLineEdit
{
    Q_OBJECT
public:
    enum Kind
    {
        Letters,
        Number,
        Resistance ///< a number and one of the library's units: "1.5 mΩ"
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
 * The keyboard at the bottom of the window, one for all fields. Letters stand where the language
 * file has them. Keys are called "key.a", "key.shift", "key.done" and so on.
 */
class Keyboard : public QWidget
{
    Q_OBJECT
public:
    Keyboard(Context &context, QWidget *window);

    /** The keyboard of the window that a widget is in. */
    static Keyboard *of(const QWidget *widget);

    void open(TextField *field);
    void close(const TextField *field);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void build();
    QVector<QStringList> rows() const;
    void addTextRow(const QStringList &texts);
    void addLastRow();
    void place();

    Context &m_context;
    QPointer<TextField> m_field;
    QWidget *m_keys = nullptr;
    bool m_isBig = false;
    bool m_isRegional = false;
};
