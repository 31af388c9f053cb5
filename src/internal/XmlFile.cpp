#include "internal/XmlFile_p.h"

#include "internal/XmlDeclarations_p.h"

#include <QBuffer>
#include <QXmlDefaultHandler>
#include <QXmlSimpleReader>

#include <optional>
#include <utility>

namespace Internal {

namespace {

// The files of a device have 10 to 100 kB, with some thousand texts.
constexpr qint64 largestFile = Q_INT64_C(4) * 1024 * 1024;
// A QDomDocument takes up to 500 bytes per node; attributes count as nodes.
constexpr int mostNodes = 120000;
// A QDomDocument with some tens of thousands of levels overflows the stack when it is destroyed.
constexpr int deepestNesting = 10000;
// For each new node, QDomDocument walks up to the root.
constexpr qint64 mostSteps = Q_INT64_C(200) * 1000 * 1000;

QT_WARNING_PUSH
QT_WARNING_DISABLE_DEPRECATED

XmlError refusal(const char *reason)
{
    return {QString::fromLatin1(reason), 0, 0};
}

/**
 * The whole content, or a little more than largestFile if there is more; memory is allocated only
 * for bytes that have been read.
 */
QByteArray readBounded(QIODevice &device)
{
    constexpr qint64 piece = Q_INT64_C(64) * 1024;
    QByteArray bytes;
    while (bytes.size() <= largestFile) {
        const QByteArray part = device.read(piece);
        if (part.isEmpty())
            break;
        bytes += part;
    }
    return bytes;
}

/** Reads the text of the file. @return why it is refused before it is parsed; nothing on success */
std::optional<XmlError> read(QIODevice &device, QString &text)
{
    if (!device.isOpen())
        return std::nullopt;
    device.setTextModeEnabled(false); // part of a UTF-16 character may look like a line end
    QByteArray bytes = readBounded(device);
    if (bytes.size() > largestFile)
        return refusal("file too large");
    // Fetched in pieces, as QDomDocument does: an encoding declaration takes effect with its piece.
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    QXmlInputSource source(&buffer);
    text.reserve(bytes.size());
    for (source.fetchData(); !source.data().isEmpty(); source.fetchData())
        text += source.data();
    if (declaresTooMuch(text))
        return refusal("too many declarations");
    return std::nullopt;
}

/** Stops the parser when a document would become too large for a device. */
class Limiter : public QXmlDefaultHandler
{
public:
    bool startElement(const QString &, const QString &, const QString &,
                      const QXmlAttributes &attributes) override
    {
        if (++m_depth > deepestNesting)
            return refuse("elements nested too deeply");
        return countNodes(1 + attributes.count());
    }
    bool endElement(const QString &, const QString &, const QString &) override
    {
        --m_depth;
        return true;
    }
    bool characters(const QString &) override { return countNodes(1); }
    bool comment(const QString &) override { return countNodes(1); }
    bool processingInstruction(const QString &, const QString &) override { return countNodes(1); }
    bool skippedEntity(const QString &) override { return countNodes(1); }
    bool fatalError(const QXmlParseException &exception) override
    {
        if (!m_refused)
            m_error = {exception.message(), exception.lineNumber(), exception.columnNumber()};
        return true;
    }

    bool hasRefused() const { return m_refused; }
    const XmlError &failure() const { return m_error; }

protected:
    int depth() const { return m_depth; }

private:
    bool countNodes(int count)
    {
        m_nodes += count;
        m_steps += m_depth;
        return (m_nodes <= mostNodes && m_steps <= mostSteps) || refuse("too many elements");
    }
    bool refuse(const char *reason)
    {
        m_error = refusal(reason);
        m_refused = true;
        return false;
    }

    int m_depth = 0;
    int m_nodes = 0;
    qint64 m_steps = 0;
    bool m_refused = false;
    XmlError m_error;
};

/** Passes on the nodes that a QDomDocument would have; must match parseXml(). */
class SectionReader : public Limiter
{
public:
    SectionReader(QString attribute, XmlSections &sections)
        : m_attribute(std::move(attribute))
        , m_sections(sections)
    { }

