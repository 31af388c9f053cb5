#pragma once

#include <QFile>

namespace Internal {

/**
 * A file that can be opened only if it is a regular file, or a link to one. Anything else, such as
 * a named pipe that would wait for its other end or a device that can be read without end, fails to
 * open at once.
 */
class RegularFile : public QFile
{
public:
    using QFile::QFile;

    /**
     * Opens the file, for reading only. An open file has no fileName().
     * @return success; otherwise errorString() has the reason
     */
    bool open(OpenMode mode) override;
};

/** Whether the path is a named pipe, a socket or a device, or a link to one. */
bool isSpecialFile(const QString &path);

} // namespace Internal
