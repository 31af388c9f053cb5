#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

/**
 * A root file system: the device's own, or an image of one in a folder. Paths are those of the
 * device, links are followed within the image, and nothing is ever changed.
 */
class Image
{
public:
    /** @param root folder of the image; empty or "/" is the device itself */
    explicit Image(QString root);

    /** Whether it is the running device. */
    bool isRunning() const { return m_root.isEmpty(); }

    /** Where @p path lies on this machine, its links followed; null where there is nothing. */
    QString locate(const QString &path) const;
    bool exists(const QString &path) const { return !locate(path).isNull(); }
    bool isDirectory(const QString &path) const;

    /** What a regular file holds; nothing where there is none, or it cannot be read. */
    std::optional<QByteArray> read(const QString &path) const;
    /** Names of the folders, or of the plain files, in a folder; sorted. */
    QStringList folders(const QString &path) const;
    QStringList files(const QString &path) const;

private:
    QString m_root; ///< without a slash at its end
};
