#pragma once

#include "internal/XmlFile_p.h"

#include <QHash>

namespace Internal {

/** The texts of a language file, indexed by section and name. */
class SectionIndex : public XmlSections
{
public:
    using Texts = QHash<QString, QString>;

    void addSection(const QString &name) override;
    void addEntry(const QString &name, const QString &text) override;
    void addOther(const QString &name) override;

    /**
     * Among sections of the same name the first one is used, and in it the first entry of a name.
     */
    QString text(const QString &section, const QString &key, const QString &defaultValue) const;
    /**
     * Among nodes of the same name the last one is used; the text of a node without one is its
     * name.
     */
    Texts section(const QString &name) const;

private:
    struct Section
    {
        Texts texts; ///< a null text: an entry without one
        Texts nodes; ///< empty as long as it would equal texts
    };

    void addNode(const QString &name, const QString &text);

    QHash<QString, Section> m_sections;
    Section *m_open = nullptr; ///< null while the nodes of an ignored section are read
};

} // namespace Internal
