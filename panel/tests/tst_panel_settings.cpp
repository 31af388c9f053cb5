#include "PanelFixture.h"

#include "support/Volume.h"

#include "touch/ElidedLabel.h"
#include "touch/Theme.h"

#include <configuration/KTV_InterfaceConfig.h>
#include <datalist/KTV_DataList.h>
#include <datasource/KTV_DataSource.h>
#include <language/LangSerwis.h>
#include <language/helpManager.h>

#include <QDir>
#include <QDirIterator>
#include <QLineEdit>
#include <QProcess>
#include <QRegularExpression>
#include <QScrollArea>
#include <QScrollBar>
#include <QSet>
#include <QTextBrowser>

namespace {

const char *const pages[] = {"nav.Measure",  "nav.Record",      "nav.Lists",
                             "nav.WiFi",     "nav.USB",         "nav.Sound",
                             "nav.Settings", "nav.Accessories", "nav.About"};

/** Index of the page to which a widget belongs: "measure.start" belongs to "nav.Measure". */
int pageOf(const char *widget)
{
    const QString name = QStringLiteral("nav.") + QString::fromLatin1(widget).section('.', 0, 0);
    const auto *const page =
        std::find_if(std::begin(pages), std::end(pages), [&](const char *each) {
            return name.compare(QLatin1String(each), Qt::CaseInsensitive) == 0;
        });
    return int(page - std::begin(pages));
}

/** Every Text{…} in the sources. */
QVector<QStringList> writtenTexts()
{
    static const QRegularExpression form(
        QStringLiteral("Text\\s*\\{\\s*\"(\\w+)\",\\s*\"(\\w+)\",\\s*\"([^\"]*)\"\\s*\\}"));
    QVector<QStringList> texts;
    QDirIterator files(QStringLiteral(PANEL_SOURCES), {"*.cpp"}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        if (path.contains(QLatin1String("/tests/")))
            continue;
        auto matches = form.globalMatch(QString::fromUtf8(Meter::readFile(path)));
        while (matches.hasNext())
            texts += matches.next().capturedTexts().mid(1);
    }
    return texts;
}

/** Texts that are shown in English although the current language has another text for them. */
QStringList untranslated(const PanelFixture &panel, const LangSerwis &language)
{
    QSet<QString> english;
    QSet<QString> sameInBoth;
    for (const QStringList &text : writtenTexts()) {
        english += text.at(2);
        if (language.getText(text.at(0), text.at(1), QString()) == text.at(2))
            sameInBoth += text.at(2);
    }
    english -= sameInBoth;
    QStringList found;
    for (const QWidget *widget : panel.window.findChildren<QWidget *>()) {
        QString text;
        if (const auto *label = qobject_cast<const QLabel *>(widget))
            text = label->text();
        else if (const auto *field = qobject_cast<const FieldButton *>(widget))
            text = field->caption();
        else if (const auto *button = qobject_cast<const QAbstractButton *>(widget))
            text = button->text();
        if (english.contains(text))
            found += text;
    }
    return found;
}

bool isScrolled(const QWidget *widget)
{
    while (widget && !qobject_cast<const QScrollArea *>(widget))
        widget = widget->parentWidget();
    return widget;
}

/** Visible widgets that are too small to be touched, or whose text is cut off. */
QStringList problemsOf(const PanelFixture &panel, const QString &where)
{
    const int fingertip = Theme::px(44); // scaled with the window like everything else
    QStringList problems;
    for (const QWidget *widget : panel.window.findChildren<QWidget *>()) {
        if (!widget->isVisible())
            continue;
        const auto *button = qobject_cast<const QAbstractButton *>(widget);
        const auto *field = qobject_cast<const FieldButton *>(widget);
        const auto *label = qobject_cast<const QLabel *>(widget);
        const bool isTouched = button || qobject_cast<const QAbstractSlider *>(widget)
            || qobject_cast<const QLineEdit *>(widget);
        if (!label && (!isTouched || qobject_cast<const QScrollBar *>(widget)))
            continue;
        const auto report = [&](const QString &problem) {
            problems +=
                where + QLatin1Char(' ') + widget->objectName() + QLatin1Char(' ') + problem;
        };
        const QPoint corner = widget->mapTo(&panel.window, QPoint());
        QRect place(corner, widget->size());
        // A scrolled widget may be outside the window, but only above or below it.
        if (isScrolled(widget))
            place.setCoords(place.left(), 0, place.right(), 0);
        if (!panel.window.rect().contains(place))
            report(QStringLiteral("leaves the screen"));
        if (isTouched && (widget->width() < fingertip || widget->height() < fingertip))
            report(QStringLiteral("is %1 x %2").arg(widget->width()).arg(widget->height()));
        if (button && button->fontMetrics().horizontalAdvance(button->text()) > button->width() - 4)
            report(QStringLiteral("cannot be read whole: ") + button->text());
        if (field && field->captionWidth() > field->width())
            report(QStringLiteral("cannot be read whole: ") + field->caption());
        if (label && label->wordWrap() && label->heightForWidth(label->width()) > label->height())
            report(QStringLiteral("is too low: ") + label->text());
        const int needed = qobject_cast<const ElidedLabel *>(widget)
            ? widget->minimumSizeHint().width()
            : widget->sizeHint().width();
        if (label && !label->wordWrap() && needed > label->width())
            report(QStringLiteral("is too narrow: ") + label->text());
    }
    return problems;
}

} // namespace