    bool startElement(const QString &uri, const QString &localName, const QString &name,
                      const QXmlAttributes &attributes) override
    {
        if (depth() == 1)
            m_sections.addSection(name);
        else if (depth() == 2)
            m_sections.addEntry(name, textOf(attributes));
        return Limiter::startElement(uri, localName, name, attributes);
    }
    bool startCDATA() override
    {
        m_inCdata = true;
        return true;
    }
    bool endCDATA() override
    {
        m_inCdata = false;
        return true;
    }
    bool characters(const QString &text) override
    {
        addOther(m_inCdata ? QStringLiteral("#cdata-section") : QStringLiteral("#text"));
        return Limiter::characters(text);
    }
    bool comment(const QString &text) override
    {
        addOther(QStringLiteral("#comment"));
        return Limiter::comment(text);
    }
    bool processingInstruction(const QString &target, const QString &data) override
    {
        addOther(target);
        return Limiter::processingInstruction(target, data);
    }
    /** Cannot know whether the entity is in the content, where it is a node, or in an attribute. */
    bool skippedEntity(const QString &) override
    {
        m_needsDocument = true;
        return false;
    }

    bool needsDocument() const { return m_needsDocument; }

private:
    QString textOf(const QXmlAttributes &attributes) const
    {
        // From the end: of attributes with the same name the last one is used.
        for (int i = attributes.count() - 1; i >= 0; --i) {
            if (attributes.qName(i) == m_attribute)
                return attributes.value(i).isNull() ? QLatin1String("") : attributes.value(i);
        }
        return {};
    }
    void addOther(const QString &name)
    {
        if (depth() == 2)
            m_sections.addOther(name);
    }

    const QString m_attribute;
    XmlSections &m_sections;
    bool m_inCdata = false;
    bool m_needsDocument = false;
};

/** Parses with the settings that QDomDocument uses. */
bool parse(const QString &text, Limiter &handler)
{
    QXmlInputSource source;
    source.setData(text);
    QXmlSimpleReader reader;
    reader.setFeature(QStringLiteral("http://xml.org/sax/features/namespaces"), false);
    reader.setFeature(QStringLiteral("http://xml.org/sax/features/namespace-prefixes"), true);
    reader.setFeature(
        QStringLiteral("http://trolltech.com/xml/features/report-whitespace-only-CharData"), false);
    reader.setContentHandler(&handler);
    reader.setLexicalHandler(&handler);
    reader.setErrorHandler(&handler);
    return reader.parse(source);
}

QT_WARNING_POP

bool parseDocument(const QString &text, QDomDocument &document, XmlError &error)
{
    Limiter limiter;
    parse(text, limiter);
    if (limiter.hasRefused()) {
        error = limiter.failure();
        return false;
    }
    QDomDocument parsed;
    if (!parsed.setContent(text, &error.message, &error.line, &error.column))
        return false;
    document = parsed;
    return true;
}

void addSections(const QDomElement &root, const QString &attribute, XmlSections &sections)
{
    for (auto section = root.firstChildElement(); !section.isNull();
         section = section.nextSiblingElement()) {
        sections.addSection(section.tagName());
        for (auto node = section.firstChild(); !node.isNull(); node = node.nextSibling()) {
            const QDomElement entry = node.toElement();
            if (entry.isNull())
                sections.addOther(node.nodeName());
            else
                sections.addEntry(entry.tagName(),
                                  entry.hasAttribute(attribute)
                                      ? entry.attribute(attribute, QLatin1String(""))
                                      : QString());
        }
    }
}

} // namespace

bool parseXml(QIODevice &device, QDomDocument &document, XmlError &error)
{
    QString text;
    if (const auto refused = read(device, text)) {
        error = *refused;
        return false;
    }
    return parseDocument(text, document, error);
}

bool readSections(QIODevice &device, const QString &attribute, XmlSections &sections,
                  XmlError &error)
{
    QString text;
    if (const auto refused = read(device, text)) {
        error = *refused;
        return false;
    }
    SectionReader reader(attribute, sections);
    if (parse(text, reader))
        return true;
    if (!reader.needsDocument()) {
        error = reader.failure();
        return false;
    }
    sections.clear();
    QDomDocument document;
    if (!parseDocument(text, document, error))
        return false;
    addSections(document.firstChildElement(), attribute, sections);
    return true;
}

} // namespace Internal
