#pragma once

#include "internal/GroupProcess_p.h"

namespace SoundNamespace {

/**
 * The child process that plays a sound, with everything that it has started.
 *
 * It belongs to the thread that has started it, whose event loop notices its end; the tones of
 * another thread can still find it and end it.
 */
class Player : public Internal::GroupProcess
{
public:
    /** Ends the player. */
    ~Player() override;

    /** Starts a program and waits for that, 3 s at most. */
    bool launch(const QString &program, const QStringList &arguments);
    /** Process id; 0 when the player has ended. From any thread. */
    pid_t id() const;
    /** Ends the player and deletes it, or has its own thread delete it. From any thread. */
    void discard();

    /**
     * For a shell that feeds @p file to a player over and over. Where that cannot sound, it would
     * start one process after the other: it is halted after some of them, until it is ended.
     * Before launch().
     */
    void expectRepeats(const QString &file);

protected:
    void setupChildProcess() override;

private:
    bool isOwnThread() const;
    void halt();
    void countComplaints();

    pid_t m_id = 0;
    bool m_repeats = false;
    bool m_canSound = true; ///< as far as is known before
    int m_complaints = 0;
};

} // namespace SoundNamespace
