#pragma once

#include <QHash>
#include <QString>

#include <algorithm>
#include <array>
#include <vector>

namespace Internal {

/** QChar::isSpace(), but without a function call for the usual characters of values' texts. */
inline bool isSpace(QChar character)
{
    const ushort code = character.unicode();
    if (code < 0x80)
        return code == ' ' || (code >= '\t' && code <= '\r');
    const bool isGreek = code >= 0x0370 && code <= 0x03FF; // micro
    const bool isLetterlikeSymbol = code >= 0x2100 && code <= 0x214F; // ohm
    return !isGreek && !isLetterlikeSymbol && character.isSpace();
}

/** Whether both texts share the same data in memory. */
inline bool areShared(const QString &text, const QString &other)
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    return text.isSharedWith(other);
#else
    // In Qt 6 isSharedWith() is false for empty texts and for literals.
    return text.constData() == other.constData() && text.size() == other.size();
#endif
}

/** The text of a unit or prefix, and the properties of it that are needed each time it is shown. */
class IndexedText
{
public:
    /** The empty text. */
    IndexedText() : IndexedText(noText()) { }
    /** Refers to a text that must exist at least as long as this object. */
    explicit IndexedText(const QString &text)
        : m_source(&text)
        , m_content(text)
        , m_view(m_content)
        , m_isPlain(std::none_of(text.begin(), text.end(), [](QChar character) {
            return character == QLatin1Char('-') || isSpace(character);
        }))
    { }

    /**
     * Whether the text has not been edited since: editing it would detach it from the copy here.
     */
    bool isCurrent() const { return areShared(*m_source, m_content); }
    /** The text, including later edits. */
    const QString &source() const { return *m_source; }
    /** The text; valid while isCurrent(). */
    QStringView view() const { return m_view; }
    /**
     * Whether it has no white space and no minus sign, so that a value's text with it needs no
     * further processing.
     */
    bool isPlain() const { return m_isPlain; }

private:
    static const QString &noText()
    {
        static const QString text;
        return text;
    }

    const QString *m_source;
    QString m_content;
    QStringView m_view;
    bool m_isPlain;
};

/**
 * A copy of the entries of a hash of texts, in contiguous memory.
 *
 * Clients may edit the hash at any time, or a text in it through a reference that they took before.
 * The index shares the content with the hash and its texts (implicit sharing), and each edit
 * detaches them. As long as the content is still shared, nothing has been edited and the index is
 * valid.
 * @tparam lowest,highest range of the keys that are looked up without a search
 */
template <typename Key, int lowest, int highest> class TextIndex
{
public:
    struct Entry
    {
        Key key;
        IndexedText text;
    };

    explicit TextIndex(const QHash<Key, QString> &texts) : m_texts(texts) { }

    /** All entries, in no particular order; some may have been edited since. */
    const std::vector<Entry> &entries()
    {
        update();
        return m_entries;
    }

    /** Text of a key; empty when it has none. */
    const IndexedText &text(Key key)
    {
        update();
        const IndexedText &text = found(key);
        if (Q_LIKELY(text.isCurrent()))
            return text;
        renew();
        return found(key);
    }

private:
    const IndexedText &found(Key key) const
    {
        const bool isDirect = key >= lowest && key <= highest;
        return Q_LIKELY(isDirect) ? m_direct[std::size_t(key - lowest)] : searched(key);
    }

    void update()
    {
        if (Q_UNLIKELY(!m_content.isSharedWith(m_texts)))
            renew();
    }

    // Rare; not inlined, to keep the code short that runs for every text.
    Q_NEVER_INLINE void renew()
    {
        m_content = m_texts;
        m_entries.clear();
        m_direct.fill(IndexedText());
        for (auto entry = m_content.constBegin(); entry != m_content.constEnd(); ++entry) {
            m_entries.push_back({entry.key(), IndexedText(entry.value())});
            if (entry.key() >= lowest && entry.key() <= highest)
                m_direct[std::size_t(entry.key() - lowest)] = m_entries.back().text;
        }
    }

    Q_NEVER_INLINE const IndexedText &searched(Key key) const
    {
        static const IndexedText none;
        const auto entry = std::find_if(m_entries.begin(), m_entries.end(),
                                        [key](const Entry &other) { return other.key == key; });
        return entry == m_entries.end() ? none : entry->text;
    }

    const QHash<Key, QString> &m_texts;
    QHash<Key, QString> m_content;
    std::vector<Entry> m_entries;
    std::array<IndexedText, std::size_t(highest - lowest + 1)> m_direct;
};

} // namespace Internal
