#pragma once

#include <QListView>
#include <QString>
#include <QVector>

#include <functional>
#include <optional>

/** One row of a TouchList. */
struct TouchRow
{
    int id = 0; ///< tells rows of one title apart; 0 where titles do
    QString title;
    QString detail; ///< small, at the right
    bool isMarked = false; ///< titled in the accent colour
    int bars = -1; ///< signal strength, 0 to 4; -1 for none

    static TouchRow of(const QString &title, const QString &detail = QString());
};

/** Lets a finger draw what does not fit into view. */
void scrollByFinger(QAbstractScrollArea *area);

/** A list for a finger: drag to scroll, touch to choose. */
class TouchList : public QListView
{
    Q_OBJECT
public:
    explicit TouchList(const QString &name, QWidget *parent = nullptr);

    /** Shows these rows; the row that was chosen stays so when it is still there. */
    void setRows(const QVector<TouchRow> &rows);
    /** Shows rows that are asked for when they come into view. */
    void setSource(std::function<TouchRow(int index)> rowAt, int count);
    /** The source has more rows; who looks at the last one goes on to do so. */
    void grow(int count);
    int rowCount() const;
    TouchRow row(int index) const;
    int currentRow() const { return currentIndex().row(); }
    std::optional<TouchRow> chosenRow() const;
    void choose(int index); ///< -1 for none
    /** Where a row lies on the viewport. */
    QRect rowRect(int index) const;

signals:
    void chosen(int index);

protected:
    void showEvent(QShowEvent *event) override;

private:
    class Rows;
    Rows *m_rows;
    bool m_isFollowing = false; ///< the last row stays in view
};
