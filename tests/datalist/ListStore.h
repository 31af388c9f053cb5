#pragma once

#include <datalist/KTV_DataList.h>

#include <QStringList>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

/** The lists of a meter, as tests lay them out, change them and look at them from outside. */
namespace ListStore {

const QLatin1String userData("/media/sdcard/UserData/");
const QLatin1String languages("/home/root/Langs/");
const QLatin1String file("/media/sdcard/UserData/dataList.db");

/** Removes the store and every language. */
void clear();
/** Writes a default file of a language: "default_" + @p name + ".txt". */
void writeDefaults(const QString &language, const QString &name, const QByteArray &content);
/** As many lines as wanted, each with a text of its own, in each of the three files. */
void writeManyDefaults(const QString &language, int lines);

std::unique_ptr<KTV_DataList> open(const QString &language = QStringLiteral("EN"),
                                   const QString &directory = userData);

/** Rows of a statement over a connection of its own, columns joined with "|". */
QStringList rows(const QString &statement, const QString &path = file);
/** Runs a statement over a connection of its own. */
void change(const QString &statement, const QString &path = file);

/** What a query returned, each row and the list itself given back. */
struct Row
{
    int id = 0;
    bool readOnly = false;
    QStringList columns;
};
using Rows = std::optional<std::vector<Row>>; ///< nothing for a null list

/** One of the five lists, its differing signatures made alike. */
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
    std::function<Rows(KTV_DataList &, bool, bool, const QString &, int)> get;

    /** Names of every row of the language in effect. */
    QStringList names(KTV_DataList &store, const QString &filter = {}, int limit = 0) const;
    /** Key of the row with that name. */
    int idOf(KTV_DataList &store, const QString &text) const;
};

const std::vector<Family> &families();

} // namespace ListStore
