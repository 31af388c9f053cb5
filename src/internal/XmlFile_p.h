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

/** Takes the two levels below the root of a document, node by node. */
class XmlSections
{
public:
    virtual ~XmlSections() = default;

    /** What came so far does not count. */
    virtual void clear() = 0;
    /** An element right below the root; what follows lies in it. */
    virtual void addSection(const QString &name) = 0;
    /** An element of the section; a null @p text: it has none. */
    virtual void addEntry(const QString &name, const QString &text) = 0;
    /** Another node of the section, such as a comment. */
    virtual void addOther(const QString &name) = 0;
};

/**
 * Reads what parseXml() would accept, with the same failures, but without a document.
 * @param attribute holds the text of an entry
 * @return success; on failure @p sections holds what came before it.
 */
bool readSections(QIODevice &device, const QString &attribute, XmlSections &sections,
                  XmlError &error);

} // namespace Internal
