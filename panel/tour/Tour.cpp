#include "Tour.h"

#include "app/Context.h"
#include "touch/Buttons.h"
#include "touch/Indicators.h"
#include "touch/TouchList.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QLabel>
#include <QLineEdit>
#include <QPixmap>
#include <QTextDocument>
#include <QTextStream>
#include <QTimer>
#include <QtTest>

namespace {

/** Thrown when something cannot be touched, or has not the expected result. */
struct Stumble
{
    QString what;
};

void print(const QString &line)
{
    QTextStream(stdout) << line << '\n';
}

} // namespace

Tour::Tour(Context &context, QWidget &window, const QString &pictures)
    : m_context(context)
    , m_window(window)
    , m_finger(window)
    , m_pictures(pictures)
    , m_hasPictures(!pictures.isEmpty())
{
    if (m_hasPictures)
        QDir().mkpath(pictures);
}

bool Tour::take()
{
    return carriedOut([this] {
        for (const auto part : {&Tour::begin, &Tour::lists, &Tour::measure, &Tour::record,
                                &Tour::longSeries, &Tour::wifi, &Tour::usb, &Tour::sound,
                                &Tour::settings, &Tour::accessories, &Tour::about, &Tour::help})
            (this->*part)();
    });
}

bool Tour::glance(const QString &name)
{
    return carriedOut([this, name] {
        for (const char *page :
             {"Measure", "Record", "Lists", "WiFi", "Sound", "Settings", "About"}) {
            open(QLatin1String(page));
            if (qstrcmp(page, "Measure") == 0)
                say(name + QStringLiteral(": ") + measureOnce());
            if (qstrcmp(page, "Record") == 0)
                recordOnce();
            picture(name + QLatin1Char('-') + QString::fromLatin1(page).toLower());
        }
        open(QStringLiteral("Lists"));
        tap(QStringLiteral("lists.search"));
        check(m_finger.type(QStringLiteral("tr")), QStringLiteral("the keyboard"));
        picture(name + QStringLiteral("-search"));
        tap(QStringLiteral("key.done"));
        tap(QStringLiteral("lists.clear"));
        tap(QStringLiteral("lists.add"));
        picture(name + QStringLiteral("-form"));
        tap(QStringLiteral("sheet.cancel"));
        open(QStringLiteral("Measure"));
    });
}

bool Tour::carriedOut(const std::function<void()> &parts)
{
    try {
        parts();
    } catch (const Stumble &stumble) {
        print(QStringLiteral("The tour stumbles: ") + stumble.what);
        picture(QStringLiteral("stumbled"));
        return false;
    }
    return true;
}

/** Replaces the present series by one of some readings. */
void Tour::recordOnce()
{
    Recorder &recorder = m_context.session().recorder();
    recorder.setWanted(25);
    tap(QStringLiteral("record.start"));
    if (m_finger.find(QStringLiteral("sheet.yes")))
        tap(QStringLiteral("sheet.yes"));
    check(Finger::waitFor([&] { return !recorder.isRunning(); }), QStringLiteral("a series ends"));
}

/** Opens a page; a small window has a menu instead of the rail. */
void Tour::open(const QString &page)
{
    if (m_finger.find(QStringLiteral("nav.menu"))) {
        tap(QStringLiteral("nav.menu"));
        check(m_finger.tapRow(QStringLiteral("sheet.list"), page), page);
    } else {
        tap(QStringLiteral("nav.") + page);
    }
}

// --- the tour

void Tour::begin()
{
    if (m_finger.find(QStringLiteral("sheet.list"))) {
        say(QStringLiteral("First start: the panel asks for the language"));
        picture(QStringLiteral("welcome"));
        check(m_finger.tapRow(QStringLiteral("sheet.list"), QStringLiteral("English")),
              QStringLiteral("English"));
        waitForSheet();
    }
    // The meter may have been used before, so settings are set to known values.
    tap(QStringLiteral("nav.Settings"));
    pick(QStringLiteral("settings.language"), QStringLiteral("English"));
    waitForSheet();
    for (const char *choice : {"settings.temperature.0", "settings.theme.0", "settings.keyboard.0"})
        tap(QLatin1String(choice));
}

