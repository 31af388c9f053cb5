#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

/**
 * A root file system: that of the running device, or an image of one in a folder. Paths are paths
 * on the device, links are followed within the image, and nothing is ever changed.
 */
class Image
{
public:
    /** @param root folder of the image; empty or "/" is the device itself */
    explicit Image(QString root);

    /** Whether it is the running device. */
    bool isRunning() const { return m_root.isEmpty(); }

    /** The path on this machine of @p path, with links followed; null if it does not exist. */
    QString locate(const QString &path) const;
    bool exists(const QString &path) const { return !locate(path).isNull(); }
    bool isDirectory(const QString &path) const;

    /** Content of a regular file; no value if there is none or it cannot be read. */
    std::optional<QByteArray> read(const QString &path) const;
    /** Names of the folders, or of the regular files, in a folder; sorted. */
    QStringList folders(const QString &path) const;
    QStringList files(const QString &path) const;

private:
    QString m_root; ///< without a slash at its end
};
