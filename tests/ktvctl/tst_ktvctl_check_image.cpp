#include "support/Ktvctl.h"
#include "support/Meter.h"

#include <QDir>
#include <QJsonObject>
#include <QtTest>

namespace {

const QString clean = QStringLiteral("/tmp/clean");
const QString image = QStringLiteral("/tmp/image");

/** A root file system in a folder: the meter's own data, and links as an image has them. */
const char *const makeClean = R"(
    set -e
    mkdir -p home etc/wpa_supplicant usr/bin usr/lib/systemd/system
    cp -a /home/root home/
    cp -a /etc/wav /etc/version /etc/locale.conf /etc/systemd etc/
    : >usr/lib/systemd/system/wpa_supplicant@.service
    : >usr/bin/busybox
    chmod +x usr/bin/busybox
    ln -s /usr/bin bin
    for program in sh grep ls cat ps kill killall pkill ifconfig; do
        ln -s /bin/busybox usr/bin/$program
    done
    for program in modprobe-usb-gadget socat mactool systemctl wpa_passphrase iwgetid iwconfig \
        iwlist aplay amixer beep; do
        ln -s busybox usr/bin/$program
    done)";

void run(const QString &script, const QString &folder)
{
    QProcess shell;
    shell.setWorkingDirectory(folder);
    shell.start("sh", {"-c", script});
    if (!shell.waitForFinished() || shell.exitCode() != 0)
        qFatal("the image cannot be prepared: %s", shell.readAllStandardError().constData());
}

} // namespace

/** ktvctl check-image on the meter, and on folders with every kind of fault. */
class TstKtvctlCheckImage : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();

    void deviceIsClean();
    void imageIsClean();
    void faults_data();
    void faults();
    void warningsAloneAreNoFailure();
    void json();
    void noFolder();
};

void TstKtvctlCheckImage::initTestCase()
{
    QDir().mkpath(clean);
    run(makeClean, clean);
}

void TstKtvctlCheckImage::init()
{
    QDir(image).removeRecursively();
    run("cp -a " + clean + ' ' + image, "/tmp");
}

void TstKtvctlCheckImage::deviceIsClean()
{
    const Answer answer = typed("check-image");
    QCOMPARE(answer.out, QString());
    QCOMPARE(answer.error, QString());
    QCOMPARE(answer.code, 0);
}

void TstKtvctlCheckImage::imageIsClean()
{
    const Answer answer = ktvctl({"check-image", image});
    QCOMPARE(answer.out, QString());
    QCOMPARE(answer.error, QString());
    QCOMPARE(answer.code, 0);
    // A link cannot lead out of the image.
    run("ln -sf ../../../../../../../bin/sh usr/bin/ps", image);
    QCOMPARE(ktvctl({"check-image", image}).out, QString());
    // The description in the image is used, not that of the device.
    run("mkdir srv; mv home/root/Langs srv/Texts; "
        "sed -i s,/home/root/Langs/,/srv/Texts/, home/root/globalInfo.xml",
        image);
    QCOMPARE(ktvctl({"check-image", image + '/'}).out, QString());
}

