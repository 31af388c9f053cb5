#pragma once

#include <QHash>
#include <QString>

#include <array>
#include <vector>

namespace Internal {

/** QChar::isSpace(), without a call for the characters that texts of values are made of. */
inline bool isSpace(QChar character)
{
    const ushort code = character.unicode();
    if (code < 0x80)
        return code == ' ' || (code >= '\t' && code <= '\r');
    const bool isGreek = code >= 0x0370 && code <= 0x03FF; // micro
    const bool isLetterlikeSymbol = code >= 0x2100 && code <= 0x214F; // ohm
    return !isGreek && !isLetterlikeSymbol && character.isSpace();
}

/**
 * The entries of a hash of texts, side by side.
 *
 * Anybody may edit the hash at any time. The index shares its content, so that every edit
 * detaches one from the other: while they are the same, nothing has to be looked up anew.
 * @tparam lowest,highest range of the keys that are found without a search
 */
template <typename Key, int lowest, int highest> class TextIndex
{
public:
    struct Entry
    {
        Key key;
        const QString *text;
    };

    explicit TextIndex(const QHash<Key, QString> &texts) : m_texts(texts) { }

    /** All entries, in no particular order. */
    const std::vector<Entry> &entries()
    {
        update();
        return m_entries;
    }

    /** Text of a key; empty when it has none. */
    QStringView text(Key key)
    {
        update();
        const bool isDirect = key >= lowest && key <= highest;
        const QString *found = isDirect ? m_direct[std::size_t(key - lowest)] : searched(key);
        return found ? QStringView(*found) : QStringView();
    }

private:
    void update()
    {
        if (!m_content.isSharedWith(m_texts))
            renew();
    }

    // Rare, and so kept out of the code that every text runs through.
    Q_NEVER_INLINE void renew()
    {
        m_content = m_texts;
        m_entries.clear();
        m_direct.fill(nullptr);
        for (auto entry = m_content.constBegin(); entry != m_content.constEnd(); ++entry) {
            m_entries.push_back({entry.key(), &entry.value()});
            if (entry.key() >= lowest && entry.key() <= highest)
                m_direct[std::size_t(entry.key() - lowest)] = &entry.value();
        }
    }

    Q_NEVER_INLINE const QString *searched(Key key) const
    {
        const auto entry = m_content.constFind(key);
        return entry == m_content.constEnd() ? nullptr : &*entry;
    }

    const QHash<Key, QString> &m_texts;
    QHash<Key, QString> m_content;
    std::vector<Entry> m_entries;
    std::array<const QString *, std::size_t(highest - lowest + 1)> m_direct {};
};

} // namespace Internal