/** The Settings, About and Help pages, and rules for all pages: texts and sizes. */
class TstPanelSettings : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void everyTextIsInEveryLanguageFile_data();
    void everyTextIsInEveryLanguageFile();
    void languageChangesEverythingAtOnce_data();
    void languageChangesEverythingAtOnce();
    void keyboardOfTheLanguage();
    void everythingCanBeTouchedAndRead_data();
    void everythingCanBeTouchedAndRead();
    void sheetsCanBeTouchedAndRead_data();
    void sheetsCanBeTouchedAndRead();
    void headerHasRoomForEverything_data();
    void headerHasRoomForEverything();
    void onAnotherScreen_data();
    void onAnotherScreen();
    void onASmallScreen();
    void unitOfTemperatures();
    void limitFollowsTheUnit();
    void appearance();
    void connectedKeyboard();
    void brightness();
    void factoryReset();
    void factoryResetWaitsForASeries();
    void closingAsksForASeries();
    void pictureBeforeTheLibrary();
    void firstStart();
    void aboutTheMeter();
    void alertOfTheCard_data();
    void alertOfTheCard();
    void help();
    void helpOnEveryPage_data();
    void helpOnEveryPage();
};

void TstPanelSettings::init()
{
    const QString directory = QStringLiteral("/media/sdcard/UserData");
    QDir(directory).removeRecursively();
    QDir().mkpath(directory);
}

// --- texts

void TstPanelSettings::everyTextIsInEveryLanguageFile_data()
{
    QTest::addColumn<QString>("code");
    for (const char *code : {"EN", "US", "PL", "DE"})
        QTest::newRow(code) << code;
}

void TstPanelSettings::everyTextIsInEveryLanguageFile()
{
    QFETCH(QString, code);
    LangSerwis language(QStringLiteral("/home/root/Langs/"), KTV_Configuration::KTV_420);
    QVERIFY(language.setLang(code));
    QCOMPARE(language.getCurrentLang(), code);
    const QVector<QStringList> texts = writtenTexts();
    QVERIFY(texts.size() > 150);
    QStringList missing;
    for (const QStringList &text : texts) {
        const QString there = language.getText(text.at(0), text.at(1), QString());
        if (there.isEmpty() || (code == QLatin1String("EN") && there != text.at(2)))
            missing += text.join(QLatin1Char('/'));
    }
    QCOMPARE(missing.join(QLatin1Char('\n')), QString());
}

