#include "../Models.h"
#include "Checks.h"

#include <algorithm>

namespace {

bool isPageOf(const QString &file, const QString &language)
{
    return file.endsWith(QLatin1Char('_') + language + QStringLiteral(".html"),
                         Qt::CaseInsensitive);
}

/**
 * Checks the pages of a topic: each language must have one, and each page must belong to a
 * language.
 */
void checkTopic(const QString &path, const QStringList &pages, const QStringList &offered,
                const QStringList &known, Report &report)
{
    for (const QString &language : offered) {
        const bool hasPage = std::any_of(pages.begin(), pages.end(), [&](const QString &page) {
            return isPageOf(page, language);
        });
        if (!hasPage)
            report.warning(path, QStringLiteral("no page in %1").arg(language));
    }
    for (const QString &page : pages) {
        const bool hasLanguage =
            std::any_of(known.begin(), known.end(),
                        [&page](const QString &language) { return isPageOf(page, language); });
        if (page.endsWith(QStringLiteral(".html"), Qt::CaseInsensitive) && !hasLanguage)
            report.warning(path + QLatin1Char('/') + page,
                           QStringLiteral("is a page of no language that there is"));
    }
}

} // namespace

void checkHelpPages(const Image &image, const Places &places, Report &report)
{
    const QStringList known = languageCodes(image, places);
    QStringList checked; // some models share a folder
    for (const Internal::MeterModel &model : Internal::meterModels) {
        if (model.helpFolder.isEmpty() || checked.contains(model.helpFolder))
            continue;
        checked += model.helpFolder;
        const QStringList fixed = Internal::wordsOf(model.languages);
        const QString folder = places.help + model.helpFolder;
        const QStringList topics = image.folders(folder);
        if (topics.isEmpty())
            report.warning(folder, QStringLiteral("the model has no help page"));
        for (const QString &topic : topics) {
            const QString path = folder + QLatin1Char('/') + topic;
            checkTopic(path, image.files(path), fixed.isEmpty() ? known : fixed, known, report);
        }
    }
}
