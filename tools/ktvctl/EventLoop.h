#pragma once

#include "Command.h"

#include <QJsonObject>
#include <QSocketNotifier>

#include <array>
#include <optional>

/** Functions for commands that wait for events and print them. */

/**
 * Ends the event loop on SIGINT, SIGTERM and SIGHUP (the terminal is closed or the connection
 * lost), so that the services are destroyed in order.
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

/** Prints one event; ends the loop when standard output is closed. */
void printEvent(const Call &call, const char *event, QJsonObject details, const QString &human);

/** An option in whole seconds. */
QCommandLineOption timeOption(const char *name, const char *description);
/** The option --seconds, after which a command ends. */
QCommandLineOption secondsOption();
/**
 * Milliseconds of an option in whole seconds. @return 0 if it is not given, -1 if it is not valid
 */
int milliseconds(const Call &call, const char *option);
/** Prints which values such an option takes. @return UsageError */
int misuseOfTime();

/** Runs the event loop until a signal, or for so many milliseconds; 0 means without limit. */
void runEventLoop(int end);
