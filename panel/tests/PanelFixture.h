#pragma once

#include "app/Context.h"
#include "app/Window.h"
#include "finger/Finger.h"
#include "touch/Buttons.h"
#include "touch/Indicators.h"
#include "touch/TouchList.h"

#include "PanelTestMain.h"

#include <QLabel>
#include <QPushButton>
#include <QSemaphore>
#include <QtConcurrent>
#include <QtTest>

#include <utility>

/** While such an object exists, no other task of the global thread pool begins. */
class BusyPool
{
public:
    BusyPool()
    {
        for (int i = 0; i < QThreadPool::globalInstance()->maxThreadCount(); ++i)
            m_tasks += QtConcurrent::run([this] { m_end.acquire(); });
    }
    ~BusyPool()
    {
        m_end.release(int(m_tasks.size()));
        for (QFuture<void> &task : m_tasks)
            task.waitForFinished();
    }
    Q_DISABLE_COPY_MOVE(BusyPool)

private:
    QSemaphore m_end;
    QVector<QFuture<void>> m_tasks;
};

/** Notes that a sheet has announced that the interface is going to be blocked. */
class Announcements : public QObject
{
public:
    Announcements() { qApp->installEventFilter(this); }
    /** Whether there has been one since the last call. */
    bool take() { return std::exchange(m_isThereOne, false); }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Show && watched->objectName() == QLatin1String("sheet.still"))
            m_isThereOne = true;
        return false;
    }

private:
    bool m_isThereOne = false;
};

/** The panel after its start, and functions to operate it. */
class PanelFixture
{
public:
    explicit PanelFixture(const QSize &size = QSize(800, 480))
        : window(context, size)
        , finger(window)
    {
        window.show();
    }

    QString labelText(const char *name) const
    {
        const auto *label = finger.see<QLabel>(QLatin1String(name));
        return label ? label->text() : QStringLiteral("(no such label)");
    }
    QString buttonText(const char *name) const
    {
        const auto *button = finger.see<QPushButton>(QLatin1String(name));
        return button ? button->text() : QStringLiteral("(no such button)");
    }
    QString fieldValue(const char *name) const
    {
        const auto *field = finger.see<FieldButton>(QLatin1String(name));
        return field ? field->value() : QStringLiteral("(no such field)");
    }
    TouchList *list(const char *name) const { return finger.see<TouchList>(QLatin1String(name)); }
    QStringList titles(const char *name) const
    {
        QStringList titles;
        const TouchList *rows = list(name);
        for (int i = 0; rows && i < rows->rowCount(); ++i)
            titles += rows->row(i).title;
        return titles;
    }
    /** Waits for a message and returns its text. */
    QString message() const
    {
        Finger::waitFor([this] { return finger.find(QStringLiteral("sheet.message")); });
        return labelText("sheet.message");
    }
    bool isSheetOpen() const { return finger.find(QStringLiteral("sheet")); }
    /** Whether a sheet has announced, since the last call, that the interface was to be blocked. */
    bool isAnnounced() { return m_announcements.take(); }
    /** Touches a setting, and then a row of the list that opens. */
    bool pick(const char *button, const QString &title)
    {
        return finger.tap(QLatin1String(button))
            && finger.tapRow(QStringLiteral("sheet.list"), title);
    }
    /** Chooses another language, and waits until it has been loaded. */
    bool chooseLanguage(const QString &name)
    {
        return pick("settings.language", name) && isAnnounced()
            && Finger::waitFor([this] { return !isSheetOpen(); });
    }
    /** Types each value into a line of the sheet. @return whether every line could be touched */
    bool fill(const QStringList &values)
    {
        for (int line = 0; line < values.size(); ++line)
            if (!finger.tap(QStringLiteral("sheet.line.%1").arg(line))
                || !finger.type(values.at(line)))
                return false;
        return true;
    }
    /**
     * Touches widgets one after the other.
     * @return the first that could not be touched; empty for none
     */
    QString tap(std::initializer_list<const char *> names)
    {
        for (const char *name : names)
            if (!finger.tap(QLatin1String(name)))
                return QLatin1String(name);
        return {};
    }

    Context context;
    Session &session = context.session();
    Window window;
    Finger finger;

private:
    Announcements m_announcements;
};

/** Touches widgets one after the other; the test fails if one cannot be touched. */
#define TAP(panel, ...) QCOMPARE((panel).tap({__VA_ARGS__}), QString())
