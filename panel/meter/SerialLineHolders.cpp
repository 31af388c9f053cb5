#include "meter/SerialLineHolders.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace {

bool hasOpen(const QDir &process, const QString &file)
{
    const QFileInfoList open =
        QDir(process.filePath(QStringLiteral("fd"))).entryInfoList(QDir::AllEntries | QDir::System);
    return std::any_of(open.begin(), open.end(), [&file](const QFileInfo &descriptor) {
        return descriptor.symLinkTarget() == file;
    });
}

} // namespace

QStringList serialLineHolders()
{
    const QString line = QFileInfo(QStringLiteral("/dev/ttyGS0")).canonicalFilePath();
    if (line.isEmpty())
        return {};
    QStringList holders;
    const QFileInfoList processes =
        QDir(QStringLiteral("/proc")).entryInfoList({QStringLiteral("[0-9]*")}, QDir::Dirs);
    for (const QFileInfo &process : processes) {
        const QDir directory(process.filePath());
        QFile name(directory.filePath(QStringLiteral("comm")));
        if (hasOpen(directory, line) && name.open(QIODevice::ReadOnly))
            holders += QStringLiteral("%1 (%2)").arg(
                QString::fromLocal8Bit(name.readAll()).trimmed(), process.fileName());
    }
    return holders;
}
