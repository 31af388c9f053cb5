#include "touch/Keyboard.h"

#include "touch/Buttons.h"
#include "touch/KeyboardPolicy.h"
#include "touch/Texts.h"
#include "touch/Theme.h"

#include <QPainter>
#include <QStyle>
#include <QVBoxLayout>

namespace {

constexpr int keyGap = 5;
constexpr int keyHeight = 44;
const QLatin1String keyboardName("keyboard");

/** All symbols of ASCII, because the layouts in the language files may lack some. */
const QLatin1String symbolRows[] = {QLatin1String("1234567890"), QLatin1String("!\"#$%&'()*+"),
                                    QLatin1String(",-./:;<=>?@"), QLatin1String("[\\]^_`{|}~")};

QStringList characters(const QString &row)
{
    QStringList keys;
    for (const QChar character : row)
        keys += character;
    return keys;
}

} // namespace

// --- TextField

TextField::TextField(const QString &name, Kind kind, QWidget *parent)
    : QLineEdit(parent)
    , m_kind(kind)
{
    setObjectName(name);
    setMinimumHeight(Theme::target());
    setContextMenuPolicy(Qt::NoContextMenu);
    setProperty("isEmpty", true); // for the style sheet, which shows the placeholder in grey
    connect(this, &QLineEdit::textChanged, this, [this](const QString &text) {
        if (property("isEmpty").toBool() == text.isEmpty())
            return;
        setProperty("isEmpty", text.isEmpty());
        style()->polish(this);
    });
    connect(this, &QLineEdit::returnPressed, this, &TextField::accepted);
}

void TextField::write()
{
    setFocus();
    if (Keyboard *keyboard = Keyboard::of(this))
        keyboard->open(this);
}

void TextField::mousePressEvent(QMouseEvent *event)
{
    QLineEdit::mousePressEvent(event);
    write();
}

void TextField::hideEvent(QHideEvent *event)
{
    if (Keyboard *keyboard = Keyboard::of(this))
        keyboard->close(this);
    QLineEdit::hideEvent(event);
}

// --- Keyboard

Keyboard::Keyboard(Texts &texts, const KeyboardPolicy &policy, QWidget *window)
    : QWidget(window)
    , m_policy(policy)
{
    setObjectName(keyboardName);
    hide();
    connect(&texts, &Texts::textsChanged, this, [this] {
        if (isVisible())
            build();
    });
}

Keyboard *Keyboard::of(const QWidget *widget)
{
    return widget->window()->findChild<Keyboard *>(keyboardName, Qt::FindDirectChildrenOnly);
}

void Keyboard::open(TextField *field)
{
    m_field = field;
    m_isBig = false;
    m_isRegional = false;
    m_isSymbols = false;
    if (!m_policy.isOnScreen())
        return;
    build();
    show();
    raise();
    emit opened(field, height());
    emit field->written();
}

void Keyboard::close(const TextField *field)
{
    if (!m_field || m_field != field)
        return;
    m_field->clearFocus();
    hide();
    emit closed();
    emit m_field->finished();
    m_field = nullptr;
}

void Keyboard::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), Theme::current().line);
}

QVector<QStringList> Keyboard::rows() const
{
    if (m_isSymbols) {
        QVector<QStringList> rows;
        for (const QLatin1String row : symbolRows)
            rows += characters(row);
        return rows;
    }
    if (m_field->kind() == TextField::Letters)
        return m_policy.letters(m_isRegional, m_isBig);
    QStringList second = characters(QStringLiteral(".-"));
    if (m_field->kind() == TextField::NumberWithUnit)
        for (const QString &unit : m_policy.units())
            second += QLatin1Char(' ') + unit;
    return {characters(QStringLiteral("1234567890")), second};
}

