#include "Checks.h"

#include <QHash>
#include <QIODevice>
#include <QTextStream>

namespace {

/** Reads one line of a list. @return its text; null for a line that would be skipped */
using ReadLine = QString (*)(const QString &line, QString &problem);

QString plainLine(const QString &line, QString &problem)
{
    if (line.isEmpty())
        problem = QStringLiteral("an empty line is skipped");
    return line.isEmpty() ? QString() : line;
}

QString materialLine(const QString &line, QString &problem)
{
    const QStringList parts = line.split(QLatin1Char('?'));
    bool ok = parts.size() == 2;
    const double coefficient = ok ? parts.last().toDouble(&ok) : 0;
    if (!ok || parts.first().isEmpty()) {
        problem = QStringLiteral("skipped: it is no name, question mark and number");
        return {};
    }
    if (coefficient == 0)
        problem = QStringLiteral("the coefficient of '%1' is 0").arg(parts.first());
    return parts.first();
}

struct DefaultList
{
    const char *file;
    ReadLine readLine;
    bool isUnique; ///< a text is stored only once over all languages
};

constexpr DefaultList lists[] = {
    {"default_obiectTyp.txt", plainLine, true},
    {"default_obiectName.txt", plainLine, true},
    {"default_materials.txt", materialLine, false},
};

/** Place of a text. */
struct Place
{
    QString language;
    int line = 0;
};

using Texts = QHash<QString, Place>;

/**
 * Checks the list of one language; @p texts has those of the languages before it, and its texts are
 * added.
 */
void checkList(const Image &image, const QString &path, const QString &language,
               const DefaultList &list, Texts &texts, Report &report)
{
    if (!image.exists(path)) {
        report.warning(path, QStringLiteral("missing: the list of this language is empty"));
        return;
    }
    const auto bytes = image.read(path);
    if (!bytes) {
        report.error(path, QStringLiteral("cannot be read"));
        return;
    }
    if (!isUtf8(*bytes, path, report))
        return;
    QString content = QString::fromUtf8(*bytes);
    QTextStream stream(&content, QIODevice::ReadOnly);
    int number = 0;
    for (QString line; stream.readLineInto(&line);) {
        ++number;
        QString problem;
        const QString text = list.readLine(line, problem);
        if (!problem.isNull())
            report.warning(path, number, problem);
        if (text.isNull())
            continue;
        if (text != text.trimmed())
            report.warning(path, number,
                           QStringLiteral("'%1' begins or ends with a blank").arg(text));
        const auto earlier = texts.constFind(text);
        if (earlier == texts.constEnd())
            texts.insert(text, {language, number});
        else if (earlier->language == language)
            report.warning(
                path, number,
                QStringLiteral("'%1' stands in line %2 already").arg(text).arg(earlier->line));
        else if (list.isUnique)
            report.warning(path, number,
                           QStringLiteral("'%1' stands in the list of %2, too: only the language "
                                          "that is used first gets it")
                               .arg(text, earlier->language));
    }
}

} // namespace

void checkDefaultLists(const Image &image, const Places &places, Report &report)
{
    const QStringList languages = languageCodes(image, places);
    for (const DefaultList &list : lists) {
        Texts texts;
        for (const QString &language : languages)
            checkList(image,
                      places.languages + language + QLatin1Char('/') + QLatin1String(list.file),
                      language, list, texts, report);
    }
}