void TstPanelSettings::languageChangesEverythingAtOnce_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("copper");
    QTest::newRow("Polish") << "Polski"
                            << "PL" << QStringLiteral("Mied\u017A");
    QTest::newRow("German") << "Deutsch"
                            << "DE"
                            << "Kupfer";
}

void TstPanelSettings::languageChangesEverythingAtOnce()
{
    QFETCH(QString, name);
    QFETCH(QString, code);
    PanelFixture panel;
    // Every page has been shown once, so every text has been set.
    for (const char *page : pages)
        TAP(panel, page);
    TAP(panel, "nav.Settings");
    QVERIFY(panel.chooseLanguage(name));

    LangSerwis language(QStringLiteral("/home/root/Langs/"), KTV_Configuration::KTV_420);
    QVERIFY(language.setLang(code));
    const auto text = [&](const char *section, const char *key) {
        return language.getText(QLatin1String(section), QLatin1String(key), QString());
    };
    QCOMPARE(untranslated(panel, language).join(QLatin1Char('\n')), QString());
    QCOMPARE(panel.buttonText("nav.Measure"), text("Main", "measure"));
    QCOMPARE(panel.buttonText("nav.About"), text("Panel", "about"));
    QCOMPARE(panel.buttonText("settings.reset"), text("Settings", "factoryReset"));
    TAP(panel, "nav.Measure");
    QCOMPARE(panel.buttonText("measure.kind.0"), text("Measure", "resistance"));
    TAP(panel, "nav.Lists", "lists.family.2");
    QCOMPARE(panel.buttonText("lists.add"), text("Lists", "add"));
    QTEST(panel.titles("lists.list").first(), "copper");
    QVERIFY(panel.list("lists.list")->row(0).detail.endsWith(text("Panel", "factory")));
    TAP(panel, "nav.USB");
    QCOMPARE(panel.titles("usb.choices").first(), text("USB", "network"));
    QCOMPARE(panel.session.library().get_InterfaceConfig()->getValue(KTV_InterfaceConfig::MAIN_Lang,
                                                                     QString()),
             code);
}

void TstPanelSettings::keyboardOfTheLanguage()
{
    PanelFixture panel;
    TAP(panel, "nav.Settings");
    QVERIFY(panel.chooseLanguage(QStringLiteral("Polski")));
    TAP(panel, "nav.Lists", "lists.add");
    const QString text = QStringLiteral("\u0141\u0105cznik Nr 7!");
    QVERIFY(panel.finger.type(text));
    QCOMPARE(panel.finger.see<QLineEdit>(QStringLiteral("sheet.line.0"))->text(), text);
    TAP(panel, "key.backspace", "key.done");
    QVERIFY(panel.titles("lists.list").contains(text.chopped(1)));
}

// --- sizes

void TstPanelSettings::everythingCanBeTouchedAndRead_data()
{
    everyTextIsInEveryLanguageFile_data();
}

void TstPanelSettings::everythingCanBeTouchedAndRead()
{
    QFETCH(QString, code);
    PanelFixture panel;
    QCOMPARE(panel.window.size(), QSize(800, 480));
    panel.session.setLanguage(code);
    Volume card(QStringLiteral("/media/sdcard/Clients"), 100);
    card.fill(85); // so that the header shows the alert
    panel.session.library().updateTimeDisk();
    QStringList problems;
    for (const char *page : pages) {
        TAP(panel, page);
        problems += problemsOf(panel, QLatin1String(page));
    }
    const struct
    {
        const char *page;
        const char *opens;
        const char *closes;
    } sheets[] = {
        {"nav.Measure", "measure.testObject", "sheet.ok"},
        {"nav.Measure", "measure.current", "sheet.cancel"},
        {"nav.Lists", "lists.add", "sheet.cancel"},
        {"nav.Settings", "settings.reset", "sheet.cancel"},
        {"nav.Settings", "nav.Help", "help.close"},
    };
    for (const auto &sheet : sheets) {
        TAP(panel, sheet.page, sheet.opens);
        problems += problemsOf(panel, QLatin1String(sheet.opens));
        TAP(panel, sheet.closes);
    }
    QCOMPARE(problems.join(QLatin1Char('\n')), QString());
    card.fill(0);
    panel.session.library().updateTimeDisk();
}

