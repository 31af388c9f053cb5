#pragma once

#include <QFile>

namespace Internal {

/**
 * A file that opens only where an ordinary file is, also at the end of a link. What else may stand
 * in its place, such as a pipe that waits for its other end or a device that never ends, fails to
 * open at once.
 */
class RegularFile : public QFile
{
public:
    using QFile::QFile;

    /**
     * For reading; an open file has no fileName().
     * @return success; otherwise errorString() has the reason
     */
    bool open(OpenMode mode) override;
};

/** Whether a pipe, a socket or a device is there, also at the end of a link. */
bool isSpecialFile(const QString &path);

} // namespace Internal
