#pragma once

#include <QList>
#include <QString>

/**
 * While such an object exists, the library's clock stands still, except when the library waits for
 * a command whose line contains a text, or sleeps: then it goes forward at once by that time. So
 * the length of every wait is known exactly, and nobody has to wait.
 *
 * The command must hang, and only the library may start it meanwhile.
 */
class HangingCommand
{
public:
    static constexpr int withoutLimit = -1;

    explicit HangingCommand(const QString &part);
    ~HangingCommand();
    Q_DISABLE_COPY_MOVE(HangingCommand)

    /**
     * How long each such command was waited for, in milliseconds; equal neighbours count once. One
     * that is waited for longer than ten minutes is killed, and its time is withoutLimit.
     */
    QList<int> waits() const;
    /** How long Qt would wait for the first program that it has started, in milliseconds. */
    static int limitOfStart();
};
