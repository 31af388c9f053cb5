#include "internal/DurableFile_p.h"

#include "internal/Descriptor_p.h"
#include "internal/RegularFile_p.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace Internal {

namespace {

const QString newFileSuffix = QStringLiteral(".new-");

QString targetOf(const QString &path)
{
    const QFileInfo old(path);
    return old.isFile() ? old.canonicalFilePath() : path; // a link to a device is not followed
}

/**
 * Removes new files that a pulled battery has left, but not those still being written, which are
 * locked.
 */
void removeLeftovers(const QString &target)
{
    const QFileInfo file(target);
    const auto leftovers = file.dir().entryInfoList({file.fileName() + newFileSuffix + "??????"},
                                                    QDir::Files | QDir::Hidden | QDir::NoSymLinks);
    for (const QFileInfo &leftover : leftovers) {
        RegularFile open(leftover.filePath());
        if (open.open(QIODevice::ReadOnly) && ::flock(open.handle(), LOCK_EX | LOCK_NB) == 0)
            QFile::remove(leftover.filePath());
    }
}

} // namespace

int openDirectoryOf(const QString &path)
{
    // For a link, the directory of its target: SQLite puts the journal there.
    const QFileInfo file(path);
    const QByteArray name =
        QFile::encodeName(file.isSymLink() ? file.canonicalPath() : file.path());
    return ::open(name.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

bool flushDirectoryOf(const QString &path)
{
    const Descriptor directory(openDirectoryOf(path));
    return directory.isOpen() && flushFile(directory.number());
}

bool flushFile(int descriptor)
{
    int result = -1;
    do
        result = ::fsync(descriptor);
    while (result != 0 && errno == EINTR);
    // EINVAL: the file system cannot flush this, mostly a directory, so there is nothing to wait
    // for.
    return result == 0 || errno == EINVAL;
}

bool makeDirectory(const QString &path)
{
    const QDir directory(path);
    if (directory.exists())
        return true;
    if (!QDir().mkdir(path))
        return false;
    // A failure will be noticed when a file in the new directory is flushed.
    flushDirectoryOf(directory.absolutePath());
    return true;
}

FileReplacement::FileReplacement(const QString &path)
    : m_target(targetOf(path))
    , m_file(m_target + newFileSuffix + QStringLiteral("XXXXXX")) // on the same file system
{ }

bool FileReplacement::open(QString *reason)
{
    if (const QFileInfo old(m_target); old.isDir() && !old.isSymLink()) {
        *reason = qt_error_string(EISDIR);
        return false;
    }
    removeLeftovers(m_target);
    if (!m_file.open()) {
        *reason = m_file.errorString();
        return false;
    }
    // Otherwise another process could remove the new file as a leftover.
    ::flock(m_file.handle(), LOCK_EX | LOCK_NB);
    return true;
}

bool FileReplacement::commit(const QByteArray &content, QString *reason)
{
    if (m_file.write(content) != content.size() || !m_file.flush()) {
        *reason = m_file.errorString();
        return false;
    }
    const QByteArray from = QFile::encodeName(m_file.fileName());
    const QByteArray to = QFile::encodeName(m_target);
    if (!flushFile(m_file.handle()) || std::rename(from.constData(), to.constData()) != 0) {
        *reason = qt_error_string(errno);
        return false;
    }
    m_file.setAutoRemove(false); // the name no longer exists, and another process may use it
    // The file is flushed again, because on FAT its directory entry also has its size and location.
    if (flushFile(m_file.handle()) && flushDirectoryOf(m_target))
        return true;
    *reason = qt_error_string(errno);
    return false;
}

bool replaceFile(const QString &path, const QByteArray &content, QString *reason)
{
    FileReplacement file(path);
    return file.open(reason) && file.commit(content, reason);
}

} // namespace Internal
