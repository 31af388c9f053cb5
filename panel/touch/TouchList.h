#pragma once

#include <QListView>
#include <QString>
#include <QVector>

#include <functional>
#include <optional>

/** One row of a TouchList. */
struct TouchRow
{
    int id = 0; ///< distinguishes rows with the same title; 0 if titles are unique
    QString title;
    QString detail; ///< shown small at the right
    bool isMarked = false; ///< shown in the accent colour
    int bars = -1; ///< signal strength, 0 to 4; -1 for none

    static TouchRow of(const QString &title, const QString &detail = QString());
};

/** Lets a finger scroll the area. */
void scrollByFinger(QAbstractScrollArea *area);

/** A list for a finger: drag to scroll, touch to choose. */
class TouchList : public QListView
{
    Q_OBJECT
public:
    explicit TouchList(const QString &name, QWidget *parent = nullptr);

    /** Shows these rows. The chosen row stays chosen if it is among them. */
    void setRows(const QVector<TouchRow> &rows);
    /** Shows @p count rows. Each is requested from @p rowAt when it comes into view. */
    void setSource(std::function<TouchRow(int index)> rowAt, int count);
    /**
     * To be called when there are more rows. If the last row is in view, scrolls to the new last
     * row.
     */
    void grow(int count);
    int rowCount() const;
    TouchRow row(int index) const;
    int currentRow() const { return currentIndex().row(); }
    std::optional<TouchRow> chosenRow() const;
    void choose(int index); ///< -1 for none
    /** Position of a row on the viewport. */
    QRect rowRect(int index) const;

signals:
    void chosen(int index);

protected:
    void showEvent(QShowEvent *event) override;

private:
    class RowModel;
    RowModel *m_rows;
    bool m_isFollowing = false; ///< scrolls to the last row when rows are added
};
