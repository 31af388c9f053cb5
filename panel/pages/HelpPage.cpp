#include "pages/HelpPage.h"

#include "touch/Buttons.h"
#include "touch/TouchList.h"

#include <datasource/KTV_DataSource.h>
#include <language/helpManager.h>

#include <QTextBrowser>
#include <QVBoxLayout>

#include <memory>

HelpPage::HelpPage(Texts &texts, Session &session)
    : Page(texts, session)
    , m_text(new QTextBrowser)
    , m_number(label(QStringLiteral("help.number"), "quiet"))
    , m_previous(new TouchButton(QStringLiteral("help.previous")))
    , m_next(new TouchButton(QStringLiteral("help.next")))
{
    m_text->setObjectName(QStringLiteral("help.text"));
    m_text->setOpenLinks(false);
    m_text->document()->setDefaultStyleSheet(
        QStringLiteral("h1 { font-size: large; } h2 { font-size: medium; }"));
    m_text->setTextInteractionFlags(Qt::NoTextInteraction);
    scrollByFinger(m_text);
    column()->addWidget(m_text, 1);

    auto *close = new TouchButton(QStringLiteral("help.close"), TouchButton::Primary);
    texts.translate(close, Text {"Help", "close", "Close"});
    texts.translate(m_previous, Text {"Help", "previous", "Previous page"});
    texts.translate(m_next, Text {"Help", "next", "Next page"});
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_previous);
    buttons->addWidget(m_next);
    buttons->addStretch(1);
    buttons->addWidget(m_number);
    buttons->addStretch(1);
    buttons->addWidget(close);
    column()->addLayout(buttons);

    connect(m_previous, &QPushButton::clicked, this, [this] { show(m_index - 1); });
    connect(m_next, &QPushButton::clicked, this, [this] { show(m_index + 1); });
    connect(close, &QPushButton::clicked, this, &HelpPage::closed);
    connect(&texts, &Texts::textsChanged, this, &HelpPage::refresh);
    connect(&session, &Session::meterChanged, this, &HelpPage::refresh);
}

void HelpPage::setTopic(const QString &topic)
{
    m_topic = topic;
}

void HelpPage::refresh()
{
    const std::unique_ptr<QStringList> files(library().getHelpManager()->GetHelpFileList(m_topic));
    m_files = *files;
    show(0);
}

void HelpPage::show(int index)
{
    m_index = index;
    m_previous->setEnabled(index > 0);
    m_next->setEnabled(index + 1 < m_files.size());
    if (m_files.isEmpty()) {
        m_number->clear();
        m_text->setPlainText(text(Text {"Help", "none", "There is no help for this screen"}));
        return;
    }
    m_number->setText(QStringLiteral("%1 / %2").arg(index + 1).arg(m_files.size()));
    m_text->setSource(QUrl::fromLocalFile(m_files.at(index)));
}
