#include "touch/Sheets.h"

#include "touch/Buttons.h"
#include "touch/Texts.h"
#include "touch/Theme.h"

#include <QFrame>
#include <QLabel>
#include <QPainter>
#include <QProgressBar>
#include <QVBoxLayout>

#include <utility>

namespace {

constexpr int sheetWidth = 560;
constexpr int tallestList = 6; // rows
constexpr Text cancelText = Text {"Dialogs", "cancel", "Cancel"};
constexpr Text okText = Text {"Dialogs", "ok", "OK"};

TouchButton *addButton(QHBoxLayout *row, Texts &texts, const char *name, const Text &text,
                       TouchButton::Role role = TouchButton::Plain)
{
    auto *button = new TouchButton(QLatin1String(name), role);
    texts.translate(button, text);
    row->addWidget(button);
    return button;
}

} // namespace

// --- Sheet

Sheet::Sheet(Texts &texts, QWidget *somewhere)
    : QWidget(somewhere->window())
    , m_texts(texts)
    , m_card(new QFrame(this))
    , m_layout(new QVBoxLayout(m_card))
{
    setObjectName(QStringLiteral("sheet"));
    m_card->setProperty("role", QStringLiteral("card"));
    m_layout->setContentsMargins(Theme::margin(), Theme::margin(), Theme::margin(),
                                 Theme::margin());
    m_layout->setSpacing(Theme::px(12));
}

void Sheet::finish()
{
    hide();
    setObjectName(QString()); // so that it is not found by its name any more
    deleteLater();
}

QLabel *Sheet::addTitle(const Text &title, const QString &subject)
{
    auto *label = new QLabel;
    label->setTextFormat(Qt::PlainText); // a subject may look like HTML
    label->setProperty("role", QStringLiteral("title"));
    label->setWordWrap(true);
    m_texts.applyNowAndOnChange(label, [this, label, title, subject] {
        label->setText(m_texts.text(title)
                       + (subject.isEmpty() ? QString() : QStringLiteral(" ") + subject));
    });
    m_layout->addWidget(label);
    return label;
}

void Sheet::open(int width, bool atTop)
{
    const QSize window = parentWidget()->size();
    setGeometry(QRect(QPoint(), window));
    const int fitting = qMin(Theme::px(width), window.width() - 2 * Theme::gap());
    m_card->setFixedWidth(fitting);
    m_card->adjustSize();
    const int top = atTop ? Theme::gap() : (window.height() - m_card->height()) / 2;
    m_card->move((window.width() - fitting) / 2, top);
    show();
    raise();
}

void Sheet::paintEvent(QPaintEvent *)
{
    constexpr int dimming = 130; // of 255
    QPainter painter(this);
    painter.fillRect(rect(), QColor(0, 0, 0, dimming));
}

// --- PickSheet

PickSheet::PickSheet(Texts &texts, QWidget *somewhere, const Text &title,
                     const QVector<TouchRow> &rows, int chosen,
                     std::function<void(int index)> onChosen)
    : Sheet(texts, somewhere)
{
    addTitle(title);
    auto *list = new TouchList(QStringLiteral("sheet.list"));
    list->setRows(rows);
    list->choose(chosen);
    const int fitting = (parentWidget()->height() - Theme::px(160)) / Theme::target();
    list->setFixedHeight(qBound(2, int(rows.size()), qMin(fitting, tallestList)) * Theme::target()
                         + 2);
    card()->addWidget(list);
    auto *buttons = new QHBoxLayout;
    connect(addButton(buttons, texts, "sheet.cancel", cancelText), &QPushButton::clicked, this,
            &Sheet::finish);
    card()->addLayout(buttons);
    connect(list, &TouchList::chosen, this, [this, onChosen = std::move(onChosen)](int index) {
        finish();
        onChosen(index);
    });
    open(sheetWidth);
}

// --- ConfirmSheet

ConfirmSheet::ConfirmSheet(Texts &texts, QWidget *somewhere, const Text &question, const Text &yes,
                           std::function<void()> onYes, const QString &subject,
                           TouchButton::Role yesRole)
    : Sheet(texts, somewhere)
{
    addTitle(question);
    if (!subject.isEmpty()) {
        auto *label = new QLabel(subject);
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
        card()->addWidget(label);
    }
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(Theme::px(12));
    connect(addButton(buttons, texts, "sheet.cancel", cancelText), &QPushButton::clicked, this,
            &Sheet::finish);
    connect(addButton(buttons, texts, "sheet.yes", yes, yesRole), &QPushButton::clicked, this,
            [this, onYes = std::move(onYes)] {
                finish();
                onYes();
            });
    card()->addLayout(buttons);
    open(sheetWidth);
}

// --- MessageSheet

