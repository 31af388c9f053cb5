#include "Command.h"
#include "Settings.h"
#include "StoreFile.h"
#include "meter/LimitText.h"

#include <datalist/KTV_DataList.h>
#include <language/LangSerwis.h>
#include <valuebox/NumericalValueBox.h>

#include <QJsonArray>
#include <QJsonObject>
#include <QLocale>

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

namespace {

/** A row of any list. */
struct Entry
{
    int id = 0;
    bool isFactory = false;
    QVariantList columns;
};

using Entries = std::optional<QList<Entry>>; ///< no value: the query failed

/** Arguments of a query. */
struct Query
{
    bool factory = false;
    bool user = false;
    QString filter = {};
    int limit = 0;
};

/** One of the lists, with the same operations for all of them. */
struct PickList
{
    QByteArray name;
    QByteArray arguments; ///< of an entry, as help shows them
    QStringList keys; ///< of an entry, in JSON
    const char *summary;
    bool hasFactoryRows;
    Entries (*get)(KTV_DataList &, const Query &);
    bool (*add)(KTV_DataList &, const QVariantList &);
    bool (*update)(KTV_DataList &, int, const QVariantList &);
    bool (*remove)(KTV_DataList &, int);
};

Entry toEntry(const DataList_Element &element)
{
    return {element.ID, element.ReadOnly, {element.Value}};
}

Entry toEntry(const MaterialList_Element &element)
{
    return {element.ID, element.ReadOnly, {element.Name, element.Alpha}};
}

Entry toEntry(const LimitList_Element &element)
{
    return {element.ID, false, {element.Name, element.HighLimit, element.LoLimit}};
}

template <typename Element> Entries toEntries(QList<Element *> *elements)
{
    if (!elements)
        return std::nullopt;
    const std::unique_ptr<QList<Element *>> list(elements);
    QList<Entry> entries;
    for (const Element *element : *list)
        entries += toEntry(*element);
    qDeleteAll(*list);
    return entries;
}

using Texts = bool (KTV_DataList::*)(const QString &);
using TextOfRow = bool (KTV_DataList::*)(int, const QString &);
using Limits = bool (KTV_DataList::*)(const QString &, const QString &, const QString &);
using LimitsOfRow = bool (KTV_DataList::*)(int, const QString &, const QString &, const QString &);
using DeleteRow = bool (KTV_DataList::*)(int);
template <typename Element>
using GetRows = QList<Element *> *(KTV_DataList::*)(bool, bool, const QString &, int);
using GetLimits = QList<LimitList_Element *> *(KTV_DataList::*)(const QString &, int);

template <DeleteRow row> bool deleteRow(KTV_DataList &lists, int id)
{
    return (lists.*row)(id);
}

template <typename Element, GetRows<Element> rows>
Entries getRows(KTV_DataList &lists, const Query &query)
{
    return toEntries((lists.*rows)(query.factory, query.user, query.filter, query.limit));
}

template <Texts add, TextOfRow update, DeleteRow remove, GetRows<DataList_Element> get>
PickList textList(const char *name, const char *summary)
{
    return {name,
            "TEXT",
            {QStringLiteral("value")},
            summary,
            true,
            getRows<DataList_Element, get>,
            [](KTV_DataList &lists, const QVariantList &columns) {
                return (lists.*add)(columns.at(0).toString());
            },
            [](KTV_DataList &lists, int id, const QVariantList &columns) {
                return (lists.*update)(id, columns.at(0).toString());
            },
            deleteRow<remove>};
}

PickList materialList()
{
    return {"materials",
            "NAME ALPHA",
            {QStringLiteral("name"), QStringLiteral("alpha")},
            "materials, ALPHA in 1/K",
            true,
            getRows<MaterialList_Element, &KTV_DataList::GetMaterials>,
            [](KTV_DataList &lists, const QVariantList &columns) {
                return lists.AddMaterial(columns.at(0).toString(), columns.at(1).toDouble());
            },
            [](KTV_DataList &lists, int id, const QVariantList &columns) {
                return lists.UpdateMaterial(id, columns.at(0).toString(), columns.at(1).toDouble());
            },
            deleteRow<&KTV_DataList::DeleteMaterial>};
}

template <Limits add, LimitsOfRow update, DeleteRow remove, GetLimits get>
PickList limitList(const char *name, const char *summary)
{
    return {name,
            "NAME HIGH LOW",
            {QStringLiteral("name"), QStringLiteral("high"), QStringLiteral("low")},
            summary,
            false,
            [](KTV_DataList &lists, const Query &query) {
                return toEntries((lists.*get)(query.filter, query.limit));
            },
            [](KTV_DataList &lists, const QVariantList &columns) {
                return (lists.*add)(columns.at(0).toString(), columns.at(1).toString(),
                                    columns.at(2).toString());
            },
            [](KTV_DataList &lists, int id, const QVariantList &columns) {
                return (lists.*update)(id, columns.at(0).toString(), columns.at(1).toString(),
                                       columns.at(2).toString());
            },
            deleteRow<remove>};
}

const std::vector<PickList> &pickLists()
{
    using Lists = KTV_DataList;
    static const std::vector<PickList> all {
        textList<&Lists::AddObiectTyp, &Lists::UpdateObiectTyp, &Lists::DeleteObiectTyp,
                 &Lists::GetObiectTyp>("types", "object types"),
        textList<&Lists::AddObiectName, &Lists::UpdateObiectName, &Lists::DeleteObiectName,
                 &Lists::GetObiectName>("names", "object names"),
        materialList(),
        limitList<&Lists::AddLimit_R, &Lists::UpdateLimit_R, &Lists::DeleteLimit_R,
                  &Lists::GetLimits_R>("limits-r", "resistance limits"),
        limitList<&Lists::AddLimit_T, &Lists::UpdateLimit_T, &Lists::DeleteLimit_T,
                  &Lists::GetLimits_T>("limits-t", "temperature limits, texts in --unit"),
    };
    return all;
}

/** The language given by --lang, else the current one of the meter. */
QString languageInEffect(const Call &call)
{
    if (call.isSet("lang"))
        return call.option("lang");
    LangSerwis texts(KTV_Configuration().get_mainInterfaceLangsDirectory(),
                     KTV_Configuration::MeterModels_NaN);
    texts.setLang(languageOf(call));
    return texts.getCurrentLang();
}

bool takeUnit(const Call &call)
{
    const QStringList names {QStringLiteral("celsius"), QStringLiteral("fahrenheit"),
                             QStringLiteral("kelvin")}; // in the order of the codes
    const int unit = call.isSet("unit") ? int(names.indexOf(call.option("unit"))) : 0;
    if (unit >= 0)
        ValueBox::NumericalValueBox::prepareStaticDefaultValue(ValueBox::TemperatureUnit(unit));
    return unit >= 0;
}

/** Opens the lists as the options say, then works on them. */
template <typename Work> int onLists(const Call &call, Work work)
{
    if (!takeUnit(call))
        return misuse(QStringLiteral("--unit is celsius, fahrenheit or kelvin"));
    const KTV_Configuration meter;
    const auto file = StoreFile::lookAt(meter.get_mainInterfaceUserDataDirectory()
                                        + QStringLiteral("dataList.db"));
    if (!file.problem.isNull())
        return fail(file.problem);
    KTV_DataList lists(meter.get_mainInterfaceUserDataDirectory(),
                       meter.get_mainInterfaceLangsDirectory(), languageInEffect(call));
    if (!lists.Open()) // the constructor cannot report a failure
        return fail(QStringLiteral("the lists in '%1' cannot be used; --verbose tells more")
                        .arg(meter.get_mainInterfaceUserDataDirectory()));
    return work(lists);
}

QJsonObject toJson(const PickList &list, const Entry &entry)
{
    QJsonObject json {{QStringLiteral("id"), entry.id}};
    if (list.hasFactoryRows)
        json.insert(QStringLiteral("factory"), entry.isFactory);
    for (int i = 0; i < entry.columns.size(); ++i)
        json.insert(list.keys.at(i), QJsonValue::fromVariant(entry.columns.at(i)));
    return json;
}

/** Numbers as Qt 5 writes them: where an exponent is shorter, Qt 6 has 6e-04 for 0.0006. */
QString toText(const QVariant &column)
{
    const double number = std::abs(column.toDouble());
    const bool isPlain = number >= 1e-4 && number < 1e6;
    if (column.userType() == QMetaType::Double && isPlain)
        return QString::number(column.toDouble(), 'f', QLocale::FloatingPointShortest);
    return column.toString();
}

QString toLine(const PickList &list, const Entry &entry)
{
    QString line = QString::number(entry.id).rightJustified(4);
    if (list.hasFactoryRows)
        line += entry.isFactory ? QStringLiteral("  factory") : QStringLiteral("  user   ");
    for (const QVariant &column : entry.columns)
        line += QStringLiteral("  ") + toText(column);
    return line;
}

int show(const PickList &list, const Call &call)
{
    Query query {call.isSet("factory"), call.isSet("user"), call.option("filter")};
    bool ok = true;
    if (call.isSet("limit"))
        query.limit = call.option("limit").toInt(&ok);
    if (!ok)
        return misuse(QStringLiteral("--limit is a number of rows"));
    return onLists(call, [&](KTV_DataList &lists) {
        const Entries found = list.get(lists, query);
        if (!found)
            return fail(QStringLiteral("the list cannot be read"));
        QJsonArray machine;
        QStringList human;
        for (const Entry &entry : *found) {
            machine += toJson(list, entry);
            human += toLine(list, entry);
        }
        call.print(machine, human.isEmpty() ? QString() : human.join(QLatin1Char('\n')));
        return int(Success);
    });
}

/**
 * Columns of an entry, read from the arguments after the first @p skipped ones; empty if they are
 * not valid.
 */
std::optional<QVariantList> entryOf(const PickList &list, const Call &call, int skipped)
{
    QVariantList columns;
    for (int i = 0; i < list.keys.size(); ++i) {
        const QString word = call.argument(skipped + i);
        if (list.keys.at(i) != QLatin1String("alpha")) {
            columns += word;
            continue;
        }
        bool ok = false;
        columns += word.toDouble(&ok);
        if (!ok)
            return std::nullopt;
    }
    if (columns.first().toString().isEmpty())
        return std::nullopt;
    return columns;
}

int badEntry()
{
    return misuse(QStringLiteral("an entry needs a text, a material a number as well"));
}

/** The lists take any text as a limit; an interface can judge by numbers only. */
void remarkOnLimit(const PickList &list, const QVariantList &columns)
{
    if (list.name != "limits-r" && list.name != "limits-t")
        return;
    const QString high = columns.at(1).toString();
    const QString low = columns.at(2).toString();
    const QString noNumber =
        QStringLiteral("the %1 limit '%2' is no number: nothing can be judged by it");
    switch (LimitText::problemOf(
        list.name == "limits-r" ? ValueBox::Unit_Ohm : ValueBox::Unit_Temperature, low, high)) {
    case LimitText::Problem::LowIsNoNumber:
        return remark(noNumber.arg(QLatin1String("low"), low));
    case LimitText::Problem::HighIsNoNumber:
        return remark(noNumber.arg(QLatin1String("high"), high));
    case LimitText::Problem::BoundsMissing:
        return remark(QStringLiteral("the limit has no bounds: nothing can be judged by it"));
    case LimitText::Problem::LowAboveHigh:
        return remark(
            QStringLiteral("the low limit '%1' is above the high limit '%2': nothing passes")
                .arg(low, high));
    case LimitText::Problem::None:
        break;
    }
}

int add(const PickList &list, const Call &call)
{
    const auto columns = entryOf(list, call, 0);
    if (!columns)
        return badEntry();
    return onLists(call, [&](KTV_DataList &lists) {
        remarkOnLimit(list, *columns);
        return list.add(lists, *columns)
            ? int(Success)
            : fail(QStringLiteral("not added: it is there already, in this or another language, "
                                  "or the card failed"));
    });
}

/**
 * Changes a user's row. Checks that it is one, because the library reports success for rows that it
 * does not change.
 */
template <typename Change> int changeRow(const PickList &list, const Call &call, Change change)
{
    bool ok = false;
    const int id = call.argument(0).toInt(&ok);
    if (!ok)
        return misuse(QStringLiteral("ID is the number that 'list' shows"));
    return onLists(call, [&](KTV_DataList &lists) {
        const Entries entries = list.get(lists, {true, true});
        if (!entries)
            return fail(QStringLiteral("the list cannot be read"));
        const auto found = std::find_if(entries->begin(), entries->end(),
                                        [id](const Entry &entry) { return entry.id == id; });
        if (found == entries->end())
            return fail(QStringLiteral("there is no row %1 in this language").arg(id));
        if (found->isFactory)
            return fail(QStringLiteral("row %1 came with the meter and stays as it is").arg(id));
        return change(lists, id) ? int(Success) : fail(QStringLiteral("the card failed"));
    });
}

int update(const PickList &list, const Call &call)
{
    const auto columns = entryOf(list, call, 1);
    if (!columns)
        return badEntry();
    return changeRow(list, call, [&](KTV_DataList &lists, int id) {
        remarkOnLimit(list, *columns);
        return list.update(lists, id, *columns);
    });
}

int remove(const PickList &list, const Call &call)
{
    return changeRow(list, call,
                     [&](KTV_DataList &lists, int id) { return list.remove(lists, id); });
}

QCommandLineOption option(const char *name, const char *description, const char *value = "")
{
    return {QLatin1String(name), QLatin1String(description), QLatin1String(value)};
}

/** Runs the operation of a verb on the list with that index. */
template <size_t index, int (*run)(const PickList &, const Call &)> int on(const Call &call)
{
    return run(pickLists().at(index), call);
}

template <size_t index> std::vector<Verb> verbsOf()
{
    const PickList &list = pickLists().at(index);
    QList<QCommandLineOption> common {
        option("lang", "Work on that language instead of the user's.", "CODE")};
    if (list.name == "limits-t")
        common += option("unit", "celsius (as without), fahrenheit or kelvin.", "UNIT");
    QList<QCommandLineOption> query {option("filter", "Only rows that contain TEXT.", "TEXT"),
                                     option("limit", "At most N rows.", "N")};
    if (list.hasFactoryRows)
        query += {option("factory", "Only rows that came with the meter."),
                  option("user", "Only rows of the user.")};
    return {
        {list.name + " list", "", list.summary, on<index, show>, common + query},
        {list.name + " add", list.arguments, "add an entry", on<index, add>, common},
        {list.name + " update", "ID " + list.arguments, "change an entry of the user's",
         on<index, update>, common},
        {list.name + " delete", "ID", "delete an entry of the user's", on<index, remove>, common},
    };
}

template <size_t... indexes> std::vector<Verb> allVerbs(std::index_sequence<indexes...>)
{
    std::vector<Verb> verbs;
    for (const std::vector<Verb> &some : {verbsOf<indexes>()...})
        verbs.insert(verbs.end(), some.begin(), some.end());
    return verbs;
}

} // namespace

Family listsFamily()
{
    constexpr size_t count = 5;
    return {"lists",
            "The pick lists. Safe while the interface runs; a change waits while the other side "
            "writes. Reading, too, creates a file that is missing and enters the factory rows of "
            "a language that has none yet.",
            allVerbs(std::make_index_sequence<count>())};
}
