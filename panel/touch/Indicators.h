#pragma once

#include <QColor>
#include <QVector>
#include <QWidget>

class QPainter;

/** The measured value, as large as it fits: number and unit of one text. */
class ValueDisplay : public QWidget
{
    Q_OBJECT
public:
    enum State
    {
        Idle,
        Passed,
        Failed,
        Unjudged ///< a limit was asked about, and there is no answer
    };

    explicit ValueDisplay(const QString &name, QWidget *parent = nullptr);

    void setValue(const QString &text);
    QString value() const { return m_text; }
    /** A line above the value. */
    void setCaption(const QString &caption);
    /** Below it, large, with the sign of the state; the reason in small letters. */
    void setVerdict(const QString &text, const QString &reason, State state);
    QString verdict() const { return m_verdict; }
    QString reason() const { return m_reason; }
    /** Small text at the right of the verdict. */
    void setNote(const QString &note);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void paintValue(QPainter &painter, const QRect &area) const;

    QString m_text;
    QString m_caption;
    QString m_verdict;
    QString m_reason;
    QString m_note;
    State m_state = Idle;
};

/** Bars of a radio signal. */
class SignalBars : public QWidget
{
    Q_OBJECT
public:
    explicit SignalBars(QWidget *parent = nullptr);
    /** @param level 0 to 4; -1 for no connection */
    void setLevel(int level);
    static void paint(QPainter &painter, const QRect &area, int level, const QColor &on,
                      const QColor &off);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    int m_level = -1;
};

/** How full something is. */
class Gauge : public QWidget
{
    Q_OBJECT
public:
    explicit Gauge(QWidget *parent = nullptr);
    void setPercent(float percent, bool isAlarm);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    float m_percent = 0;
    bool m_isAlarm = false;
};

/** A series of values over their number, scaled to what is there. */
class Plot : public QWidget
{
    Q_OBJECT
public:
    explicit Plot(const QString &name, QWidget *parent = nullptr);
    void setValues(const QVector<float> &values);
    /** Texts of the highest and the lowest value. */
    void setScale(const QString &top, const QString &bottom);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QVector<float> m_values;
    QString m_top;
    QString m_bottom;
};
