#include "sound/Player_p.h"

#include <QFile>
#include <QStandardPaths>
#include <QThread>

#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace SoundNamespace {

namespace {

constexpr int startWait = 3000; // ms
constexpr int complaintsSize = 4096; // bytes, the least that a pipe can have

} // namespace

Player::~Player()
{
    end();
    for (const int pipeEnd : m_complaints) {
        if (pipeEnd >= 0)
            ::close(pipeEnd);
    }
}

bool Player::launch(const QString &program, const QStringList &arguments)
{
    start(program, arguments, ReadWrite);
    const bool isStarted = waitForStarted(startWait);
    m_id = static_cast<pid_t>(processId());
    return isStarted;
}

bool Player::isOwnThread() const
{
    // Nobody else is left to touch a player whose thread has gone.
    const QThread *const owner = thread();
    return !owner || owner == QThread::currentThread() || owner->isFinished();
}

pid_t Player::id() const
{
    if (isOwnThread())
        return static_cast<pid_t>(processId());
    // Its own thread may have taken note of its end: then the id is somebody else's by now.
    siginfo_t state;
    const bool isOurs = m_id > 0
        && ::waitid(P_PID, static_cast<id_t>(m_id), &state, WEXITED | WNOHANG | WNOWAIT) == 0;
    return isOurs ? m_id : 0;
}

void Player::discard()
{
    if (isOwnThread()) {
        delete this;
        return;
    }
    if (const pid_t leader = id(); leader > 0)
        ::kill(-leader, SIGKILL);
    deleteLater();
}

bool Player::canRepeat(const QString &file)
{
    return !QStandardPaths::findExecutable(QStringLiteral("aplay")).isEmpty()
        && QFile::exists(file);
}

void Player::blockComplaints()
{
    if (::pipe2(m_complaints, O_CLOEXEC) == 0)
        ::fcntl(m_complaints[1], F_SETPIPE_SZ, complaintsSize);
}

// Runs between fork and exec: plain system calls only.
void Player::setupChildProcess()
{
    GroupProcess::setupChildProcess();
    if (m_complaints[1] < 0)
        return;
    ::signal(SIGPIPE, SIG_IGN); // so that a missing player, too, is something to complain about
    ::dup2(m_complaints[1], STDERR_FILENO);
}

} // namespace SoundNamespace
