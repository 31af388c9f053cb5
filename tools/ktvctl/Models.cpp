#include "Models.h"

using Internal::MeterModel;
using Internal::meterModels;

QStringList modelWords()
{
    QStringList words;
    for (const MeterModel &model : meterModels) {
        if (!model.shortName.isEmpty())
            words += model.shortName;
    }
    return words;
}

std::optional<KTV_Configuration::MeterModels> modelOfWord(const QString &word)
{
    for (const MeterModel &model : meterModels) {
        if (!model.shortName.isEmpty() && word.compare(model.shortName, Qt::CaseInsensitive) == 0)
            return model.model;
    }
    return std::nullopt;
}

QString modelsThat(const std::function<bool(const MeterModel &)> &have)
{
    QStringList names;
    for (const MeterModel &model : meterModels) {
        if (have(model))
            names += model.name;
    }
    const QString last = names.isEmpty() ? QString() : names.takeLast();
    return names.isEmpty() ? last
                           : names.join(QLatin1String(", ")) + QStringLiteral(" and ") + last;
}

QString modelsThatPlaySamples()
{
    return modelsThat([](const MeterModel &model) { return model.playsSamples; });
}