MessageSheet::MessageSheet(Texts &texts, QWidget *somewhere, const Text &title,
                           const QString &message)
    : Sheet(texts, somewhere)
{
    addTitle(title);
    auto *label = new QLabel(message);
    label->setTextFormat(Qt::PlainText);
    label->setObjectName(QStringLiteral("sheet.message"));
    label->setWordWrap(true);
    card()->addWidget(label);
    auto *buttons = new QHBoxLayout;
    connect(addButton(buttons, texts, "sheet.ok", okText, TouchButton::Primary),
            &QPushButton::clicked, this, &Sheet::finish);
    card()->addLayout(buttons);
    open(sheetWidth);
}

// --- FormSheet

FormSheet::FormSheet(Texts &texts, QWidget *somewhere, const Text &title,
                     const QVector<Field> &fields,
                     std::function<QString(const QStringList &lines)> onAccepted,
                     const QString &subject)
    : Sheet(texts, somewhere)
    , m_fields(fields)
    , m_onAccepted(std::move(onAccepted))
{
    constexpr int formWidth = 720;
    QLabel *titleLabel = addTitle(title, subject);
    auto *row = new QHBoxLayout;
    row->setSpacing(Theme::px(12));
    for (const Field &field : fields) {
        auto *column = new QVBoxLayout;
        column->setSpacing(4);
        auto *caption = new QLabel;
        caption->setProperty("role", QStringLiteral("quiet"));
        texts.translate(caption, field.caption);
        auto *line = new TextField(QStringLiteral("sheet.line.%1").arg(m_lines.size()), field.kind);
        line->setText(field.value);
        connect(line, &TextField::accepted, this, &FormSheet::accept);
        column->addWidget(caption);
        column->addWidget(line);
        row->addLayout(column, m_lines.isEmpty() ? 2 : 1);
        m_lines += line;
    }
    card()->addLayout(row);

    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(Theme::px(12));
    m_error = new QLabel;
    m_error->setObjectName(QStringLiteral("sheet.error"));
    m_error->setProperty("role", QStringLiteral("alarm"));
    m_error->setWordWrap(true);
    buttons->addWidget(m_error, 1);
    connect(addButton(buttons, texts, "sheet.cancel", cancelText), &QPushButton::clicked, this,
            &Sheet::finish);
    connect(addButton(buttons, texts, "sheet.ok", okText, TouchButton::Primary),
            &QPushButton::clicked, this, &FormSheet::accept);
    if (Theme::isCompact()) { // there is no space for two more lines above the keyboard
        buttons->insertWidget(0, titleLabel, 1);
        card()->insertLayout(0, buttons);
    } else {
        card()->addLayout(buttons);
    }
    open(formWidth, true);
    m_lines.first()->write();
}

void FormSheet::accept()
{
    QStringList lines;
    for (int i = 0; i < m_lines.size(); ++i) {
        const QString text = m_lines.at(i)->text();
        lines += m_fields.at(i).keepsBlanks ? text : text.trimmed();
    }
    const QString error = m_onAccepted(lines);
    if (error.isEmpty())
        finish();
    else
        m_error->setText(error);
}

// --- StillSheet

StillSheet::StillSheet(Texts &texts, QWidget *somewhere, const Text &what,
                       std::function<void()> work)
    : Sheet(texts, somewhere)
{
    constexpr int readingTime = 300; // ms; long enough for the user to see the card
    addTitle(what);
    auto *still = new QLabel;
    still->setObjectName(QStringLiteral("sheet.still"));
    still->setWordWrap(true);
    texts.translate(still,
                    Text {"Panel", "standsStill",
                          "The screen stands still until it is done, usually a few seconds."});
    card()->addWidget(still);
    open(sheetWidth);
    QTimer::singleShot(readingTime, this, [this, work = std::move(work)] {
        work();
        finish();
    });
}

// --- BusySheet

BusySheet::BusySheet(Texts &texts, QWidget *somewhere, const Text &what) : Sheet(texts, somewhere)
{
    constexpr int tickInterval = 100; // ms
    addTitle(what);
    auto *bar = new QProgressBar;
    bar->setRange(0, 0);
    bar->setTextVisible(false);
    card()->addWidget(bar);
    auto *elapsed = new QLabel(texts.text(Text {"Dialogs", "wait", "Please wait"}));
    elapsed->setProperty("role", QStringLiteral("quiet"));
    card()->addWidget(elapsed);
    m_since.start();
    connect(&m_tick, &QTimer::timeout, this, [this, &texts, elapsed] {
        elapsed->setText(QStringLiteral("%1  %2 %3")
                             .arg(texts.text(Text {"Dialogs", "wait", "Please wait"}))
                             .arg(double(m_since.elapsed()) / 1000, 0, 'f', 1)
                             .arg(texts.text(Text {"Units", "second", "s"})));
    });
    m_tick.start(tickInterval);
    open(sheetWidth);
}
