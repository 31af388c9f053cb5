#include "PanelFixture.h"

#include <datalist/KTV_DataList.h>
#include <datasource/KTV_DataSource.h>
#include <tools/Tools.h>
#include <wifi/KTV_Connection.h>
#include <wifi/Network.h>

#include <QDir>
#include <QPointer>
#include <QRegularExpression>
#include <QSemaphore>

#include <limits>
#include <memory>

using Buzzer::BuzzerClass;
using QERNTools::Tools;

namespace {

const QString platform = QStringLiteral("/run/platform/");
const QString stick = QStringLiteral("/media/usb/");

bool measure(PanelFixture &panel)
{
    return panel.finger.tap(QStringLiteral("nav.Measure"))
        && panel.finger.tap(QStringLiteral("measure.start"))
        && Finger::waitFor([&] { return !panel.session.hardware().isRunning(); });
}

/** Opens the WiFi page, waits until the network is listed, and touches it. */
bool chooseNetwork(PanelFixture &panel, const QString &name)
{
    return panel.finger.tap(QStringLiteral("nav.WiFi"))
        && Finger::waitFor([&] { return panel.titles("wifi.list").contains(name); })
        && panel.finger.tapRow(QStringLiteral("wifi.list"), name);
}

bool typePassPhrase(PanelFixture &panel, const QString &passPhrase)
{
    return panel.finger.tap(QStringLiteral("wifi.join")) && panel.finger.type(passPhrase)
        && panel.finger.tap(QStringLiteral("key.done"));
}

bool isConnecting(PanelFixture &panel, const QString &name)
{
    return Finger::waitFor(
        [&] { return panel.labelText("wifi.state") == QStringLiteral("Connecting to ") + name; });
}

/** Whether the sheet shows this text. */
bool sheetSays(const PanelFixture &panel, const QString &text)
{
    const QWidget *sheet = panel.finger.find(QStringLiteral("sheet"));
    const QList<QLabel *> labels = sheet ? sheet->findChildren<QLabel *>() : QList<QLabel *>();
    return std::any_of(labels.begin(), labels.end(),
                       [&text](const QLabel *label) { return label->text() == text; });
}

} // namespace

/** The Lists, WiFi, USB, Sound and Accessories pages, by touches. */
class TstPanelServices : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void searchAsYouType();
    void resultsAreVisibleWhileTyping_data();
    void resultsAreVisibleWhileTyping();
    void entriesOfEachList_data();
    void entriesOfEachList();
    void sameEntryTwice();
    void factoryRowsCannotBeChanged();
    void entriesOfOneName();
    void entriesThatAreRefused_data();
    void entriesThatAreRefused();
    void stateBeforeItIsRead();
    void scanThatTakesTooLong();
    void joinAndForgetANetwork();
    void joinANetworkBeyondAscii();
    void namesOfNetworks_data();
    void namesOfNetworks();
    void namesAreShownAsPlainText();
    void wrongPassPhrase();
    void failureToJoinIsShownOnAnyPage();
    void hiddenNetwork();
    void everyPassPhraseCanBeTyped_data();
    void everyPassPhraseCanBeTyped();
    void preferANetwork();
    void networkThatCannotBeStored();
    void switchWifiOff();
    void destroyedBeforeAScanIsReceived();
    void shortPassPhrase();
    void withoutWifi();
    void switchThePort_data();
    void switchThePort();
    void lineIsTakenFromItsOwner();
    void portThatCannotBeSwitched();
    void tones();
    void tonesDoNotBlock();
    void volume();
    void labelOfTheLastResult();
    void labelNamesTheObject();
    void labelThatCannotBePrinted();
    void codeInFrontOfTheReader();
    void stickAndUpdates();
};

void TstPanelServices::init()
{
    const QString directory = QStringLiteral("/media/sdcard/UserData");
    QDir(directory).removeRecursively();
    QDir().mkpath(directory);
    QDir(platform).removeRecursively();
    QDir(stick).removeRecursively();
    Meter::clearJournal();
}

void TstPanelServices::cleanup()
{
    for (const char *program : {"beep", "iwlist", "modprobe-usb-gadget", "systemctl"})
        Meter::setBehaviour(QLatin1String(program), QByteArray());
}

// --- lists

void TstPanelServices::searchAsYouType()
{
    PanelFixture panel;
    TAP(panel, "nav.Lists", "lists.family.2", "lists.search");
    const int all = panel.list("lists.list")->rowCount();
    QVERIFY(panel.finger.type(QStringLiteral("a")));
    const int some = panel.list("lists.list")->rowCount();
    QVERIFY(some < all);
    QVERIFY(panel.finger.type(QStringLiteral("luminium ")));
    QCOMPARE(panel.titles("lists.list"), QStringList("Aluminium alloy AlMgSi"));
    TAP(panel, "key.done", "lists.clear");
    QCOMPARE(panel.list("lists.list")->rowCount(), all);
}

void TstPanelServices::resultsAreVisibleWhileTyping_data()
{
    QTest::addColumn<QSize>("size");
    for (const QSize &size : {QSize(800, 480), QSize(1024, 600), QSize(480, 320)})
        QTest::addRow("%d x %d", size.width(), size.height()) << size;
}