void TstPanelSettings::sheetsCanBeTouchedAndRead_data()
{
    onAnotherScreen_data();
}

void TstPanelSettings::sheetsCanBeTouchedAndRead()
{
    QFETCH(QSize, size);
    QFETCH(QString, code);
    const QString name = QStringLiteral("Substation North");
    PanelFixture panel(size);
    panel.session.setLanguage(code);
    QStringList problems;
    const auto look = [&](const char *sheet) {
        problems += panel.isSheetOpen() ? problemsOf(panel, QLatin1String(sheet))
                                        : QStringList(QStringLiteral("no sheet: %1").arg(sheet));
        panel.finger.tap(QStringLiteral("sheet.cancel"));
    };
    panel.window.showPage(3); // WiFi
    TAP(panel, "wifi.hidden");
    look("hidden network");
    QVERIFY(Finger::waitFor([&] { return panel.titles("wifi.list").contains(name); }));
    QVERIFY(panel.finger.tapRow(QStringLiteral("wifi.list"), name));
    TAP(panel, "wifi.join");
    TAP(panel, "sheet.ok"); // the pass phrase is too short, so an error is shown as well
    look("pass phrase");
    for (const auto outcome :
         {Networks::NotAnswering, Networks::PassPhraseRefused, Networks::NotFound}) {
        emit panel.session.networks().joined(name, outcome);
        look("not joined");
    }
    Recorder &recorder = panel.session.recorder();
    recorder.setWanted(1);
    recorder.start();
    QVERIFY(Finger::waitFor([&] { return recorder.isUnsaved() && !recorder.isRunning(); }));
    panel.window.showPage(1); // Record
    TAP(panel, "record.start");
    look("drop the series");
    panel.window.close();
    look("close the panel");
    QCOMPARE(problems.join(QLatin1Char('\n')), QString());
}

void TstPanelSettings::headerHasRoomForEverything_data()
{
    sheetsCanBeTouchedAndRead_data();
}

void TstPanelSettings::headerHasRoomForEverything()
{
    QFETCH(QSize, size);
    QFETCH(QString, code);
    PanelFixture panel(size);
    panel.session.setLanguage(code);
    Volume card(QStringLiteral("/media/sdcard/Clients"), 100);
    card.fill(85);
    panel.session.library().updateTimeDisk();
    panel.session.recorder().setWanted(Series::capacity);
    panel.session.recorder().start();
    QVERIFY(panel.finger.find(QStringLiteral("header.recording")));
    QVERIFY(!panel.labelText("header.alert").isEmpty());
    const QStringList problems =
        problemsOf(panel, QStringLiteral("header")).filter(QLatin1String(" header."))
        + problemsOf(panel, QStringLiteral("header")).filter(QLatin1String(" nav."));
    QCOMPARE(problems.join(QLatin1Char('\n')), QString());
    const QWidget *help = panel.finger.find(QStringLiteral("nav.Help"));
    QCOMPARE(help->mapTo(&panel.window, help->rect().topRight()).x(), size.width() - 1);
    card.fill(0);
    panel.session.library().updateTimeDisk();
}

void TstPanelSettings::onAnotherScreen_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QString>("code");
    for (const QSize &size : {QSize(480, 320), QSize(800, 480), QSize(1024, 600)})
        for (const char *code : {"EN", "US", "PL", "DE"})
            QTest::addRow("%d x %d, %s", size.width(), size.height(), code) << size << code;
}

