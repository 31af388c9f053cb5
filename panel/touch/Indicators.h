#pragma once

#include <QColor>
#include <QWidget>

class QPainter;

/** Shows a measured value as large as possible: number and unit of one text. */
class ValueDisplay : public QWidget
{
    Q_OBJECT
public:
    enum State
    {
        Idle,
        Passed,
        Failed,
        Unjudged ///< there is no verdict, for a reason that is shown
    };

    /** Each state has a shape of its own, for people who cannot tell the colours apart. */
    static void paintSign(QPainter &painter, const QRectF &area, State state);

    explicit ValueDisplay(const QString &name, QWidget *parent = nullptr);

    void setValue(const QString &text);
    QString value() const { return m_text; }
    /** Sets the line above the value. */
    void setCaption(const QString &caption);
    /**
     * Sets the large line below the value, with the sign of the state, and the reason in small
     * letters.
     */
    void setVerdict(const QString &text, const QString &reason, State state);
    QString verdict() const { return m_verdict; }
    QString reason() const { return m_reason; }
    /** Sets the small text to the right of the verdict. */
    void setNote(const QString &note);
    QString note() const { return m_note; }

    // Font sizes in pixels.
    int unitSize() const;
    int verdictSize() const; ///< the same as that of the unit, or smaller for a long verdict

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QRect valueArea() const;
    QRect verdictArea() const;
    QString unit() const;
    QString number() const;
    void paintValue(QPainter &painter) const;
    void paintVerdict(QPainter &painter) const;

    QString m_text;
    QString m_caption;
    QString m_verdict;
    QString m_reason;
    QString m_note;
    State m_state = Idle;
};

/** Shows a verdict in one line, after its sign. */
class VerdictLabel : public QWidget
{
    Q_OBJECT
public:
    explicit VerdictLabel(const QString &name, QWidget *parent = nullptr);

    void setVerdict(const QString &text, ValueDisplay::State state);
    QString text() const { return m_text; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_text;
    ValueDisplay::State m_state = ValueDisplay::Idle;
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

/** A bar that shows how full something is. */
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
