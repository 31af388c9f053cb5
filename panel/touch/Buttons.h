#pragma once

#include <QPushButton>
#include <QVector>

class QButtonGroup;

/** A button for a finger. Its name is how tests and the tour find it. */
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

/** A setting to be changed: a caption and what is chosen. */
class FieldButton : public TouchButton
{
    Q_OBJECT
public:
    explicit FieldButton(const QString &name, QWidget *parent = nullptr);

    /** The caption; named so for Texts::translate(). */
    void setText(const QString &caption);
    void setValue(const QString &value);
    QString caption() const { return m_caption; }
    /** What the whole caption takes of the button's width, in pixels. */
    int captionWidth() const;
    QString value() const { return m_value; }
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_caption;
    QString m_value;
};

/** One of a few, side by side. The parts are called NAME.0, NAME.1 and so on. */
class Choice : public QWidget
{
    Q_OBJECT
public:
    Choice(const QString &name, int count, QWidget *parent = nullptr);

    QPushButton *part(int index) const { return m_parts.at(index); }
    int current() const;
    /** Marks a part without telling anybody; -1 for none. */
    void setCurrent(int index);

signals:
    void chosen(int index);

private:
    QButtonGroup *m_group;
    QVector<QPushButton *> m_parts;
};