void TstKtvctlCheckImage::faults_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QString>("lines");
    const auto row = [](const char *name, const char *script, const char *lines) {
        QTest::newRow(name) << script << QString::fromUtf8(lines) + '\n';
    };
    // clang-format off: name of the fault, commands that cause it, expected findings
    row("no description", "rm home/root/globalInfo.xml",
        "/home/root/globalInfo.xml: warning: missing: every default applies, and without it the "
        "library knows no sound samples");
    row("description does not parse", "echo '<info>' >home/root/globalInfo.xml",
        "/home/root/globalInfo.xml:2: error: unexpected end of file");
    row("unknown setting",
        "echo '<i>\n<_logdirectory Value=\"/x/\"/></i>' >home/root/globalInfo.xml",
        "/home/root/globalInfo.xml:2: warning: there is no setting '_logdirectory'");
    row("setting without a value",
        "echo '<i>\n<_soundOff value=\"true\"/></i>' >home/root/globalInfo.xml",
        "/home/root/globalInfo.xml:2: error: '_soundOff' has no attribute 'Value'");
    row("setting twice",
        "echo '<i>\n<_soundOff Value=\"true\"/>\n<_soundOff Value=\"\"/></i>' "
        ">home/root/globalInfo.xml",
        "/home/root/globalInfo.xml:3: warning: '_soundOff' is set above already");
    row("directory without a slash",
        "echo '<i><_logDirectory Value=\"/x\"/></i>' >home/root/globalInfo.xml",
        "/home/root/globalInfo.xml:1: error: _logDirectory: the directory '/x' does not end in a "
        "slash");
    row("number that falls back",
        "echo '<i><_batteryAlarm1 Value=\"1O\"/></i>' >home/root/globalInfo.xml",
        "/home/root/globalInfo.xml:1: error: _batteryAlarm1: '1O' is no number and counts as '10'");
    row("switch that falls back",
        "echo '<i><_rebootOff Value=\"yes\"/></i>' >home/root/globalInfo.xml",
        "/home/root/globalInfo.xml:1: error: _rebootOff: 'yes' is neither true nor false and "
        "counts "
        "as 'false'");

    row("no English",
        "cd home/root; mv Langs/EN Langs/FR; mv Langs/FR/EN.xml Langs/FR/FR.xml; rm -r Help/*",
        "/home/root/Langs/EN: error: missing: it is what every language falls back to\n"
        "/home/root/Help/KTV_410: warning: the model has no help page\n"
        "/home/root/Help/KTV_420: warning: the model has no help page\n"
        "/home/root/Help/KTV_4200: warning: the model has no help page");
    row("language without a file", "rm home/root/Langs/DE/DE.xml",
        "/home/root/Langs/DE/DE.xml: error: cannot be read");
    row("language does not parse", "echo '<l><Lang></l>' >home/root/Langs/DE/DE.xml",
        "/home/root/Langs/DE/DE.xml:1: error: tag mismatch");
    row("language too large", "head -c 5000000 /dev/zero >home/root/Langs/DE/DE.xml",
        "/home/root/Langs/DE/DE.xml: error: larger than 4 MiB");
    row("folder that is no language",
        "mv home/root/Langs/DE home/root/Langs/De; mv home/root/Langs/De/DE.xml "
        "home/root/Langs/De/De.xml; "
        "for page in $(find home/root/Help -name '*_DE.html'); do rm $page; done",
        "/home/root/Langs/De: error: is offered as a language, but its name is no code of two "
        "capital letters");
    row("no section",
        "sed -i '/<Lang>/,/<\\/Lang>/!{/<Main>/,/<\\/Main>/d}' home/root/Langs/DE/DE.xml",
        "/home/root/Langs/DE/DE.xml: warning: no section 'Main', which EN has");
    row("no text", "sed -i '/<welcome value=/d' home/root/Langs/DE/DE.xml",
        "/home/root/Langs/DE/DE.xml:11: warning: no text 'Main/welcome', which EN has");
    row("text without a value",
        "sed -i 's/<welcome value=/<welcome Value=/' home/root/Langs/DE/DE.xml",
        "/home/root/Langs/DE/DE.xml:28: error: 'Main/welcome' has no attribute 'value'");
    row("text twice", "sed -i 's/<welcome value.*/&&/' home/root/Langs/DE/DE.xml",
        "/home/root/Langs/DE/DE.xml:28: error: 'Main/welcome' stands above already");
    row("section twice", "sed -i 's,</Main>,&<Main/>,' home/root/Langs/DE/DE.xml",
        "/home/root/Langs/DE/DE.xml:29: error: the section 'Main' stands above already: only that "
        "one "
        "is read");
    row("no keyboard", "sed -i '/<smallKeyboard/d' home/root/Langs/DE/DE.xml",
        "/home/root/Langs/DE/DE.xml:3: error: there is no 'Lang/smallKeyboard'");
    row("empty keyboard",
        "sed -i 's/<smallKeyboard.*/<smallKeyboard value=\"\"\\/>/' home/root/Langs/DE/DE.xml",
        "/home/root/Langs/DE/DE.xml:4: error: 'Lang/smallKeyboard' is an empty keyboard");
    row("pattern that makes no time",
        "sed -i 's/<timeFormat.*/<timeFormat value=\"HH:MM\"\\/>/' home/root/Langs/DE/DE.xml",
        "/home/root/Langs/DE/DE.xml:8: error: 'Lang/timeFormat' shows no hour, or no minute");
    row("pattern that makes no date",
        "sed -i 's/<dataFormat.*/<dataFormat value=\"DD.MM.YYYY\"\\/>/' home/root/Langs/DE/DE.xml",
        "/home/root/Langs/DE/DE.xml:9: error: 'Lang/dataFormat' shows no day, no month or no year");

    row("no default list", "rm home/root/Langs/DE/default_obiectTyp.txt",
        "/home/root/Langs/DE/default_obiectTyp.txt: warning: missing: the list of this language is "
        "empty");
    row("default list that is a folder",
        "cd home/root/Langs/DE; rm default_obiectTyp.txt; mkdir default_obiectTyp.txt",
        "/home/root/Langs/DE/default_obiectTyp.txt: error: cannot be read");
    row("empty line", "printf 'A\\n\\nB\\n' >home/root/Langs/DE/default_obiectTyp.txt",
        "/home/root/Langs/DE/default_obiectTyp.txt:2: warning: an empty line is skipped");
    row("line twice", "printf 'A\\r\\nB\\r\\nA\\r\\n' >home/root/Langs/DE/default_obiectName.txt",
        "/home/root/Langs/DE/default_obiectName.txt:3: warning: 'A' stands in line 1 already");
    row("line with a blank at its end", "printf 'A \\n' >home/root/Langs/DE/default_obiectName.txt",
        "/home/root/Langs/DE/default_obiectName.txt:1: warning: 'A ' begins or ends with a blank");
    row("text of another language",
        "printf 'Przewód\\n' >home/root/Langs/DE/default_obiectTyp.txt; "
        "printf 'Przewód\\n' >home/root/Langs/PL/default_obiectTyp.txt",
        "/home/root/Langs/PL/default_obiectTyp.txt:1: warning: 'Przewód' stands in the list of DE, "
        "too: only the language that is used first gets it");
    row("materials that are skipped",
        "printf 'A\\nB?0,4\\nC?1?2\\n?1\\nD?0.5\\n' >home/root/Langs/DE/default_materials.txt",
        "/home/root/Langs/DE/default_materials.txt:1: warning: skipped: it is no name, question "
        "mark and number\n"
        "/home/root/Langs/DE/default_materials.txt:2: warning: skipped: it is no name, question "
        "mark and number\n"
        "/home/root/Langs/DE/default_materials.txt:3: warning: skipped: it is no name, question "
        "mark and number\n"
        "/home/root/Langs/DE/default_materials.txt:4: warning: skipped: it is no name, question "
        "mark and number");
    row("material of another language",
        "printf 'Iron?0.005\\nIron?0.006\\n' >home/root/Langs/DE/default_materials.txt; "
        "printf 'Iron?0.005\\n' >home/root/Langs/PL/default_materials.txt",
        "/home/root/Langs/DE/default_materials.txt:2: warning: 'Iron' stands in line 1 already");
    row("coefficient of 0", "printf 'A?0.000\\n' >home/root/Langs/DE/default_materials.txt",
        "/home/root/Langs/DE/default_materials.txt:1: warning: the coefficient of 'A' is 0");
    row("encoding", "printf 'A\\nGer\\344t\\n' >home/root/Langs/DE/default_obiectTyp.txt",
        "/home/root/Langs/DE/default_obiectTyp.txt:2: error: is not UTF-8");

    row("model without help", "rm -r home/root/Help/KTV_410",
        "/home/root/Help/KTV_410: warning: the model has no help page");
    row("topic without a language", "rm home/root/Help/KTV_410/USB/*_DE.html",
        "/home/root/Help/KTV_410/USB: warning: no page in DE");
    row("page without a language",
        "cp home/root/Help/KTV_410/USB/01_port_DE.html home/root/Help/KTV_410/USB/01_port.html",
        "/home/root/Help/KTV_410/USB/01_port.html: warning: is a page of no language that there "
        "is");

    row("no sample", "rm etc/wav/intro.raw",
        "/etc/wav/intro.raw: warning: missing: KTV-4200 and KTV-4400 play it");
    row("empty sample", ": >etc/wav/intro.raw", "/etc/wav/intro.raw: error: holds no sound");
    row("sample of an odd length", "printf x >>etc/wav/intro.raw",
        "/etc/wav/intro.raw: error: has an odd length: its samples have two bytes each");

    row("no program", "rm usr/bin/socat", "socat: error: no such program: the calibration bridge");
    row("program of some models", "rm usr/bin/beep",
        "beep: warning: no such program: tones of the other models");
    row("program that cannot be run", "rm usr/bin/socat; : >usr/bin/socat",
        "socat: error: no such program: the calibration bridge");
    row("link that leads nowhere", "ln -sf /opt/socat usr/bin/socat",
        "socat: error: no such program: the calibration bridge");
    row("link in a circle", "ln -sf socat usr/bin/socat",
        "socat: error: no such program: the calibration bridge");
    row("ps of another kind", "cp usr/bin/busybox usr/bin/procps; ln -sf procps usr/bin/ps",
        "ps: warning: is not busybox's: without arguments it must list every process with its "
        "command line");
    row("ifconfig of another kind", "rm usr/bin/ifconfig; cp usr/bin/busybox usr/bin/ifconfig",
        "ifconfig: warning: is not busybox's: addresses must read 'inet addr:… Bcast:… Mask:…'");
    row("no console", "rm etc/systemd/system/busybox.getty@.service",
        "busybox.getty@ttyGS0.service: error: no such unit: the console on the USB serial line");
    row("console that ignores its end",
        "sed -i /SendSIGHUP/d etc/systemd/system/busybox.getty@.service",
        "busybox.getty@ttyGS0.service: warning: has no SendSIGHUP=yes: it cannot be stopped within "
        "5 s while somebody is logged in");
    row("no supplicant", "rm usr/lib/systemd/system/wpa_supplicant@.service",
        "wpa_supplicant@wlan0.service: error: no such unit: joins WiFi networks");
    row("supplicant with a start limit", "rm -r etc/systemd/system/wpa_supplicant@.service.d",
        "wpa_supplicant@wlan0.service: warning: no drop-in sets StartLimitIntervalSec=0: the sixth "
        "restart within 10 s is refused, and WiFi stays off");
    row("no folder of the supplicant", "rm -r etc/wpa_supplicant",
        "/etc/wpa_supplicant: error: no such folder: the networks are written there");
    row("no locale", "rm etc/locale.conf",
        "/etc/locale.conf: warning: missing: run the interface in a UTF-8 locale");
    row("another locale", "echo LANG=pl_PL >etc/locale.conf",
        "/etc/locale.conf: error: names no UTF-8 locale: letters beyond ASCII in default lists and "
        "WiFi names are lost");
    row("no version", ": >etc/version",
        "/etc/version: warning: missing or empty: the system's version is not known");
    // clang-format on
}

