#pragma once

#include <ktv_datasource_export.h>

#include <QObject>
#include <QString>

namespace QERNTools {

/** Figures of the volume that holds a path, with texts ready for the screen. */
struct DiskInfo
{
    QString freeText; ///< bytes available to the user, as humanFileSize() writes them
    QString usedText; ///< total less available bytes
    QString totalText; ///< size of the volume
    float usedPercent = 0; ///< used part in percent, not rounded; 0 for a volume without size
};

/**
 * System tools: file names, disk figures, the memory card's state.
 *
 * All operations are static; an instance is never needed.
 */
class KTV_DATASOURCE_EXPORT Tools : public QObject
{
    Q_OBJECT
public:
    using DiskInfo = QERNTools::DiskInfo;

    explicit Tools(QObject *parent = nullptr);

    /** Size in bytes as "1023 B", "1.50 kB", "1.00 MB" or "2.00 GB"; steps of 1024. */
    static QString humanFileSize(double size);

    /** @p name with each of \ / : * ? " < > | replaced by "_"; nothing else is changed. */
    static QString validFileName(const QString &name);

    /**
     * First of "base.extension", "base_1.extension", "base_2.extension", ... that does not exist.
     * @param directory prefix of the path; ends in "/"
     * @param extension with or without its dot; an empty one leaves a final dot
     * @return file name without the directory
     */
    static QString findFreeFileName(const QString &directory, const QString &base,
                                    const QString &extension);
    /**
     * The same for a whole file name: the base ends at the first dot, the extension begins
     * after the last one, and what lies between is dropped.
     */
    static QString findFreeFileName(const QString &directory, const QString &fileName);

    /** @return new figures of the volume that holds @p path; the caller deletes them */
    static QERNTools::DiskInfo *getDiskInfo(const QString &path);
    /** Bytes available on the volume that holds @p path; -1 when there is none. */
    static qint64 getFreeSpace(const QString &path);
    /** Used part of the volume in whole percent, cut off; 0 for a volume without size. */
    static qint64 getUsedSpacePercent(const QString &path);

    /** Whether the system image has marked no fault of the memory card. */
    static bool SD_Card_is_OK();
};

} // namespace QERNTools
