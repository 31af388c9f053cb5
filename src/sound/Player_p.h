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
    ~Player() override;

    /** Starts a program and waits for that, 3 s at most. */
    bool launch(const QString &program, const QStringList &arguments);
    /** Process id; 0 when the player has ended. From any thread. */
    pid_t id() const;
    /** Ends the player and deletes it, or has its own thread delete it. From any thread. */
    void discard();

    /** Whether a sample can sound over and over: there is a program for it, and a file. */
    static bool canRepeat(const QString &file);
    /**
     * For a sample that cannot, whose shell would start one process after the other: what fails
     * complains to a pipe that nobody empties, and soon waits there until it is killed. Before
     * launch().
     */
    void blockComplaints();

protected:
    void setupChildProcess() override;

private:
    bool isOwnThread() const;

    pid_t m_id = 0;
    int m_complaints[2] = {-1, -1}; ///< the pipe's ends: to read from, to write to
};

} // namespace SoundNamespace
