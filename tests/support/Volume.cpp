#include "support/Volume.h"

#include <QDir>
#include <QFile>

#include <cstring>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

constexpr qint64 blockSize = 4096;

void require(bool ok, const char *what, const QString &path)
{
    if (!ok)
        qFatal("%s %s: %s", what, qPrintable(path), std::strerror(errno));
}

} // namespace

Volume::Volume(const QString &path, int blocks) : m_path(path)
{
    QDir().mkpath(path);
    const QByteArray options = "size=" + QByteArray::number(blocks * blockSize);
    require(::mount("tmpfs", QFile::encodeName(path).constData(), "tmpfs", 0, options.constData())
                == 0,
            "mount", path);
}

Volume::~Volume()
{
    require(::umount2(QFile::encodeName(m_path).constData(), MNT_DETACH) == 0, "umount", m_path);
}

void Volume::fill(int blocks)
{
    QFile file(m_path + QStringLiteral("/.filling"));
    require(file.open(QIODevice::ReadWrite), "open", file.fileName());
    const qint64 size = blocks * blockSize;
    if (file.size() > size) // shrunk in one step: never less used than requested
        require(file.resize(size), "resize", file.fileName());
    file.seek(file.size());
    const QByteArray block(int(blockSize), 'x');
    while (file.size() < size)
        require(file.write(block) == blockSize && file.flush(), "fill", m_path);
}

void Volume::fillUp()
{
    fill(0);
    QFile file(m_path + QStringLiteral("/.filling"));
    require(file.open(QIODevice::WriteOnly | QIODevice::Unbuffered), "open", file.fileName());
    const QByteArray block(int(blockSize), 'x');
    while (file.write(block) == blockSize) { }
}

void Volume::setReadOnly(bool on)
{
    const QByteArray path = QFile::encodeName(m_path);
    require(::mount("tmpfs", path.constData(), "tmpfs", MS_REMOUNT | (on ? ulong(MS_RDONLY) : 0UL),
                    nullptr)
                == 0,
            "remount", m_path);
}

SocketFile::SocketFile(const QString &path) : m_socket(::socket(AF_UNIX, SOCK_STREAM, 0))
{
    sockaddr_un address {};
    address.sun_family = AF_UNIX;
    const QByteArray name = QFile::encodeName(path);
    require(name.size() < int(sizeof(address.sun_path)), "socket name", path);
    std::memcpy(address.sun_path, name.constData(), size_t(name.size()));
    require(::bind(m_socket, reinterpret_cast<const sockaddr *>(&address), sizeof(address)) == 0,
            "bind", path);
}

SocketFile::~SocketFile()
{
    ::close(m_socket);
}
