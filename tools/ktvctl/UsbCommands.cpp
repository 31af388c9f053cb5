#include "Command.h"
#include "EventLoop.h"
#include "Words.h"
#include "meter/SerialLineHolders.h"

#include <tools/Tools.h>

#include <QJsonObject>

using QERNTools::Tools;

namespace {

constexpr Word<Tools::USB_Mode> modes[] = {
    {"none", Tools::USB_None},
    {"serial", Tools::USB_RS232},
    {"network", Tools::USB_RNDIS},
};

constexpr Word<Tools::RS232_Function> owners[] = {
    {"nobody", Tools::RS232_None},
    {"bridge", Tools::RS232_HardwareCalibration},
    // Not the name of its program: the library searches the process list for that, and would find
    // the command line of ktvctl.
    {"calibration", Tools::RS232_SystemCalibration},
    {"console", Tools::RS232_Console},
};

int status(const Call &call)
{
    const Tools::USB_Mode mode = Tools::getCurrentMode();
    QJsonObject machine {{QStringLiteral("mode"), wordOf(modes, mode)}};
    QString human = wordOf(modes, mode);
    if (mode == Tools::USB_RS232) {
        const QString owner = wordOf(owners, Tools::getRS232_Function());
        machine.insert(QStringLiteral("owner"), owner);
        human += QStringLiteral(", owned by ") + owner;
    }
    call.print(machine, human);
    return Success;
}

/** A text such as ": its line is held by login (212)"; empty if nobody holds it. */
QString holdersText()
{
    const QStringList holders = serialLineHolders();
    return holders.isEmpty()
        ? QString()
        : QStringLiteral(": its line is held by ") + holders.join(QStringLiteral(", "));
}

int set(const Call &call)
{
    const auto mode = valueOf(modes, call.argument(0));
    const QString ownerText = call.argument(1);
    const auto owner = ownerText.isNull() ? Tools::RS232_None : valueOf(owners, ownerText);
    if (!mode || mode == Tools::USB_None)
        return misuse(QStringLiteral("a mode is 'serial' or 'network'"));
    if (!owner || (mode == Tools::USB_RNDIS && !ownerText.isNull()))
        return misuse(
            QStringLiteral("a serial line is owned by 'nobody', 'bridge', 'calibration' or "
                           "'console'"));
    const int end = milliseconds(call, "seconds");
    if (end < 0)
        return misuseOfTime();

    const SignalQuit quitOnSignal;
    Tools::SetUSBMode(*mode, *owner);
    if (Tools::getCurrentMode() != *mode || Tools::getRS232_Function() != *owner) {
        status(call);
        return fail(QStringLiteral("the port is not as it should be%1; --verbose tells why")
                        .arg(holdersText()));
    }
    status(call);
    if (Tools::isCalibrationModeActive)
        runEventLoop(end); // the bridge ends with this process
    return Success;
}

} // namespace

Family usbFamily()
{
    return {"usb",
            "The USB port and the owner of its serial line. Unwise while the interface runs a "
            "bridge: its own comes back.",
            {{"status", "", "print what the port is, and who owns its serial line", status},
             {"set",
              "MODE [OWNER]",
              "make it network or serial (nobody, bridge, calibration, console)",
              set,
              {timeOption("seconds",
                          "End the bridge after N seconds, not on SIGINT, SIGTERM or SIGHUP "
                          "only.")}}}};
}
