#include "../Models.h"
#include "Checks.h"

#include <QFileInfo>

#include <algorithm>

namespace {

enum Need
{
    Always,
    SomeModels,
    Busybox ///< always, and in busybox's form
};

struct Program
{
    const char *name;
    Need need;
    const char *purpose; ///< %1: the models that play samples
};

constexpr Program programs[] = {
    {"sh", Always, "pipelines"},
    {"grep", Always, "pipelines"},
    {"ls", Always, "the WiFi adapter"},
    {"cat", Always, "repeated samples"},
    {"ps", Busybox, "without arguments it must list every process with its command line"},
    {"kill", Always, "ending samples"},
    {"killall", Always, "ending programs"},
    {"pkill", Always, "ending samples"},
    {"ifconfig", Busybox, "addresses must read 'inet addr:… Bcast:… Mask:…'"},
    {"modprobe-usb-gadget", Always, "the USB port"},
    {"socat", Always, "the calibration bridge"},
    {"mactool", Always, "system calibration"},
    {"systemctl", Always, "services"},
    {"wpa_passphrase", Always, "protected networks"},
    {"iwgetid", Always, "WiFi"},
    {"iwconfig", Always, "WiFi"},
    {"iwlist", Always, "WiFi"},
    {"aplay", SomeModels, "tones of %1"},
    {"amixer", SomeModels, "the volume"},
    {"beep", SomeModels, "tones of the other models"},
};

/** Folders of programs: the caller's PATH on a running device, the usual ones in an image. */
QStringList programFolders(bool isRunning)
{
    const QString usual = QStringLiteral("/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:"
                                         "/bin");
    const QString path = isRunning ? qEnvironmentVariable("PATH", usual) : usual;
    return path.split(QLatin1Char(':'), Qt::SkipEmptyParts);
}

QString findProgram(const Image &image, const QStringList &folders, const QString &name)
{
    for (const QString &folder : folders) {
        QString place = image.locate(folder + QLatin1Char('/') + name);
        if (!place.isNull() && QFileInfo(place).isExecutable() && QFileInfo(place).isFile())
            return place;
    }
    return {};
}

void checkPrograms(const Image &image, Report &report)
{
    const QStringList folders = programFolders(image.isRunning());
    for (const Program &program : programs) {
        const QString name = QLatin1String(program.name);
        const QString purpose = QString::fromUtf8(program.purpose)
                                    .replace(QLatin1String("%1"), modelsThatPlaySamples());
        const QString place = findProgram(image, folders, name);
        if (place.isNull() && program.need == SomeModels)
            report.warning(name, QStringLiteral("no such program: ") + purpose);
        else if (place.isNull())
            report.error(name, QStringLiteral("no such program: ") + purpose);
        else if (program.need == Busybox
                 && !QFileInfo(place).fileName().startsWith(QLatin1String("busybox")))
            report.warning(name, QStringLiteral("is not busybox's: ") + purpose);
    }
}

const char *const unitFolders[] = {"/etc/systemd/system/", "/run/systemd/system/",
                                   "/usr/local/lib/systemd/system/", "/usr/lib/systemd/system/",
                                   "/lib/systemd/system/"};

struct Unit
{
    const char *templateName;
    const char *instance;
    const char *purpose;
};

const Unit console {"busybox.getty@", "ttyGS0", "the console on the USB serial line"};
const Unit supplicant {"wpa_supplicant@", "wlan0", "joins WiFi networks"};

QString nameOf(const Unit &unit)
{
    return QLatin1String(unit.templateName) + QLatin1String(unit.instance)
        + QStringLiteral(".service");
}

/**
 * The texts of the files of a unit, of its instance and of their drop-ins, joined; no value without
 * any.
 */
std::optional<QByteArray> readUnit(const Image &image, const Unit &unit)
{
    const QString names[] = {QLatin1String(unit.templateName) + QStringLiteral(".service"),
                             nameOf(unit)};
    std::optional<QByteArray> text;
    for (const char *folder : unitFolders) {
        for (const QString &name : names) {
            const QString path = QLatin1String(folder) + name;
            if (const auto bytes = image.read(path))
                text = text.value_or(QByteArray()) + *bytes + '\n';
        }
    }
    for (const char *folder : unitFolders) {
        for (const QString &name : names) {
            const QString dropIns = QLatin1String(folder) + name + QStringLiteral(".d/");
            const QStringList files = image.files(dropIns);
            for (const QString &file : files) {
                if (text && file.endsWith(QLatin1String(".conf")))
                    *text += image.read(dropIns + file).value_or(QByteArray()) + '\n';
            }
        }
    }
    return text;
}

/** Whether a unit has one of the lines; blanks in them do not count. */
bool hasLine(const QByteArray &unit, const QList<QByteArray> &wanted)
{
    const QList<QByteArray> lines = unit.split('\n');
    return std::any_of(lines.begin(), lines.end(), [&wanted](QByteArray line) {
        line.replace(' ', "");
        return wanted.contains(line);
    });
}

/** The text of a unit; an error is reported if there is none. */
std::optional<QByteArray> checkUnit(const Image &image, const Unit &unit, Report &report)
{
    auto text = readUnit(image, unit);
    if (!text)
        report.error(nameOf(unit), QStringLiteral("no such unit: ") + QLatin1String(unit.purpose));
    return text;
}

void checkUnits(const Image &image, Report &report)
{
    const auto consoleText = checkUnit(image, console, report);
    if (consoleText && !hasLine(*consoleText, {"SendSIGHUP=yes", "SendSIGHUP=true"}))
        report.warning(nameOf(console),
                       QStringLiteral("has no SendSIGHUP=yes: it cannot be stopped within 5 s "
                                      "while somebody is logged in"));
    const auto text = checkUnit(image, supplicant, report);
    if (text && !hasLine(*text, {"StartLimitIntervalSec=0", "StartLimitInterval=0"}))
        report.warning(nameOf(supplicant),
                       QStringLiteral("no drop-in sets StartLimitIntervalSec=0: the sixth restart "
                                      "within 10 s is refused, and WiFi stays off"));
}

/** The library reads the default lists in the locale's encoding. */
void checkLocale(const Image &image, Report &report)
{
    const QString paths[] = {QStringLiteral("/etc/locale.conf"),
                             QStringLiteral("/etc/default/locale")};
    for (const QString &path : paths) {
        if (const auto text = image.read(path)) {
            const QByteArray upper = text->toUpper();
            if (!upper.contains("UTF-8") && !upper.contains("UTF8"))
                report.error(path,
                             QStringLiteral("names no UTF-8 locale: letters beyond ASCII in "
                                            "default lists and WiFi names are lost"));
            return;
        }
    }
    report.warning(paths[0], QStringLiteral("missing: run the interface in a UTF-8 locale"));
}

} // namespace

void checkSystem(const Image &image, Report &report)
{
    checkPrograms(image, report);
    checkUnits(image, report);
    checkLocale(image, report);
    const QString version = QStringLiteral("/etc/version");
    if (image.read(version).value_or(QByteArray()).trimmed().isEmpty())
        report.warning(version,
                       QStringLiteral("missing or empty: the system's version is not "
                                      "known"));
    const QString folder = QStringLiteral("/etc/wpa_supplicant");
    if (!image.isDirectory(folder))
        report.error(folder, QStringLiteral("no such folder: the networks are written there"));
}
