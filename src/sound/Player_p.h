#pragma once

#include <QProcess>

namespace Internal {

/**
 * The child process that plays a sound, together with everything that it has started.
 *
 * It belongs to the thread that has started it, whose event loop notices its end; if that thread
 * has no event loop it belongs to no thread. In either case any thread can end it. Of output that
 * nothing reads, 64 KiB are kept of each stream.
 */
class Player : public QProcess
{
public:
    Player();
    /** Ends the player. Blocks until it has ended, 500 ms at most. */
    ~Player() override;

    /**
     * Starts a program and waits until it has started, 3 s at most. While four children exist that
     * could not be killed, none is started.
     */
    bool launch(const QString &program, const QStringList &arguments);
    /** Process id; 0 when the player has ended. From any thread. */
    pid_t id() const;
    /**
     * Ends the player and deletes it. From any thread. If it belongs to another thread, that
     * thread's event loop deletes it.
     */
    void discard();

    /**
     * To be called before launch() of a shell that writes @p file to a player over and over. If the
     * file cannot be played, the shell would start one process after the other without end; so it
     * is halted after some of them, until it is ended. Without an event loop it is halted at once
     * if it is known beforehand that the file cannot be played; otherwise it blocks when the pipe
     * for its error messages is full.
     */
    void expectRepeats(const QString &file);

private:
    /** Runs in the child, between fork and exec: plain system calls only. */
    void prepareChild() const;
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    void setupChildProcess() override
    {
        prepareChild();
    }
#endif
    bool isOwnThread() const;
    void signalGroup(int signal);
    void halt();
    void dropSurplus();
    void countErrors();

    pid_t m_id = 0;
    bool m_repeats = false;
    bool m_canPlay = true;
    int m_errors = 0;
};

} // namespace Internal