void TstPanelSettings::onAnotherScreen()
{
    QFETCH(QSize, size);
    QFETCH(QString, code);
    PanelFixture panel(size);
    panel.session.setLanguage(code);
    // A series with every text that may be shown for one.
    Setup &setup = panel.session.setup();
    setup.setLimit({QStringLiteral("joint"), QString(), QStringLiteral("1 m\u2126")});
    setup.setObject(QStringLiteral("Transformer"), QStringLiteral("T1"));
    setup.setMaterial(QStringLiteral("Copper"), 0.00393);
    Recorder &recorder = panel.session.recorder();
    recorder.setWanted(2);
    recorder.start();
    panel.session.hardware().deliver(0.0012347F);
    panel.session.hardware().deliver(0.0012346F);
    QStringList problems;
    for (int page = 0; page < int(std::size(pages)); ++page) {
        panel.window.showPage(page);
        QTest::qWait(0);
        problems += problemsOf(panel, QLatin1String(pages[page]));
    }
    QCOMPARE(problems.join(QLatin1Char('\n')), QString());
    if (Theme::isCompact())
        return; // the pages of a small window are scrolled
    // The page fills the window: its lowest widget at the right ends a margin before the corner.
    for (const char *lowest : {"measure.start", "record.start", "lists.delete", "wifi.forget"}) {
        panel.window.showPage(pageOf(lowest));
        const QWidget *widget = panel.finger.find(QLatin1String(lowest));
        QVERIFY2(widget, lowest);
        const QPoint corner = widget->mapTo(&panel.window, widget->rect().bottomRight());
        const QPoint edge = panel.window.rect().bottomRight();
        QCOMPARE(edge - corner, QPoint(Theme::margin(), Theme::margin()));
    }
}

void TstPanelSettings::onASmallScreen()
{
    PanelFixture panel(QSize(480, 320));
    TAP(panel, "measure.start");
    QVERIFY(Finger::waitFor([&] { return panel.session.measurement().isDone(); }));
    for (const char *page : {"Record", "Lists", "Settings"}) {
        TAP(panel, "nav.menu");
        QVERIFY(panel.finger.tapRow(QStringLiteral("sheet.list"), QLatin1String(page)));
    }
    TAP(panel, "nav.menu");
    QVERIFY(panel.finger.tapRow(QStringLiteral("sheet.list"), QStringLiteral("Record")));
    TAP(panel, "record.start");
    QVERIFY(panel.session.recorder().isRunning());
    TAP(panel, "nav.menu");
    QVERIFY(panel.finger.tapRow(QStringLiteral("sheet.list"), QStringLiteral("Lists")));
    TAP(panel, "lists.add");
    QVERIFY(panel.fill({QStringLiteral("small")})); // the keyboard does not cover the line
    TAP(panel, "key.done");
    QVERIFY(!panel.isSheetOpen());
}

// --- settings

void TstPanelSettings::unitOfTemperatures()
{
    PanelFixture panel;
    TAP(panel, "nav.Settings", "settings.temperature.2", "nav.Measure", "measure.testObject");
    // 23.5 degrees Celsius
    const auto *temperature = panel.finger.find(QStringLiteral("object.3"));
    QVERIFY(temperature);
    TAP(panel, "sheet.ok", "measure.kind.2", "measure.start");
    QVERIFY(Finger::waitFor([&] { return !panel.session.hardware().isRunning(); }));
    QCOMPARE(panel.finger.see<ValueDisplay>(QStringLiteral("measure.value"))->value(),
             QStringLiteral("296.5 K"));
}