void TstKtvctlCheckImage::faults()
{
    QFETCH(QString, script);
    run(script, image);
    const Answer answer = ktvctl({"check-image", image});
    QTEST(answer.out, "lines");
    QCOMPARE(answer.error, QString());
    QCOMPARE(answer.code, answer.out.contains(": error: ") ? 1 : 0);
}

void TstKtvctlCheckImage::warningsAloneAreNoFailure()
{
    run("rm usr/bin/beep etc/version", image);
    const Answer answer = ktvctl({"check-image", image});
    QCOMPARE(answer.out.count(": warning: "), 2);
    QCOMPARE(answer.code, 0);
}

void TstKtvctlCheckImage::json()
{
    run("sed -i '/<welcome value=/d' home/root/Langs/DE/DE.xml; rm usr/bin/socat", image);
    const Answer answer = ktvctl({"check-image", image, "--json"});
    QCOMPARE(answer.code, 1);
    const QJsonArray findings = parsed(answer.out).toArray();
    QCOMPARE(findings.size(), 2);
    QCOMPARE(findings.at(0).toObject(),
             (QJsonObject {{"level", "warning"},
                           {"file", "/home/root/Langs/DE/DE.xml"},
                           {"line", 11},
                           {"text", "no text 'Main/welcome', which EN has"}}));
    QCOMPARE(findings.at(1).toObject().value("level").toString(), QStringLiteral("error"));
    QCOMPARE(typed("check-image --json").out, QStringLiteral("[]\n"));
}

void TstKtvctlCheckImage::noFolder()
{
    const Answer answer = typed("check-image /no/such/folder");
    QCOMPARE(answer.code, 2);
    QCOMPARE(answer.error, QStringLiteral("ktvctl: no folder '/no/such/folder'\n"));
}

KTV_METER_TEST_MAIN(TstKtvctlCheckImage)
#include "tst_ktvctl_check_image.moc"
