// The USB device port: which gadget is loaded, and which program owns its serial line.

#include "internal/log_p.h"
#include "tools/SerialLine_p.h"
#include "tools/Tools.h"

#include <QFile>
#include <QThread>

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

namespace Internal {

const QString serialLine = QStringLiteral("/dev/ttyGS0");
const QString bridgeCommand = QStringLiteral("socat /dev/ttyGS0 /dev/ttycommunication");
const QString listBridge =
    QStringLiteral("ps | grep \"[s]ocat /dev/ttyGS0 /dev/ttycommunication\"");
const QString calibrationTool = QStringLiteral("mactool");
const QString listCalibrationTool = QStringLiteral("ps | grep \"[m]actool\"");

bool isFinished(const CommandResult &result, const QString &command)
{
    if (result.outcome == CommandResult::NotStarted)
        log() << command << " no started!";
    if (result.outcome == CommandResult::NotFinished)
        log() << command << " no finished!";
    return result.finished();
}

} // namespace Internal

using Internal::calibrationTool;
using Internal::CommandResult;
using Internal::finishOnly;
using Internal::isFinished;
using Internal::listCalibrationTool;
using Internal::log;
using Internal::runDirect;
using Internal::runShell;
using Internal::serialLine;
using Internal::startAndFinish;
using Internal::startDetached;
using Internal::Waits;

