#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

#include <functional>
#include <vector>

/**
 * Records what this process does to the files of one directory, and lays out what a card may hold
 * after the battery was pulled in the midst of it.
 *
 * What has been flushed is there. Of the rest, each sector of a write, each change of a size and
 * each creation, renaming or deletion of a name may be there or not, in any combination: no file
 * system keeps less, and some keep hardly more. A flush of a file says nothing of its name; that
 * takes a flush of the directory.
 *
 * The program's own functions of the C library's names come first; for that it must export its
 * symbols.
 */
class CardRecord
{
public:
    using Files = QMap<QString, QByteArray>;

    /** Records from now on; the files that are there are on the card. One at a time. */
    explicit CardRecord(const QString &directory);
    ~CardRecord();
    Q_DISABLE_COPY_MOVE(CardRecord)

    /** A call has answered: what it changed must survive from here on. */
    void answered();
    /** Ends the record. */
    void stop();

    /**
     * Calls @p check with each different content that a cut may leave, laid out in @p directory,
     * and with the number of calls that had answered by then. @return how many there were
     */
    int forEachCut(const QString &directory, const std::function<void(int answers)> &check) const;

    /** One step, as the C library was asked for it. */
    struct Step
    {
        enum Kind
        {
            Create, ///< of a name for a file
            Remove,
            Rename,
            Write,
            Resize,
            FlushFile,
            FlushDirectory,
            Answer
        };
        Kind kind;
        int file = 0;
        QString name = {};
        QString newName = {};
        qint64 position = 0; ///< of a write; the size when that changes
        QByteArray bytes = {};
    };

private:
    std::vector<Files> cutsAfter(size_t steps) const;

    QMap<QString, int> m_namesAtFirst;
    QMap<int, QByteArray> m_filesAtFirst;
    std::vector<Step> m_steps;
};
