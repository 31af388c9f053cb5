#include "Command.h"

#include <configuration/KTV_Configuration.h>
#include <datasource/KTV_DataSource.h>
#include <language/LangSerwis.h>
#include <tools/Tools.h>

#include <QCoreApplication>
#include <QJsonObject>
#include <QSocketNotifier>
#include <QTimer>

#include <array>
#include <csignal>
#include <cstdio>
#include <optional>
#include <unistd.h>

namespace {

/** Ends the event loop on SIGINT and SIGTERM, so that the services end in their order. */
class SignalQuit
{
public:
    SignalQuit()
    {
        if (::pipe(s_pipe.data()) != 0)
            return;
        QObject::connect(&m_notifier.emplace(s_pipe[0], QSocketNotifier::Read),
                         &QSocketNotifier::activated, QCoreApplication::instance(),
                         &QCoreApplication::quit);
        for (const int number : {SIGINT, SIGTERM})
            std::signal(number, handle);
        std::signal(SIGPIPE, SIG_IGN); // a reader that leaves ends the watch, too
    }
    ~SignalQuit()
    {
        for (const int number : {SIGINT, SIGTERM})
            std::signal(number, SIG_IGN); // the services end undisturbed
    }
    Q_DISABLE_COPY_MOVE(SignalQuit)

private:
    static void handle(int)
    {
        const char byte = 0;
        [[maybe_unused]] const auto written = ::write(s_pipe[1], &byte, 1);
    }

    static std::array<int, 2> s_pipe;
    std::optional<QSocketNotifier> m_notifier;
};

std::array<int, 2> SignalQuit::s_pipe {};

void printEvent(const Call &call, const char *event, QJsonObject details, const QString &human)
{
    details.insert(QStringLiteral("event"), QLatin1String(event));
    call.print(details, human);
    if (std::ferror(stdout) != 0)
        QCoreApplication::quit();
}

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

/** Milliseconds of an option in whole seconds. @return 0 when left out, -1 when it is off */
int milliseconds(const Call &call, const char *option)
{
    constexpr int longest = 24 * 60 * 60; // s
    if (!call.isSet(option))
        return 0;
    bool ok = false;
    const int seconds = call.option(option).toInt(&ok);
    return ok && seconds > 0 && seconds <= longest ? seconds * 1000 : -1;
}

int watch(const Call &call)
{
    const int end = milliseconds(call, "seconds");
    const int check = milliseconds(call, "check");
    if (end < 0 || check < 0)
        return misuse(QStringLiteral("a time is a number of seconds, 1 to 86400"));

    const SignalQuit quitOnSignal;
    KTV_DataSource meter;
    if (call.isSet("serial"))
        meter.setMeterSerialName(call.option("serial"));
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
    if (end > 0)
        QTimer::singleShot(end, QCoreApplication::instance(), &QCoreApplication::quit);
    QCoreApplication::exec();
    printEvent(call, "stopped", {}, QStringLiteral("stopped"));
    return Success;
}

} // namespace

Family watchFamily()
{
    const auto seconds = QStringLiteral("N");
    return {
        "watch",
        "Builds every service as the interface does. Unwise while the interface runs: the "
        "start restarts the WiFi supplicant, and the end writes the counters and the serial "
        "number.",
        {{"",
          "",
          "print what the services signal, until SIGINT or SIGTERM",
          watch,
          {{QStringLiteral("seconds"), QStringLiteral("End after N seconds."), seconds},
           {QStringLiteral("check"),
            QStringLiteral("Check the disk now and every N seconds, not once a minute."), seconds},
           serialOption("Serial number that the meter reports.")}}}};
}
