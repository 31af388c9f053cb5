#include "Command.h"
#include "EventLoop.h"

#include <tools/Tools.h>

#include <QJsonObject>

#include <optional>

using QERNTools::Tools;

namespace {

template <typename Code> struct Word
{
    const char *text;
    Code code;
};

const Word<Tools::USB_Mode> modes[] = {
    {"none", Tools::USB_None},
    {"serial", Tools::USB_RS232},
    {"network", Tools::USB_RNDIS},
};

const Word<Tools::RS232_Function> owners[] = {
    {"nobody", Tools::RS232_None},
    {"bridge", Tools::RS232_HardwareCalibration},
    {"mactool", Tools::RS232_SystemCalibration},
    {"console", Tools::RS232_Console},
};

template <typename Code, size_t size>
std::optional<Code> codeOf(const Word<Code> (&words)[size], const QString &text)
{
    for (const Word<Code> &word : words) {
        if (text == QLatin1String(word.text))
            return word.code;
    }
    return std::nullopt;
}

template <typename Code, size_t size> QString textOf(const Word<Code> (&words)[size], Code code)
{
    for (const Word<Code> &word : words) {
        if (code == word.code)
            return QLatin1String(word.text);
    }
    return QString::number(code);
}

int status(const Call &call)
{
    const Tools::USB_Mode mode = Tools::getCurrentMode();
    QJsonObject machine {{QStringLiteral("mode"), textOf(modes, mode)}};
    QString human = textOf(modes, mode);
    if (mode == Tools::USB_RS232) {
        const QString owner = textOf(owners, Tools::getRS232_Function());
        machine.insert(QStringLiteral("owner"), owner);
        human += QStringLiteral(", owned by ") + owner;
    }
    call.print(machine, human);
    return Success;
}

int set(const Call &call)
{
    const auto mode = codeOf(modes, call.argument(0));
    const QString ownerText = call.argument(1);
    const auto owner = ownerText.isNull() ? Tools::RS232_None : codeOf(owners, ownerText);
    if (!mode || mode == Tools::USB_None)
        return misuse(QStringLiteral("a mode is 'serial' or 'network'"));
    if (!owner || (mode == Tools::USB_RNDIS && !ownerText.isNull()))
        return misuse(
            QStringLiteral("a serial line is owned by 'nobody', 'bridge', 'mactool' or 'console'"));
    const int end = milliseconds(call, "seconds");
    if (end < 0)
        return misuseOfTime();

    const SignalQuit quitOnSignal;
    Tools::SetUSBMode(*mode, *owner);
    if (Tools::getCurrentMode() != *mode || Tools::getRS232_Function() != *owner) {
        status(call);
        return fail(QStringLiteral("the port is not as it should be; --verbose tells why"));
    }
    status(call);
    if (Tools::isCalibrationModeActive)
        runEventLoop(end); // the bridge is this process's
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
              "make it network or serial (nobody, bridge, mactool, console)",
              set,
              {{QStringLiteral("seconds"),
                QStringLiteral("End the bridge after N seconds, not on SIGINT or SIGTERM only."),
                QStringLiteral("N")}}}}};
}
