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

void logValue(float value, const char *label, int current)
{
    log() << "NumericalValueBox::setRealValue:" << double(value) << label << current;
}

} // namespace

void NumericalValueBox::Private::makeOwnRow(int digits, int prefix)
{
    ownRow = {std::numeric_limits<float>::max(), digits, prefix};
    if (ownSet)
        *ownSet->items.first() = ownRow;
}

void NumericalValueBox::Private::useOwnRow()
{
    if (!ownSet) {
        ownSet = std::make_unique<Round_Current_I>(testI_None, nullptr);
        ownSet->items.append(new RoundItem(ownRow));
    }
    active = ownSet.get();
}

void NumericalValueBox::Private::chooseRows(testI current)
{
    active = nullptr;
    const Table *table = tableOf(method);
    if (!table)
        return;
    for (const Round_Current_I *set : *table) {
        if (MergeTestI(set->current, current)) {
            active = set;
            return;
        }
    }
}

NumericalValueBox::NumericalValueBox(QObject *parent)
    : NumericalValueBox(Unit_None, Round_Static, parent)
{ }

NumericalValueBox::NumericalValueBox(Units unit, RoundMetods method, QObject *parent)
    : QObject(parent)
    , d(std::make_unique<Private>(unit, method))
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
    d->value = value;
    d->makeOwnRow(digits, prefix);
    d->useOwnRow();
}

NumericalValueBox::NumericalValueBox(const QString &text, QObject *parent)
    : NumericalValueBox(parent)
{
    const auto content = Internal::parsed(text);
    d->value = content.value;
    d->unit = content.unit;
    d->useOwnRow();
}

NumericalValueBox::~NumericalValueBox() = default;

void NumericalValueBox::setNegativeAllowed(bool allowed)
{
    d->negativeAllowed = allowed;
}

bool NumericalValueBox::isNegativeAllowed() const
{
    return d->negativeAllowed;
}

void NumericalValueBox::setDebug(bool enabled)
{
    d->debug = enabled;
}

bool NumericalValueBox::isDebug() const
{
    return d->debug;
}

void NumericalValueBox::prepareRound_Static()
{
    d->makeOwnRow(ownDigits, Prefix_None);
}

void NumericalValueBox::setRoundMetod(RoundMetods method)
{
    d->method = method;
    d->active = nullptr;
}

void NumericalValueBox::setRealValue(float value)
{
    setRealValue(value, testI_None);
}

void NumericalValueBox::setRealValue(float value, testI current)
{
    if (d->debug)
        logValue(value, " testI_Index_enum:", current);
    d->setValue(value, current);
}

void NumericalValueBox::setRealValue(float value, int index)
{
    if (d->debug)
        logValue(value, " testI_Index:", index);
    d->setValue(value, testI(index));
}

void NumericalValueBox::Private::setValue(float newValue, testI current)
{
    value = newValue;
    if (method == Round_Static) {
        if (!active)
            useOwnRow();
    } else if (current != testI_None && !(active && MergeTestI(active->current, current))) {
        chooseRows(current);
    }
}

float NumericalValueBox::realValue() const
{
    return d->value;
}

int NumericalValueBox::findBestRange(float value) const
{
    return d->rangeOf(value);
}

float NumericalValueBox::_calculatePrefixValue(float value) const
{
    if (std::isnan(value))
        return missing;
    const int index = findBestRange(value);
    if (index == Private::noRows)
        return 0;
    const RoundItem *row = d->rowAt(index);
    return row ? float(Internal::powerOfTen(row->prefix)) : missing;
}

float NumericalValueBox::getPrefixValue() const
{
    return _calculatePrefixValue(realValue());
}

QString NumericalValueBox::_valueFormat(float value, int rangeIndex) const
{
    const RoundItem *row = d->rowAt(rangeIndex);
    if (!row || std::isnan(d->value))
        return QStringLiteral("---");
    return Internal::roundedText(value, *row);
}

float NumericalValueBox::getFormatedValue() const
{
    const int index = findBestRange(d->value);
    const RoundItem *row = d->rowAt(index);
    if (!row || std::isnan(d->value))
        return missing;
    float shown = d->value;
    if (index == Private::belowZero)
        shown = 0;
    else if (index == d->rowCount())
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
