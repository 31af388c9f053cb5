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
 * Parses what @p device holds. A file too large or nested too deeply for the document's
 * recursive destruction is refused as a parse error.
 * @return success; on failure @p document is untouched.
 */
bool parseXml(QIODevice &device, QDomDocument &document, XmlError &error);

} // namespace Internal
