#pragma once

#include <QDomDocument>

class QIODevice;

namespace Internal {

/** The reason and place of a failed parse. */
struct XmlError
{
    QString message;
    int line = 0;
    int column = 0;
};

/**
 * Parses what @p device holds, as QDomDocument parses the same device. Refused as a parse error is
 * what would cost a device too much: a file too large, too many or too deep elements, too many
 * declarations.
 * @return success; on failure @p document is untouched.
 */
bool parseXml(QIODevice &device, QDomDocument &document, XmlError &error);

} // namespace Internal
