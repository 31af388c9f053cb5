#include "internal/DurableFile_p.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace Internal {

bool flushDirectoryOf(const QString &path)
{
    // Of a link's target: SQLite keeps the journal beside that.
    const QFileInfo file(path);
    const QByteArray name =
        QFile::encodeName(file.isSymLink() ? file.canonicalPath() : file.path());
    const int directory = ::open(name.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (directory < 0)
        return false;
    const bool isFlushed = flushFile(directory);
    const int error = errno;
    ::close(directory);
    errno = error;
    return isFlushed;
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

bool replaceFile(const QString &path, const QByteArray &content, QString *reason)
{
    const QFileInfo old(path);
    const QString target = old.isFile() ? old.canonicalFilePath() : path; // never a device
    QTemporaryFile file(target + QStringLiteral(".XXXXXX")); // beside it: the same file system
    if (!file.open() || file.write(content) != content.size() || !file.flush()) {
        *reason = file.errorString();
        return false;
    }
    const QByteArray from = QFile::encodeName(file.fileName());
    const QByteArray to = QFile::encodeName(target);
    if (!flushFile(file.handle()) || std::rename(from.constData(), to.constData()) != 0) {
        *reason = qt_error_string(errno);
        return false;
    }
    file.setAutoRemove(false); // the name is gone, and may soon be another's
    // The file once more: on FAT a name's entry holds the file's size and place, too.
    if (flushFile(file.handle()) && flushDirectoryOf(target))
        return true;
    *reason = qt_error_string(errno);
    return false;
}

} // namespace Internal
