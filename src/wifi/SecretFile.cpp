#include "wifi/SecretFile_p.h"

#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Internal {

void keepSecret(const QString &path)
{
    constexpr mode_t ownerOnly = S_IRUSR | S_IWUSR;
    const QByteArray name = QFile::encodeName(path);
    const int file = ::open(name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, ownerOnly);
    if (file >= 0) {
        ::close(file);
        return;
    }
    struct stat status = {};
    if (::stat(name.constData(), &status) == 0 && S_ISREG(status.st_mode))
        ::chmod(name.constData(), ownerOnly);
}

} // namespace Internal
