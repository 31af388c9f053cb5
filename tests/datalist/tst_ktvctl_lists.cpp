#include "ListStore.h"
#include "support/Ktvctl.h"
#include "support/Meter.h"

#include <QtTest>

/** The pick lists from the command line. */
class TstKtvctlLists : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();

    // Each row starts with the state that the previous row has left.
    void story_data();
    void story();
    void limitsThatCannotBeComparedWith_data();
    void limitsThatCannotBeComparedWith();
    void closedStore();
};

void TstKtvctlLists::initTestCase()
{
    ListStore::clear();
    ListStore::writeDefaults("EN", "obiectTyp", "Cable\nCable lug\nMotor\n");
    ListStore::writeDefaults("EN", "obiectName", "");
    ListStore::writeDefaults("EN", "materials", "Copper?0.00393\n");
    ListStore::writeDefaults("PL", "obiectTyp", "Silnik\n");
}

void TstKtvctlLists::story_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("output");
    const auto row = [](const char *name, const char *words, int exitCode, const QString &output) {
        QTest::newRow(name) << QString(words).split('|') << exitCode << output;
    };
    row("factory rows", "types|list", 0,
        "   1  factory  Cable\n   2  factory  Cable lug\n   3  factory  Motor\n");
    row("filter and limit", "types|list|--filter|CABLE|--limit|1", 0, "   1  factory  Cable\n");
    row("no user rows yet", "types|list|--user", 0, "");
    row("no user rows yet, JSON", "types|list|--user|--json", 0, "[]\n");
    row("add", "types|add|My motor", 0, "");
    row("added", "types|list|--user|--json", 0,
        "[{\"factory\":false,\"id\":4,\"value\":\"My motor\"}]\n");
    row("add again", "types|add|My motor", 1, "");
    row("add nothing", "types|add|", 2, "");
    row("rename", "types|update|4|Ours", 0, "");
    row("renamed", "types|list|--user", 0, "   4  user     Ours\n");
    row("rename a factory row", "types|update|1|Ours", 1, "");
    row("delete a factory row", "types|delete|1", 1, "");
    row("delete an absent row", "types|delete|99", 1, "");
    row("delete no number", "types|delete|99999999999", 2, "");
    row("only factory rows", "types|list|--factory|--limit|1", 0, "   1  factory  Cable\n");
    row("delete", "types|delete|4", 0, "");
    row("another language", "types|list|--lang|PL", 0, "   4  factory  Silnik\n");
    row("name", "names|add|Rotor", 0, "");
    row("names", "names|list", 0, "   1  user     Rotor\n");
    row("material", "materials|add|--|Foo|-0.004", 0, "");
    row("material without number", "materials|add|Foo|much", 2, "");
    row("materials", "materials|list|--json", 0,
        "[{\"alpha\":0.00393,\"factory\":true,\"id\":1,\"name\":\"Copper\"},"
        "{\"alpha\":-0.004,\"factory\":false,\"id\":2,\"name\":\"Foo\"}]\n");
    for (const char *number : {"0.0001", "-0.00025", "0.00005", "1", "1e17", "1.5e20"})
        row(number, QByteArray("materials|add|--|") + number + '|' + number, 0, "");
    row("all kinds of numbers", "materials|list|--json|--user", 0,
        "[{\"alpha\":-0.004,\"factory\":false,\"id\":2,\"name\":\"Foo\"},"
        "{\"alpha\":0.0001,\"factory\":false,\"id\":3,\"name\":\"0.0001\"},"
        "{\"alpha\":-0.00025,\"factory\":false,\"id\":4,\"name\":\"-0.00025\"},"
        "{\"alpha\":5e-05,\"factory\":false,\"id\":5,\"name\":\"0.00005\"},"
        "{\"alpha\":1,\"factory\":false,\"id\":6,\"name\":\"1\"},"
        "{\"alpha\":100000000000000000,\"factory\":false,\"id\":7,\"name\":\"1e17\"},"
        "{\"alpha\":1.5e+20,\"factory\":false,\"id\":8,\"name\":\"1.5e20\"}]\n");
    row("resistance limits", "limits-r|add|pair|2|", 0, "");
    row("resistance limits changed", "limits-r|update|1|pair|3|1", 0, "");
    row("resistance limits listed", "limits-r|list|--json", 0,
        "[{\"high\":\"3\",\"id\":1,\"low\":\"1\",\"name\":\"pair\"}]\n");
    row("resistance limits deleted", "limits-r|delete|1", 0, "");
    row("resistance limits gone", "limits-r|list", 0, "");
    row("temperature limits", "limits-t|add|warm|212|32|--unit|fahrenheit", 0, "");
    row("in kelvins", "limits-t|list|--unit|kelvin", 0, "   1  warm  373.15 K  273.15 K\n");
    row("in no unit", "limits-t|list|--unit|hot", 2, "");
    row("no such limit", "types|list|--limit|many", 2, "");
    row("no such list", "things|list", 2, "");
    row("no such verb", "types|sort", 2, "");
}

