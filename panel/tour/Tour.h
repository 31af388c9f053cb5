#pragma once

#include "finger/Finger.h"

#include <QDir>
#include <QString>

#include <functional>

class Context;

/** A person's way through the panel, from page to page, with a line for everything done. */
class Tour
{
public:
    /** @param pictures directory for the pictures; empty for none */
    Tour(Context &context, QWidget &window, const QString &pictures);

    /** @return whether everything could be touched and came out as it should */
    bool take();
    /** A look at some pages, of a window of another size; @p name begins the pictures' names. */
    bool glance(const QString &name);

private:
    void begin();
    void lists();
    void measure();
    void record();
    void wifi();
    void usb();
    void sound();
    void settings();
    void accessories();
    void about();
    void help();
    void longSeries();
    void recordOnce();
    void open(const QString &page);
    bool carriedOut(const std::function<void()> &parts);

    void say(const QString &line) const;
    /** Ends the tour when something did not go as it should. */
    static void check(bool isWell, const QString &what);
    void tap(const QString &name) { check(m_finger.tap(name), name); }
    void pick(const QString &button, const QString &title);
    void waitForSheet();
    void picture(const QString &name);
    QString measureOnce();

    Context &m_context;
    QWidget &m_window;
    Finger m_finger;
    QDir m_pictures;
    bool m_hasPictures;
};
