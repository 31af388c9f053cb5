#pragma once

#include <QString>

namespace Internal {

/**
 * Lets only its owner read and write the file, where the file system knows owners. A missing
 * file is created empty, so that there is no moment at which others could open it.
 */
void keepSecret(const QString &path);

} // namespace Internal