void TstKtvctlLists::story()
{
    QFETCH(QStringList, arguments);
    const Answer answer = ktvctl(QStringList("lists") + arguments);
    QTEST(answer.out, "output");
    QTEST(answer.code, "exitCode");
    QCOMPARE(answer.error.isEmpty(), answer.code == 0);
}

void TstKtvctlLists::limitsThatCannotBeComparedWith_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("remark");
    const auto row = [](const char *name, const char *command, const char *remark) {
        QTest::newRow(name) << QString::fromUtf8(command) << QString::fromUtf8(remark);
    };
    row("words", "limits-r|add|words|abc|1 m\u2126",
        "the high limit 'abc' is no number: nothing can be judged by it");
    row("an ohm in letters", "limits-r|add|letters|5 Ohm|1",
        "the high limit '5 Ohm' is no number: nothing can be judged by it");
    row("another unit", "limits-r|add|volts|5|5 V",
        "the low limit '5 V' is no number: nothing can be judged by it");
    row("decimal comma", "limits-t|add|comma|80|1,5",
        "the low limit '1,5' is no number: nothing can be judged by it");
    row("another unit of temperatures", "limits-t|add|other|80 \u00B0F|5",
        "the high limit '80 \u00B0F' is no number: nothing can be judged by it");
    row("the unit in effect", "limits-t|add|same|80 \u00B0F|5|--unit|fahrenheit", "");
    row("changed", "limits-t|update|1|warm|80|1..",
        "the low limit '1..' is no number: nothing can be judged by it");
    row("no bounds", "limits-r|add|none||", "the limit has no bounds: nothing can be judged by it");
    row("the wrong way round, prefixes counted", "limits-r|add|round|3 m\u2126|2 \u2126",
        "the low limit '2 \u2126' is above the high limit '3 m\u2126': nothing passes");
    row("one bound", "limits-r|add|single|5 m\u03A9|", "");
    row("two bounds", "limits-t|add|cold|80|5.5", "");
}

void TstKtvctlLists::limitsThatCannotBeComparedWith()
{
    // The store accepts any text, but ktvctl prints a warning.
    QFETCH(QString, command);
    QFETCH(QString, remark);
    const Answer answer = ktvctl(QStringList("lists") + command.split('|'));
    QCOMPARE(answer.code, 0);
    QCOMPARE(answer.error,
             remark.isEmpty() ? QString() : QStringLiteral("ktvctl: %1\n").arg(remark));
}

void TstKtvctlLists::closedStore()
{
    QVERIFY(QFile::remove(ListStore::file));
    QVERIFY(QDir().mkpath(ListStore::file));
    const Answer answer = typed("lists types list");
    QCOMPARE(answer.code, 1);
    QVERIFY(answer.error.contains("/media/sdcard/UserData/"));
}

KTV_METER_TEST_MAIN(TstKtvctlLists)
#include "tst_ktvctl_lists.moc"