void TstPanelSettings::limitFollowsTheUnit()
{
    PanelFixture panel;
    QVERIFY(panel.session.library().get_DataList()->AddLimit_T(
        QStringLiteral("winding"), QStringLiteral("30"), QStringLiteral("0")));
    TAP(panel, "measure.kind.2");
    QVERIFY(panel.pick("measure.limit", QStringLiteral("winding")));
    TAP(panel, "nav.Settings", "settings.temperature.1", "nav.Measure", "measure.start");
    QVERIFY(Finger::waitFor([&] { return !panel.session.hardware().isRunning(); }));
    const auto *display = panel.finger.see<ValueDisplay>(QStringLiteral("measure.value"));
    QCOMPARE(display->value(), QStringLiteral("74.0 \u00B0F"));
    QCOMPARE(display->verdict(), QStringLiteral("Pass"));
    QCOMPARE(display->note(), QStringLiteral("32 \u00B0F \u2026 86 \u00B0F"));
}

void TstPanelSettings::appearance()
{
    {
        PanelFixture panel;
        TAP(panel, "nav.Settings", "settings.theme.1");
        QVERIFY(panel.window.grab().toImage().pixelColor(150, 300).lightness() < 60);
    }
    PanelFixture panel; // remembered
    QVERIFY(panel.window.grab().toImage().pixelColor(150, 300).lightness() < 60);
    TAP(panel, "nav.Settings", "settings.theme.0");
    QVERIFY(panel.window.grab().toImage().pixelColor(150, 300).lightness() > 200);
}

void TstPanelSettings::connectedKeyboard()
{
    PanelFixture panel;
    TAP(panel, "nav.Settings", "settings.keyboard.1", "nav.Lists", "lists.add");
    QVERIFY(!panel.finger.find(QStringLiteral("keyboard")));
    QTest::keyClicks(panel.finger.find(QStringLiteral("sheet.line.0")), QStringLiteral("aaa"));
    QTest::keyClick(panel.finger.find(QStringLiteral("sheet.line.0")), Qt::Key_Return);
    QVERIFY(!panel.isSheetOpen());
    QVERIFY(panel.titles("lists.list").contains(QStringLiteral("aaa")));
}

void TstPanelSettings::brightness()
{
    const QString display = QStringLiteral("/run/platform/brightness");
    {
        PanelFixture panel;
        TAP(panel, "nav.Settings", "settings.brightness.more");
        QCOMPARE(panel.labelText("settings.brightness.percent"), QStringLiteral("60 %"));
        QCOMPARE(Meter::readFile(display), QByteArray("60\n"));
        QFile::remove(display);
    }
    PanelFixture panel; // remembered
    QCOMPARE(Meter::readFile(display), QByteArray("60\n"));
    TAP(panel, "nav.Settings");
    for (int i = 0; i < 6; ++i)
        TAP(panel, "settings.brightness.less");
    QCOMPARE(Meter::readFile(display), QByteArray("10\n")); // the lowest brightness is not 0
    TAP(panel, "settings.reset", "sheet.yes");
    QVERIFY(Finger::waitFor([&] { return !panel.isSheetOpen(); }));
    QCOMPARE(Meter::readFile(display), QByteArray("50\n"));
    QCOMPARE(panel.labelText("settings.brightness.percent"), QStringLiteral("50 %"));
}

void TstPanelSettings::factoryReset()
{
    PanelFixture panel;
    TAP(panel, "nav.Record", "record.client");
    QVERIFY(panel.finger.type(QStringLiteral("a")));
    TAP(panel, "key.done");
    QCOMPARE(panel.fieldValue("record.client"), QStringLiteral("a"));
    QVERIFY(panel.session.library().get_DataList()->AddObiectTyp(QStringLiteral("aaa")));
    TAP(panel, "nav.Settings", "settings.temperature.1", "settings.theme.1", "settings.reset",
        "sheet.cancel");
    QCOMPARE(panel.session.preferences().temperatureUnit(), ValueBox::Temp_Fahrenheit);
    TAP(panel, "settings.reset", "sheet.yes");
    QVERIFY(panel.isAnnounced());
    QVERIFY(Finger::waitFor([&] { return !panel.isSheetOpen(); }));
    QCOMPARE(panel.session.preferences().temperatureUnit(), ValueBox::Temp_Celsius);
    QVERIFY(!panel.session.preferences().isDark());
    QVERIFY(panel.finger.see<QPushButton>(QStringLiteral("settings.temperature.0"))->isChecked());
    TAP(panel, "nav.Lists");
    QVERIFY(!panel.titles("lists.list").contains(QStringLiteral("aaa")));
    QVERIFY(!panel.titles("lists.list").isEmpty());
    TAP(panel, "nav.Record");
    QCOMPARE(panel.fieldValue("record.client"), QStringLiteral("None"));
}

