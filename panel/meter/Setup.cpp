#include "meter/Setup.h"

#include "meter/LastSetting.h"

#include <valuebox/DynamicRounding.h>
#include <valuebox/NumericalValueBox.h>

#include <algorithm>

using ValueBox::NumericalValueBox;

namespace {

struct QuantityRow
{
    KTV_InterfaceConfig::SettingKey key;
    ValueBox::RoundMetods plain;
    ValueBox::RoundMetods compensated;
};

const QuantityRow &rowOf(Quantity quantity)
{
    static constexpr QuantityRow rows[] = {
        {KTV_InterfaceConfig::TEST_Rezystanyjny_LastSetting, ValueBox::Round_R,
         ValueBox::Round_R_TempCompensation},
        {KTV_InterfaceConfig::TEST_Indukcyjny_LastSetting, ValueBox::Round_L,
         ValueBox::Round_L_TempCompensation},
        {KTV_InterfaceConfig::TEST_EngineTemperature_LastSetting, ValueBox::Round_Static,
         ValueBox::Round_Static},
    };
    return rows[int(quantity)];
}

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

Setup::Setup(KTV_InterfaceConfig &settings, QObject *parent) : QObject(parent), m_settings(settings)
{ }

// --- the stored setting

void Setup::load()
{
    read();
    emit changed();
}

void Setup::read()
{
    const QJsonObject stored = LastSetting::read(m_settings, rowOf(m_quantity).key);
    m_current = ValueBox::testI(stored.value(QLatin1String("current")).toInt(ValueBox::testI_10A));
    m_material = stored.value(QLatin1String("material")).toString();
    m_alpha = stored.value(QLatin1String("alpha")).toDouble();
    const QJsonObject limit = stored.value(QLatin1String("limit")).toObject();
    m_limit.name = limit.value(QLatin1String("name")).toString();
    m_limit.low = limit.value(QLatin1String("low")).toString();
    m_limit.high = limit.value(QLatin1String("high")).toString();
    m_objectType = stored.value(QLatin1String("objectType")).toString();
    m_objectName = stored.value(QLatin1String("objectName")).toString();
    refreshCurrent();
}

void Setup::store()
{
    const QJsonObject limit {{QStringLiteral("name"), m_limit.name},
                             {QStringLiteral("low"), m_limit.low},
                             {QStringLiteral("high"), m_limit.high}};
    LastSetting::write(m_settings, rowOf(m_quantity).key,
                       {{QStringLiteral("current"), m_current},
                        {QStringLiteral("material"), m_material},
                        {QStringLiteral("alpha"), m_alpha},
                        {QStringLiteral("limit"), limit},
                        {QStringLiteral("objectType"), m_objectType},
                        {QStringLiteral("objectName"), m_objectName}});
}

void Setup::refreshCurrent()
{
    const QList<ValueBox::testI> currents = testCurrents();
    if (!currents.isEmpty() && !currents.contains(m_current))
        m_current = currents.contains(ValueBox::testI_10A) ? ValueBox::testI_10A : currents.last();
}

void Setup::keep()
{
    refreshCurrent(); // there are fewer currents with compensation
    store();
    emit changed();
}

// --- setters

void Setup::setQuantity(Quantity quantity)
{
    m_quantity = quantity;
    const QString type = m_objectType;
    const QString name = m_objectName;
    read();
    m_objectType = type;
    m_objectName = name;
    keep();
}

void Setup::setCurrent(ValueBox::testI current)
{
    m_current = current;
    keep();
}

void Setup::setMaterial(const QString &name, double alpha)
{
    m_material = name;
    m_alpha = alpha;
    keep();
}

void Setup::setLimit(const Limit &limit)
{
    m_limit = limit;
    keep();
}

void Setup::setObject(const QString &type, const QString &name)
{
    m_objectType = type;
    m_objectName = name;
    keep();
}

QString Setup::objectText(const QString &type, const QString &name)
{
    QStringList parts {type, name};
    parts.removeAll(QString());
    return parts.join(QStringLiteral(" \u00B7 "));
}

void Setup::setTestObject(const TestObject &object)
{
    m_testObject = object;
    emit changed();
}

void Setup::adaptToModel()
{
    keep();
}

// --- values derived from the setup

bool Setup::isCompensated() const
{
    return !m_material.isEmpty() && m_quantity != Quantity::Temperature;
}

ReadingFormat Setup::format() const
{
    const QuantityRow &row = rowOf(m_quantity);
    return {m_quantity, isCompensated() ? row.compensated : row.plain, m_current};
}

QList<ValueBox::testI> Setup::testCurrents() const
{
    QList<ValueBox::testI> currents;
    for (const ValueBox::DynamicRounding::Round_Current_I *rows : tableOf(format().method))
        currents += rows->current;
    std::sort(currents.begin(), currents.end());
    return currents;
}