void TstPanelServices::resultsAreVisibleWhileTyping()
{
    QFETCH(QSize, size);
    PanelFixture panel(size);
    panel.window.showPage(2);
    TAP(panel, "lists.family.2", "lists.search");
    QVERIFY(panel.finger.type(QStringLiteral("a")));
    const TouchList *list = panel.list("lists.list");
    QVERIFY(list->rowCount() > 2);
    const QWidget *keyboard = panel.finger.find(QStringLiteral("keyboard"));
    QVERIFY(keyboard);
    QRect seen = list->viewport()->visibleRegion().boundingRect();
    seen.setBottom(qMin(
        seen.bottom(),
        list->viewport()->mapFrom(&panel.window, keyboard->mapTo(&panel.window, QPoint())).y()));
    for (int row = 0; row < 2; ++row)
        QVERIFY2(seen.contains(list->rowRect(row)), qPrintable(QString::number(seen.height())));
    TAP(panel, "key.done");
    QVERIFY(panel.finger.find(QStringLiteral("header"))); // it is shown again
    QVERIFY(panel.finger.find(QStringLiteral("lists.add")));
}

void TstPanelServices::entriesOfEachList_data()
{
    QTest::addColumn<QString>("family");
    QTest::addColumn<QStringList>("values");
    QTest::addColumn<QString>("detail");
    QTest::newRow("object types") << "lists.family.0" << QStringList("aaa") << "";
    QTest::newRow("object names") << "lists.family.1" << QStringList("aaa") << "";
    QTest::newRow("materials") << "lists.family.2" << QStringList({"aaa", "0.0042"}) << "0.0042";
    QTest::newRow("limits of resistance")
        << "lists.family.3" << QStringList({"aaa", "1", "2.5"}) << "1 \u2026 2.5";
    QTest::newRow("limits of temperature")
        << "lists.family.4" << QStringList({"aaa", "-5", "80"}) << "-5 \u00B0C \u2026 80 \u00B0C";
    QTest::newRow("a limit at one side")
        << "lists.family.3" << QStringList({"aaa", "", "2.5"}) << "High 2.5";
}

void TstPanelServices::entriesOfEachList()
{
    QFETCH(QString, family);
    QFETCH(QStringList, values);
    PanelFixture panel;
    TAP(panel, "nav.Lists", qPrintable(family), "lists.add");
    QVERIFY(panel.fill(values));
    TAP(panel, "key.done");
    QVERIFY(!panel.isSheetOpen());
    QVERIFY(panel.finger.tapRow(QStringLiteral("lists.list"), QStringLiteral("aaa")));
    QTEST(panel.list("lists.list")->chosenRow()->detail, "detail");

    TAP(panel, "lists.rename", "sheet.line.0");
    QVERIFY(panel.finger.type(QStringLiteral("b")));
    TAP(panel, "key.done");
    QVERIFY(panel.finger.tapRow(QStringLiteral("lists.list"), QStringLiteral("aaab")));
    TAP(panel, "lists.delete", "sheet.cancel");
    QVERIFY(panel.titles("lists.list").contains(QStringLiteral("aaab")));
    TAP(panel, "lists.delete", "sheet.yes");
    QVERIFY(!panel.titles("lists.list").contains(QStringLiteral("aaab")));
}

void TstPanelServices::sameEntryTwice()
{
    PanelFixture panel;
    TAP(panel, "nav.Lists", "lists.add");
    QVERIFY(panel.finger.type(QStringLiteral("aaa")));
    TAP(panel, "key.done", "lists.add");
    QVERIFY(panel.finger.type(QStringLiteral("aaa")));
    TAP(panel, "key.done");
    QCOMPARE(panel.labelText("sheet.error"), QStringLiteral("This entry exists already"));
    QCOMPARE(panel.titles("lists.list").count(QStringLiteral("aaa")), 1);
}

void TstPanelServices::factoryRowsCannotBeChanged()
{
    PanelFixture panel;
    TAP(panel, "nav.Lists", "lists.family.2");
    QVERIFY(panel.finger.tapRow(QStringLiteral("lists.list"), QStringLiteral("Copper")));
    QVERIFY(panel.list("lists.list")->chosenRow()->detail.endsWith(QLatin1String("factory")));
    QVERIFY(!panel.finger.find(QStringLiteral("lists.rename"))->isEnabled());
    QVERIFY(!panel.finger.find(QStringLiteral("lists.delete"))->isEnabled());
}

