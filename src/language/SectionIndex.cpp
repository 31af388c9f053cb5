#include "language/SectionIndex_p.h"

namespace Internal {

void SectionIndex::addSection(const QString &name)
{
    m_open = m_sections.contains(name) ? nullptr : &m_sections[name];
}

void SectionIndex::addEntry(const QString &name, const QString &text)
{
    if (!m_open)
        return;
    const bool isFirst = !m_open->texts.contains(name);
    if (!isFirst || text.isNull() || !m_open->nodes.isEmpty())
        addNode(name, text.isNull() ? name : text);
    if (isFirst)
        m_open->texts.insert(name, text);
}

void SectionIndex::addOther(const QString &name)
{
    if (m_open)
        addNode(name, name);
}

void SectionIndex::addNode(const QString &name, const QString &text)
{
    if (m_open->nodes.isEmpty())
        m_open->nodes = m_open->texts;
    m_open->nodes.insert(name, text);
}

QString SectionIndex::text(const QString &section, const QString &key,
                           const QString &defaultValue) const
{
    const auto entries = m_sections.constFind(section);
    if (entries == m_sections.constEnd())
        return defaultValue;
    const auto text = entries->texts.constFind(key);
    return text == entries->texts.constEnd() || text->isNull() ? defaultValue : *text;
}

SectionIndex::Texts SectionIndex::section(const QString &name) const
{
    const auto found = m_sections.constFind(name);
    if (found == m_sections.constEnd())
        return {};
    return found->nodes.isEmpty() ? found->texts : found->nodes;
}

} // namespace Internal
