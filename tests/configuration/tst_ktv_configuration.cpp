#include "support/LogCapture.h"
#include "support/Meter.h"

#include <configuration/KTV_Configuration.h>

#include <QtTest>

/** The device's description and identity, as a client sees them. */
class TstKtvConfiguration : public QObject
{
    Q_OBJECT
private slots:
    void init() { Meter::writeFile(file, "<device/>"); }

    void modelOfSerialNumber_data();
    void modelOfSerialNumber();

private:
    const QString file = QStringLiteral("/home/root/globalInfo.xml");
};

void TstKtvConfiguration::modelOfSerialNumber_data()
{
    QTest::addColumn<QString>("serial");
    QTest::addColumn<KTV_Configuration::MeterModels>("model");
    QTest::addColumn<QString>("name");
    QTest::newRow("DV") << "DV0001" << KTV_Configuration::KTV_4200 << "KTV-4200";
    QTest::newRow("CH") << "CH0001" << KTV_Configuration::KTV_420 << "KTV-420";
    QTest::newRow("EL") << "EL12345" << KTV_Configuration::KTV_420 << "KTV-420";
    QTest::newRow("JB") << "JB" << KTV_Configuration::PLX_420 << "PLX-420";
    QTest::newRow("DW") << "DW1" << KTV_Configuration::KTV_4400 << "KTV-4400";
    QTest::newRow("JD") << "JD1" << KTV_Configuration::KTV_410 << "KTV-410";
    QTest::newRow("case counts") << "el1" << KTV_Configuration::MeterModels_NaN << "KTV-xxx";
    QTest::newRow("empty") << "" << KTV_Configuration::MeterModels_NaN << "KTV-xxx";
    QTest::newRow("prefix only at the start")
        << "ADV1" << KTV_Configuration::MeterModels_NaN << "KTV-xxx";
}

void TstKtvConfiguration::modelOfSerialNumber()
{
    QFETCH(QString, serial);
    QFETCH(KTV_Configuration::MeterModels, model);
    QFETCH(QString, name);
    KTV_Configuration configuration;
    const LogCapture log;
    configuration.set_SerialNumber(serial);
    QCOMPARE(configuration.get_MeterModel(), model);
    QCOMPARE(KTV_Configuration::currentMeterModel(), model);
    QCOMPARE(configuration.get_MeterModelName(), name);
    QCOMPARE(configuration.get_MeterFullName(), QStringLiteral("QERN ") + name);
    QCOMPARE(configuration.get_SerialNumber(), serial);
    QCOMPARE(log.lines(),
             QStringList(QStringLiteral("KTV_Configuration::set_SerialNumber(%1)").arg(serial)));
}

KTV_METER_TEST_MAIN(TstKtvConfiguration)
#include "tst_ktv_configuration.moc"