void TstPanelSettings::factoryResetWaitsForASeries()
{
    PanelFixture panel;
    panel.session.recorder().setWanted(Series::capacity);
    TAP(panel, "nav.Record", "record.start", "nav.Settings");
    QVERIFY(!panel.finger.find(QStringLiteral("settings.reset"))->isEnabled());
    panel.session.recorder().stop();
    QVERIFY(panel.finger.find(QStringLiteral("settings.reset"))->isEnabled());
}

void TstPanelSettings::closingAsksForASeries()
{
    PanelFixture panel;
    Recorder &recorder = panel.session.recorder();
    recorder.setWanted(1);
    recorder.start();
    QVERIFY(!panel.window.close());
    QVERIFY(panel.window.isVisible());
    QVERIFY(!panel.window.close()); // does not ask a second time
    TAP(panel, "sheet.cancel");
    QVERIFY(!panel.isSheetOpen());
    QVERIFY(Finger::waitFor([&] { return !recorder.isRunning(); }));
    QVERIFY(!panel.window.close());
    TAP(panel, "sheet.yes");
    QVERIFY(!panel.window.isVisible());
}

void TstPanelSettings::pictureBeforeTheLibrary()
{
    // The library waits without a limit for the restart of the supplicant.
    Meter::setBehaviour(QStringLiteral("systemctl"), "hang=1");
    Meter::clearJournal();
    QProcess panel;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_LOGGING_RULES"),
                       QStringLiteral("qt.widgets.painting=true"));
    panel.setProcessEnvironment(environment);
    panel.setProcessChannelMode(QProcess::MergedChannels);
    panel.start(QStringLiteral(KTVPANEL), QStringList());
    QByteArray said;
    const bool isPainted = QTest::qWaitFor(
        [&] {
            said += panel.readAll();
            return said.contains("qt.widgets.painting: Flushing");
        },
        Meter::patience);
    const bool isWaiting = QTest::qWaitFor(
        [] {
            return Meter::journal()
                .join(QLatin1Char(' '))
                .contains(QLatin1String("systemctl restart"));
        },
        Meter::patience);
    panel.kill();
    panel.waitForFinished();
    Meter::setBehaviour(QStringLiteral("systemctl"), QByteArray());
    QVERIFY2(isPainted, said.right(1000).constData());
    QVERIFY(isWaiting);
}

void TstPanelSettings::firstStart()
{
    PanelFixture panel;
    panel.window.welcome();
    QCOMPARE(panel.titles("sheet.list"),
             QStringList({"Deutsch", "English", "Polski", "English (US)"}));
    QVERIFY(panel.finger.tapRow(QStringLiteral("sheet.list"), QStringLiteral("Deutsch")));
    QVERIFY(panel.isAnnounced());
    QVERIFY(Finger::waitFor([&] { return !panel.isSheetOpen(); }));
    QCOMPARE(panel.buttonText("nav.Measure"), QStringLiteral("Messen"));
}

// --- about, help