void Tour::lists()
{
    tap(QStringLiteral("nav.Lists"));
    tap(QStringLiteral("lists.family.2"));
    tap(QStringLiteral("lists.search"));
    check(m_finger.type(QStringLiteral("al")), QStringLiteral("the keyboard"));
    const auto *list = m_finger.see<TouchList>(QStringLiteral("lists.list"));
    say(QStringLiteral("Lists: \"al\" finds %1 materials, the first is %2")
            .arg(list->rowCount())
            .arg(list->rowCount() > 0 ? list->row(0).title : QString()));
    picture(QStringLiteral("lists-search"));
    tap(QStringLiteral("key.done"));
    tap(QStringLiteral("lists.clear"));

    tap(QStringLiteral("lists.family.3"));
    const QString name = QStringLiteral("busbar joint");
    bool isThere = false;
    for (int i = 0; i < list->rowCount(); ++i)
        isThere = isThere || list->row(i).title == name;
    if (!isThere) {
        tap(QStringLiteral("lists.add"));
        check(m_finger.type(name), QStringLiteral("the name"));
        tap(QStringLiteral("sheet.line.1"));
        check(m_finger.type(QStringLiteral("1")), QStringLiteral("the lower limit"));
        tap(QStringLiteral("key.m\u2126"));
        tap(QStringLiteral("sheet.line.2"));
        check(m_finger.type(QStringLiteral("1.5")), QStringLiteral("the upper limit"));
        tap(QStringLiteral("key.m\u2126"));
        picture(QStringLiteral("lists-add"));
        tap(QStringLiteral("key.done"));
    }
    say(QStringLiteral("Lists: a limit of resistance, \"%1\"").arg(name));
    tap(QStringLiteral("lists.family.2"));
    picture(QStringLiteral("lists"));
}

void Tour::measure()
{
    tap(QStringLiteral("nav.Measure"));
    pick(QStringLiteral("measure.meter"), QStringLiteral("CH20417"));
    tap(QStringLiteral("measure.kind.0"));
    pick(QStringLiteral("measure.compensation"), QStringLiteral("None"));
    pick(QStringLiteral("measure.limit"), QStringLiteral("None"));
    say(QStringLiteral("Measure: %1").arg(measureOnce()));
    pick(QStringLiteral("measure.limit"), QStringLiteral("busbar joint"));
    say(QStringLiteral("Measure: %1").arg(measureOnce()));
    picture(QStringLiteral("measure"));
    pick(QStringLiteral("measure.compensation"), QStringLiteral("Copper"));
    say(QStringLiteral("Measure, as if at 20 °C: %1").arg(measureOnce()));
    picture(QStringLiteral("measure-compensated"));
    pick(QStringLiteral("measure.compensation"), QStringLiteral("None"));

    tap(QStringLiteral("measure.testObject"));
    tap(QStringLiteral("object.0.more"));
    picture(QStringLiteral("object"));
    tap(QStringLiteral("sheet.ok"));
    say(QStringLiteral("Measure, another object: %1").arg(measureOnce()));
    picture(QStringLiteral("measure-fail"));
    for (int i = 0; i < 3; ++i) {
        tap(QStringLiteral("measure.testObject"));
        tap(i < 1 ? QStringLiteral("object.0.more") : QStringLiteral("object.leads.%1").arg(i));
        if (i < 1)
            tap(QStringLiteral("object.0.more"));
        tap(QStringLiteral("sheet.ok"));
        const char *const what[] = {"above the range", "leads open", "leads swapped"};
        say(QStringLiteral("Measure, %1: %2").arg(QLatin1String(what[i]), measureOnce()));
        picture(QStringLiteral("measure-")
                + QString::fromLatin1(what[i]).replace(QLatin1Char(' '), QLatin1Char('-')));
    }
    tap(QStringLiteral("measure.testObject"));
    tap(QStringLiteral("object.leads.0"));
    for (int i = 0; i < 3; ++i)
        tap(QStringLiteral("object.0.less"));
    tap(QStringLiteral("sheet.ok"));
    tap(QStringLiteral("measure.kind.1"));
    say(QStringLiteral("Inductance: %1").arg(measureOnce()));
    tap(QStringLiteral("measure.kind.2"));
    say(QStringLiteral("Temperature: %1").arg(measureOnce()));
    tap(QStringLiteral("measure.kind.0"));

    const auto stepResistance = [this](const char *button) {
        tap(QStringLiteral("measure.testObject"));
        tap(QLatin1String(button));
        tap(QStringLiteral("sheet.ok"));
    };
    pick(QStringLiteral("measure.meter"), QStringLiteral("DW44019"));
    pick(QStringLiteral("measure.current"), QStringLiteral("200 A"));
    pick(QStringLiteral("measure.limit"), QStringLiteral("None"));
    stepResistance("object.0.less");
    say(QStringLiteral("Another meter, with 200 A: %1").arg(measureOnce()));
    picture(QStringLiteral("measure-200A"));
    stepResistance("object.0.more");
    pick(QStringLiteral("measure.limit"), QStringLiteral("busbar joint"));
    pick(QStringLiteral("measure.meter"), QStringLiteral("CH20417"));
}

