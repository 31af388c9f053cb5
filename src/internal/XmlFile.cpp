#include "internal/XmlFile_p.h"

#include <QIODevice>
#include <QXmlDefaultHandler>
#include <QXmlSimpleReader>

namespace Internal {

namespace {

// The files of a device hold some 10 to 100 kB; a document takes up to 80 times its memory.
constexpr qint64 largestFile = Q_INT64_C(4) * 1024 * 1024;
// A document of some tens of thousands of levels overflows the stack when it is destroyed.
constexpr int deepestNesting = 10000;
// The parser descends at each bracket of a declaration, compares each entity with all others,
// and an entity may stand for 4096 characters, tags included. No real file comes near.
constexpr int mostDeclared = 1000;

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
bool isTooDeep(QXmlInputSource &source)
{
    DepthCheck check;
    QXmlSimpleReader reader;
    reader.setContentHandler(&check);
    reader.parse(source);
    return check.hasStopped();
}

/** Whether a document type brings declarations of its own. */
bool hasDeclarations(const QString &text)
{
    return text.contains(QLatin1String("<!DOCTYPE"))
        && (text.contains(QLatin1String("<!ENTITY")) || text.contains(QLatin1String("<!ELEMENT"))
            || text.contains(QLatin1String("<!ATTLIST")));
}

/** What in the text would make the parser or the document die; null for a harmless one. */
const char *dangerIn(const QByteArray &bytes)
{
    QXmlInputSource source;
    source.setData(bytes);
    const QString text = source.data();
    const bool declares = hasDeclarations(text);
    if (declares
        && text.count('(') + text.count('&') + text.count('%')
                + text.count(QLatin1String("<!ENTITY"))
            > mostDeclared)
        return "too many declarations";
    // Every real file comes down to a few thousand tags.
    if ((declares || text.count('<') > deepestNesting) && isTooDeep(source))
        return "elements nested too deeply";
    return nullptr;
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
    if (const char *const danger = dangerIn(text)) {
        error = {QString::fromLatin1(danger), 0, 0};
        return false;
    }
    QDomDocument parsed;
    if (!parsed.setContent(text, &error.message, &error.line, &error.column))
        return false;
    document = parsed;
    return true;
}

} // namespace Internal
