#include "meter/Lists.h"

#include "meter/Limit.h"
#include "meter/LimitText.h"

#include <datalist/DataList_Element.h>
#include <datalist/KTV_DataList.h>
#include <datalist/LimitList_Element.h>
#include <datalist/MaterialList_Element.h>

#include <memory>

namespace {

Lists::Entry entryOf(const DataList_Element &element)
{
    return {element.ID, element.ReadOnly, {element.Value}};
}

Lists::Entry entryOf(const MaterialList_Element &element)
{
    return {element.ID, element.ReadOnly, {element.Name, QString::number(element.Alpha)}};
}

Lists::Entry entryOf(const LimitList_Element &element)
{
    return {element.ID, false, {element.Name, element.LoLimit, element.HighLimit}};
}

/**
 * The entries of a list that the library has returned, which is then deleted; null counts as empty.
 */
template <typename Element> QVector<Lists::Entry> taken(QList<Element *> *handedOut)
{
    QVector<Lists::Entry> entries;
    const std::unique_ptr<QList<Element *>> elements(handedOut);
    if (!elements)
        return entries;
    for (const Element *element : std::as_const(*elements))
        entries += entryOf(*element);
    qDeleteAll(*elements);
    return entries;
}

QVector<Lists::Entry> inUnitInEffect(QVector<Lists::Entry> entries)
{
    for (Lists::Entry &entry : entries)
        for (int bound = 1; bound < entry.values.size(); ++bound)
            entry.values[bound] = Limit::plainText(
                Quantity::Temperature, Limit::kept(Quantity::Temperature, entry.values.at(bound)));
    return entries;
}

/** The library's operations on one of its lists. */
struct FamilyRow
{
    QVector<Lists::Entry> (*entries)(KTV_DataList &lists, const QString &filter);
    bool (*add)(KTV_DataList &lists, const QStringList &values);
    bool (*update)(KTV_DataList &lists, int id, const QStringList &values);
    bool (KTV_DataList::*remove)(int id);
};

const FamilyRow &rowOf(Lists::Family family)
{
    static const FamilyRow rows[] = {
        {[](KTV_DataList &lists, const QString &filter) {
             return taken(lists.GetObiectTyp(true, true, filter, 0));
         },
         [](KTV_DataList &lists, const QStringList &values) {
             return lists.AddObiectTyp(values.at(0));
         },
         [](KTV_DataList &lists, int id, const QStringList &values) {
             return lists.UpdateObiectTyp(id, values.at(0));
         },
         &KTV_DataList::DeleteObiectTyp},
        {[](KTV_DataList &lists, const QString &filter) {
             return taken(lists.GetObiectName(true, true, filter, 0));
         },
         [](KTV_DataList &lists, const QStringList &values) {
             return lists.AddObiectName(values.at(0));
         },
         [](KTV_DataList &lists, int id, const QStringList &values) {
             return lists.UpdateObiectName(id, values.at(0));
         },
         &KTV_DataList::DeleteObiectName},
        {[](KTV_DataList &lists, const QString &filter) {
             return taken(lists.GetMaterials(true, true, filter, 0));
         },
         [](KTV_DataList &lists, const QStringList &values) {
             return lists.AddMaterial(values.at(0), values.at(1).toDouble());
         },
         [](KTV_DataList &lists, int id, const QStringList &values) {
             return lists.UpdateMaterial(id, values.at(0), values.at(1).toDouble());
         },
         &KTV_DataList::DeleteMaterial},
        {[](KTV_DataList &lists, const QString &filter) {
             return taken(lists.GetLimits_R(filter, 0));
         },
         [](KTV_DataList &lists, const QStringList &values) {
             return lists.AddLimit_R(values.at(0), values.at(2), values.at(1));
         },
         [](KTV_DataList &lists, int id, const QStringList &values) {
             return lists.UpdateLimit_R(id, values.at(0), values.at(2), values.at(1));
         },
         &KTV_DataList::DeleteLimit_R},
        {[](KTV_DataList &lists, const QString &filter) {
             return inUnitInEffect(taken(lists.GetLimits_T(filter, 0)));
         },
         [](KTV_DataList &lists, const QStringList &values) {
             return lists.AddLimit_T(values.at(0), values.at(2), values.at(1));
         },
         [](KTV_DataList &lists, int id, const QStringList &values) {
             return lists.UpdateLimit_T(id, values.at(0), values.at(2), values.at(1));
         },
         &KTV_DataList::DeleteLimit_T},
    };
    return rows[family];
}

Lists::Problem problemOfLimit(Quantity quantity, const QStringList &values)
{
    switch (LimitText::problemOf(Limit::unit(quantity), values.at(1), values.at(2))) {
    case LimitText::Problem::LowIsNoNumber:
    case LimitText::Problem::HighIsNoNumber:
        return Lists::NotANumber;
    case LimitText::Problem::BoundsMissing:
        return Lists::BoundsMissing;
    case LimitText::Problem::LowAboveHigh:
        return Lists::LowAboveHigh;
    case LimitText::Problem::None:
        break;
    }
    return Lists::NoProblem;
}

} // namespace

Lists::Lists(KTV_DataList &lists, QObject *parent) : QObject(parent), m_lists(lists)
{ }

QVector<Lists::Entry> Lists::entries(Family family, const QString &filter) const
{
    return rowOf(family).entries(m_lists, filter);
}

Lists::Problem Lists::problemOf(Family family, const QStringList &values)
{
    if (values.first().isEmpty())
        return NameMissing;
    if (family == Materials) {
        bool isNumber = false;
        values.at(1).toDouble(&isNumber);
        return isNumber ? NoProblem : NotANumber;
    }
    if (family == ResistanceLimits)
        return problemOfLimit(Quantity::Resistance, values);
    if (family == TemperatureLimits)
        return problemOfLimit(Quantity::Temperature, values);
    return NoProblem;
}

bool Lists::add(Family family, const QStringList &values)
{
    return emitIfChanged(rowOf(family).add(m_lists, values));
}

bool Lists::update(Family family, int id, const QStringList &values)
{
    return emitIfChanged(rowOf(family).update(m_lists, id, values));
}

bool Lists::remove(Family family, int id)
{
    return emitIfChanged((m_lists.*rowOf(family).remove)(id));
}

bool Lists::emitIfChanged(bool isChanged)
{
    if (isChanged)
        emit changed();
    return isChanged;
}
