#include "EventLoop.h"

#include <QCoreApplication>
#include <QTimer>

#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr std::array<int, 2> endingSignals {SIGINT, SIGTERM};

} // namespace

std::array<int, 2> SignalQuit::s_pipe {};

SignalQuit::SignalQuit()
{
    if (::pipe2(s_pipe.data(), O_CLOEXEC) != 0)
        return;
    QObject::connect(&m_notifier.emplace(s_pipe[0], QSocketNotifier::Read),
                     &QSocketNotifier::activated, QCoreApplication::instance(),
                     &QCoreApplication::quit);
    for (const int number : endingSignals)
        std::signal(number, handle);
    // Under nohup, SIGHUP stays ignored.
    if (std::signal(SIGHUP, handle) == SIG_IGN)
        std::signal(SIGHUP, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN); // a closed pipe is noticed by the failing write
}

SignalQuit::~SignalQuit()
{
    for (const int number : endingSignals)
        std::signal(number, SIG_IGN); // a second signal must not interrupt destructors
    std::signal(SIGHUP, SIG_IGN);
}

void SignalQuit::handle(int)
{
    const char byte = 0;
    [[maybe_unused]] const auto written = ::write(s_pipe[1], &byte, 1);
}

void printEvent(const Call &call, const char *event, QJsonObject details, const QString &human)
{
    details.insert(QStringLiteral("event"), QLatin1String(event));
    call.print(details, human);
    if (std::ferror(stdout) != 0)
        QCoreApplication::quit();
}

QCommandLineOption timeOption(const char *name, const char *description)
{
    return {QLatin1String(name), QLatin1String(description), QStringLiteral("N")};
}

QCommandLineOption secondsOption()
{
    return timeOption("seconds", "End after N seconds.");
}

int milliseconds(const Call &call, const char *option)
{
    constexpr int longest = 24 * 60 * 60; // s
    if (!call.isSet(option))
        return 0;
    bool ok = false;
    const int seconds = call.option(option).toInt(&ok);
    return ok && seconds > 0 && seconds <= longest ? seconds * 1000 : -1;
}

int misuseOfTime()
{
    return misuse(QStringLiteral("a time is a number of seconds, 1 to 86400"));
}

void runEventLoop(int end)
{
    if (end > 0)
        QTimer::singleShot(end, QCoreApplication::instance(), &QCoreApplication::quit);
    QCoreApplication::exec();
}
