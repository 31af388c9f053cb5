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
constexpr int maxNodes = 120000;
// A QDomDocument with some tens of thousands of levels overflows the stack when it is destroyed.
constexpr int deepestNesting = 10000;
// For each new node, QDomDocument walks up to the root.
constexpr qint64 maxSteps = Q_INT64_C(200) * 1000 * 1000;

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

    const XmlError &failure() const { return m_error; }

protected:
    int depth() const { return m_depth; }

private:
    bool countNodes(int count)
    {
        m_nodes += count;
        m_steps += m_depth;
        return (m_nodes <= maxNodes && m_steps <= maxSteps) || refuse("too many elements");
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

/** The text of a file, of which it knows how much has been parsed. */
class Source : public QXmlInputSource
{
public:
    explicit Source(QString text) : m_text(std::move(text)) { }

    QChar next() override
    {
        // The first of the two would only have the reader ask once more.
        const bool isEnd = m_position == m_text.size() || m_text.at(m_position++) == EndOfData;
        return isEnd ? QChar(EndOfDocument) : m_text.at(m_position - 1);
    }
    QString data() const override { return m_text; }

    int position() const { return m_position; }
    /** Whether a tag begins behind that position, in what has been parsed. */
    bool hasTagBehind(int position) const
    {
        return QStringView(m_text).mid(position, m_position - position).contains(QLatin1Char('<'));
    }

private:
    const QString m_text;
    int m_position = 0;
};

/** Builds a document of the elements and their attributes; leaves out all other nodes. */
class ElementBuilder : public Limiter
{
public:
    /** @param lineAttribute gets each element's line; empty for none */
    explicit ElementBuilder(QString lineAttribute) : m_lineAttribute(std::move(lineAttribute)) { }

    void setDocumentLocator(QXmlLocator *locator) override { m_locator = locator; }
    bool startElement(const QString &uri, const QString &localName, const QString &name,
                      const QXmlAttributes &attributes) override
    {
        QDomElement element = m_document.createElement(name);
        for (int i = 0; i < attributes.count(); ++i)
            element.setAttribute(attributes.qName(i), attributes.value(i));
        if (!m_lineAttribute.isEmpty())
            element.setAttribute(m_lineAttribute, m_locator->lineNumber());
        if (depth() == 0)
            m_document.appendChild(element);
        else
            m_parent.appendChild(element);
        m_parent = element;
        return Limiter::startElement(uri, localName, name, attributes);
    }
    bool endElement(const QString &uri, const QString &localName, const QString &name) override
    {
        m_parent = m_parent.parentNode();
        return Limiter::endElement(uri, localName, name);
    }

    const QDomDocument &document() const { return m_document; }

private:
    const QString m_lineAttribute;
    QXmlLocator *m_locator = nullptr;
    QDomDocument m_document;
    QDomNode m_parent;
};

/** Passes on the nodes of the two levels below the root. */
class SectionReader : public Limiter
{
public:
    SectionReader(const Source &source, QString attribute, XmlSections &sections)
        : m_source(source)
        , m_attribute(std::move(attribute))
        , m_sections(sections)
    { }

    bool startElement(const QString &uri, const QString &localName, const QString &name,
                      const QXmlAttributes &attributes) override
    {
        m_markupEnd = m_source.position();
        if (depth() == 1)
            m_sections.addSection(name);
        else if (depth() == 2)
            m_sections.addEntry(name, textOf(attributes));
        return Limiter::startElement(uri, localName, name, attributes);
    }
    bool endElement(const QString &uri, const QString &localName, const QString &name) override
    {
        m_markupEnd = m_source.position();
        return Limiter::endElement(uri, localName, name);
    }
    bool startCDATA() override
    {
        m_inCdata = true;
        return true;
    }
    bool endCDATA() override
    {
        m_markupEnd = m_source.position();
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
        m_markupEnd = m_source.position() - 1; // the parser has read one character more
        addOther(QStringLiteral("#comment"));
        return Limiter::comment(text);
    }
    bool processingInstruction(const QString &target, const QString &data) override
    {
        m_markupEnd = m_source.position() - 1; // as behind a comment
        addOther(target);
        return Limiter::processingInstruction(target, data);
    }
    /**
     * An undeclared entity is a node in the content, and nothing in an attribute; where it is in
     * the text of a declared entity, that entity's place counts.
     */
    bool skippedEntity(const QString &name) override
    {
        if (!m_source.hasTagBehind(m_markupEnd))
            addOther(name);
        return Limiter::skippedEntity(name);
    }

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

    const Source &m_source;
    const QString m_attribute;
    XmlSections &m_sections;
    int m_markupEnd = 0; ///< of the last tag, comment, instruction or CDATA section
    bool m_inCdata = false;
};

/** Parses with the settings that the QDomDocument of Qt 5 uses. */
bool parse(const Source &source, Limiter &handler)
{
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

} // namespace

bool parseXml(QIODevice &device, QDomDocument &document, XmlError &error,
              const QString &lineAttribute)
{
    QString text;
    if (const auto refused = read(device, text)) {
        error = *refused;
        return false;
    }
    ElementBuilder builder(lineAttribute);
    if (!parse(Source(text), builder)) {
        error = builder.failure();
        return false;
    }
    document = builder.document();
    return true;
}

bool readSections(QIODevice &device, const QString &attribute, XmlSections &sections,
                  XmlError &error)
{
    QString text;
    if (const auto refused = read(device, text)) {
        error = *refused;
        return false;
    }
    const Source source(text);
    SectionReader reader(source, attribute, sections);
    if (parse(source, reader))
        return true;
    error = reader.failure();
    return false;
}

} // namespace Internal
