#include "StoreFile.h"

#include <QFile>
#include <QFileInfo>

StoreFile StoreFile::lookAt(const QString &path)
{
    const QFileInfo info(path);
    if (!info.exists())
        return {true, {}};
    const auto refused = [&path](const QString &reason) {
        return StoreFile {false, QStringLiteral("'%1' cannot be read: %2").arg(path, reason)};
    };
    if (!info.isFile())
        return refused(QStringLiteral("it is no file"));
    if (info.size() == 0)
        return {true, {}};
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return refused(file.errorString());
    static const QByteArray header("SQLite format 3",
                                   sizeof "SQLite format 3"); // including the zero byte at its end
    if (file.read(header.size()) != header)
        return refused(QStringLiteral("it is no database"));
    return {};
}
