#include "valuebox/NumericalValueBox.h"

#include "internal/log_p.h"
#include "valuebox/FixedPoint_p.h"
#include "valuebox/NumericalValueBox_p.h"

#include <array>
#include <cmath>

namespace ValueBox {

using DynamicRounding::Round_Current_I;
using DynamicRounding::RoundItem;
using Internal::log;

namespace {

constexpr float missing = std::numeric_limits<float>::quiet_NaN();
constexpr int ownDigits = 2;

using Table = QList<Round_Current_I *>;

/** Table of a rounding method; null for a method without one. */
const Table *tableOf(RoundMetods method)
{
    static const std::array<const Table *, 5> tables {
        nullptr,
        &NumericalValueBox::tableRound_R,
        &NumericalValueBox::tableRound_L,
        &NumericalValueBox::tableRound_R_TempCompensation,
        &NumericalValueBox::tableRound_L_TempCompensation,
    };
    const auto index = std::size_t(method);
    return index < tables.size() ? tables[index] : nullptr;
}

// Rare; not inlined, to keep the code short that runs for every value.
Q_NEVER_INLINE void logValue(float value, const char *label, int current)
{
    log() << "NumericalValueBox::setRealValue:" << double(value) << label << current;
}

} // namespace

void NumericalValueBox::makeOwnRow(int digits, UnitPrefixs prefix)
{
    m_ownRow = {std::numeric_limits<float>::max(), digits, prefix};
    if (m_ownSet)
        *m_ownSet->items.first() = m_ownRow;
}

Q_NEVER_INLINE void NumericalValueBox::useOwnRow()
{
    if (!m_ownSet) {
        m_ownSet = std::make_unique<Round_Current_I>(testI_None, nullptr);
        m_ownSet->items.append(new RoundItem(m_ownRow));
    }
    m_active = m_ownSet.get();
}

Q_NEVER_INLINE void NumericalValueBox::chooseRows(testI current)
{
    m_active = nullptr;
    const Table *table = tableOf(m_method);
    if (!table)
        return;
    for (const Round_Current_I *set : *table) {
        if (set->current == current) {
            m_active = set;
            return;
        }
    }
}

NumericalValueBox::NumericalValueBox(QObject *parent)
    : NumericalValueBox(Unit_None, Round_Static, parent)
{ }

NumericalValueBox::NumericalValueBox(Units unit, RoundMetods method, QObject *parent)
    : QObject(parent)
    , m_unit(unit)
    , m_method(method)
{
    prepareRound_Static();
}

NumericalValueBox::NumericalValueBox(float value, Units unit, UnitPrefixs prefix, int digits,
                                     QObject *parent)
    : NumericalValueBox(value, unit, prefix, Round_Static, digits, parent)
{ }

NumericalValueBox::NumericalValueBox(float value, Units unit, UnitPrefixs prefix,
                                     RoundMetods method, int digits, QObject *parent)
    : NumericalValueBox(unit, method, parent)
{
    m_value = value;
    makeOwnRow(digits, prefix);
    useOwnRow();
}

NumericalValueBox::NumericalValueBox(const QString &text, QObject *parent)
    : NumericalValueBox(parent)
{
    const auto content = Internal::parsed(text);
    m_value = content.value;
    m_unit = content.unit;
    useOwnRow();
}

NumericalValueBox::~NumericalValueBox() = default;

void NumericalValueBox::setNegativeAllowed(bool allowed)
{
    m_negativeAllowed = allowed;
}

bool NumericalValueBox::isNegativeAllowed() const
{
    return m_negativeAllowed;
}

void NumericalValueBox::setDebug(bool enabled)
{
    m_debug = enabled;
}

bool NumericalValueBox::isDebug() const
{
    return m_debug;
}

void NumericalValueBox::prepareRound_Static()
{
    makeOwnRow(ownDigits, Prefix_None);
}

void NumericalValueBox::setRoundMetod(RoundMetods method)
{
    m_method = method;
    m_active = nullptr;
}

void NumericalValueBox::setRealValue(float value)
{
    setRealValue(value, testI_None);
}

void NumericalValueBox::setRealValue(float value, testI current)
{
    if (Q_UNLIKELY(m_debug))
        logValue(value, " testI_Index_enum:", current);
    setValue(value, current);
}

void NumericalValueBox::setRealValue(float value, int index)
{
    if (Q_UNLIKELY(m_debug))
        logValue(value, " testI_Index:", index);
    setValue(value, testI(index));
}

inline void NumericalValueBox::setValue(float value, testI current)
{
    m_value = value;
    if (m_method == Round_Static) {
        if (!m_active)
            useOwnRow();
    } else if (current != testI_None && !(m_active && m_active->current == current)) {
        chooseRows(current);
    }
}

float NumericalValueBox::realValue() const
{
    return m_value;
}

int NumericalValueBox::findBestRange(float value) const
{
    return Internal::rangeOf(value, m_active);
}

float NumericalValueBox::_calculatePrefixValue(float value) const
{
    if (std::isnan(value))
        return missing;
    const int index = findBestRange(value);
    if (index == Internal::noRows)
        return 0;
    const RoundItem *row = Internal::rowAt(index, m_active);
    return row ? float(Internal::powerOfTen(row->prefix)) : missing;
}

float NumericalValueBox::getPrefixValue() const
{
    return _calculatePrefixValue(realValue());
}

QString NumericalValueBox::_valueFormat(float value, int rangeIndex) const
{
    const RoundItem *row = Internal::rowAt(rangeIndex, m_active);
    if (!row || std::isnan(m_value))
        return QStringLiteral("---");
    return Internal::roundedText(value, *row);
}

float NumericalValueBox::getFormatedValue() const
{
    const int index = findBestRange(m_value);
    const RoundItem *row = Internal::rowAt(index, m_active);
    if (!row || std::isnan(m_value))
        return missing;
    float shown = m_value;
    if (index == Internal::belowZero)
        shown = 0;
    else if (index == m_active->items.size())
        shown = row->maximum;
    bool ok = false;
    const float number = Internal::roundedText(shown, *row).toFloat(&ok);
    return ok ? number : missing;
}

float NumericalValueBox::getRealFormatedValue() const
{
    return getValue(toString());
}

} // namespace ValueBox