void TstPanelServices::entriesOfOneName()
{
    PanelFixture panel;
    KTV_DataList *lists = panel.session.library().get_DataList();
    const QString name = QStringLiteral("joint");
    QVERIFY(lists->AddLimit_R(name, QStringLiteral("2"), QStringLiteral("1")));
    QVERIFY(lists->AddLimit_R(name, QStringLiteral("4"), QStringLiteral("3")));
    TAP(panel, "nav.Lists", "lists.family.3");
    QVERIFY(panel.finger.tapRow(QStringLiteral("lists.list"), name));
    const TouchRow chosen = *panel.list("lists.list")->chosenRow();
    panel.session.lists().refresh(); // as after a change of the language or unit
    QCOMPARE(panel.list("lists.list")->chosenRow()->id, chosen.id);
    TAP(panel, "lists.delete");
    const QList<QLabel *> labels =
        panel.finger.find(QStringLiteral("sheet"))->findChildren<QLabel *>();
    QVERIFY(std::any_of(labels.begin(), labels.end(), [&](const QLabel *label) {
        return label->text() == name + QStringLiteral("   ") + chosen.detail;
    }));
    TAP(panel, "sheet.yes");
    QCOMPARE(panel.titles("lists.list"), QStringList(name));
    QVERIFY(panel.list("lists.list")->row(0).id != chosen.id);
}

void TstPanelServices::entriesThatAreRefused_data()
{
    QTest::addColumn<QString>("family");
    QTest::addColumn<QStringList>("values");
    QTest::addColumn<QString>("error");
    QTest::newRow("no name") << "lists.family.0" << QStringList("") << "Enter a name";
    QTest::newRow("material without a coefficient")
        << "lists.family.2" << QStringList({"aaa", ""}) << "This is not a number";
    QTest::newRow("limit that is no number")
        << "lists.family.4" << QStringList({"aaa", "--", ""}) << "This is not a number";
    QTest::newRow("resistance that is no number")
        << "lists.family.3" << QStringList({"aaa", "", "1.."}) << "This is not a number";
    QTest::newRow("limit without bounds")
        << "lists.family.3" << QStringList({"aaa", "", ""}) << "Enter a low or a high limit";
    QTest::newRow("limits the wrong way round")
        << "lists.family.4" << QStringList({"aaa", "80", "5"})
        << "The lower limit is above the upper one";
}

void TstPanelServices::entriesThatAreRefused()
{
    QFETCH(QString, family);
    QFETCH(QStringList, values);
    PanelFixture panel;
    TAP(panel, "nav.Lists", qPrintable(family), "lists.add");
    QVERIFY(panel.fill(values));
    TAP(panel, "key.done");
    QTEST(panel.labelText("sheet.error"), "error");
    TAP(panel, "sheet.cancel");
    QVERIFY(!panel.titles("lists.list").contains(QStringLiteral("aaa")));
}

// --- WiFi

void TstPanelServices::stateBeforeItIsRead()
{
    PanelFixture panel;
    {
        const BusyPool pool; // nothing is read
        TAP(panel, "nav.WiFi");
        QCOMPARE(panel.labelText("wifi.state"), QStringLiteral("Searching"));
        QVERIFY(!panel.finger.find(QStringLiteral("wifi.power"))->isEnabled());
    }
    QVERIFY(Finger::waitFor(
        [&] { return panel.labelText("wifi.state") == QLatin1String("Not connected"); }));
    QVERIFY(panel.finger.find(QStringLiteral("wifi.power"))->isEnabled());
    QCOMPARE(panel.buttonText("wifi.power"), QStringLiteral("Switch WiFi off"));
}

void TstPanelServices::scanThatTakesTooLong()
{
    PanelFixture panel;
    Meter::setBehaviour(QStringLiteral("iwlist"), "hang=1");
    TAP(panel, "nav.WiFi");
    QCOMPARE(panel.labelText("wifi.note"), QStringLiteral("Searching"));
    QTRY_COMPARE(panel.labelText("wifi.note"),
                 QStringLiteral("The scan took longer than 5 s; scanning again"));
    Meter::setBehaviour(QStringLiteral("iwlist"), QByteArray());
    QTRY_VERIFY(!panel.titles("wifi.list").isEmpty()); // without leaving the page
    QCOMPARE(panel.labelText("wifi.note"), QString());
}

void TstPanelServices::joinAndForgetANetwork()
{
    const QString name = QStringLiteral("Substation North");
    PanelFixture panel;
    QVERIFY(chooseNetwork(panel, name));
    QCOMPARE(panel.titles("wifi.list").first(), name); // the strongest is the first
    QCOMPARE(panel.list("wifi.list")->row(0).bars, 4);
    QVERIFY(panel.list("wifi.list")->row(1).bars < 4);
    QVERIFY(!panel.finger.find(QStringLiteral("wifi.forget"))->isEnabled());
    QVERIFY(typePassPhrase(panel, QStringLiteral("ohm-law-1827")));
    QVERIFY(panel.isAnnounced());
    QVERIFY(Finger::waitFor(
        [&] { return panel.labelText("wifi.details").contains(QLatin1String("192.168.44.100")); }));
    QVERIFY(Finger::waitFor(
        [&] { return panel.labelText("wifi.state") == QLatin1String("Connected"); }));
    QVERIFY(!panel.labelText("wifi.details").contains(QLatin1String(":192")));

    QVERIFY(panel.finger.tapRow(QStringLiteral("wifi.list"), name));
    QCOMPARE(panel.list("wifi.list")->chosenRow()->detail, QStringLiteral("known"));
    TAP(panel, "wifi.forget", "sheet.yes");
    QVERIFY(panel.isAnnounced());
    QVERIFY(Finger::waitFor([&] {
        return panel.list("wifi.list")->chosenRow()
            && panel.list("wifi.list")->chosenRow()->detail.isEmpty();
    }));
    QVERIFY(Finger::waitFor(
        [&] { return panel.labelText("wifi.state") == QLatin1String("Not connected"); }));
}

