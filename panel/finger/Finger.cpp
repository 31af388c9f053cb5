#include "finger/Finger.h"

#include "touch/TouchList.h"

#include <QAbstractButton>
#include <QScroller>
#include <QtTest>

#include <algorithm>

namespace {

constexpr int patience = 60000; // ms; nothing waits for it to pass

} // namespace

Finger::Finger(QWidget &window) : m_window(window), m_device(QTest::createTouchDevice())
{ }

QWidget *Finger::find(const QString &name) const
{
    // Of several visible widgets the one created last is on top.
    const QList<QWidget *> widgets = m_window.findChildren<QWidget *>(name);
    for (auto widget = widgets.crbegin(); widget != widgets.crend(); ++widget)
        if ((*widget)->isVisible())
            return *widget;
    return nullptr;
}

bool Finger::tap(const QString &name)
{
    QWidget *widget = find(name);
    return widget && widget->isEnabled() && touch(widget, widget->rect().center());
}

bool Finger::touch(QWidget *widget, const QPoint &point)
{
    // A real finger cannot touch a widget that another one covers.
    const QPoint onWindow = widget->mapTo(&m_window, point);
    QWidget *reached = m_window.childAt(onWindow);
    if (reached != widget && !(reached && widget->isAncestorOf(reached)))
        return false;
    tapAt(onWindow);
    return true;
}

void Finger::tapAt(const QPoint &point)
{
    QTest::touchEvent(&m_window, m_device).press(0, point, &m_window);
    QTest::touchEvent(&m_window, m_device).release(0, point, &m_window);
    QTest::qWait(0);
}

bool Finger::tapRow(const QString &name, const QString &title)
{
    auto *list = see<TouchList>(name);
    if (!list)
        return false;
    for (int index = 0; index < list->rowCount(); ++index) {
        if (list->row(index).title != title)
            continue;
        const auto place = [&] { return list->rowRect(index); };
        const auto isInView = [&] { return list->viewport()->rect().contains(place().center()); };
        constexpr int stroke = 120; // pixels
        for (int strokes = 0; !isInView() && strokes < 60; ++strokes)
            drag(name, place().center().y() < 0 ? -stroke : stroke);
        return isInView() && touch(list->viewport(), place().center());
    }
    return false;
}

bool Finger::drag(const QString &name, int pixels)
{
    auto *list = see<TouchList>(name);
    if (!list)
        return false;
    constexpr int steps = 6;
    const QPoint middle = list->viewport()->mapTo(&m_window, list->viewport()->rect().center());
    const QPoint from = middle + QPoint(0, pixels / 2);
    QTest::touchEvent(&m_window, m_device).press(0, from, &m_window);
    for (int step = 1; step <= steps; ++step) {
        QTest::qWait(10);
        QTest::touchEvent(&m_window, m_device)
            .move(0, from - QPoint(0, pixels * step / steps), &m_window);
    }
    QTest::qWait(60);
    QTest::touchEvent(&m_window, m_device).release(0, from - QPoint(0, pixels), &m_window);
    const QScroller *scroller = QScroller::scroller(list->viewport());
    return waitFor([&] { return scroller->state() == QScroller::Inactive; });
}

bool Finger::type(const QString &text)
{
    return std::all_of(text.cbegin(), text.cend(), [this](QChar key) { return typeKey(key); });
}

bool Finger::typeKey(QChar key)
{
    const QString name =
        key == QLatin1Char(' ') ? QStringLiteral("key.space") : QStringLiteral("key.") + key;
    // The key is in one of four layouts, between which two keys switch, or among the symbols.
    for (const char *change :
         {"key.shift", "key.regional", "key.shift", "key.regional", "key.symbols"}) {
        if (find(name))
            return tap(name);
        if (!tap(QLatin1String(change)))
            return false;
    }
    return tap(name);
}

bool Finger::waitFor(const std::function<bool()> &condition)
{
    return QTest::qWaitFor(condition, patience);
}
