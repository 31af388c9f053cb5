#pragma once

#include <datalist/KTV_DataList.h>

#include <QStringList>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

/**
 * The lists of a meter: creates their files, changes them, and reads them over another connection.
 */
namespace ListStore {

const QLatin1String userData("/media/sdcard/UserData/");
const QLatin1String languages("/home/root/Langs/");
const QLatin1String file("/media/sdcard/UserData/dataList.db");

/** Removes the store and every language. */
void clear();
/** Writes a default file of a language: "default_" + @p name + ".txt". */
void writeDefaults(const QString &language, const QString &name, const QByteArray &content);
/** Writes a number of different lines into each of the three files. */
void writeManyDefaults(const QString &language, int lines);

std::unique_ptr<KTV_DataList> open(const QString &language = QStringLiteral("EN"),
                                   const QString &directory = userData);

/** Rows of a statement, run over a separate connection; columns joined with "|". */
QStringList rows(const QString &statement, const QString &path = file);
/** Runs a statement over a separate connection. */
void change(const QString &statement, const QString &path = file);

/** Result of a query; its elements and the list have been deleted. */
struct Row
{
    int id = 0;
    bool readOnly = false;
    QStringList columns;
};
using FoundRows = std::optional<std::vector<Row>>; ///< no value for a null list

/** One of the five lists, with the same signatures for all of them. */
struct Family
{
    const char *name;
    const char *table;
    const char *nameColumn;
    const char *keyColumn;
    bool hasFactoryRows;
    bool isUnique;
    std::function<bool(KTV_DataList &, const QString &)> add;
    std::function<bool(KTV_DataList &, const QString &)> addFactory;
    std::function<bool(KTV_DataList &, int, const QString &)> update;
    std::function<bool(KTV_DataList &, int)> remove;
    std::function<FoundRows(KTV_DataList &, bool, bool, const QString &, int)> get;

    /** Names of every row of the current language. */
    QStringList names(KTV_DataList &store, const QString &filter = {}, int limit = 0) const;
    /** Key of the row with that name. */
    int idOf(KTV_DataList &store, const QString &text) const;
};

const std::vector<Family> &families();

} // namespace ListStore
