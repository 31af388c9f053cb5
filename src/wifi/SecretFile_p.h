#pragma once

#include <QString>

namespace Internal {

/**
 * Makes the file readable and writable by its owner only, if the file system supports that. A
 * missing file is created, empty, so that others can never open it.
 */
void keepSecret(const QString &path);

} // namespace Internal
