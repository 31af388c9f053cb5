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
 * Parses the content of @p device as the QDomDocument of Qt 5 does, whichever Qt this is; of the
 * nodes only elements with their attributes are kept. What would take too much memory or time is
 * refused as a parse error: a file too large, too many or too deep elements, too many declarations.
 * @param lineAttribute if not empty, every element gets an attribute of this name with the number
 * of its line
 * @return success; on failure @p document is untouched.
 */
bool parseXml(QIODevice &device, QDomDocument &document, XmlError &error,
              const QString &lineAttribute = QString());

/** Receives the two levels below the root of a document, node by node. */
class XmlSections
{
public:
    virtual ~XmlSections() = default;

    /** An element directly below the root; the following calls belong to it. */
    virtual void addSection(const QString &name) = 0;
    /** An element of the section; @p text is null if it has none. */
    virtual void addEntry(const QString &name, const QString &text) = 0;
    /** Another node of the section, such as a comment. */
    virtual void addOther(const QString &name) = 0;
};

/**
 * Reads a file without building a document; accepts and refuses the same files as parseXml().
 * @param attribute holds the text of an entry
 * @return success; on failure @p sections has received the nodes before it.
 */
bool readSections(QIODevice &device, const QString &attribute, XmlSections &sections,
                  XmlError &error);

} // namespace Internal
