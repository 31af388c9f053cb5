#include "internal/XmlFile_p.h"

#include <QIODevice>
#include <QXmlStreamReader>

namespace Internal {

namespace {

// The files of a device hold some 100 kB; a document takes many times its file's memory.
constexpr qint64 largestFile = 8 * 1024 * 1024;
// A document of some tens of thousands of levels overflows the stack when it is destroyed.
constexpr int deepestNesting = 10000;

XmlError errorAt(const QXmlStreamReader &reader, const QString &message)
{
    return {message, int(reader.lineNumber()), int(reader.columnNumber())};
}

bool isTooDeep(const QByteArray &text, XmlError &error)
{
    if (text.count('<') <= deepestNesting) // what every real file comes down to
        return false;
    QXmlStreamReader reader(text);
    int depth = 0;
    while (!reader.atEnd()) {
        const auto token = reader.readNext();
        depth += int(token == QXmlStreamReader::StartElement)
            - int(token == QXmlStreamReader::EndElement);
        if (depth > deepestNesting) {
            error = errorAt(reader, QStringLiteral("elements nested too deeply"));
            return true;
        }
    }
    if (reader.hasError())
        error = errorAt(reader, reader.errorString());
    return reader.hasError();
}

} // namespace

bool parseXml(QIODevice &device, QDomDocument &document, XmlError &error)
{
    const QByteArray text = device.isOpen() ? device.read(largestFile + 1) : QByteArray();
    if (text.size() > largestFile) {
        error = {QStringLiteral("file too large"), 0, 0};
        return false;
    }
    if (isTooDeep(text, error))
        return false;
    QDomDocument parsed;
    if (!parsed.setContent(text, &error.message, &error.line, &error.column))
        return false;
    document = parsed;
    return true;
}

} // namespace Internal