void TstPanelServices::joinANetworkBeyondAscii()
{
    const QString name = QStringLiteral("Werkstatt K\u00F6ln");
    PanelFixture panel;
    QVERIFY(chooseNetwork(panel, name));
    QVERIFY(typePassPhrase(panel, QStringLiteral("Stromrichter2")));
    QVERIFY(Finger::waitFor([&] { return panel.labelText("wifi.details").contains(name); }));
    QVERIFY(panel.finger.tapRow(QStringLiteral("wifi.list"), name));
    QCOMPARE(panel.list("wifi.list")->chosenRow()->detail, QStringLiteral("known"));
    QCOMPARE(panel.titles("wifi.list").count(name), 1);
}

void TstPanelServices::namesOfNetworks_data()
{
    QTest::addColumn<QByteArray>("sent"); // as written in the file of access points
    QTest::addColumn<QString>("shown");
    QTest::newRow("letters of two and four bytes")
        << QByteArray("\xC5\x81\xC4\x85ka \xF0\x9F\x94\x8C")
        << QString::fromUtf8("\xC5\x81\xC4\x85ka \xF0\x9F\x94\x8C");
    QTest::newRow("what looks like an escape")
        << QByteArray("a\\\\x41b") << QStringLiteral("a\\x41b");
    QTest::newRow("a backslash") << QByteArray("a\\\\b") << QStringLiteral("a\\b");
    QTest::newRow("no UTF-8") << QByteArray("a\xFF") << QStringLiteral("a\\xFF");
    QTest::newRow("cut within a letter") << QByteArray("a\xC3") << QStringLiteral("a\\xC3");
    QTest::newRow("a line feed") << QByteArray("a\\nb") << QStringLiteral("a\\x0Ab");
}

void TstPanelServices::namesOfNetworks()
{
    QFETCH(QByteArray, sent);
    QFETCH(QString, shown);
    const QString radio = QStringLiteral("/run/meter/radio");
    const QByteArray usual = Meter::readFile(radio);
    Meter::writeFile(radio, "-50\t" + sent + "\t-\n");
    PanelFixture panel;
    TAP(panel, "nav.WiFi");
    const bool isListed = Finger::waitFor([&] { return !panel.titles("wifi.list").isEmpty(); });
    Meter::writeFile(radio, usual);
    QVERIFY(isListed);
    QCOMPARE(panel.titles("wifi.list"), QStringList(shown));
}

void TstPanelServices::namesAreShownAsPlainText()
{
    const QString name = QStringLiteral("<b>x</b>");
    const QString radio = QStringLiteral("/run/meter/radio");
    const QByteArray usual = Meter::readFile(radio);
    Meter::writeFile(radio, "-50\t<b>x</b>\tohm-law-1827\n");
    PanelFixture panel;
    const auto shownAsMarkup = [&] {
        QStringList labels;
        for (const QLabel *label : panel.window.findChildren<QLabel *>())
            if (label->isVisible() && label->text().contains(name)
                && label->textFormat() != Qt::PlainText)
                labels += label->text();
        return labels;
    };
    const bool isChosen = chooseNetwork(panel, name);
    Meter::writeFile(radio, usual);
    QVERIFY(isChosen);
    panel.session.networks().setPatience(0);
    TAP(panel, "wifi.join");
    QVERIFY(sheetSays(panel, QStringLiteral("Connect ") + name));
    QCOMPARE(shownAsMarkup(), QStringList());
    QVERIFY(panel.finger.type(QStringLiteral("ohm-law-1828")));
    {
        const BusyPool pool; // the connection is not checked
        TAP(panel, "key.done");
        QVERIFY(isConnecting(panel, name));
        QCOMPARE(shownAsMarkup(), QStringList());
    }
    QVERIFY(Finger::waitFor([&] { return panel.finger.find(QStringLiteral("sheet.yes")); }));
    QVERIFY(sheetSays(panel, name));
    QCOMPARE(shownAsMarkup(), QStringList());
}

