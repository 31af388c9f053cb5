#include "internal/XmlDeclarations_p.h"

#include <QRegularExpression>
#include <QString>
#include <QStringView>

#include <algorithm>

namespace Internal {

namespace {

// The parser recurses at each parenthesis of a declaration and compares each entity with all
// others. Real files have far fewer.
constexpr qsizetype maxDeclared = 1000;
// The parser itself refuses an entity that expands to more characters.
constexpr qsizetype longestEntity = 4096;
constexpr qsizetype maxExpanded = maxDeclared * longestEntity;

/** Position after the next @p end at or after @p from; the end of the text if there is none. */
qsizetype positionAfter(QStringView text, qsizetype from, QStringView end)
{
    const qsizetype found = text.indexOf(end, from);
    return found < 0 ? text.size() : found + end.size();
}

/**
 * Position after the comment or processing instruction that begins at @p at; @p at if none does.
 */
qsizetype positionAfterComment(QStringView text, qsizetype at)
{
    const QStringView rest = text.mid(at);
    if (rest.startsWith(u"<!--"))
        return positionAfter(text, at + 4, u"-->");
    return rest.startsWith(u"<?") ? positionAfter(text, at + 2, u"?>") : at;
}

/** Position after the document type declaration that begins at @p at. */
qsizetype endOfDocumentType(QStringView text, qsizetype at)
{
    int subsets = 0;
    while (at < text.size()) {
        const QChar character = text.at(at);
        if (const qsizetype next = positionAfterComment(text, at); next != at) {
            at = next;
            continue;
        }
        ++at;
        if (character == u'"' || character == u'\'')
            at = positionAfter(text, at, QStringView(&character, 1));
        else if (character == u'[')
            ++subsets;
        else if (character == u']')
            --subsets;
        else if (character == u'>' && subsets <= 0)
            return at;
    }
    return at;
}

struct DocumentType
{
    QStringView declarations;
    QStringView content; ///< the text after the declaration
};

DocumentType documentTypeOf(QStringView text)
{
    qsizetype begin = text.indexOf(u'<');
    while (begin >= 0) {
        const qsizetype next = positionAfterComment(text, begin);
        if (next == begin)
            break;
        begin = text.indexOf(u'<', next);
    }
    if (begin < 0 || !text.mid(begin).startsWith(u"<!DOCTYPE"))
        return {};
    const qsizetype end = endOfDocumentType(text, begin);
    return {text.mid(begin, end - begin), text.mid(end)};
}

qsizetype countOf(QStringView text, QStringView word)
{
    qsizetype count = 0;
    for (qsizetype at = text.indexOf(word); at >= 0; at = text.indexOf(word, at + word.size()))
        ++count;
    return count;
}

/** Number of references to declared entities: not predefined ones such as &lt;, nor characters. */
qsizetype referencesIn(QStringView text)
{
    qsizetype count = countOf(text, u"&");
    for (const QStringView plain : {u"&lt;", u"&gt;", u"&amp;", u"&apos;", u"&quot;", u"&#"})
        count -= countOf(text, plain);
    return count;
}

/**
 * Whether an entity may expand to more than its declaration: it has a reference, or a character
 * reference to & or %, which begins a reference when the expanded text is parsed again.
 */
bool mayGrow(QStringView declarations)
{
    static const QRegularExpression reference(QStringLiteral("%|&(?!#)|&#0*3[78];|&#x0*2[56];"));
    return reference.match(declarations.toString()).hasMatch();
}

} // namespace

bool declaresTooMuch(const QString &text)
{
    const auto [declarations, content] = documentTypeOf(text);
    const qsizetype entities = countOf(declarations, u"<!ENTITY");
    if (countOf(declarations, u"(") + countOf(declarations, u"%") + countOf(declarations, u"&")
            + entities
        > maxDeclared)
        return true;
    if (entities == 0)
        return false;
    const qsizetype longest =
        mayGrow(declarations) ? longestEntity : std::min(declarations.size(), longestEntity);
    return referencesIn(content) * longest > maxExpanded;
}

} // namespace Internal
