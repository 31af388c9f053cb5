#include "touch/Buttons.h"

#include "touch/Theme.h"

#include <QButtonGroup>
#include <QHBoxLayout>
#include <QPainter>
#include <QVariant>

namespace {

/** Indexed by TouchButton::Role; the names are those in the style sheet. */
const char *const roleNames[] = {"plain", "primary", "danger", "navigation", "key"};

// Of a FieldButton, in pixels.
constexpr int padding = 12;
constexpr int captionSize = 13;
constexpr int valueSize = 17;

QFont sized(QFont font, int size)
{
    font.setPixelSize(Theme::px(size));
    return font;
}

} // namespace

TouchButton::TouchButton(const QString &name, Role role, QWidget *parent) : QPushButton(parent)
{
    setObjectName(name);
    setProperty("role", QString::fromLatin1(roleNames[role]));
    setFocusPolicy(Qt::NoFocus);
    setMinimumHeight(Theme::target());
}

FieldButton::FieldButton(const QString &name, QWidget *parent) : TouchButton(name, Plain, parent)
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    setProperty("role", QStringLiteral("field"));
}

void FieldButton::setText(const QString &caption)
{
    m_caption = caption;
    update();
}

void FieldButton::setValue(const QString &value)
{
    m_value = value;
    update();
}

int FieldButton::captionWidth() const
{
    return QFontMetrics(sized(font(), captionSize)).horizontalAdvance(m_caption)
        + 2 * Theme::px(padding);
}

QSize FieldButton::sizeHint() const
{
    return {Theme::px(120), Theme::px(60)};
}

void FieldButton::paintEvent(QPaintEvent *event)
{
    QPushButton::paintEvent(event);
    QPainter painter(this);
    const QRect inside =
        rect().adjusted(Theme::px(padding), Theme::px(8), -Theme::px(padding), -Theme::px(8));
    const auto line = [&](const QString &text, int size, const QColor &colour, int alignment) {
        painter.setFont(sized(font(), size));
        painter.setPen(isEnabled() ? colour : Theme::current().line);
        painter.drawText(inside, alignment,
                         painter.fontMetrics().elidedText(text, Qt::ElideRight, inside.width()));
    };
    line(m_caption, captionSize, Theme::current().quiet, Qt::AlignLeft | Qt::AlignTop);
    int size = valueSize;
    while (size > captionSize
           && QFontMetrics(sized(font(), size)).horizontalAdvance(m_value) > inside.width())
        --size;
    line(m_value, size, Theme::current().text, Qt::AlignLeft | Qt::AlignBottom);
}

Choice::Choice(const QString &name, int count, QWidget *parent)
    : QWidget(parent)
    , m_group(new QButtonGroup(this))
{
    setObjectName(name);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(Theme::gap());
    for (int index = 0; index < count; ++index) {
        auto *button = new TouchButton(name + QLatin1Char('.') + QString::number(index));
        button->setCheckable(true);
        button->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
        m_group->addButton(button, index);
        m_parts += button;
        layout->addWidget(button);
    }
    connect(m_group, &QButtonGroup::idClicked, this, &Choice::chosen);
}

int Choice::current() const
{
    return m_group->checkedId();
}

void Choice::setCurrent(int index)
{
    // Qt does not allow an exclusive group without a checked button, so it is not exclusive
    // meanwhile.
    m_group->setExclusive(false);
    for (int i = 0; i < m_parts.size(); ++i)
        m_parts.at(i)->setChecked(i == index);
    m_group->setExclusive(true);
}