void TstPanelServices::wrongPassPhrase()
{
    const QString name = QStringLiteral("Substation North");
    PanelFixture panel;
    QVERIFY(chooseNetwork(panel, name));
    panel.session.networks().setPatience(0);
    {
        const BusyPool pool;
        QVERIFY(typePassPhrase(panel, QStringLiteral("ohm-law-1828")));
        QVERIFY(isConnecting(panel, name));
    }
    QVERIFY(Finger::waitFor([&] { return panel.finger.find(QStringLiteral("sheet.yes")); }));
    QVERIFY(sheetSays(panel, QStringLiteral("Not joined: the pass phrase may be wrong")));
    QVERIFY(sheetSays(panel, name));
    QCOMPARE(panel.buttonText("sheet.yes"), QStringLiteral("Enter it again"));
    QVERIFY(panel.labelText("wifi.state") != QStringLiteral("Connecting to ") + name);
    TAP(panel, "sheet.yes");
    QVERIFY(sheetSays(panel, QStringLiteral("Connect ") + name));
    panel.session.networks().setPatience(std::numeric_limits<int>::max());
    QVERIFY(panel.finger.type(QStringLiteral("ohm-law-1827")));
    TAP(panel, "key.done");
    QVERIFY(Finger::waitFor(
        [&] { return panel.labelText("wifi.state") == QLatin1String("Connected"); }));
}

void TstPanelServices::failureToJoinIsShownOnAnyPage()
{
    const QString name = QStringLiteral("Substation North");
    PanelFixture panel;
    QVERIFY(chooseNetwork(panel, name));
    panel.session.networks().setPatience(0);
    {
        const BusyPool pool;
        QVERIFY(typePassPhrase(panel, QStringLiteral("ohm-law-1828")));
        QVERIFY(Finger::waitFor([&] { return !panel.isSheetOpen(); }));
        TAP(panel, "nav.Lists");
    }
    QVERIFY(Finger::waitFor([&] { return panel.isSheetOpen(); }));
    QVERIFY(sheetSays(panel, QStringLiteral("Not joined: the pass phrase may be wrong")));
    TAP(panel, "sheet.yes"); // asks for the pass phrase again
    QVERIFY(sheetSays(panel, QStringLiteral("Connect ") + name));
}

void TstPanelServices::hiddenNetwork()
{
    const QString name = QStringLiteral("Control Room");
    PanelFixture panel;
    TAP(panel, "nav.WiFi", "wifi.hidden");
    QVERIFY(panel.fill({name, QStringLiteral("four-wi")}));
    TAP(panel, "key.done");
    QCOMPARE(panel.labelText("sheet.error"),
             QStringLiteral("The pass phrase has 8 to 63 characters"));
    TAP(panel, "sheet.line.1");
    QVERIFY(panel.finger.type(QStringLiteral("re-kelvin"))); // now it is long enough
    panel.session.networks().setPatience(0);
    {
        const BusyPool pool;
        TAP(panel, "key.done");
        QVERIFY(isConnecting(panel, name));
    }
    QVERIFY(Meter::readFile(QStringLiteral("/etc/wpa_supplicant/wpa_supplicant-wlan0.conf"))
                .contains("ssid=\"Control Room\""));
    // The supplicant does not ask for it by name.
    QVERIFY(Finger::waitFor([&] { return panel.finger.find(QStringLiteral("sheet.yes")); }));
    QVERIFY(
        sheetSays(panel, QStringLiteral("Not joined: not found, or the pass phrase may be wrong")));
    QVERIFY(sheetSays(panel, name));
}

void TstPanelServices::everyPassPhraseCanBeTyped_data()
{
    QTest::addColumn<QString>("language");
    for (const char *language : {"EN", "US", "PL", "DE"})
        QTest::newRow(language) << language;
}

void TstPanelServices::everyPassPhraseCanBeTyped()
{
    QFETCH(QString, language);
    QString all;
    for (char16_t character = u' '; character <= u'~'; ++character)
        all += QChar(character);
    // One pass phrase cannot hold all of them. Spaces at its ends belong to it.
    const QStringList passPhrases {all.left(48), all.mid(48) + QLatin1Char(' ')};
    PanelFixture panel;
    panel.session.setLanguage(language);
    panel.session.networks().setPatience(std::numeric_limits<int>::max());
    for (const QString &passPhrase : passPhrases) {
        TAP(panel, "nav.WiFi", "wifi.hidden");
        QVERIFY(panel.fill({QStringLiteral(" a"), passPhrase}));
        TAP(panel, "key.done");
        QVERIFY(Finger::waitFor([&] { return !panel.isSheetOpen(); }));
        const std::unique_ptr<QList<WiFi::Network *>> known(
            panel.session.library().getConnection()->GetMyNetwork());
        QCOMPARE(known->size(), 1); // the second network has replaced the first of the same name
        QCOMPARE(known->first()->ESSID, QStringLiteral(" a"));
        QCOMPARE(known->first()->key, passPhrase);
        qDeleteAll(*known);
    }
    TAP(panel, "nav.Lists", "lists.add");
    QVERIFY(panel.fill({QStringLiteral(" aaa ")})); // spaces at the ends of an entry are removed
    TAP(panel, "key.done");
    QVERIFY(panel.titles("lists.list").contains(QStringLiteral("aaa")));
    TAP(panel, "lists.add");
    // Shift applies to one letter only.
    TAP(panel, "key.shift");
    QVERIFY(panel.finger.find(QStringLiteral("key.A")));
    TAP(panel, "key.A");
    QVERIFY(!panel.finger.find(QStringLiteral("key.A")));
}

