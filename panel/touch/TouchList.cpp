#include "touch/TouchList.h"

#include "touch/Indicators.h"
#include "touch/Theme.h"

#include <QAbstractListModel>
#include <QPainter>
#include <QScrollBar>
#include <QScroller>
#include <QScrollerProperties>
#include <QStyledItemDelegate>

#include <algorithm>
#include <utility>

namespace {

class RowPainter : public QStyledItemDelegate
{
public:
    explicit RowPainter(const TouchList *list) : QStyledItemDelegate(nullptr), m_list(list) { }

    QSize sizeHint(const QStyleOptionViewItem &, const QModelIndex &) const override
    {
        return {0, Theme::target()};
    }

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override
    {
        const TouchRow row = m_list->row(index.row());
        const Theme &theme = Theme::current();
        const bool isChosen = option.state & QStyle::State_Selected;
        painter->save();
        painter->fillRect(option.rect, isChosen ? theme.accent : theme.surface);
        painter->setPen(theme.line);
        painter->drawLine(option.rect.bottomLeft(), option.rect.bottomRight());

        const int padding = Theme::px(12);
        QRect inside = option.rect.adjusted(padding, 0, -padding, 0);
        if (row.bars >= 0) {
            const QRect bars(inside.left(), inside.center().y() - Theme::px(9), Theme::px(26),
                             Theme::px(18));
            SignalBars::paint(*painter, bars, row.bars, isChosen ? theme.onAccent : theme.accent,
                              isChosen ? theme.accent.darker(130) : theme.line);
            inside.setLeft(bars.right() + padding);
        }
        QFont font = option.font;
        font.setPixelSize(Theme::px(14));
        painter->setFont(font);
        painter->setPen(isChosen ? theme.onAccent : theme.quiet);
        painter->drawText(inside, Qt::AlignRight | Qt::AlignVCenter, row.detail);
        inside.setRight(inside.right() - painter->fontMetrics().horizontalAdvance(row.detail)
                        - padding);
        font.setPixelSize(Theme::px(17));
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

class TouchList::RowModel : public QAbstractListModel
{
public:
    using QAbstractListModel::QAbstractListModel;

    int rowCount(const QModelIndex &parent) const override
    {
        return parent.isValid() ? 0 : m_count;
    }
    QVariant data(const QModelIndex &, int) const override { return {}; } // the delegate asks row()
    TouchRow row(int index) const { return m_rowAt(index); }

    void reset(std::function<TouchRow(int)> rowAt, int count)
    {
        beginResetModel();
        m_rowAt = std::move(rowAt);
        m_count = count;
        endResetModel();
    }

    void grow(int count)
    {
        if (count <= m_count)
            return;
        beginInsertRows(QModelIndex(), m_count, count - 1);
        m_count = count;
        endInsertRows();
    }

private:
    std::function<TouchRow(int)> m_rowAt;
    int m_count = 0;
};

TouchList::TouchList(const QString &name, QWidget *parent)
    : QListView(parent)
    , m_rows(new RowModel(this))
{
    setObjectName(name);
    setModel(m_rows);
    auto *delegate = new RowPainter(this);
    delegate->setParent(this);
    setItemDelegate(delegate);
    setFocusPolicy(Qt::NoFocus);
    setUniformItemSizes(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(ScrollPerPixel);
    scrollByFinger(this);
    connect(this, &QListView::clicked, this,
            [this](const QModelIndex &index) { emit chosen(index.row()); });
}

void TouchList::setRows(const QVector<TouchRow> &rows)
{
    const std::optional<TouchRow> before = chosenRow();
    const int place = verticalScrollBar()->value();
    m_rows->reset([rows](int index) { return rows.at(index); }, int(rows.size()));
    if (before) {
        const auto same = std::find_if(rows.begin(), rows.end(), [&before](const TouchRow &row) {
            return row.id == before->id && (row.id != 0 || row.title == before->title);
        });
        choose(same == rows.end() ? -1 : int(same - rows.begin()));
    }
    doItemsLayout(); // the scroll bar's range is known only after the layout
    verticalScrollBar()->setValue(place);
}

void TouchList::setSource(std::function<TouchRow(int index)> rowAt, int count)
{
    m_rows->reset(std::move(rowAt), count);
    m_isFollowing = true;
    if (isVisible())
        scrollToBottom();
}

void TouchList::grow(int count)
{
    const QScrollBar *bar = verticalScrollBar();
    if (isVisible())
        m_isFollowing = bar->value() == bar->maximum();
    m_rows->grow(count);
    // A hidden list scrolls in showEvent(), because all rows are laid out for it.
    if (m_isFollowing && isVisible())
        scrollToBottom();
}

void TouchList::showEvent(QShowEvent *event)
{
    QListView::showEvent(event);
    if (m_isFollowing)
        QMetaObject::invokeMethod(this, &TouchList::scrollToBottom, Qt::QueuedConnection);
}

int TouchList::rowCount() const
{
    return m_rows->rowCount(QModelIndex());
}

TouchRow TouchList::row(int index) const
{
    return m_rows->row(index);
}

std::optional<TouchRow> TouchList::chosenRow() const
{
    if (currentRow() < 0 || currentRow() >= rowCount())
        return std::nullopt;
    return row(currentRow());
}

void TouchList::choose(int index)
{
    setCurrentIndex(m_rows->index(index, 0)); // an index outside the rows chooses none
}

QRect TouchList::rowRect(int index) const
{
    return visualRect(m_rows->index(index, 0));
}