void Tour::record()
{
    tap(QStringLiteral("nav.Record"));
    pick(QStringLiteral("record.count"), QStringLiteral("25"));
    pick(QStringLiteral("record.interval"), QStringLiteral("0.2 s"));
    tap(QStringLiteral("record.client"));
    while (!m_finger.see<QLineEdit>(QStringLiteral("sheet.line.0"))->text().isEmpty())
        tap(QStringLiteral("key.backspace"));
    check(m_finger.type(QStringLiteral("Substation 7/4")), QStringLiteral("the client"));
    picture(QStringLiteral("keyboard"));
    tap(QStringLiteral("key.done"));
    if (m_context.session().recorder().isUnsaved()) {
        tap(QStringLiteral("record.start"));
        tap(QStringLiteral("sheet.yes"));
    } else {
        tap(QStringLiteral("record.start"));
    }
    tap(QStringLiteral("nav.Lists"));
    check(Finger::waitFor([this] { return m_context.session().recorder().series().count() > 2; }),
          QStringLiteral("the recording goes on"));
    say(QStringLiteral("Record: goes on beside other pages, \"%1\"")
            .arg(m_finger.see<QPushButton>(QStringLiteral("header.recording"))->text()));
    picture(QStringLiteral("recording-elsewhere"));
    tap(QStringLiteral("header.recording"));
    check(Finger::waitFor([this] {
              const QWidget *save = m_finger.find(QStringLiteral("record.save"));
              return save && save->isEnabled();
          }),
          QStringLiteral("the series ends"));
    tap(QStringLiteral("record.plot"));
    picture(QStringLiteral("record"));
    tap(QStringLiteral("record.view.1"));
    picture(QStringLiteral("record-values"));
    tap(QStringLiteral("record.view.0"));
    tap(QStringLiteral("record.save"));
    check(Finger::waitFor([this] { return m_finger.find(QStringLiteral("sheet.message")); }),
          QStringLiteral("the series is saved"));
    const auto *message = m_finger.see<QLabel>(QStringLiteral("sheet.message"));
    check(message, QStringLiteral("a series is saved"));
    if (message)
        say(QStringLiteral("Record: %1").arg(message->text()));
    tap(QStringLiteral("sheet.ok"));
}