void TstPanelServices::preferANetwork()
{
    PanelFixture panel;
    WiFi::KTV_Connection *connection = panel.session.library().getConnection();
    QVERIFY(connection->AddNetwork(QStringLiteral("North"), QStringLiteral("ohm-law-1827")));
    QVERIFY(connection->AddNetwork(QStringLiteral("South"),
                                   QString())); // the last one added is preferred
    const auto isPreferred = [](const char *name) {
        const QByteArray file =
            Meter::readFile(QStringLiteral("/etc/wpa_supplicant/wpa_supplicant-wlan0.conf"));
        const QByteArray entry = file.mid(file.indexOf(QByteArray("ssid=\"") + name + '"'));
        return entry.left(entry.indexOf('}')).contains("priority=");
    };
    QVERIFY(!isPreferred("North"));
    TAP(panel, "nav.WiFi");
    QVERIFY(panel.finger.tapRow(QStringLiteral("wifi.list"), QStringLiteral("North")));
    TAP(panel, "wifi.prefer");
    QVERIFY(panel.isAnnounced());
    QVERIFY(Finger::waitFor([&] { return !panel.isSheetOpen(); }));
    QVERIFY(isPreferred("North"));
    QVERIFY(!isPreferred("South"));
}

void TstPanelServices::networkThatCannotBeStored()
{
    const QString name = QStringLiteral("Workshop Guest");
    PanelFixture panel;
    QVERIFY(chooseNetwork(panel, name));
    QDir(QStringLiteral("/media/sdcard/UserData"))
        .removeRecursively(); // as if the card were removed
    TAP(panel, "wifi.join"); // an open network: no pass phrase is asked for
    QVERIFY(Finger::waitFor([&] { return panel.finger.find(QStringLiteral("sheet.message")); }));
    QCOMPARE(panel.labelText("sheet.message"), QStringLiteral("The operation failed"));
}

void TstPanelServices::switchWifiOff()
{
    PanelFixture panel;
    TAP(panel, "nav.WiFi");
    const auto offers = [&](const char *text) {
        return Finger::waitFor(
            [&] { return panel.buttonText("wifi.power") == QLatin1String(text); });
    };
    QVERIFY(offers("Switch WiFi off"));
    TAP(panel, "wifi.power");
    QVERIFY(offers("Switch WiFi on"));
    QCOMPARE(panel.labelText("wifi.state"), QStringLiteral("WiFi is off"));
    TAP(panel, "wifi.power");
    QVERIFY(offers("Switch WiFi off"));
}

void TstPanelServices::destroyedBeforeAScanIsReceived()
{
    QPointer<WiFi::Network> network;
    {
        PanelFixture panel;
        QSemaphore sent;
        WiFi::KTV_Connection *connection = panel.session.library().getConnection();
        connect(
            connection, &WiFi::KTV_Connection::WiFi_Scan, connection,
            [&](const QList<WiFi::Network *> *networks) {
                if (networks) // null if the scan has taken too long
                    network = networks->first();
                sent.release();
            },
            Qt::DirectConnection);
        TAP(panel, "nav.WiFi");
        // Blocks the event loop, so the signal stays in the queue.
        QVERIFY(sent.tryAcquire(1, Meter::patience));
        QVERIFY(network);
    }
    QVERIFY(network.isNull());
}

void TstPanelServices::shortPassPhrase()
{
    const QString name = QStringLiteral("Substation North");
    PanelFixture panel;
    QVERIFY(chooseNetwork(panel, name));
    QVERIFY(typePassPhrase(panel, QStringLiteral("1234567")));
    QCOMPARE(panel.labelText("sheet.error"),
             QStringLiteral("The pass phrase has 8 to 63 characters"));
}

void TstPanelServices::withoutWifi()
{
    // No adapter for "ls" to find, as when none is plugged in.
    Meter::setBehaviour(QStringLiteral("ls"), "silent=1");
    Meter::recordProgram(QStringLiteral("ls"));
    {
        PanelFixture panel;
        TAP(panel, "nav.WiFi");
        QVERIFY(!panel.finger.find(QStringLiteral("wifi.power"))->isEnabled());
        QVERIFY(!panel.finger.find(QStringLiteral("wifi.join"))->isEnabled());
        QCOMPARE(panel.labelText("wifi.state"), QStringLiteral("No WiFi adapter"));
        TAP(panel, "nav.Measure");
    }
    Meter::setBehaviour(QStringLiteral("ls"), QByteArray());
    Meter::showProgram(QStringLiteral("ls"));
}

// --- USB

void TstPanelServices::switchThePort_data()
{
    QTest::addColumn<QString>("choice");
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("owner");
    QTest::newRow("network") << "Network" << int(Tools::USB_RNDIS) << int(Tools::RS232_None);
    QTest::newRow("serial line") << "Free" << int(Tools::USB_RS232) << int(Tools::RS232_None);
    QTest::newRow("console") << "Console" << int(Tools::USB_RS232) << int(Tools::RS232_Console);
    QTest::newRow("hardware calibration")
        << "Hardware calibration" << int(Tools::USB_RS232) << int(Tools::RS232_HardwareCalibration);
    QTest::newRow("system calibration")
        << "System calibration" << int(Tools::USB_RS232) << int(Tools::RS232_SystemCalibration);
}

