#include "tools/Tools.h"

#include "internal/Guarded_p.h"
#include "internal/RegularFile_p.h"

#include <QFile>
#include <QFileInfo>
#include <QStorageInfo>

#include <memory>

using Internal::guarded;

namespace QERNTools {

namespace {

struct SizeStep
{
    double below; ///< bytes
    double unit; ///< bytes
    QLatin1String text;
};

constexpr double kiloByte = 1024;
constexpr double megaByte = kiloByte * 1024;
constexpr double gigaByte = megaByte * 1024;

const SizeStep sizeSteps[] = {
    {megaByte, kiloByte, QLatin1String(" kB")},
    {gigaByte, megaByte, QLatin1String(" MB")},
};

/** Current state of a volume. */
struct Volume
{
    explicit Volume(const QString &path)
    {
        QStorageInfo storage(path);
        storage.refresh();
        total = storage.bytesTotal();
        available = storage.bytesAvailable();
    }

    qint64 used() const { return total - available; }
    double usedPercent() const { return total > 0 ? double(used()) / double(total) * 100 : 0; }

    qint64 total;
    qint64 available;
};

} // namespace

Tools::Tools(QObject *parent) : QObject(parent)
{ }

QString Tools::humanFileSize(double size)
{
    if (size < kiloByte)
        return QString::number(size, 'g', 6) + QStringLiteral(" B");
    for (const SizeStep &step : sizeSteps) {
        if (size < step.below)
            return QString::number(size / step.unit, 'f', 2) + step.text;
    }
    return QString::number(size / gigaByte, 'f', 2) + QStringLiteral(" GB");
}

QString Tools::validFileName(const QString &name)
{
    static const QLatin1String forbidden("\\/:*?\"<>|");
    QString valid = name;
    for (const char character : forbidden)
        valid.replace(QLatin1Char(character), QLatin1Char('_'));
    return valid;
}

QString Tools::findFreeFileName(const QString &directory, const QString &base,
                                const QString &extension)
{
    const QString suffix =
        extension.startsWith(QLatin1Char('.')) ? extension : QLatin1Char('.') + extension;
    QString candidate = base + suffix;
    for (int n = 1; QFile::exists(directory + candidate); ++n)
        candidate = base + QLatin1Char('_') + QString::number(n) + suffix;
    return candidate;
}

QString Tools::findFreeFileName(const QString &directory, const QString &fileName)
{
    const QFileInfo file(directory + fileName);
    return findFreeFileName(directory, file.baseName(), file.suffix());
}

DiskInfo *Tools::getDiskInfo(const QString &path)
{
    const Volume volume(path);
    auto info = std::make_unique<DiskInfo>();
    info->freeText = humanFileSize(double(volume.available));
    info->usedText = humanFileSize(double(volume.used()));
    info->totalText = humanFileSize(double(volume.total));
    info->usedPercent = float(volume.usedPercent());
    return info.release();
}

qint64 Tools::getFreeSpace(const QString &path)
{
    return Volume(path).available;
}

qint64 Tools::getUsedSpacePercent(const QString &path)
{
    return qint64(Volume(path).usedPercent());
}

bool Tools::SD_Card_is_OK()
{
    return guarded("Tools::SD_Card_is_OK(): ", [] {
        Internal::RegularFile file(QStringLiteral("/etc/korva/sdcard.error"));
        if (!file.exists())
            return true;
        return file.open(QIODevice::ReadOnly | QIODevice::Text)
            && QString::fromUtf8(file.readAll()).startsWith(QLatin1Char('0'));
    });
}

} // namespace QERNTools
