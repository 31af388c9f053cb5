#pragma once

#include "internal/XmlFile_p.h"

#include <QHash>

namespace Internal {

/** The texts of a language file, ready to be looked up. */
class SectionIndex : public XmlSections
{
public:
    using Texts = QHash<QString, QString>;

    void clear() override;
    void addSection(const QString &name) override;
    void addEntry(const QString &name, const QString &text) override;
    void addOther(const QString &name) override;

    /** Of a name, the first section counts, and in it the first entry. */
    QString text(const QString &section, const QString &key, const QString &defaultValue) const;
    /** Of a name, the last node counts; one without a text stands for its own name. */
    Texts section(const QString &name) const;

private:
    struct Section
    {
        Texts texts; ///< null: an entry without one
        Texts nodes; ///< empty while the same as the texts
    };

    void addNode(const QString &name, const QString &text);

    QHash<QString, Section> m_sections;
    Section *m_open = nullptr; ///< null within a section that does not count
};

} // namespace Internal
