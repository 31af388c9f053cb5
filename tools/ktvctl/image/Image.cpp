#include "Image.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <utility>

#include <unistd.h>

namespace {

constexpr int maxLinks = 40; // the limit of the kernel

} // namespace

Image::Image(QString root) : m_root(std::move(root))
{
    while (m_root.endsWith(QLatin1Char('/')))
        m_root.chop(1);
}

QString Image::locate(const QString &path) const
{
    QStringList left = path.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    QString inside; // path inside the image as far as links have been followed
    int links = 0;
    while (!left.isEmpty()) {
        const QString name = left.takeFirst();
        if (name == QLatin1String("."))
            continue;
        if (name == QLatin1String("..")) {
            inside.truncate(qMax(0, inside.lastIndexOf(QLatin1Char('/'))));
            continue;
        }
        const QString next = inside + QLatin1Char('/') + name;
        const QFileInfo info(m_root + next);
        if (!info.isSymLink()) {
            if (!info.exists())
                return {};
            inside = next;
            continue;
        }
        if (++links > maxLinks)
            return {};
        // Not symLinkTarget(), which would resolve it to a path on this machine.
        QByteArray target(4096, '\0');
        const auto length = ::readlink(QFile::encodeName(m_root + next).constData(), target.data(),
                                       size_t(target.size()));
        if (length <= 0)
            return {};
        const QString text = QFile::decodeName(target.left(int(length)));
        if (text.startsWith(QLatin1Char('/')))
            inside.clear();
        left = text.split(QLatin1Char('/'), Qt::SkipEmptyParts) + left;
    }
    return m_root + (inside.isEmpty() ? QStringLiteral("/") : inside);
}

bool Image::isDirectory(const QString &path) const
{
    const QString place = locate(path);
    return !place.isNull() && QFileInfo(place).isDir();
}

std::optional<QByteArray> Image::read(const QString &path) const
{
    const QString place = locate(path);
    if (place.isNull() || !QFileInfo(place).isFile())
        return std::nullopt;
    QFile file(place);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return file.readAll();
}

QStringList Image::folders(const QString &path) const
{
    return isDirectory(path)
        ? QDir(locate(path)).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name)
        : QStringList();
}

QStringList Image::files(const QString &path) const
{
    return isDirectory(path) ? QDir(locate(path)).entryList(QDir::Files, QDir::Name)
                             : QStringList();
}
