#include "internal/GroupProcess_p.h"

#include <csignal>
#include <sys/prctl.h>
#include <unistd.h>

namespace Internal {

GroupProcess::GroupProcess() : m_parent(::getpid())
{ }

GroupProcess::~GroupProcess()
{
    end();
}

void GroupProcess::signalGroup(int signal)
{
    const auto leader = static_cast<pid_t>(processId());
    if (leader <= 0)
        return;
    // The child has not reached its own group yet when it was started just now.
    if (::kill(-leader, signal) != 0)
        ::kill(leader, signal);
}

void GroupProcess::end()
{
    if (state() == NotRunning)
        return;
    signalGroup(SIGKILL);
    kill(); // covers a child that leaves for its own group between the two
    waitForFinished(-1);
}

// Runs between fork and exec: plain system calls only.
void GroupProcess::setupChildProcess()
{
    ::setpgid(0, 0);
    if (!m_isBound)
        return;
    ::prctl(PR_SET_PDEATHSIG, SIGTERM); // a signal that beep and socat tidy up after
    if (::getppid() != m_parent)
        ::_exit(0);
}

} // namespace Internal
