#include "Texts.h"

#include "support/Ktvctl.h"
#include "support/Meter.h"

#include <QJsonObject>
#include <QXmlStreamReader>
#include <QtTest>

using namespace Texts;

namespace {

Answer value(const QStringList &words)
{
    return ktvctl(QStringList("value") + words);
}

QJsonValue json(const QStringList &words)
{
    return parsed(value(words + QStringList("--json")).out);
}

} // namespace

/** `ktvctl value`: values by model, method, current and unit. */
class TstKtvctlValues : public QObject
{
    Q_OBJECT
private slots:
    void oneCurrent_data();
    void oneCurrent();
    void everyCurrent();
    void storedModel();
    void parsedText();
    void currents();
    void tables();
    void plot();
    void picture();
    void wrongWords_data();
    void wrongWords();
};

void TstKtvctlValues::oneCurrent_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<QString>("text");
    QTest::newRow("by label") << QStringList {"0.0015", "--current", "10 A"} << "1.5000 m" + ohm;
    QTest::newRow("without a blank")
        << QStringList {"0.0015", "--current", "10A"} << "1.5000 m" + ohm;
    // The label of 20 A is "20 mA".
    for (const char *current : {"20A", "20 A", "20 mA"})
        QTest::addRow("%s", current)
            << QStringList {"0.0075", "--model", "4200", "--current", current} << "7.5000 m" + ohm;
    QTest::newRow("small") << QStringList {"0.5", "--current", "100mA"} << "500.0 m" + ohm;
    QTest::newRow("by code") << QStringList {"0.0015", "--code", "10"} << "1.5000 m" + ohm;
    QTest::newRow("method") << QStringList {"2500", "--method", "rc", "--code", "0"}
                            << "2.50 k" + ohm;
    QTest::newRow("unit") << QStringList {"0.5", "--unit", "V", "--code", "3"} << "500.0 mV";
    QTest::newRow("negative") << QStringList {"-0.5", "--code", "3"} << "< 0 m" + ohm;
    QTest::newRow("negative, shown")
        << QStringList {"--code", "3", "--negative", "--", "-0.5"} << "-500.0 m" + ohm;
    QTest::newRow("missing") << QStringList {"nan", "--code", "3"} << "--- " + ohm;
    QTest::newRow("temperature") << QStringList {"20.7", "--unit", "temperature"}
                                 << "20.5 " + degree + "C";
    QTest::newRow("in Kelvin") << QStringList {"20.7", "--unit", "temperature", "--temperature",
                                               "K"}
                               << "293.5 K";
}

void TstKtvctlValues::oneCurrent()
{
    QFETCH(QStringList, words);
    QFETCH(QString, text);
    words.prepend("420");
    words.prepend("--model");
    words.prepend("format");
    const Answer answer = value(words);
    QCOMPARE(answer.out, text + '\n');
    QCOMPARE(answer.code, 0);
}

void TstKtvctlValues::everyCurrent()
{
    const Answer answer = value({"format", "0.5", "--model", "420"});
    QCOMPARE(answer.out,
             "10 A:   > 199.99 m" + ohm + "\n1 A:    500.0 m" + ohm + "\n100 mA: 500.0 m" + ohm
                 + "\n10 mA:  0.50 " + ohm + "\n1 mA:   0.5 " + ohm + '\n');
    const QJsonArray all = json({"format", "0.5", "--model", "4200"}).toArray();
    QCOMPARE(all.size(), 24);
    QCOMPARE(all.first().toObject().value("current").toInt(), 200);
    QCOMPARE(all.first().toObject().value("text").toString(), "> 999.9 " + micro + ohm);
    QCOMPARE(all.last().toObject().value("readBack").toDouble(), 0.5);
}

void TstKtvctlValues::storedModel()
{
    const QStringList words {"format", "0.0075", "--code", "20"};
    QCOMPARE(value(words).code, 2); // the meter has no serial number yet
    QCOMPARE(value(words + QStringList {"--serial", "DV0001"}).out, "7.5000 m" + ohm + '\n');
    QCOMPARE(value(words + QStringList {"--serial", "EL0001"}).out, QStringLiteral("---\n"));
}

