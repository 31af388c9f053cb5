#include "touch/TouchList.h"

#include "touch/Indicators.h"
#include "touch/Theme.h"

#include <QPainter>
#include <QScroller>
#include <QScrollerProperties>
#include <QStyledItemDelegate>

namespace {

constexpr int padding = 12;

class RowPainter : public QStyledItemDelegate
{
public:
    explicit RowPainter(const TouchList *list) : QStyledItemDelegate(nullptr), m_list(list) { }

    QSize sizeHint(const QStyleOptionViewItem &, const QModelIndex &) const override
    {
        return {0, Theme::target};
    }

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override
    {
        const TouchRow &row = m_list->row(index.row());
        const Theme &theme = Theme::current();
        const bool isChosen = option.state & QStyle::State_Selected;
        painter->save();
        painter->fillRect(option.rect, isChosen ? theme.accent : theme.surface);
        painter->setPen(theme.line);
        painter->drawLine(option.rect.bottomLeft(), option.rect.bottomRight());

        QRect inside = option.rect.adjusted(padding, 0, -padding, 0);
        if (row.bars >= 0) {
            const QRect bars(inside.left(), inside.center().y() - 9, 26, 18);
            SignalBars::paint(*painter, bars, row.bars, isChosen ? theme.onAccent : theme.accent,
                              isChosen ? theme.accent.darker(130) : theme.line);
            inside.setLeft(bars.right() + padding);
        }
        QFont font = option.font;
        font.setPixelSize(14);
        painter->setFont(font);
        painter->setPen(isChosen ? theme.onAccent : theme.quiet);
        painter->drawText(inside, Qt::AlignRight | Qt::AlignVCenter, row.detail);
        inside.setRight(inside.right() - painter->fontMetrics().horizontalAdvance(row.detail)
                        - padding);
        font.setPixelSize(17);
        font.setBold(row.isMarked);
        painter->setFont(font);
        painter->setPen(isChosen ? theme.onAccent : row.isMarked ? theme.accent : theme.text);
        painter->drawText(
            inside, Qt::AlignLeft | Qt::AlignVCenter,
            painter->fontMetrics().elidedText(row.title, Qt::ElideRight, inside.width()));
        painter->restore();
    }

private:
    const TouchList *m_list;
};

} // namespace

TouchRow TouchRow::of(const QString &title, const QString &detail)
{
    TouchRow row;
    row.title = title;
    row.detail = detail;
    return row;
}

void scrollByFinger(QAbstractScrollArea *area)
{
    QScroller *scroller = QScroller::scroller(area->viewport());
    QScrollerProperties properties = scroller->scrollerProperties();
    properties.setScrollMetric(QScrollerProperties::VerticalOvershootPolicy,
                               QScrollerProperties::OvershootAlwaysOff);
    properties.setScrollMetric(QScrollerProperties::HorizontalOvershootPolicy,
                               QScrollerProperties::OvershootAlwaysOff);
    scroller->setScrollerProperties(properties);
    QScroller::grabGesture(area->viewport(), QScroller::LeftMouseButtonGesture);
}

TouchList::TouchList(const QString &name, QWidget *parent) : QListWidget(parent)
{
    setObjectName(name);
    auto *delegate = new RowPainter(this);
    delegate->setParent(this);
    setItemDelegate(delegate);
    setFocusPolicy(Qt::NoFocus);
    setUniformItemSizes(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(ScrollPerPixel);
    scrollByFinger(this);
    connect(this, &QListWidget::itemClicked, this,
            [this](QListWidgetItem *item) { emit chosen(QListWidget::row(item)); });
}

void TouchList::setRows(const QVector<TouchRow> &rows)
{
    const QString before = chosenRow() ? chosenRow()->title : QString();
    clear();
    m_rows = rows;
    for (const TouchRow &row : rows) {
        addItem(row.title);
        if (!before.isEmpty() && row.title == before)
            setCurrentRow(count() - 1);
    }
}

const TouchRow *TouchList::chosenRow() const
{
    return currentRow() >= 0 && currentRow() < m_rows.size() ? &m_rows.at(currentRow()) : nullptr;
}
