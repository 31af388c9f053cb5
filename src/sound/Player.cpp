#include "sound/Player_p.h"

#include <QAbstractEventDispatcher>
#include <QFileInfo>
#include <QStandardPaths>
#include <QThread>
#include <QTimer>

#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace SoundNamespace {

namespace {

constexpr int startWait = 3000; // ms
constexpr int emptyTime = 300; // ms that an empty file is played over and over
constexpr int mostComplaints = 20;
constexpr int complaintsSize = 4096; // bytes, the least that a pipe can have

bool canSound(const QString &file)
{
    return !QStandardPaths::findExecutable(QStringLiteral("aplay")).isEmpty()
        && QFileInfo::exists(file);
}

} // namespace

Player::~Player()
{
    end(); // while its own slot can still be called
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

void Player::expectRepeats(const QString &file)
{
    m_repeats = true;
    m_canSound = canSound(file);
    connect(this, &QProcess::readyReadStandardError, this, &Player::countComplaints);
    // Of an empty file nothing complains.
    const QFileInfo sample(file);
    if (sample.isFile() && sample.size() == 0 && QAbstractEventDispatcher::instance())
        QTimer::singleShot(emptyTime, this, &Player::halt);
}

void Player::halt()
{
    signalGroup(SIGSTOP);
}

void Player::countComplaints()
{
    // The player may remark on what it plays; cat speaks only when it fails.
    m_complaints += readAllStandardError().count("cat: ");
    if (m_complaints > mostComplaints)
        halt();
}

// Runs between fork and exec: plain system calls only.
void Player::setupChildProcess()
{
    GroupProcess::setupChildProcess();
    if (!m_repeats)
        return;
    ::signal(SIGPIPE, SIG_IGN); // so that a missing player, too, is something to complain about
    // In a thread without an event loop nobody counts: there a full pipe halts what complains;
    // and also after a crash of this process, because the child can read the pipe itself.
    ::open("/proc/self/fd/2", O_RDONLY);
    if (!m_canSound)
        ::fcntl(STDERR_FILENO, F_SETPIPE_SZ, complaintsSize);
}

} // namespace SoundNamespace
