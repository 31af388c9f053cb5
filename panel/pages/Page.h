#pragma once

#include "Context.h"

#include <QLabel>
#include <QString>
#include <QWidget>

class QVBoxLayout;

/** One page of the panel. */
class Page : public QWidget
{
    Q_OBJECT
public:
    explicit Page(Context &context);

    virtual void enter() { } ///< The page comes to be seen.
    virtual void leave() { } ///< Another page takes its place.

protected:
    Context &context() const { return m_context; }
    KTV_DataSource &library() const { return m_context.library(); }
    QVBoxLayout *column() const { return m_column; }
    /** A small grey line whose text comes from the languages. */
    QLabel *caption(const Text &text);
    static QLabel *label(const QString &name, const char *role);
    static const Text operationFailed;
    /** Tells with a tone and a sheet that something did not work. */
    void fail(const Text &message = operationFailed);

private:
    Context &m_context;
    QVBoxLayout *m_column;
};