void TstPanelServices::switchThePort()
{
    QFETCH(QString, choice);
    PanelFixture panel;
    TAP(panel, "nav.USB");
    for (const char *program : {"modprobe-usb-gadget", "systemctl"})
        Meter::setBehaviour(QLatin1String(program), "delay=0.3");
    int ticks = 0;
    QTimer tick;
    connect(&tick, &QTimer::timeout, this, [&] { ++ticks; });
    // A touch has no effect while the page is still reading the state of the port.
    QVERIFY(Finger::waitFor([&] {
        return panel.finger.tapRow(QStringLiteral("usb.choices"), choice) && panel.isSheetOpen();
    }));
    tick.start(20);
    QVERIFY(Finger::waitFor([&] { return !panel.isSheetOpen(); }));
    QVERIFY(ticks > 1); // the event loop has run meanwhile
    QCOMPARE(panel.list("usb.choices")->chosenRow()->title, choice);
    QCOMPARE(panel.labelText("usb.note"), QString());
    QTEST(int(Tools::detectCurrentMode()), "mode");
    QTEST(int(Tools::getRS232_Function()), "owner");
}

void TstPanelServices::lineIsTakenFromItsOwner()
{
    PanelFixture panel;
    QVERIFY(Tools::StartRS232());
    QVERIFY(Tools::setRS232Mode(Tools::RS232_Console));
    TAP(panel, "nav.USB");
    QVERIFY(Finger::waitFor([&] {
        return panel.finger.tapRow(QStringLiteral("usb.choices"), QStringLiteral("Free"))
            && panel.isSheetOpen();
    }));
    QVERIFY(Finger::waitFor([&] { return !panel.isSheetOpen(); }));
    QCOMPARE(panel.list("usb.choices")->chosenRow()->title, QStringLiteral("Free"));
    QCOMPARE(panel.labelText("usb.note"), QString());
    QCOMPARE(Tools::detectCurrentMode(), Tools::USB_RS232);
    QCOMPARE(Tools::getRS232_Function(), Tools::RS232_None);
}

void TstPanelServices::portThatCannotBeSwitched()
{
    PanelFixture panel;
    QVERIFY(Tools::StartRS232());
    TAP(panel, "nav.USB");
    Meter::setBehaviour(QStringLiteral("modprobe-usb-gadget"), "stdout=no such device");
    QVERIFY(Finger::waitFor([&] {
        return panel.finger.tapRow(QStringLiteral("usb.choices"), QStringLiteral("Network"))
            && panel.isSheetOpen();
    }));
    QVERIFY(Finger::waitFor([&] { return !panel.isSheetOpen(); }));
    // In the simulated meter a process imitates the driver; that process holds the line, too.
    const QString english = panel.labelText("usb.note");
    QVERIFY2(english.startsWith(
                 QLatin1String("The port could not be switched: its serial line is held by ")),
             qPrintable(english));
    panel.session.setLanguage(QStringLiteral("DE"));
    const QString german = panel.labelText("usb.note");
    QVERIFY2(german.startsWith(
                 QStringLiteral("Umschalten fehlgeschlagen: die serielle Leitung h\u00E4lt ")),
             qPrintable(german));
}

// --- sound

void TstPanelServices::tones()
{
    PanelFixture panel;
    TAP(panel, "nav.Sound");
    for (int tone = BuzzerClass::Tone_Decline; tone <= BuzzerClass::Tone_Melody; ++tone)
        QVERIFY(panel.finger.find(QStringLiteral("sound.tone.%1").arg(tone)));
    TAP(panel, "sound.tone.1");
    const QString decline = QStringLiteral("beep -f 1400 -l 100 -d 0 -r 1");
    QVERIFY(Finger::waitFor([&] { return Meter::journal().contains(decline); }));

    TAP(panel, "sound.tone.8"); // repeated until it is silenced
    const QString alarm = QStringLiteral("beep -f 2470 -l 600 -d 200 -r 2");
    QVERIFY(Finger::waitFor([&] { return Meter::journal().count(alarm) > 1; }));
    TAP(panel, "sound.stop");
    QVERIFY(Finger::waitFor([] { return Meter::processes(QStringLiteral("beep")).isEmpty(); }));

    TAP(panel, "sound.switch.1");
    Meter::clearJournal();
    TAP(panel, "sound.tone.1", "nav.Lists", "nav.Sound", "sound.switch.0", "sound.tone.13");
    QVERIFY(Finger::waitFor(
        [&] { return Meter::journal().contains("beep -f 2470 -l 300 -d 0 -r 1"); }));
    QVERIFY(!Meter::journal().contains(decline));
}

