#pragma once

#include <ktv_datasource_export.h>

#include <configuration/KTV_Configuration.h>

#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>

namespace QERNTools {

/**
 * Finds the HTML help pages of a screen, by meter model, topic and language.
 *
 * Pages are files in help directory + model folder + topic whose names end in "_" + language code +
 * ".html", in any letter case. A requested folder that does not exist is created, empty. Used from
 * the interface's thread only.
 */
class KTV_DATASOURCE_EXPORT helpManager : public QObject
{
    Q_OBJECT
public:
    /**
     * @param directory help directory, with or without a final "/"
     * @param model chooses the model folder; an unknown model has none
     * @param code language code whose pages are looked for
     */
    helpManager(const QString &directory, KTV_Configuration::MeterModels model, const QString &code,
                QObject *parent = nullptr);
    ~helpManager() override;

    /** Sets the language code of the pages to look for. */
    void SetLang(const QString &code);
    /** Whether the topic has a page in the current language; false for an empty topic. */
    bool HasHelp(const QString &topic) const;
    /**
     * Full paths of the topic's pages in the current language, by name.
     * @return new list; the caller deletes it. Empty when there are none; never null.
     */
    QStringList *GetHelpFileList(const QString &topic) const;

private:
    class KTV_DATASOURCE_NO_EXPORT Private;
    const std::unique_ptr<Private> d;
};

} // namespace QERNTools
