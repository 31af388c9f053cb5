#include "pages/Page.h"

#include "touch/Theme.h"

#include <QVBoxLayout>

Page::Page(Context &context) : m_context(context), m_column(new QVBoxLayout(this))
{
    m_column->setContentsMargins(Theme::margin, Theme::margin, Theme::margin, Theme::margin);
    m_column->setSpacing(Theme::gap);
}

QLabel *Page::caption(const Text &text)
{
    QLabel *caption = label(QString(), "quiet");
    m_context.translate(caption, text);
    return caption;
}

QLabel *Page::label(const QString &name, const char *role)
{
    auto *label = new QLabel;
    label->setObjectName(name);
    label->setProperty("role", QString::fromLatin1(role));
    return label;
}
