#pragma once

#include <QListWidget>
#include <QString>
#include <QVector>

/** One row of a TouchList. */
struct TouchRow
{
    int id = 0;
    QString title;
    QString detail; ///< small, below the title or, in a one-line list, at the right
    bool isMarked = false; ///< titled in the accent colour
    int bars = -1; ///< signal strength, 0 to 4; -1 for none

    static TouchRow of(const QString &title, const QString &detail = QString());
};

/** Lets a finger draw what does not fit into view. */
void scrollByFinger(QAbstractScrollArea *area);

/** A list for a finger: drag to scroll, touch to choose. */
class TouchList : public QListWidget
{
    Q_OBJECT
public:
    explicit TouchList(const QString &name, QWidget *parent = nullptr);

    /** Shows these rows; the row that was chosen stays so when its title is still there. */
    void setRows(const QVector<TouchRow> &rows);
    int rowCount() const { return m_rows.size(); }
    const TouchRow &row(int index) const { return m_rows.at(index); }
    /** The row that is chosen; null for none. */
    const TouchRow *chosenRow() const;
    void choose(int index) { setCurrentRow(index); }

signals:
    void chosen(int index);

private:
    QVector<TouchRow> m_rows;
};
