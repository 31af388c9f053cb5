#include "common/Page.h"

#include "touch/Sheets.h"
#include "touch/Theme.h"

#include <QVBoxLayout>

const Text Page::operationFailed = Text {"Dialogs", "failed", "The operation failed"};

Page::Page(Texts &texts, Session &session)
    : m_texts(texts)
    , m_session(session)
    , m_column(new QVBoxLayout(this))
{
    m_column->setContentsMargins(Theme::margin(), Theme::margin(), Theme::margin(),
                                 Theme::margin());
    m_column->setSpacing(Theme::gap());
}

QLabel *Page::caption(const Text &text)
{
    QLabel *caption = label(QString(), "quiet");
    m_texts.translate(caption, text);
    return caption;
}

QLabel *Page::label(const QString &name, const char *role)
{
    auto *label = new QLabel;
    label->setObjectName(name);
    label->setProperty("role", QString::fromLatin1(role));
    label->setTextFormat(Qt::PlainText); // names may look like HTML
    return label;
}

void Page::fail(const Text &message)
{
    m_session.tones().play(Buzzer::BuzzerClass::Tone_Error);
    new MessageSheet(m_texts, this, Text {"Dialogs", "error", "Error"}, m_texts.text(message));
}