namespace QERNTools {

namespace {

/** How an owner of the serial line is detected; the first one found is the result. */
struct Detection
{
    QString command; ///< for the shell
    QString name; ///< in the log
    QString sign; ///< text in the output that shows the owner
    Tools::RS232_Function owner;
};

const Detection detections[] = {
    {Internal::listBridge, QStringLiteral("ps socat"), Internal::bridgeCommand,
     Tools::RS232_HardwareCalibration},
    {listCalibrationTool, QStringLiteral("ps mactool"), calibrationTool,
     Tools::RS232_SystemCalibration},
    {QStringLiteral("systemctl status busybox.getty@ttyGS0.service"),
     QStringLiteral("systemctl status"), QStringLiteral(" Active: active (running)"),
     Tools::RS232_Console},
};

struct Owner
{
    Tools::RS232_Function function;
    bool (*start)();
    bool (*stop)();
    QString stopName; ///< in the log
};

const Owner owners[] = {
    {Tools::RS232_HardwareCalibration, Tools::StartHardwareCalibrationMode,
     Tools::StopHardwareCalibrationMode, QStringLiteral("StopHardwareCalibrationMode")},
    {Tools::RS232_SystemCalibration, Tools::StartSystemCalibrationMode,
     Tools::StopSystemsCalibrationMode, QStringLiteral("StopSystemsCalibrationMode")},
    {Tools::RS232_Console, Tools::StartRS232Console, Tools::StopRS232Console,
     QStringLiteral("StopRS232Console")},
};

const Owner *findOwner(Tools::RS232_Function function)
{
    for (const Owner &owner : owners) {
        if (owner.function == function)
            return &owner;
    }
    return nullptr;
}

/** Switches mode and owner, without the fallback to the network. @return success */
bool switchPort(Tools::USB_Mode mode, Tools::RS232_Function function)
{
    const Tools::USB_Mode current = Tools::getCurrentMode();
    if (current == mode) {
        if (mode == Tools::USB_RNDIS)
            return true;
        if (mode != Tools::USB_RS232)
            return false;
        if (Tools::setRS232Mode(function))
            return true;
        log() << "Tools::SetUSBMode: setRS232Mode1 = false";
        return false;
    }
    if (mode == Tools::USB_RS232) {
        if (!Tools::StartRS232()) {
            log() << "Tools::SetUSBMode:StartRS232 = false";
            return false;
        }
        if (Tools::setRS232Mode(function))
            return true;
        log() << "Tools::SetUSBMode: setRS232Mode2 = false";
        return false;
    }
    if (mode == Tools::USB_RNDIS) {
        if (!Tools::StopAllRS232Function()) {
            log() << "Tools::SetUSBMode: StopAllRS232Function = false";
            return false;
        }
        if (Tools::StartRNDIS())
            return true;
        log() << "Tools::SetUSBMode: StartRNDIS = false";
    }
    return false;
}

/** Starts or stops the login console of the serial line; any output of systemctl is a failure. */
bool controlConsole(const QString &caller, const QString &verb)
{
    const QString name = caller + QStringLiteral(": systemctl ") + verb;
    const CommandResult result = runShell(
        QStringLiteral("systemctl %1 busybox.getty@ttyGS0.service").arg(verb), startAndFinish);
    if (!isFinished(result, name))
        return false;
    if (result.output.isEmpty())
        return true;
    log() << name << ":" << result.output;
    return false;
}

} // namespace

bool Tools::SetUSBMode(USB_Mode mode, RS232_Function function)
{
    if (switchPort(mode, function))
        return true;
    const bool isNetwork = StartRNDIS();
    log() << "Tools::SetUSBMode:end: StartRNDIS = " << (isNetwork ? "true" : "false");
    return true; // kept: the interface relies on the result true, even after the fallback
}

Tools::USB_Mode Tools::getCurrentMode()
{
    return detectCurrentMode();
}

Tools::USB_Mode Tools::detectCurrentMode()
{
    if (QFile::exists(QStringLiteral("/sys/class/net/usb0")))
        return USB_RNDIS;
    return QFile::exists(serialLine) ? USB_RS232 : USB_None;
}

Tools::RS232_Function Tools::getRS232_Function()
{
    if (detectCurrentMode() != USB_RS232)
        return RS232_None;
    for (const Detection &detection : detections) {
        const CommandResult result = runShell(detection.command, startAndFinish);
        // kept: the log line names another operation than this one
        if (isFinished(result, QStringLiteral("Tools::detectCurrentMode(): ") + detection.name)
            && result.output.contains(detection.sign))
            return detection.owner;
    }
    return RS232_None;
}

bool Tools::setRS232Mode(RS232_Function function)
{
    if (getRS232_Function() == function)
        return true;
    if (!StopAllRS232Function())
        return false;
    const Owner *const wanted = findOwner(function);
    return wanted && wanted->start();
}

bool Tools::StopAllRS232Function()
{
    const RS232_Function function = getRS232_Function();
    if (function == RS232_None)
        return true;
    const Owner *const owner = findOwner(function);
    if (owner && owner->stop())
        return true;
    log() << "Tools::StopAllRS232Function():"
          << (owner ? owner->stopName : QStringLiteral("unknown")) << " false";
    return false;
}

bool Tools::StartRS232()
{
    const CommandResult result =
        runDirect(QStringLiteral("modprobe-usb-gadget g_serial"), startAndFinish);
    if (!isFinished(result, QStringLiteral("Tools::StartRS232(): modprobe-usb-gadget g_serial")))
        return false;
    if (!result.output.isEmpty()) {
        log() << "Tools::StartRS232(): modprobe-usb-gadget:" << result.output;
        return false;
    }
    if (!QFile::exists(serialLine))
        return false;
    if (ConfigurePort())
        return true;
    log() << "Tools::StartRS232(): ConfigurePort";
    return false;
}

bool Tools::StartRNDIS()
{
    const CommandResult loaded =
        runDirect(QStringLiteral("modprobe-usb-gadget g_ether"), startAndFinish);
    if (!isFinished(loaded, QStringLiteral("Tools::StartRNDIS(): modprobe-usb-gadget g_ether"))
        || !loaded.output.isEmpty())
        return false;
    const CommandResult up = runDirect(QStringLiteral("ifconfig usb0 up"), finishOnly);
    if (!isFinished(up, QStringLiteral("Tools::StartRNDIS(): ifconfig usb0 up"))
        || !up.output.isEmpty())
        return false;
    return QFile::exists(QStringLiteral("/sys/class/net/usb0"));
}

bool Tools::ConfigurePort()
{
    const int line =
        ::open(QFile::encodeName(serialLine).constData(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (line < 0)
        return false;
    termios settings {}; // all zero: raw mode, and no setting of an earlier user remains
    settings.c_cflag = B19200 | CS8 | PARENB | CREAD | CLOCAL;
    static_assert((B19200 | CS8 | PARENB | CREAD | CLOCAL) == 0x9BE,
                  "the calibration software expects exactly these flags");
    settings.c_cc[VTIME] = 0;
    settings.c_cc[VMIN] = 1;
    ::tcflush(line, TCIFLUSH);
    ::tcsetattr(line, TCSANOW, &settings);
    ::close(line);
    return true;
}

bool Tools::StartSystemCalibrationMode()
{
    if (!ConfigurePort())
        return false;
    startDetached(calibrationTool);
    QThread::sleep(3);
    const CommandResult listed = runShell(listCalibrationTool, finishOnly);
    return isFinished(listed, QStringLiteral("Tools::StartSystemCalibrationMode():ps mactool"))
        && listed.output.contains(calibrationTool);
}

bool Tools::StopSystemsCalibrationMode()
{
    if (!isFinished(runDirect(QStringLiteral("killall mactool"), finishOnly),
                    QStringLiteral("Tools::StopSystemsCalibrationMode(): killall mactool")))
        return false;
    QThread::sleep(2);
    constexpr int polls = 7;
    for (int left = polls;;) {
        // The output of the first second decides, even if it is incomplete.
        const CommandResult listed = runShell(listCalibrationTool, {Waits::NoStartWait, 1000});
        if (!listed.output.contains(calibrationTool))
            return true;
        if (--left == 0)
            return false;
        QThread::msleep(500);
    }
}

bool Tools::StartRS232Console()
{
    return ConfigurePort()
        && controlConsole(QStringLiteral("Tools::StartRS232Console()"), QStringLiteral("start"));
}

bool Tools::StopRS232Console()
{
    return controlConsole(QStringLiteral("Tools::StopRS232Console()"), QStringLiteral("stop"));
}

} // namespace QERNTools
