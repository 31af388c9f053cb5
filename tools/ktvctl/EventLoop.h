#pragma once

#include "Command.h"

#include <QJsonObject>
#include <QSocketNotifier>

#include <array>
#include <optional>

/** What the commands share that wait for events and print them. */

/**
 * Ends the event loop on SIGINT, SIGTERM and, where the terminal closes or the connection drops,
 * SIGHUP, so that the services end in their order.
 */
class SignalQuit
{
public:
    SignalQuit();
    ~SignalQuit();
    Q_DISABLE_COPY_MOVE(SignalQuit)

private:
    static void handle(int number);

    static std::array<int, 2> s_pipe;
    std::optional<QSocketNotifier> m_notifier;
};

/** Prints one event; the loop ends when nobody reads on. */
void printEvent(const Call &call, const char *event, QJsonObject details, const QString &human);

/** An option in whole seconds. */
QCommandLineOption timeOption(const char *name, const char *description);
/** The option --seconds, after which a command ends. */
QCommandLineOption secondsOption();
/** Milliseconds of an option in whole seconds. @return 0 when left out, -1 when it is off */
int milliseconds(const Call &call, const char *option);
/** Says what such an option takes. @return UsageError */
int misuseOfTime();

/** Runs the event loop until a signal or, unless it is 0, so many milliseconds later. */
void runEventLoop(int end);
