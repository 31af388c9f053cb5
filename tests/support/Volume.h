#pragma once

#include <QString>

/** A small disk of its own, mounted over a directory while this object lives. */
class Volume
{
public:
    /** @param blocks size in blocks of 4096 bytes */
    explicit Volume(const QString &path, int blocks = 100);
    ~Volume();
    Q_DISABLE_COPY_MOVE(Volume)

    /** Fills the disk up to @p blocks used blocks in all, or makes room again. */
    void fill(int blocks);
    /** Fills the disk to its last byte. */
    void fillUp();
    void setReadOnly(bool on);

private:
    const QString m_path;
};

/** A socket bound at @p path, as a file that cannot be opened. */
class SocketFile
{
public:
    explicit SocketFile(const QString &path);
    ~SocketFile();
    Q_DISABLE_COPY_MOVE(SocketFile)

private:
    const int m_socket;
};