void TstPanelSettings::aboutTheMeter()
{
    PanelFixture panel;
    TAP(panel, "nav.About");
    QCOMPARE(panel.labelText("about.model"), QStringLiteral("QERN KTV-420"));
    QCOMPARE(panel.labelText("about.serial"), QStringLiteral("CH20417"));
    QCOMPARE(panel.labelText("about.interface"), QStringLiteral("3.8.2 - 2.4.17"));
    QCOMPARE(panel.labelText("about.system"), QStringLiteral("2.4.17"));
    QCOMPARE(panel.labelText("about.card"), QString());
    Meter::writeFile(QStringLiteral("/etc/korva/sdcard.error"), "1");
    TAP(panel, "about.check");
    QCOMPARE(panel.labelText("about.card"), QStringLiteral("The card has a fault"));
    QFile::remove(QStringLiteral("/etc/korva/sdcard.error"));
}

void TstPanelSettings::alertOfTheCard_data()
{
    QTest::addColumn<int>("percent");
    QTest::addColumn<QString>("alert");
    QTest::newRow("first level") << 75 << "The memory card is filling up";
    QTest::newRow("second level") << 85 << "The memory card is almost full";
}

void TstPanelSettings::alertOfTheCard()
{
    QFETCH(int, percent);
    Volume card(QStringLiteral("/media/sdcard/Clients"), 100);
    {
        PanelFixture panel;
        TAP(panel, "nav.About");
        QCOMPARE(panel.labelText("about.alert"), QString());
        card.fill(percent);
        TAP(panel, "about.check");
        QTEST(panel.labelText("about.alert"), "alert");
        QTEST(panel.labelText("header.alert"), "alert");
        QVERIFY(panel.labelText("about.disk").contains(QStringLiteral("Total 400.00 kB")));
    }
    PanelFixture panel;
    QTEST(panel.labelText("header.alert"), "alert");
    TAP(panel, "nav.About");
    card.fill(10);
    TAP(panel, "about.check");
    QCOMPARE(panel.labelText("header.alert"), QString());
}

void TstPanelSettings::help()
{
    PanelFixture panel;
    TAP(panel, "nav.Help");
    QCOMPARE(panel.labelText("help.number"), QStringLiteral("1 / 2"));
    const auto *text = panel.finger.see<QTextBrowser>(QStringLiteral("help.text"));
    const QString first = text->toPlainText();
    QVERIFY(first.startsWith(QLatin1String("Connecting the object")));
    TAP(panel, "help.next");
    QVERIFY(text->toPlainText() != first);
    QVERIFY(!panel.finger.find(QStringLiteral("help.next"))->isEnabled());
    panel.session.setLanguage(QStringLiteral("PL"));
    QCOMPARE(panel.labelText("help.number"), QStringLiteral("1 / 2"));
    QVERIFY(text->toPlainText() != first);
    panel.session.setLanguage(QStringLiteral("EN"));
    TAP(panel, "help.close", "nav.USB", "nav.Help");
    QVERIFY(text->toPlainText().startsWith(QLatin1String("The USB port")));
    panel.session.setSerialNumber(QStringLiteral("unknown"));
    QCOMPARE(text->toPlainText(), QStringLiteral("There is no help for this screen"));
    TAP(panel, "nav.Help");
    QVERIFY(panel.finger.find(QStringLiteral("usb.choices")));
}

void TstPanelSettings::helpOnEveryPage_data()
{
    everyTextIsInEveryLanguageFile_data();
}

void TstPanelSettings::helpOnEveryPage()
{
    QFETCH(QString, code);
    PanelFixture panel;
    QStringList missing;
    for (const char *serial : {"JD10233", "CH20417", "DV42006"}) {
        panel.session.setSerialNumber(QLatin1String(serial));
        panel.session.setLanguage(code);
        for (const char *page : pages) {
            const QString topic = QString::fromLatin1(page).section(QLatin1Char('.'), 1);
            if (!panel.session.library().getHelpManager()->HasHelp(topic))
                missing += QLatin1String(serial) + QLatin1Char(' ') + topic;
        }
    }
    QCOMPARE(missing.join(QLatin1Char('\n')), QString());
}

KTV_PANEL_TEST_MAIN(TstPanelSettings)

#include "tst_panel_settings.moc"
