#include "ListStore.h"

#include "support/Meter.h"

#include <QDir>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

namespace ListStore {

namespace {

const QString connection = QStringLiteral("second connection");

template <typename Work> void onOwnConnection(const QString &path, Work work)
{
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection);
        database.setDatabaseName(path);
        if (!database.open())
            qFatal("cannot open %s", qPrintable(path));
        QSqlQuery query(database);
        work(query);
    }
    QSqlDatabase::removeDatabase(connection);
}

/** The same with either Qt, of which each has a way of its own with numbers that are not whole. */
QString text(const QVariant &value)
{
    return value.userType() == QMetaType::Double ? QString::number(value.toDouble())
                                                 : value.toString();
}

Row rowOf(const DataList_Element &element)
{
    return {element.ID, element.ReadOnly, {element.Value}};
}

Row rowOf(const MaterialList_Element &element)
{
    return {element.ID, element.ReadOnly, {element.Name, QString::number(element.Alpha)}};
}

Row rowOf(const LimitList_Element &element)
{
    return {element.ID, false, {element.Name, element.HighLimit, element.LoLimit}};
}

template <typename Element> FoundRows taken(QList<Element *> *list)
{
    if (!list)
        return std::nullopt;
    std::vector<Row> rows;
    for (const Element *element : *list)
        rows.push_back(rowOf(*element));
    qDeleteAll(*list);
    delete list;
    return rows;
}

const QString high = QStringLiteral("12.5 m\u2126");
const QString low = QStringLiteral("1.5 m\u2126");
constexpr double alpha = 0.00393;

} // namespace

void clear()
{
    QDir(userData).removeRecursively();
    QDir(languages).removeRecursively();
    QDir().mkpath(userData);
    QDir().mkpath(languages);
}

void writeDefaults(const QString &language, const QString &name, const QByteArray &content)
{
    Meter::writeFile(languages + language + QStringLiteral("/default_") + name
                         + QStringLiteral(".txt"),
                     content);
}

void writeManyDefaults(const QString &language, int lines)
{
    QByteArray texts;
    QByteArray coefficients;
    for (int i = 0; i < lines; ++i) {
        const QByteArray text = language.toUtf8() + " entry " + QByteArray::number(i);
        texts += text + '\n';
        coefficients += text + "?0.00" + QByteArray::number(i) + '\n';
    }
    writeDefaults(language, QStringLiteral("obiectTyp"), texts);
    writeDefaults(language, QStringLiteral("obiectName"), texts);
    writeDefaults(language, QStringLiteral("materials"), coefficients);
}

std::unique_ptr<KTV_DataList> open(const QString &language, const QString &directory)
{
    return std::make_unique<KTV_DataList>(directory, languages, language);
}

QStringList rows(const QString &statement, const QString &path)
{
    QStringList result;
    onOwnConnection(path, [&](QSqlQuery &query) {
        if (!query.exec(statement))
            qFatal("%s: %s", qPrintable(statement), qPrintable(query.lastError().text()));
        while (query.next()) {
            QStringList columns;
            for (int i = 0; query.value(i).isValid(); ++i)
                columns += text(query.value(i));
            result += columns.join(QLatin1Char('|'));
        }
    });
    return result;
}

void change(const QString &statement, const QString &path)
{
    onOwnConnection(path, [&](QSqlQuery &query) {
        if (!query.exec(statement))
            qFatal("%s: %s", qPrintable(statement), qPrintable(query.lastError().text()));
    });
}

QStringList Family::names(KTV_DataList &store, const QString &filter, int limit) const
{
    QStringList result;
    const FoundRows rows = get(store, true, true, filter, limit);
    for (const Row &row : rows.value())
        result += row.columns.first();
    return result;
}

int Family::idOf(KTV_DataList &store, const QString &text) const
{
    const FoundRows rows = get(store, true, true, QString(), 0);
    for (const Row &row : rows.value()) {
        if (row.columns.first() == text)
            return row.id;
    }
    return -1;
}

const std::vector<Family> &families()
{
    using Store = KTV_DataList;
    using Text = const QString &;
    static const std::vector<Family> all {
        {"types", "OBIECT_TYP", "OBT_Value", "OBTk_1_ID", true, true,
         [](Store &store, Text text) { return store.AddObiectTyp(text); },
         [](Store &store, Text text) { return store._AddObiectTyp(true, text); },
         [](Store &store, int id, Text text) { return store.UpdateObiectTyp(id, text); },
         [](Store &store, int id) { return store.DeleteObiectTyp(id); },
         [](Store &store, bool readOnly, bool user, Text filter, int limit) {
             return taken(store.GetObiectTyp(readOnly, user, filter, limit));
         }},
        {"names", "OBIECT_NAME", "OBN_Value", "OBNk_1_ID", true, true,
         [](Store &store, Text text) { return store.AddObiectName(text); },
         [](Store &store, Text text) { return store._AddObiectName(true, text); },
         [](Store &store, int id, Text text) { return store.UpdateObiectName(id, text); },
         [](Store &store, int id) { return store.DeleteObiectName(id); },
         [](Store &store, bool readOnly, bool user, Text filter, int limit) {
             return taken(store.GetObiectName(readOnly, user, filter, limit));
         }},
        {"materials", "MATERIALS", "MAT_Name", "MATk_1_ID", true, false,
         [](Store &store, Text text) { return store.AddMaterial(text, alpha); },
         [](Store &store, Text text) { return store._AddMaterial(true, text, alpha); },
         [](Store &store, int id, Text text) { return store.UpdateMaterial(id, text, 2 * alpha); },
         [](Store &store, int id) { return store.DeleteMaterial(id); },
         [](Store &store, bool readOnly, bool user, Text filter, int limit) {
             return taken(store.GetMaterials(readOnly, user, filter, limit));
         }},
        {"resistance limits", "LIMITS_R", "LIM_Name", "LIMk_1_ID", false, false,
         [](Store &store, Text text) { return store.AddLimit_R(text, high, low); },
         [](Store &store, Text text) { return store._AddLimit_R(text, high, low); },
         [](Store &store, int id, Text text) { return store.UpdateLimit_R(id, text, low, high); },
         [](Store &store, int id) { return store.DeleteLimit_R(id); },
         [](Store &store, bool, bool, Text filter, int limit) {
             return taken(store.GetLimits_R(filter, limit));
         }},
        {"temperature limits", "LIMITS_T", "LIM_Name", "LIMk_1_ID", false, false,
         [](Store &store, Text text) { return store.AddLimit_T(text, high, low); },
         [](Store &store, Text text) { return store._AddLimit_T(text, high, low); },
         [](Store &store, int id, Text text) { return store.UpdateLimit_T(id, text, low, high); },
         [](Store &store, int id) { return store.DeleteLimit_T(id); },
         [](Store &store, bool, bool, Text filter, int limit) {
             return taken(store.GetLimits_T(filter, limit));
         }},
    };
    return all;
}

} // namespace ListStore
