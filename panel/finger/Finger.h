#pragma once

#include <QPoint>
#include <QString>
#include <QWidget>

#include <functional>

class TouchList;
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
using TouchDevice = class QTouchDevice;
#else
using TouchDevice = class QPointingDevice;
#endif

/**
 * Operates the panel's window as a user does: finds a widget by its object name, and sends touch
 * events to the window at the widget's place.
 */
class Finger
{
public:
    explicit Finger(QWidget &window);

    /** Touches the centre of the visible widget of this name. @return whether that is possible */
    bool tap(const QString &name);
    /** Touches a point of the window, whatever is there. */
    void tapAt(const QPoint &point);
    /** Touches the row of a list that has this title, scrolling it into view first. */
    bool tapRow(const QString &name, const QString &title);
    /** Touches the keys of the keyboard on the screen, one after the other. */
    bool type(const QString &text);
    /** Drags the list upwards by this number of pixels; downwards if it is negative. */
    bool drag(const QString &name, int pixels);

    /** The visible widget of this name, the topmost if there are several; null if there is none. */
    QWidget *find(const QString &name) const;
    template <typename Widget> Widget *see(const QString &name) const
    {
        return qobject_cast<Widget *>(find(name));
    }
    /** Waits until the condition is true, 10 s at most. */
    static bool waitFor(const std::function<bool()> &condition);

private:
    bool touch(QWidget *widget, const QPoint &point);
    bool typeKey(QChar key);

    QWidget &m_window;
    TouchDevice *m_device;
};
