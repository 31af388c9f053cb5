#pragma once

#include <QPoint>
#include <QString>
#include <QWidget>

#include <functional>

class QTouchDevice;
class TouchList;

/**
 * A finger on the panel's window: finds what is touched by its name, as it lies on the screen,
 * and sends touch events to the window, as a touch screen does.
 */
class Finger
{
public:
    explicit Finger(QWidget &window);

    /** Touches the middle of the visible widget of this name. @return whether there is one */
    bool tap(const QString &name);
    /** Touches a point of the window, whatever is there. */
    void tapAt(const QPoint &point);
    /** Touches the row of a list that has this title, scrolling it into view first. */
    bool tapRow(const QString &name, const QString &title);
    /** Touches the keys of the keyboard on the screen, one after the other. */
    bool type(const QString &text);
    /** Draws the finger up the list, by some pixels. */
    bool drag(const QString &name, int pixels);

    /** The visible widget of this name, topmost card first; null when there is none. */
    QWidget *find(const QString &name) const;
    template <typename Widget> Widget *see(const QString &name) const
    {
        return qobject_cast<Widget *>(find(name));
    }
    /** Waits for something to come true, 10 s at most. */
    static bool waitFor(const std::function<bool()> &condition);

private:
    bool touch(QWidget *widget, const QPoint &point);
    bool typeKey(QChar key);

    QWidget &m_window;
    QTouchDevice *m_device;
};
