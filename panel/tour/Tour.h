#pragma once

#include "finger/Finger.h"

#include <QDir>
#include <QString>

#include <functional>

class Context;

/** Operates the panel page by page, as a person would, and prints a line for each step. */
class Tour
{
public:
    /** @param pictures directory for the pictures; empty for none */
    Tour(Context &context, QWidget &window, const QString &pictures);

    /** @return whether everything could be touched and had the expected result */
    bool take();
    /**
     * Shows some pages of a window of another size.
     * @param name start of the pictures' names
     */
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
    /** Ends the tour if @p isWell is false. */
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
