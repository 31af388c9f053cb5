#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryFile>

/** Changes of files that are still there after the battery is pulled. */
namespace Internal {

/**
 * Opens the directory that contains the file, so that it can be flushed; for a link, that of its
 * target.
 * @return a descriptor, which the caller closes; -1 on failure, and errno has the reason
 */
int openDirectoryOf(const QString &path);

/**
 * Flushes the directory that contains the file (fsync), so that the creation, renaming or deletion
 * of the file has reached the card. Flushing a file does not flush its name, which is stored in the
 * directory.
 * @return success; otherwise errno has the reason
 */
bool flushDirectoryOf(const QString &path);

/**
 * Flushes an open file or directory to the card.
 * @return success; otherwise errno has the reason
 */
bool flushFile(int descriptor);

/**
 * Creates a directory, one level, unless it exists, and flushes it to the card.
 * @return whether the directory exists
 */
bool makeDirectory(const QString &path);

/**
 * Replaces a file in one step, flushed to the card: a full card or a pulled battery leaves the old
 * file or the new one, never a part of it. The exception is FAT, which renames in several steps: a
 * battery pulled between them may leave neither. If the path is a symbolic link to a file, that
 * file is replaced; a link to anything else is replaced itself.
 *
 * The new file is readable and writable by its owner only, from the moment it is created. It is
 * created in the same directory, under the old name with ".new-XXXXXX" added. If it is not
 * committed it is removed; one that a pulled battery has left is removed by the next replacement.
 */
class FileReplacement
{
public:
    explicit FileReplacement(const QString &path);

    /**
     * Creates the new file, empty, so that a failure is noticed before its content is computed.
     * @param reason why it failed, for a log line; untouched on success
     */
    bool open(QString *reason);
    /**
     * Writes the new file and puts it in the old one's place.
     * @param reason why it failed, for a log line; untouched on success. The old file is then still
     *        there, unless only the last flush has failed.
     */
    bool commit(const QByteArray &content, QString *reason);

private:
    const QString m_target;
    QTemporaryFile m_file;
};

/** Opens and commits a FileReplacement. */
bool replaceFile(const QString &path, const QByteArray &content, QString *reason);

} // namespace Internal
