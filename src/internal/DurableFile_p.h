#pragma once

#include <QByteArray>
#include <QString>

/** Changes of files that are still there after the battery was pulled. */
namespace Internal {

/**
 * Waits until the card has what was created, renamed or deleted in the directory of @p path.
 * Flushing a file itself says nothing of its name: that stands in the directory.
 * @return success; otherwise errno tells the reason
 */
bool flushDirectoryOf(const QString &path);

/** Waits until the card has an open file's bytes and size. @return success, or see errno */
bool flushFile(int descriptor);

/**
 * Creates a directory, one level, unless it exists, and waits until the card has it.
 * @return whether the directory exists
 */
bool makeDirectory(const QString &path);

/**
 * Puts @p content in the place of the file in one step, and waits until the card has it: a full
 * card or a pulled battery leaves the old file or the new one, never a part. Only on FAT, which
 * renames in several steps, a battery pulled between them may leave none. A symbolic link to
 * a file stays, and that file is replaced; one to anything else is replaced itself.
 *
 * The new file is readable and writable by its owner only, from its first moment. A battery
 * pulled meanwhile may leave a file named as this one with six more letters behind.
 *
 * @param reason why it failed, for a log line; untouched on success. The old file is then still
 *        there, unless only the last flush has failed.
 */
bool replaceFile(const QString &path, const QByteArray &content, QString *reason);

} // namespace Internal
