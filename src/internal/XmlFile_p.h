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
 * Parses what @p device holds. Refused as a parse error is a file too large, nested too deeply
 * for the document's recursive destruction, or with more declarations than the parser's stack,
 * time and memory bear.
 * @return success; on failure @p document is untouched.
 */
bool parseXml(QIODevice &device, QDomDocument &document, XmlError &error);

} // namespace Internal
