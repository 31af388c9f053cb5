#pragma once

#include <QString>

/** A small disk that is mounted over a directory while this object exists. */
class Volume
{
public:
    /** @param blocks size in blocks of 4096 bytes */
    explicit Volume(const QString &path, int blocks = 100);
    ~Volume();
    Q_DISABLE_COPY_MOVE(Volume)

    /** Fills or empties the disk until @p blocks blocks are used. */
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
