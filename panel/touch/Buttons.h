#pragma once

#include <QPushButton>
#include <QVector>

class QButtonGroup;

/** A button that is large enough for a finger. Tests and the tour find it by its name. */
class TouchButton : public QPushButton
{
    Q_OBJECT
public:
    enum Role
    {
        Plain,
        Primary,
        Danger,
        Navigation,
        Key
    };

    explicit TouchButton(const QString &name, Role role = Plain, QWidget *parent = nullptr);
};

/** A button for a setting: shows its caption and its value. */
class FieldButton : public TouchButton
{
    Q_OBJECT
public:
    explicit FieldButton(const QString &name, QWidget *parent = nullptr);

    /** Sets the caption. It has this name because Texts::translate() calls setText(). */
    void setText(const QString &caption);
    void setValue(const QString &value);
    QString caption() const { return m_caption; }
    /** Width of the complete caption, in pixels. */
    int captionWidth() const;
    QString value() const { return m_value; }
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_caption;
    QString m_value;
};

/** Buttons side by side of which one is chosen. They are called NAME.0, NAME.1 and so on. */
class Choice : public QWidget
{
    Q_OBJECT
public:
    Choice(const QString &name, int count, QWidget *parent = nullptr);

    QPushButton *part(int index) const { return m_parts.at(index); }
    int current() const;
    /** Chooses a part without emitting chosen(); -1 for none. */
    void setCurrent(int index);

signals:
    void chosen(int index);

private:
    QButtonGroup *m_group;
    QVector<QPushButton *> m_parts;
};
