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
#include <QtTest>

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
    /** Whether a sheet announces that the interface is going to be blocked. */
    bool isAnnounced() const { return finger.find(QStringLiteral("sheet.still")); }
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
};

/** Touches widgets one after the other; the test fails if one cannot be touched. */
#define TAP(panel, ...) QCOMPARE((panel).tap({__VA_ARGS__}), QString())
