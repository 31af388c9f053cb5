#include "Command.h"
#include "EventLoop.h"
#include "Settings.h"

#include <configuration/KTV_Configuration.h>
#include <datasource/KTV_DataSource.h>
#include <language/LangSerwis.h>
#include <tools/Tools.h>

#include <QTimer>

namespace {

void printFreeSpace(const Call &call, const char *event, const KTV_DataSource &meter)
{
    const QString directory = meter.getMainConfig()->get_clientsDirectory();
    const int level = meter.getFreeSpaceAlert();
    const qint64 percent = QERNTools::Tools::getUsedSpacePercent(directory);
    printEvent(call, event,
               {{QStringLiteral("level"), level}, {QStringLiteral("usedPercent"), percent}},
               QStringLiteral("free-space alert level %1: %2 % of the card is used")
                   .arg(level)
                   .arg(percent));
}

int watch(const Call &call)
{
    const int end = milliseconds(call, "seconds");
    const int check = milliseconds(call, "check");
    if (end < 0 || check < 0)
        return misuseOfTime();

    const SignalQuit quitOnSignal;
    const QString serialNumber = serialNumberOf(call);
    KTV_DataSource meter;
    if (!serialNumber.isNull()) // otherwise the destructor would overwrite it with the default
        meter.setMeterSerialName(serialNumber);
    QObject::connect(&meter, &KTV_DataSource::changeFreeSpaceAlert,
                     [&] { printFreeSpace(call, "freeSpaceAlert", meter); });
    QTimer checks;
    QObject::connect(&checks, &QTimer::timeout, &meter, &KTV_DataSource::updateTimeDisk);

    printEvent(
        call, "started",
        {{QStringLiteral("meter"), meter.getMainConfig()->get_MeterFullName()},
         {QStringLiteral("language"), meter.get_Lang()->getCurrentLang()}},
        QStringLiteral("watching %1, language %2")
            .arg(meter.getMainConfig()->get_MeterFullName(), meter.get_Lang()->getCurrentLang()));
    if (check > 0) {
        meter.updateTimeDisk();
        checks.start(check);
    }
    runEventLoop(end);
    printEvent(call, "stopped", {}, QStringLiteral("stopped"));
    return Success;
}

} // namespace

Family watchFamily()
{
    return {"watch",
            "Builds every service as the interface does. Unwise while the interface runs: the "
            "start restarts the WiFi supplicant, and the end writes the counters and the serial "
            "number.",
            {{"",
              "",
              "print what the services signal, until SIGINT, SIGTERM or SIGHUP",
              watch,
              {secondsOption(),
               timeOption("check", "Check the disk now and every N seconds, not once a minute."),
               serialOption("Serial number that the meter reports (else the stored one).")}}}};
}