/** Measures for how long the screen does not react while a long series is recorded. */
void Tour::longSeries()
{
    constexpr int points = 10000;
    constexpr int watched = 50;
    Recorder &recorder = m_context.session().recorder();
    const int interval = recorder.interval();
    const int wanted = recorder.wanted();
    recorder.setInterval(0);
    recorder.setWanted(Series::capacity);
    tap(QStringLiteral("nav.About")); // the Record page is not visible at first
    recorder.start();
    const auto runUntil = [&recorder](int count) {
        QEventLoop loop;
        QObject::connect(&recorder, &Recorder::added, &loop, [&] {
            if (recorder.series().count() >= count)
                loop.quit();
        });
        loop.exec();
    };
    runUntil(points);
    tap(QStringLiteral("header.recording"));
    qint64 longest = 0;
    QElapsedTimer sinceBeat;
    sinceBeat.start();
    QTimer heart;
    QObject::connect(&heart, &QTimer::timeout, &heart,
                     [&] { longest = qMax(longest, sinceBeat.restart()); });
    heart.start(1);
    runUntil(recorder.series().count() + watched);
    heart.stop();
    tap(QStringLiteral("record.start"));
    say(QStringLiteral("Record: %1 readings; the screen stood still for %2 ms at most")
            .arg(recorder.series().count())
            .arg(longest));
    picture(QStringLiteral("record-long"));
    recorder.setInterval(interval);
    recorder.setWanted(wanted);
    recorder.start(); // replaces the long series
    recorder.stop();
}

void Tour::wifi()
{
    tap(QStringLiteral("nav.WiFi"));
    const auto list = [this] { return m_finger.see<TouchList>(QStringLiteral("wifi.list")); };
    check(Finger::waitFor([&] { return list()->rowCount() > 1; }),
          QStringLiteral("networks are found"));
    const QString name = QStringLiteral("Substation North");
    say(QStringLiteral("WiFi: %1 networks in reach").arg(list()->rowCount()));
    check(m_finger.tapRow(QStringLiteral("wifi.list"), name), name);
    tap(QStringLiteral("wifi.join"));
    check(m_finger.type(QStringLiteral("ohm-law-1827")), QStringLiteral("the pass phrase"));
    tap(QStringLiteral("key.done"));
    const auto isConnected = [this] {
        const auto *state = m_finger.see<QLabel>(QStringLiteral("wifi.state"));
        const auto *details = m_finger.see<QLabel>(QStringLiteral("wifi.details"));
        return state && !m_finger.find(QStringLiteral("sheet")) && !details->text().isEmpty()
            && state->text() == m_context.texts().text(Text {"WiFi", "connected", "Connected"});
    };
    check(Finger::waitFor(isConnected), QStringLiteral("joins"));
    const auto *details = m_finger.see<QLabel>(QStringLiteral("wifi.details"));
    QTextDocument text;
    text.setHtml(details->text());
    say(QStringLiteral("WiFi: connected, %1")
            .arg(text.toPlainText()
                     .split(QLatin1Char('\n'), Qt::SkipEmptyParts)
                     .join(QLatin1Char(' '))));
    picture(QStringLiteral("wifi"));
}

void Tour::usb()
{
    tap(QStringLiteral("nav.USB"));
    const auto choose = [this](const QString &title) {
        check(Finger::waitFor([&] {
                  return m_finger.tapRow(QStringLiteral("usb.choices"), title)
                      && m_finger.find(QStringLiteral("sheet"));
              }),
              title);
        QTest::qWait(300);
        picture(QStringLiteral("usb-switching"));
        check(Finger::waitFor([this] { return !m_finger.find(QStringLiteral("sheet")); }),
              QStringLiteral("the port is switched"));
        const auto row = m_finger.see<TouchList>(QStringLiteral("usb.choices"))->chosenRow();
        check(row && row->title == title, title);
        say(QStringLiteral("USB: %1").arg(row ? row->title : QStringLiteral("nothing")));
    };
    choose(QStringLiteral("Hardware calibration"));
    picture(QStringLiteral("usb"));
    choose(QStringLiteral("Network"));
}

void Tour::sound()
{
    tap(QStringLiteral("nav.Sound"));
    tap(QStringLiteral("sound.tone.6"));
    tap(QStringLiteral("sound.less"));
    say(QStringLiteral("Sound: volume %1")
            .arg(m_finger.see<QLabel>(QStringLiteral("sound.percent"))->text()));
    picture(QStringLiteral("sound"));
    tap(QStringLiteral("sound.more"));
}

