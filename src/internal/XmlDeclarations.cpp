#include "internal/XmlDeclarations_p.h"

#include <QRegularExpression>
#include <QString>
#include <QStringView>

#include <algorithm>

namespace Internal {

namespace {

// The parser descends at each bracket of a declaration and compares each entity with all others.
// No real file comes near.
constexpr qsizetype mostDeclared = 1000;
// The parser itself refuses an entity that stands for more characters.
constexpr qsizetype longestEntity = 4096;
constexpr qsizetype mostExpanded = mostDeclared * longestEntity;

/** Behind the next @p end at or after @p from; the end of the text if there is none. */
qsizetype behind(QStringView text, qsizetype from, QStringView end)
{
    const qsizetype found = text.indexOf(end, from);
    return found < 0 ? text.size() : found + end.size();
}

/** Behind the comment or processing instruction that begins at @p at; @p at if none does. */
qsizetype behindRemark(QStringView text, qsizetype at)
{
    const QStringView rest = text.mid(at);
    if (rest.startsWith(u"<!--"))
        return behind(text, at + 4, u"-->");
    return rest.startsWith(u"<?") ? behind(text, at + 2, u"?>") : at;
}

/** Where the document type ends that begins at @p at. */
qsizetype endOfDocumentType(QStringView text, qsizetype at)
{
    int subsets = 0;
    while (at < text.size()) {
        const QChar character = text.at(at);
        if (const qsizetype next = behindRemark(text, at); next != at) {
            at = next;
            continue;
        }
        ++at;
        if (character == u'"' || character == u'\'')
            at = behind(text, at, QStringView(&character, 1));
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
    QStringView content; ///< what follows it
};

DocumentType documentTypeOf(QStringView text)
{
    qsizetype begin = text.indexOf(u'<');
    while (begin >= 0) {
        const qsizetype next = behindRemark(text, begin);
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

/** References that stand for something declared: not &lt; and its like, nor characters. */
qsizetype referencesIn(QStringView text)
{
    qsizetype count = countOf(text, u"&");
    for (const QStringView plain : {u"&lt;", u"&gt;", u"&amp;", u"&apos;", u"&quot;", u"&#"})
        count -= countOf(text, plain);
    return count;
}

/**
 * Whether something declared may be longer than its declaration: it refers to something else, or
 * has a character that will do so when it is read again, & or %.
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
        > mostDeclared)
        return true;
    if (entities == 0)
        return false;
    const qsizetype longest =
        mayGrow(declarations) ? longestEntity : std::min(declarations.size(), longestEntity);
    return referencesIn(content) * longest > mostExpanded;
}

} // namespace Internal
