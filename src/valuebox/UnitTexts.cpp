#include "valuebox/NumericalValueBox.h"
#include "valuebox/NumericalValueBox_p.h"

#include <array>

namespace ValueBox {

QHash<Units, QString> NumericalValueBox::unitString;
QHash<UnitPrefixs, QString> NumericalValueBox::prefixString;
TemperatureUnit NumericalValueBox::_tUnit = Temp_Celsius;

namespace {

using UnitTexts = QHash<Units, QString>;
using PrefixTexts = QHash<UnitPrefixs, QString>;

/** Units and prefixes in the order of the texts that a client passes for them. */
constexpr std::array<Units, 4> listedUnits {Unit_A, Unit_V, Unit_Temperature, Unit_Ohm};
constexpr std::array<UnitPrefixs, 6> listedPrefixes {Prefix_G, Prefix_M, Prefix_k,
                                                     Prefix_m, Prefix_u, Prefix_n};

/** Texts for these keys, and an empty text for the key @p without. */
template <typename Keys, typename Key>
QHash<Key, QString> listedTexts(const Keys &keys, const QStringList &texts, Key without)
{
    QHash<Key, QString> result {{without, QLatin1String("")}};
    for (std::size_t i = 0; i < keys.size(); ++i)
        result.insert(keys[i], texts.at(int(i)));
    return result;
}

UnitTexts defaultUnitsWith(const QString &temperature)
{
    // By code point: this is the ohm sign, not the Greek letter.
    return listedTexts(
        listedUnits,
        {QStringLiteral("A"), QStringLiteral("V"), temperature, QStringLiteral("\u2126")},
        Unit_None);
}

/**
 * Default texts for a temperature unit. They are created once and shared, so setting them again
 * costs only a comparison as long as the texts have not been edited.
 */
const UnitTexts &defaultUnits(TemperatureUnit unit)
{
    static const std::array<UnitTexts, 3> byTemperatureUnit {
        defaultUnitsWith(QStringLiteral("\u00B0C")),
        defaultUnitsWith(QStringLiteral("\u00B0F")),
        defaultUnitsWith(QStringLiteral("K")),
    };
    static const UnitTexts withoutTemperature = [] {
        UnitTexts texts = byTemperatureUnit.front();
        texts.remove(Unit_Temperature);
        return texts;
    }();
    const auto index = std::size_t(unit);
    return index < byTemperatureUnit.size() ? byTemperatureUnit[index] : withoutTemperature;
}

const PrefixTexts &defaultPrefixes()
{
    // By code point: this is the Greek letter, not the micro sign.
    static const PrefixTexts texts =
        listedTexts(listedPrefixes,
                    {QStringLiteral("G"), QStringLiteral("M"), QStringLiteral("k"),
                     QStringLiteral("m"), QStringLiteral("\u03BC"), QStringLiteral("n")},
                    Prefix_None);
    return texts;
}

} // namespace

void NumericalValueBox::prepareStaticDefaultValue(TemperatureUnit unit)
{
    _tUnit = unit;
    unitString = defaultUnits(unit);
    prefixString = defaultPrefixes();
}

void NumericalValueBox::prepareStaticCustomtValue(const QStringList &units,
                                                  const QStringList &prefixes, TemperatureUnit unit)
{
    _tUnit = unit;
    if (std::size_t(units.size()) == listedUnits.size())
        unitString = listedTexts(listedUnits, units, Unit_None);
    if (std::size_t(prefixes.size()) == listedPrefixes.size())
        prefixString = listedTexts(listedPrefixes, prefixes, Prefix_None);
}

QString NumericalValueBox::getUnit(Units unit)
{
    return unitString.value(unit);
}

QString NumericalValueBox::_enumUnitsToString(Units unit)
{
    return getUnit(unit);
}

QString NumericalValueBox::getUnitPrefix(UnitPrefixs prefix)
{
    return prefixString.value(prefix);
}

QString NumericalValueBox::_enumUnitPrefixsToString(UnitPrefixs prefix)
{
    return getUnitPrefix(prefix);
}

QString NumericalValueBox::_unitAndPrefixToString(UnitPrefixs prefix) const
{
    return getUnitPrefix(prefix) + getUnit(m_unit);
}

TemperatureUnit NumericalValueBox::getTempUnit()
{
    return _tUnit;
}

QString NumericalValueBox::getAlphaUnit()
{
    return QStringLiteral("K\u207B\u00B9");
}

} // namespace ValueBox

namespace Internal {

UnitIndex unitTexts(ValueBox::NumericalValueBox::unitString);
PrefixIndex prefixTexts(ValueBox::NumericalValueBox::prefixString);

} // namespace Internal