void TstKtvctlValues::parsedText()
{
    // With the characters of the library, and with those that keyboards have.
    for (const QString &unit : {ohm, QString(QChar(0x03A9))}) {
        const QJsonObject parsed = json({"parse", "12.50 m" + unit}).toObject();
        QCOMPARE(float(parsed.value("value").toDouble()), 0.0125F);
        QCOMPARE(parsed.value("decimals").toInt(), 2);
        QCOMPARE(parsed.value("unit").toString(), QStringLiteral("ohm"));
        QCOMPARE(parsed.value("prefix").toInt(), -3);
    }
    const Answer answer = value({"parse", "--", "---"});
    QCOMPARE(answer.code, 1);
    QVERIFY(answer.error.contains("---"));
}

void TstKtvctlValues::currents()
{
    const QJsonArray all = json({"currents"}).toArray();
    QCOMPARE(all.size(), 24);
    const QJsonObject twenty = all.at(5).toObject();
    QCOMPARE(twenty.value("code").toInt(), 20);
    QCOMPARE(twenty.value("label").toString(), QStringLiteral("20 mA"));
    QCOMPARE(twenty.value("amperes").toDouble(), 20.);
    QVERIFY(value({"currents"}).out.contains("\n200   200 A     200\n"));
}

void TstKtvctlValues::tables()
{
    const QJsonObject all = json({"tables", "--model", "4400"}).toObject();
    QCOMPARE(all.keys(), QStringList({"L", "LC", "R", "RC"}));
    QCOMPARE(all.value("R").toArray().size(), 24);
    QCOMPARE(all.value("RC").toArray().size(), 15);
    QVERIFY(value({"tables", "--model", "410", "--method", "R"})
                .out.startsWith("R, 10 A\n  up to 0.0009999: 1 decimal, " + micro
                                + "\n  up to 0.0019999: 4 decimals, m\n"));
}

void TstKtvctlValues::plot()
{
    const QStringList lines = value({"plot", "--model", "420"}).out.split('\n');
    QVERIFY(lines.at(0).contains("100n 1" + micro));
    // Five columns for each decade from 100 nΩ on: up to 1 mΩ, 2 mΩ, 20 mΩ and 200 mΩ.
    QCOMPARE(lines.at(1), "10 A    " + QString(22, '7') + QString(5, '6') + QString(5, '5'));
    QCOMPARE(lines.at(5), "1 mA    " + QString(52, '1'));
    const QStringList inductance =
        value({"plot", "--model", "420", "--method", "LC"}).out.split('\n');
    QVERIFY(inductance.at(1).endsWith('D'));
    QCOMPARE(json({"plot", "--model", "420"}).toArray().size(), 5);
}

void TstKtvctlValues::picture()
{
    const Answer answer = value({"plot", "--svg", "--model", "4200"});
    QXmlStreamReader reader(answer.out);
    int curves = 0;
    while (!reader.atEnd()) {
        if (reader.readNext() == QXmlStreamReader::StartElement
            && reader.name() == QString("polyline"))
            ++curves;
    }
    QVERIFY2(!reader.hasError(), qPrintable(reader.errorString()));
    QCOMPARE(curves, 24);
}

void TstKtvctlValues::wrongWords_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::newRow("no number") << QStringList {"format", "x", "--model", "420"};
    QTest::newRow("model") << QStringList {"format", "1", "--model", "421"};
    QTest::newRow("method") << QStringList {"format", "1", "--model", "420", "--method", "X"};
    QTest::newRow("unit") << QStringList {"format", "1", "--model", "420", "--unit", "H"};
    for (const char *current : {"20", "20mA", "2 A", "A", "20 a", ""})
        QTest::addRow("current '%s'", current)
            << QStringList {"format", "1", "--model", "420", "--current", current};
    QTest::newRow("code") << QStringList {"format", "1", "--model", "420", "--code", "20A"};
    QTest::newRow("temperature") << QStringList {"format",        "1", "--unit", "temperature",
                                                 "--temperature", "R"};
    QTest::newRow("method of tables") << QStringList {"tables", "--model", "420", "--method", "X"};
    QTest::newRow("method of a plot") << QStringList {"plot", "--model", "420", "--method", "X"};
}

void TstKtvctlValues::wrongWords()
{
    QFETCH(QStringList, words);
    const Answer answer = value(words);
    QCOMPARE(answer.code, 2);
    QVERIFY(!answer.error.isEmpty());
    QCOMPARE(answer.out, QString());
}

KTV_METER_TEST_MAIN(TstKtvctlValues)
#include "tst_ktvctl_values.moc"