void Keyboard::build()
{
    if (m_keys) {
        m_keys->hide();
        m_keys->deleteLater(); // not deleted at once: this may be called by one of its keys
    }
    m_keys = new QWidget(this);
    m_keys->setObjectName(keyboardName);
    const int gap = Theme::px(keyGap);
    auto *layout = new QVBoxLayout(m_keys);
    layout->setContentsMargins(gap, gap, gap, gap);
    layout->setSpacing(gap);
    for (const QStringList &row : rows())
        addTextRow(row);
    addLastRow();
    m_keys->show();
    place();
}

void Keyboard::insert(const QString &text)
{
    if (m_field)
        m_field->insert(text);
    if (!m_isBig)
        return;
    m_isBig = false; // shift applies to one letter
    build();
}

void Keyboard::addTextRow(const QStringList &texts)
{
    auto *row = new QHBoxLayout;
    row->setSpacing(Theme::px(keyGap));
    for (const QString &text : texts) {
        auto *key = new TouchButton(QStringLiteral("key.") + text.trimmed(), TouchButton::Key);
        key->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
        key->setMinimumHeight(Theme::px(keyHeight));
        key->setText(text == QLatin1String("&") ? QStringLiteral("&&") : text.trimmed());
        connect(key, &QPushButton::clicked, this, [this, text] { insert(text); });
        row->addWidget(key, 1);
    }
    static_cast<QVBoxLayout *>(m_keys->layout())->addLayout(row);
}

void Keyboard::addLastRow()
{
    auto *row = new QHBoxLayout;
    row->setSpacing(Theme::px(keyGap));
    static_cast<QVBoxLayout *>(m_keys->layout())->addLayout(row);
    if (m_field->kind() == TextField::Letters) {
        addModeKeys(row);
        connect(addKey(row, "key.space", QString(), 6), &QPushButton::clicked, this, [this] {
            if (m_field)
                m_field->insert(QStringLiteral(" "));
        });
    }
    connect(addKey(row, "key.backspace", QStringLiteral("\u232B"), 2), &QPushButton::clicked, this,
            [this] {
                if (m_field)
                    m_field->backspace();
            });
    QPushButton *done = addKey(row, "key.done", QStringLiteral("\u2713"), 3);
    done->setProperty("role", QStringLiteral("lastKey"));
    connect(done, &QPushButton::clicked, this, &Keyboard::finish);
}

void Keyboard::addModeKeys(QHBoxLayout *row)
{
    const auto add = [&](const char *name, const QString &text, bool isOn, auto change) {
        QPushButton *key = addKey(row, name, text, 2);
        key->setCheckable(true);
        key->setChecked(isOn);
        connect(key, &QPushButton::clicked, this, [this, change] {
            change();
            build();
        });
    };
    add("key.shift", QStringLiteral("\u21E7"), m_isBig, [this] {
        m_isBig = !m_isBig;
        m_isSymbols = false;
    });
    add("key.regional", m_policy.regionalName(), m_isRegional && !m_isSymbols, [this] {
        m_isRegional = !m_isRegional;
        m_isSymbols = false;
    });
    add("key.symbols", QStringLiteral("[#]"), m_isSymbols, [this] {
        m_isSymbols = !m_isSymbols;
        m_isBig = false;
    });
}

QPushButton *Keyboard::addKey(QHBoxLayout *row, const char *name, const QString &text, int stretch)
{
    auto *key = new TouchButton(QLatin1String(name), TouchButton::Key);
    key->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    key->setMinimumHeight(Theme::px(keyHeight));
    key->setText(text);
    row->addWidget(key, stretch);
    return key;
}

void Keyboard::finish()
{
    const QPointer<TextField> field = m_field;
    if (!field)
        return;
    close(field);
    if (field)
        emit field->accepted();
}

void Keyboard::place()
{
    const QSize window = parentWidget()->size();
    const int height = m_keys->sizeHint().height();
    setGeometry(0, window.height() - height, window.width(), height);
    m_keys->setGeometry(rect());
}
