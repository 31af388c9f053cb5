#pragma once

#include "meter/Session.h"
#include "touch/Texts.h"

#include <QLabel>
#include <QString>
#include <QWidget>

class QVBoxLayout;

/**
 * One page of the panel: shows the state of the session, and passes the user's touches on to it.
 */
class Page : public QWidget
{
    Q_OBJECT
public:
    Page(Texts &texts, Session &session);

    virtual void enter() { } ///< Called when the page is shown.
    virtual void leave() { } ///< Called before another page is shown.

protected:
    Texts &texts() const { return m_texts; }
    QString text(const Text &text) const { return m_texts.text(text); }
    Session &session() const { return m_session; }
    KTV_DataSource &library() const { return m_session.library(); }
    QVBoxLayout *column() const { return m_column; }
    /** A small grey line of translated text. */
    QLabel *caption(const Text &text);
    static QLabel *label(const QString &name, const char *role);
    static const Text operationFailed;
    /** Reports a failure with a tone and a sheet. */
    void fail(const Text &message = operationFailed);

private:
    Texts &m_texts;
    Session &m_session;
    QVBoxLayout *m_column;
};
