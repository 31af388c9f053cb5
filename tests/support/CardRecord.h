#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

#include <functional>
#include <vector>

/**
 * Records how this process changes the files of one directory, and then creates each content that a
 * card may have if the battery is pulled during these changes.
 *
 * Everything that has been flushed is on the card. Of the rest, each sector of a write, each change
 * of a size and each creation, renaming or deletion of a name may be on it or not, in any
 * combination: no file system guarantees less, and some guarantee hardly more. Flushing a file does
 * not flush its name; for that the directory must be flushed.
 *
 * The program's own functions replace those of the C library with the same name; for that it must
 * export its symbols.
 */
class CardRecord
{
public:
    using Files = QMap<QString, QByteArray>;

    /** Starts the record; existing files are on the card. One record at a time. */
    explicit CardRecord(const QString &directory);
    ~CardRecord();
    Q_DISABLE_COPY_MOVE(CardRecord)

    /** To be called after a call has returned: from here on its changes must survive. */
    void answered();
    /** Ends the record. */
    void stop();

    /**
     * Calls @p check with each different content that a power cut may leave, created in @p
     * directory, and with the number of calls that had returned by then. @return number of contents
     *
     * Under the address sanitizer only with every fourth content.
     */
    int forEachCut(const QString &directory, const std::function<void(int answers)> &check) const;

    /** One step: a call of the C library. */
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
    QMap<QString, int> m_namesAtFirst;
    QMap<int, QByteArray> m_filesAtFirst;
    std::vector<Step> m_steps;
};
