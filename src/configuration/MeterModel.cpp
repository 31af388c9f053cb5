#include "configuration/MeterModel_p.h"

#include <QStringList>

#include <algorithm>
#include <iterator>

namespace Internal {

namespace {

template <typename Predicate> const MeterModel &firstOf(const Predicate &predicate)
{
    const auto *const found =
        std::find_if(std::cbegin(meterModels), std::cend(meterModels), predicate);
    return found == std::cend(meterModels) ? meterModels[0] : *found;
}

} // namespace

QStringList wordsOf(QLatin1String column)
{
    return QString(column).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

const MeterModel &meterModel(KTV_Configuration::MeterModels model)
{
    return firstOf([model](const MeterModel &row) { return row.model == model; });
}

const MeterModel &meterModelOfName(const QString &name)
{
    return firstOf([&name](const MeterModel &row) { return row.name == name; });
}

const MeterModel &meterModelOfSerialNumber(const QString &serial)
{
    return firstOf([&serial](const MeterModel &row) {
        const QStringList prefixes = wordsOf(row.serialPrefixes);
        return std::any_of(prefixes.cbegin(), prefixes.cend(),
                           [&serial](const QString &prefix) { return serial.startsWith(prefix); });
    });
}

} // namespace Internal
