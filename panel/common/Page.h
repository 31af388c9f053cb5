#pragma once

#include "meter/Session.h"
#include "touch/Texts.h"

#include <QLabel>
#include <QString>
#include <QWidget>

class QVBoxLayout;

/** One page of the panel: it shows what the session has, and forwards what is touched. */
class Page : public QWidget
{
    Q_OBJECT
public:
    Page(Texts &texts, Session &session);

    virtual void enter() { } ///< The page comes to be seen.
    virtual void leave() { } ///< Another page takes its place.

protected:
    Texts &texts() const { return m_texts; }
    QString text(const Text &text) const { return m_texts.text(text); }
    Session &session() const { return m_session; }
    KTV_DataSource &library() const { return m_session.library(); }
    QVBoxLayout *column() const { return m_column; }
    /** A small grey line whose text comes from the languages. */
    QLabel *caption(const Text &text);
    static QLabel *label(const QString &name, const char *role);
    static const Text operationFailed;
    /** Tells with a tone and a sheet that something did not work. */
    void fail(const Text &message = operationFailed);

private:
    Texts &m_texts;
    Session &m_session;
    QVBoxLayout *m_column;
};
