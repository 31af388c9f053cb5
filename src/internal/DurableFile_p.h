#pragma once

#include <QByteArray>
#include <QString>

/** Changes of files that survive a pulled battery. */
namespace Internal {

/**
 * Flushes the directory of @p path (fsync), and with it what was created, renamed or deleted
 * there. Flushing a file does not flush its name, which is stored in the directory.
 * @return success; otherwise errno has the reason
 */
bool flushDirectoryOf(const QString &path);

/** Flushes an open file's bytes and size to the card. @return success, or see errno */
bool flushFile(int descriptor);

/**
 * Creates a directory, one level, unless it exists, and flushes it to the card.
 * @return whether the directory exists
 */
bool makeDirectory(const QString &path);

/**
 * Replaces the file by one with @p content in one step, flushed to the card: a full
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
