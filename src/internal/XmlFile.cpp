#include "internal/XmlFile_p.h"

#include <QIODevice>
#include <QXmlDefaultHandler>
#include <QXmlSimpleReader>

namespace Internal {

namespace {

// The files of a device hold some 100 kB; a document takes many times its file's memory.
constexpr qint64 largestFile = 4 * 1024 * 1024;
// A document of some tens of thousands of levels overflows the stack when it is destroyed.
constexpr int deepestNesting = 10000;

QT_WARNING_PUSH
QT_WARNING_DISABLE_DEPRECATED

/** Stops the reader at the first element that lies too deep. */
class DepthCheck : public QXmlDefaultHandler
{
public:
    bool startElement(const QString &, const QString &, const QString &,
                      const QXmlAttributes &) override
    {
        return ++m_depth <= deepestNesting;
    }
    bool endElement(const QString &, const QString &, const QString &) override
    {
        --m_depth;
        return true;
    }

    bool hasStopped() const { return m_depth > deepestNesting; }

private:
    int m_depth = 0;
};

/** Reads with the parser of the document itself, so that both take the same texts. */
bool isTooDeep(const QByteArray &text)
{
    if (text.count('<') <= deepestNesting) // what every real file comes down to
        return false;
    QXmlInputSource source;
    source.setData(text);
    DepthCheck check;
    QXmlSimpleReader reader;
    reader.setContentHandler(&check);
    reader.parse(source);
    return check.hasStopped();
}

QT_WARNING_POP

} // namespace

bool parseXml(QIODevice &device, QDomDocument &document, XmlError &error)
{
    const QByteArray text = device.isOpen() ? device.read(largestFile + 1) : QByteArray();
    if (text.size() > largestFile) {
        error = {QStringLiteral("file too large"), 0, 0};
        return false;
    }
    if (isTooDeep(text)) {
        error = {QStringLiteral("elements nested too deeply"), 0, 0};
        return false;
    }
    QDomDocument parsed;
    if (!parsed.setContent(text, &error.message, &error.line, &error.column))
        return false;
    document = parsed;
    return true;
}

} // namespace Internal
