#include "meter/Setup.h"

#include <datalist/KTV_DataList.h>
#include <datalist/LimitList_Element.h>
#include <datasource/KTV_DataSource.h>
#include <valuebox/DynamicRounding.h>
#include <valuebox/NumericalValueBox.h>

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <memory>
#include <utility>

using ValueBox::NumericalValueBox;

namespace {

struct KindRow
{
    KTV_InterfaceConfig::SettingKey key;
    ValueBox::RoundMetods plain;
    ValueBox::RoundMetods compensated;
};

/** By Setup::Kind. */
constexpr KindRow kinds[] = {
    {KTV_InterfaceConfig::TEST_Rezystanyjny_LastSetting, ValueBox::Round_R,
     ValueBox::Round_R_TempCompensation},
    {KTV_InterfaceConfig::TEST_Indukcyjny_LastSetting, ValueBox::Round_L,
     ValueBox::Round_L_TempCompensation},
    {KTV_InterfaceConfig::TEST_EngineTemperature_LastSetting, ValueBox::Round_Static,
     ValueBox::Round_Static},
};

const QList<ValueBox::DynamicRounding::Round_Current_I *> &tableOf(ValueBox::RoundMetods method)
{
    static const QList<ValueBox::DynamicRounding::Round_Current_I *> none;
    switch (method) {
    case ValueBox::Round_R:
        return NumericalValueBox::tableRound_R;
    case ValueBox::Round_L:
        return NumericalValueBox::tableRound_L;
    case ValueBox::Round_R_TempCompensation:
        return NumericalValueBox::tableRound_R_TempCompensation;
    case ValueBox::Round_L_TempCompensation:
        return NumericalValueBox::tableRound_L_TempCompensation;
    case ValueBox::Round_Static:
        break;
    }
    return none;
}

} // namespace

Setup::Setup(KTV_DataSource &library) : m_library(library)
{ }

void Setup::load()
{
    const QJsonObject stored =
        QJsonDocument::fromJson(
            m_library.get_InterfaceConfig()->getValue(key(), QString()).toUtf8())
            .object();
    current = static_cast<ValueBox::testI>(
        stored.value(QLatin1String("current")).toInt(ValueBox::testI_10A));
    material = stored.value(QLatin1String("material")).toString();
    alpha = stored.value(QLatin1String("alpha")).toDouble();
    limitName = stored.value(QLatin1String("limit")).toString();
    lowLimit = stored.value(QLatin1String("low")).toString();
    highLimit = stored.value(QLatin1String("high")).toString();
    refreshCurrent();
    refreshLimit();
}

void Setup::save() const
{
    const QJsonObject stored {
        {QStringLiteral("current"), current}, {QStringLiteral("material"), material},
        {QStringLiteral("alpha"), alpha},     {QStringLiteral("limit"), limitName},
        {QStringLiteral("low"), lowLimit},    {QStringLiteral("high"), highLimit},
    };
    m_library.get_InterfaceConfig()->setValue(
        key(), QString::fromUtf8(QJsonDocument(stored).toJson(QJsonDocument::Compact)));
}

void Setup::refreshCurrent()
{
    const QList<ValueBox::testI> currents = testCurrents();
    if (!currents.isEmpty() && !currents.contains(current))
        current = currents.contains(ValueBox::testI_10A) ? ValueBox::testI_10A : currents.last();
}

void Setup::refreshLimit()
{
    if (m_kind != Temperature || limitName.isEmpty())
        return;
    const QString wanted = std::exchange(limitName, QString());
    const std::unique_ptr<QList<LimitList_Element *>> limits(
        m_library.get_DataList()->GetLimits_T(QString(), 0));
    if (!limits)
        return;
    for (const LimitList_Element *limit : std::as_const(*limits)) {
        if (limit->Name != wanted)
            continue;
        limitName = wanted;
        lowLimit = limit->LoLimit;
        highLimit = limit->HighLimit;
    }
    qDeleteAll(*limits);
}

void Setup::setKind(Kind kind)
{
    m_kind = kind;
    load();
}

QList<ValueBox::testI> Setup::testCurrents() const
{
    QList<ValueBox::testI> currents;
    for (const ValueBox::DynamicRounding::Round_Current_I *rows : tableOf(roundingMethod()))
        currents += rows->current;
    std::sort(currents.begin(), currents.end());
    return currents;
}

ValueBox::RoundMetods Setup::roundingMethod() const
{
    return isCompensated() ? kinds[m_kind].compensated : kinds[m_kind].plain;
}

KTV_InterfaceConfig::SettingKey Setup::key() const
{
    return kinds[m_kind].key;
}
