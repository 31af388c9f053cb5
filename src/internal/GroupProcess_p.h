#pragma once

#include <QProcess>

namespace Internal {

/** A child that leads its own process group, so that it can be ended with its children. */
class GroupProcess : public QProcess
{
public:
    GroupProcess();
    /** Ends what still runs. */
    ~GroupProcess() override;

    /** Sends @p signal to the child and to everything it has started. */
    void signalGroup(int signal);
    /** Kills child and group at once and waits for the child's end. */
    void end();

    /** The child shall not outlive the thread that starts it, not even after a crash. */
    void bindToThread() { m_isBound = true; }

protected:
    void setupChildProcess() override;

private:
    pid_t m_parent;
    bool m_isBound = false;
};

} // namespace Internal
