#include "pages/Page.h"

#include "touch/Sheets.h"
#include "touch/Theme.h"

#include <sound/BuzzerClass.h>

#include <QVBoxLayout>

const Text Page::operationFailed = Text {"Dialogs", "failed", "The operation failed"};

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

void Page::fail(const Text &message)
{
    m_context.sound(Buzzer::BuzzerClass::Tone_Error);
    new MessageSheet(m_context, this, Text {"Dialogs", "error", "Error"}, m_context.text(message));
}
