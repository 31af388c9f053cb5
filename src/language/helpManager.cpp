#include "language/helpManager.h"

#include "configuration/MeterModel_p.h"
#include "internal/Guarded_p.h"
#include "internal/RegularFile_p.h"
#include "internal/log_p.h"

#include <QDir>

#include <algorithm>

using Internal::guarded;
using Internal::log;

namespace QERNTools {

namespace {

/** Creates the directory, one level, unless it exists. @return whether it exists afterwards */
bool ensureDirectory(const QString &path)
{
    return QDir(path).exists() || QDir().mkdir(path);
}

QString withSeparator(const QString &path)
{
    return path.endsWith(QDir::separator()) ? path : path + QDir::separator();
}

} // namespace

class helpManager::Private
{
public:
    QStringList pagesIn(const QString &path) const
    {
        const QDir folder(path);
        QStringList pages = folder.entryList(
            {QStringLiteral("*_") + code + QStringLiteral(".html")}, QDir::Files, QDir::Name);
        // A link counts as a file, even if it leads to a directory.
        pages.erase(std::remove_if(pages.begin(), pages.end(),
                                   [&folder](const QString &page) {
                                       return Internal::isSpecialFile(folder.filePath(page));
                                   }),
                    pages.end());
        return pages;
    }

    QString directory;
    QString code;
};

helpManager::helpManager(const QString &directory, KTV_Configuration::MeterModels model,
                         const QString &code, QObject *parent)
    : QObject(parent)
    , d(std::make_unique<Private>())
{
    d->directory = withSeparator(directory);
    ensureDirectory(d->directory);
    // Without a model folder the path has two separators in a row, which is harmless.
    d->directory += Internal::meterModel(model).helpFolder + QDir::separator();
    ensureDirectory(d->directory);
    SetLang(code);
}

helpManager::~helpManager() = default;

void helpManager::SetLang(const QString &code)
{
    d->code = code;
}

bool helpManager::HasHelp(const QString &topic) const
{
    if (topic.isEmpty())
        return false;
    const QString path = d->directory + topic;
    return guarded("helpManager::HasHelp: ", [&] {
        if (!QDir(path).exists()) {
            ensureDirectory(path);
            return false;
        }
        const auto count = d->pagesIn(path).count();
        log() << "helpManager::HasHelp(" << path << "): " << count;
        return count > 0;
    });
}

QStringList *helpManager::GetHelpFileList(const QString &topic) const
{
    auto list = std::make_unique<QStringList>();
    if (topic.isEmpty())
        return list.release();
    guarded("GetHelpFileList:", [&] {
        const QString path = withSeparator(d->directory + topic);
        if (!ensureDirectory(path))
            log() << "Error creat help directory:" << path;
        const QStringList pages = d->pagesIn(path);
        for (const QString &page : pages)
            list->append(path + page);
    });
    return list.release();
}

} // namespace QERNTools
