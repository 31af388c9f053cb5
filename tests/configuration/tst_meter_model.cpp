#include "support/Meter.h"

#include "configuration/MeterModel_p.h"

#include <QMetaEnum>
#include <QSet>
#include <QtTest>

using Internal::meterModel;
using Internal::meterModels;

/** The table of meter models: complete and without duplicates. */
class TstMeterModel : public QObject
{
    Q_OBJECT
private slots:
    void everyModelHasARow();
    void noDuplicates();
    void helpFoldersHaveTheSameLanguages();
    void unknownModel();
};

void TstMeterModel::everyModelHasARow()
{
    const auto models = QMetaEnum::fromType<KTV_Configuration::MeterModels>();
    QCOMPARE(int(std::size(meterModels)), models.keyCount());
    for (int i = 0; i < models.keyCount(); ++i) {
        const auto model = KTV_Configuration::MeterModels(models.value(i));
        const Internal::MeterModel &row = meterModel(model);
        QCOMPARE(row.model, model);
        QCOMPARE(Internal::meterModelOfName(row.name).model, model);
        const bool isKnown = model != KTV_Configuration::MeterModels_NaN;
        QCOMPARE(row.shortName.isEmpty(), !isKnown);
        QCOMPARE(row.serialPrefixes.isEmpty(), !isKnown);
        QCOMPARE(row.rounding == Internal::RoundingFamily::None, !isKnown);
        for (const QString &prefix : Internal::wordsOf(row.serialPrefixes))
            QCOMPARE(Internal::meterModelOfSerialNumber(prefix + "12345").model, model);
    }
}

void TstMeterModel::noDuplicates()
{
    QSet<QString> seen;
    for (const Internal::MeterModel &row : meterModels) {
        QVERIFY2(!seen.contains(row.name), row.name.data());
        seen += row.name;
        QVERIFY2(!seen.contains(row.shortName), row.shortName.data());
        seen += row.shortName;
        for (const QString &prefix : Internal::wordsOf(row.serialPrefixes)) {
            QCOMPARE(prefix.size(), 2);
            QVERIFY2(!seen.contains(prefix), qPrintable(prefix));
            seen += prefix;
        }
    }
}

/** The checker of images relies on it. */
void TstMeterModel::helpFoldersHaveTheSameLanguages()
{
    QHash<QString, QString> languages;
    for (const Internal::MeterModel &row : meterModels) {
        if (!languages.contains(row.helpFolder))
            languages.insert(row.helpFolder, row.languages);
        QCOMPARE(languages.value(row.helpFolder), QString(row.languages));
    }
}

void TstMeterModel::unknownModel()
{
    const Internal::MeterModel &unknown = meterModel(KTV_Configuration::MeterModels_NaN);
    QCOMPARE(&unknown, &meterModels[0]);
    QCOMPARE(&meterModel(KTV_Configuration::MeterModels(99)), &unknown);
    for (const char *text : {"", "E", "el12345", "12EL", "KTV"}) {
        QCOMPARE(&Internal::meterModelOfSerialNumber(text), &unknown);
        QCOMPARE(&Internal::meterModelOfName(text), &unknown);
    }
}

KTV_METER_TEST_MAIN(TstMeterModel)
#include "tst_meter_model.moc"
