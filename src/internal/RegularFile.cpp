#include "internal/RegularFile_p.h"

#include <QFileInfo>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Internal {

namespace {

/** Why a file must not be opened; empty for a regular file. */
QString objectionTo(int file)
{
    struct stat status = {};
    if (::fstat(file, &status) != 0)
        return qt_error_string(errno);
    if (S_ISDIR(status.st_mode))
        return QStringLiteral("file to open is a directory"); // the text of QFile
    return S_ISREG(status.st_mode) ? QString() : QStringLiteral("not a regular file");
}

} // namespace

bool RegularFile::open(OpenMode mode)
{
    Q_ASSERT(!(mode & WriteOnly));
    const QByteArray name = encodeName(fileName());
    const int file = ::open(name.constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    const QString objection = file < 0 ? qt_error_string(errno) : objectionTo(file);
    if (objection.isEmpty() && QFile::open(file, mode, AutoCloseHandle))
        return true;
    if (file >= 0)
        ::close(file);
    if (!objection.isEmpty())
        setErrorString(objection);
    return false;
}

bool isSpecialFile(const QString &path)
{
    const QFileInfo file(path);
    return file.exists() && !file.isFile() && !file.isDir();
}

} // namespace Internal