void TstPanelServices::tonesDoNotBlock()
{
    Meter::setBehaviour(QStringLiteral("beep"), "delay=60");
    PanelFixture panel;
    const auto isSounding = [] { return !Meter::processes(QStringLiteral("beep")).isEmpty(); };
    TAP(panel, "nav.Sound", "sound.tone.8");
    QVERIFY(Finger::waitFor(isSounding));
    TAP(panel, "sound.stop");
    QVERIFY(isSounding()); // silencing does not block the interface until the sound has ended
    Meter::killProcesses(QStringLiteral("beep"));
    QVERIFY(Finger::waitFor([&] { return !isSounding(); }));
    TAP(panel, "sound.tone.8");
    QVERIFY(Finger::waitFor(isSounding));
    TAP(panel, "nav.About");
    QVERIFY(isSounding());
    Meter::killProcesses(QStringLiteral("beep")); // the panel ends after it
}

void TstPanelServices::volume()
{
    PanelFixture panel;
    TAP(panel, "nav.Sound", "sound.less", "sound.less");
    QCOMPARE(panel.labelText("sound.percent"), QStringLiteral("50 %"));
    QVERIFY(Finger::waitFor(
        [] { return Meter::readFile(QStringLiteral("/run/meter/volume")).trimmed() == "50"; }));
}

// --- accessories

void TstPanelServices::labelOfTheLastResult()
{
    PanelFixture panel;
    TAP(panel, "nav.Accessories");
    QCOMPARE(panel.labelText("accessories.result"), QStringLiteral("None"));
    QVERIFY(!panel.finger.find(QStringLiteral("accessories.print"))->isEnabled());

    QVERIFY(measure(panel));
    const QString result = panel.finger.see<ValueDisplay>(QStringLiteral("measure.value"))->value();
    TAP(panel, "nav.Accessories");
    QCOMPARE(panel.labelText("accessories.result"), result);
    TAP(panel, "accessories.print");
    const QStringList lines =
        QString::fromUtf8(Meter::readFile(platform + "label-1.txt")).split(QLatin1Char('\n'));
    QCOMPARE(lines.size(), 4); // with the empty text after the last line feed
    QCOMPARE(lines.at(0), QStringLiteral("QERN KTV-420  CH20417"));
    const QRegularExpression time(QStringLiteral("^\\d\\d/\\d\\d/\\d{4} \\d\\d:\\d\\d$"));
    QVERIFY2(time.match(lines.at(1)).hasMatch(), qPrintable(lines.at(1)));
    QCOMPARE(lines.at(2), result);
    QCOMPARE(panel.labelText("sheet.message"), lines.join(QLatin1Char('\n')));
}

void TstPanelServices::labelNamesTheObject()
{
    PanelFixture panel;
    panel.session.setup().setObject(QStringLiteral("Motor"), QStringLiteral("M7"));
    QVERIFY(measure(panel));
    panel.session.setup().setObject(QString(), QString()); // the object of the next measurement
    TAP(panel, "nav.Accessories", "accessories.print");
    QCOMPARE(panel.labelText("sheet.message").section(QLatin1Char('\n'), 2, 2),
             QStringLiteral("Motor \u00B7 M7"));
}

void TstPanelServices::labelThatCannotBePrinted()
{
    PanelFixture panel;
    QVERIFY(measure(panel));
    QDir(platform).removeRecursively();
    Meter::writeFile(platform.chopped(1), "in the way");
    TAP(panel, "nav.Accessories", "accessories.print");
    QCOMPARE(panel.labelText("sheet.message"), QStringLiteral("The operation failed"));
    QFile::remove(platform.chopped(1));
}

void TstPanelServices::codeInFrontOfTheReader()
{
    PanelFixture panel;
    TAP(panel, "nav.Accessories", "accessories.scan");
    QCOMPARE(panel.labelText("accessories.code"), QStringLiteral("No code before the reader"));
    Meter::writeFile(platform + "qr-code", "Transformer 7\n");
    TAP(panel, "accessories.scan");
    QCOMPARE(panel.labelText("accessories.code"), QStringLiteral("Transformer 7"));
}

void TstPanelServices::stickAndUpdates()
{
    PanelFixture panel;
    TAP(panel, "nav.Accessories");
    QCOMPARE(panel.labelText("accessories.noStick"), QStringLiteral("Insert a USB memory"));
    QCOMPARE(panel.labelText("accessories.update"), QStringLiteral("No update was found"));

    Meter::writeFile(stick + "report.csv", "x");
    Meter::writeFile(stick + "3.9.update", "x");
    TAP(panel, "accessories.check");
    QCOMPARE(panel.titles("accessories.files"), QStringList({"3.9.update", "report.csv"}));
    QVERIFY(panel.list("accessories.files")->row(0).isMarked);
    QVERIFY(!panel.list("accessories.files")->row(1).isMarked);
    QVERIFY(!panel.finger.find(QStringLiteral("accessories.noStick")));
    QCOMPARE(panel.labelText("accessories.update"),
             QStringLiteral("An update was found: 3.9.update"));
    panel.session.setSerialNumber(QStringLiteral("DV42006")); // the library has a new updater
    TAP(panel, "accessories.check");
    QCOMPARE(panel.labelText("accessories.update"),
             QStringLiteral("An update was found: 3.9.update"));
}

KTV_PANEL_TEST_MAIN(TstPanelServices)

#include "tst_panel_services.moc"
