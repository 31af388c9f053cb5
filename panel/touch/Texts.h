#pragma once

#include "touch/Text.h"

#include <QObject>
#include <QString>

/** The texts of the language in effect. Where they come from is the application's business. */
class Texts : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    virtual QString text(const Text &text) const = 0;
    /** Runs @p apply now and whenever the texts change, as long as @p receiver lives. */
    template <typename Function> void keep(QObject *receiver, Function apply)
    {
        apply();
        connect(this, &Texts::textsChanged, receiver, apply);
    }
    /** Gives a widget its text, in whatever language comes into effect. */
    template <typename Widget> void translate(Widget *widget, const Text &text)
    {
        keep(widget, [this, widget, text] { widget->setText(this->text(text)); });
    }

signals:
    void textsChanged(); ///< Another language, or another unit within the texts.
};
