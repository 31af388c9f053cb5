#pragma once

#include "touch/Text.h"

#include <QObject>
#include <QString>

/** The texts in the current language; the application provides them. */
class Texts : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    virtual QString text(const Text &text) const = 0;
    /** Runs @p apply now and each time the texts change, until @p receiver is destroyed. */
    template <typename Function> void applyNowAndOnChange(QObject *receiver, Function apply)
    {
        apply();
        connect(this, &Texts::textsChanged, receiver, apply);
    }
    /** Sets a widget's text, and sets it again whenever the language changes. */
    template <typename Widget> void translate(Widget *widget, const Text &text)
    {
        applyNowAndOnChange(widget, [this, widget, text] { widget->setText(this->text(text)); });
    }

signals:
    void textsChanged(); ///< The language has changed, or the unit of temperature in the texts.
};