void Tour::settings()
{
    tap(QStringLiteral("nav.Settings"));
    picture(QStringLiteral("settings"));
    for (const char *language : {"Polski", "Deutsch", "English"}) {
        pick(QStringLiteral("settings.language"), QLatin1String(language));
        waitForSheet();
        say(QStringLiteral("Settings: %1, so the first page is \"%2\"")
                .arg(QLatin1String(language),
                     m_finger.see<QPushButton>(QStringLiteral("nav.Measure"))->text()));
        if (qstrcmp(language, "English") != 0) {
            picture(QStringLiteral("settings-") + QLatin1String(language).left(2));
            tap(QStringLiteral("nav.Measure"));
            picture(QStringLiteral("measure-") + QLatin1String(language).left(2));
            tap(QStringLiteral("nav.Settings"));
        }
    }
    tap(QStringLiteral("settings.theme.1"));
    tap(QStringLiteral("nav.Measure"));
    say(QStringLiteral("Settings: dark; %1").arg(measureOnce()));
    picture(QStringLiteral("measure-dark"));
    tap(QStringLiteral("nav.Record"));
    recordOnce();
    picture(QStringLiteral("record-dark"));
    tap(QStringLiteral("nav.Settings"));
    tap(QStringLiteral("settings.theme.0"));
    tap(QStringLiteral("settings.reset"));
    picture(QStringLiteral("settings-reset"));
    tap(QStringLiteral("sheet.cancel"));
}

void Tour::accessories()
{
    if (!m_finger.find(QStringLiteral("nav.Accessories")))
        return; // the maker's own platform library is in use
    tap(QStringLiteral("nav.Accessories"));
    tap(QStringLiteral("accessories.scan"));
    picture(QStringLiteral("accessories"));
    const auto text = [this](const char *name) {
        return m_finger.see<QLabel>(QLatin1String(name))->text();
    };
    say(QStringLiteral("Accessories: QR code \"%1\"; %2")
            .arg(text("accessories.code"), text("accessories.update")));
    tap(QStringLiteral("accessories.print"));
    say(QStringLiteral("Accessories: a label, %1")
            .arg(text("sheet.message").trimmed().replace(QLatin1Char('\n'), QLatin1String(" | "))));
    picture(QStringLiteral("label"));
    tap(QStringLiteral("sheet.ok"));
}

void Tour::about()
{
    tap(QStringLiteral("nav.About"));
    say(QStringLiteral("About: %1, %2")
            .arg(m_finger.see<QLabel>(QStringLiteral("about.model"))->text(),
                 m_finger.see<QLabel>(QStringLiteral("about.disk"))->text().simplified()));
    picture(QStringLiteral("about"));
}

void Tour::help()
{
    tap(QStringLiteral("nav.Measure"));
    tap(QStringLiteral("nav.Help"));
    say(QStringLiteral("Help: page %1")
            .arg(m_finger.see<QLabel>(QStringLiteral("help.number"))->text()));
    picture(QStringLiteral("help"));
    tap(QStringLiteral("help.close"));
}

// --- tools

void Tour::say(const QString &line) const
{
    print(line);
}

void Tour::check(bool isWell, const QString &what)
{
    if (!isWell)
        throw Stumble {what};
}

void Tour::pick(const QString &button, const QString &title)
{
    tap(button);
    check(m_finger.tapRow(QStringLiteral("sheet.list"), title), title);
}

void Tour::waitForSheet()
{
    check(Finger::waitFor([this] { return !m_finger.find(QStringLiteral("sheet")); }),
          QStringLiteral("an open sheet closes"));
}

void Tour::picture(const QString &name)
{
    if (!m_hasPictures)
        return;
    QTest::qWait(30);
    m_window.grab().save(m_pictures.filePath(name + QStringLiteral(".png")));
}

QString Tour::measureOnce()
{
    tap(QStringLiteral("measure.start"));
    const auto *display = m_finger.see<ValueDisplay>(QStringLiteral("measure.value"));
    const QString measuring = m_context.texts().text(Text {"Panel", "measuring", "Measuring"});
    check(Finger::waitFor([&] { return display->verdict() != measuring; }),
          QStringLiteral("the measurement ends"));
    return display->value() + QStringLiteral("  ") + display->verdict();
}
