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

const QString addition = QStringLiteral(".new-"); // to the name of a file that is to be replaced

QString targetOf(const QString &path)
{
    const QFileInfo old(path);
    return old.isFile() ? old.canonicalFilePath() : path; // never a device
}

/** Removes what a pulled battery has left; a new file that is still being made is locked. */
void removeLeftovers(const QString &target)
{
    const QFileInfo file(target);
    const auto leftovers = file.dir().entryInfoList({file.fileName() + addition + "??????"},
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
    // Of a link's target: SQLite keeps the journal beside that.
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
    // Some file systems cannot flush, directories above all: then there is nothing to wait for.
    return result == 0 || errno == EINVAL;
}

bool makeDirectory(const QString &path)
{
    const QDir directory(path);
    if (directory.exists())
        return true;
    if (!QDir().mkdir(path))
        return false;
    flushDirectoryOf(directory.absolutePath()); // what fails here fails again with its content
    return true;
}

FileReplacement::FileReplacement(const QString &path)
    : m_target(targetOf(path))
    , m_file(m_target + addition + QStringLiteral("XXXXXX")) // beside it: the same file system
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
    ::flock(m_file.handle(), LOCK_EX | LOCK_NB); // another process would take it for a leftover
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
    m_file.setAutoRemove(false); // the name is gone, and may soon be another's
    // The file once more: on FAT a name's entry holds the file's size and place, too.
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
