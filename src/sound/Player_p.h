#pragma once

#include <QProcess>

namespace Internal {

/**
 * The child process that plays a sound, with everything that it has started.
 *
 * It belongs to the thread that has started it, whose event loop notices its end; where there is
 * no event loop it belongs to no thread. In either case any thread can end it. Of what it prints
 * and nobody reads, 64 KiB are kept of each stream.
 */
class Player : public QProcess
{
public:
    Player();
    /** Ends the player. */
    ~Player() override;

    /** Starts a program and waits for that, 3 s at most. */
    bool launch(const QString &program, const QStringList &arguments);
    /** Process id; 0 when the player has ended. From any thread. */
    pid_t id() const;
    /**
     * Ends the player and deletes it. From any thread; one that another thread's event loop looks
     * after is deleted by that thread.
     */
    void discard();

    /**
     * For a shell that feeds @p file to a player over and over. Where that cannot sound, it would
     * start one process after the other: it is halted after some of them, until it is ended.
     * Without an event loop, what is known not to sound is halted at once, and anything else
     * when a pipe is full of complaints. Before launch().
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
    void countComplaints();

    pid_t m_id = 0;
    bool m_repeats = false;
    bool m_canSound = true;
    int m_complaints = 0;
};

} // namespace Internal
