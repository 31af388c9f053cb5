#include "pages/ListFamilies.h"

#include <datalist/DataList_Element.h>
#include <datalist/KTV_DataList.h>
#include <datalist/LimitList_Element.h>
#include <datalist/MaterialList_Element.h>

#include <memory>

namespace {

constexpr Text nameText = Text {"Lists", "name", "Name"};

ListEntry entryOf(const DataList_Element &element)
{
    return {element.ID, element.ReadOnly, {element.Value}};
}

ListEntry entryOf(const MaterialList_Element &element)
{
    return {element.ID, element.ReadOnly, {element.Name, QString::number(element.Alpha)}};
}

ListEntry entryOf(const LimitList_Element &element)
{
    return {element.ID, false, {element.Name, element.LoLimit, element.HighLimit}};
}

/** Takes over a list that the library hands out; null counts as empty. */
template <typename Element> QVector<ListEntry> taken(QList<Element *> *handedOut)
{
    QVector<ListEntry> entries;
    const std::unique_ptr<QList<Element *>> elements(handedOut);
    if (!elements)
        return entries;
    for (const Element *element : std::as_const(*elements))
        entries += entryOf(*element);
    qDeleteAll(*elements);
    return entries;
}

QVector<ListFamily> makeFamilies()
{
    return {
        {Text {"Lists", "objectTypes", "Object types"},
         Text {"Panel", "types", "Types"},
         {{nameText, TextField::Letters}},
         [](KTV_DataList &lists, const QString &filter) {
             return taken(lists.GetObiectTyp(true, true, filter, 0));
         },
         [](KTV_DataList &lists, const QStringList &values) {
             return lists.AddObiectTyp(values.at(0));
         },
         [](KTV_DataList &lists, int id, const QStringList &values) {
             return lists.UpdateObiectTyp(id, values.at(0));
         },
         [](KTV_DataList &lists, int id) { return lists.DeleteObiectTyp(id); }},
        {Text {"Lists", "objectNames", "Object names"},
         Text {"Panel", "names", "Names"},
         {{nameText, TextField::Letters}},
         [](KTV_DataList &lists, const QString &filter) {
             return taken(lists.GetObiectName(true, true, filter, 0));
         },
         [](KTV_DataList &lists, const QStringList &values) {
             return lists.AddObiectName(values.at(0));
         },
         [](KTV_DataList &lists, int id, const QStringList &values) {
             return lists.UpdateObiectName(id, values.at(0));
         },
         [](KTV_DataList &lists, int id) { return lists.DeleteObiectName(id); }},
        {Text {"Lists", "materials", "Materials"},
         Text {"Panel", "materials", "Materials"},
         {{nameText, TextField::Letters},
          {Text {"Lists", "alpha", "Coefficient α"}, TextField::Number}},
         [](KTV_DataList &lists, const QString &filter) {
             return taken(lists.GetMaterials(true, true, filter, 0));
         },
         [](KTV_DataList &lists, const QStringList &values) {
             return lists.AddMaterial(values.at(0), values.at(1).toDouble());
         },
         [](KTV_DataList &lists, int id, const QStringList &values) {
             return lists.UpdateMaterial(id, values.at(0), values.at(1).toDouble());
         },
         [](KTV_DataList &lists, int id) { return lists.DeleteMaterial(id); }},
        {Text {"Lists", "limitsR", "Resistance limits"},
         Text {"Panel", "limitsR", "Limits R"},
         {{nameText, TextField::Letters},
          {Text {"Lists", "low", "Low"}, TextField::NumberWithUnit},
          {Text {"Lists", "high", "High"}, TextField::NumberWithUnit}},
         [](KTV_DataList &lists, const QString &filter) {
             return taken(lists.GetLimits_R(filter, 0));
         },
         [](KTV_DataList &lists, const QStringList &values) {
             return lists.AddLimit_R(values.at(0), values.at(2), values.at(1));
         },
         [](KTV_DataList &lists, int id, const QStringList &values) {
             return lists.UpdateLimit_R(id, values.at(0), values.at(2), values.at(1));
         },
         [](KTV_DataList &lists, int id) { return lists.DeleteLimit_R(id); }},
        {Text {"Lists", "limitsT", "Temperature limits"},
         Text {"Panel", "limitsT", "Limits T"},
         {{nameText, TextField::Letters},
          {Text {"Lists", "low", "Low"}, TextField::Number},
          {Text {"Lists", "high", "High"}, TextField::Number}},
         [](KTV_DataList &lists, const QString &filter) {
             return taken(lists.GetLimits_T(filter, 0));
         },
         [](KTV_DataList &lists, const QStringList &values) {
             return lists.AddLimit_T(values.at(0), values.at(2), values.at(1));
         },
         [](KTV_DataList &lists, int id, const QStringList &values) {
             return lists.UpdateLimit_T(id, values.at(0), values.at(2), values.at(1));
         },
         [](KTV_DataList &lists, int id) { return lists.DeleteLimit_T(id); }},
    };
}

} // namespace

const QVector<ListFamily> &listFamilies()
{
    static const QVector<ListFamily> families = makeFamilies();
    return families;
}
