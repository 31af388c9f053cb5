#include "sound/Player_p.h"

#include "internal/ChildProcess_p.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QPointer>
#include <QStandardPaths>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <csignal>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace Internal {

namespace {

constexpr int startWait = 3000; // ms
constexpr int emptyTime = 300; // ms that an empty file is played over and over
constexpr int maxErrors = 20;
constexpr qint64 maxUnread = 65536; // bytes of output that are kept

/** A player that another thread has ended and that its own thread still has to delete. */
struct Ended
{
    const QThread *thread = nullptr;
    QPointer<Player> player;
};

std::vector<Ended> ended;

/** Deletes the ended players of this thread, which has not reached its event loop since. */
void deleteEnded()
{
    const QThread *const current = QThread::currentThread();
    for (const Ended &one : ended) {
        if (one.thread == current)
            delete one.player;
    }
    ended.erase(std::remove_if(ended.begin(), ended.end(),
                               [](const Ended &one) { return one.player.isNull(); }),
                ended.end());
}

bool isInstalled(const QString &program)
{
    return !QStandardPaths::findExecutable(program).isEmpty();
}

/**
 * Whether the file can be played, as far as that can be known beforehand; nothing prints an error
 * about an empty file.
 */
bool canPlay(const QFileInfo &file)
{
    return file.exists() && (!file.isFile() || file.size() > 0)
        && isInstalled(QStringLiteral("aplay"));
}

/**
 * Whether this thread has an event loop; the application's thread counts even before it runs its
 * own.
 */
bool hasEventLoop()
{
    const QThread *const current = QThread::currentThread();
    const QCoreApplication *const application = QCoreApplication::instance();
    return (application && application->thread() == current) || current->loopLevel() > 0;
}

} // namespace

Player::Player()
{
    connect(this, &QProcess::readyReadStandardOutput, this, &Player::dropSurplus);
    connect(this, &QProcess::readyReadStandardError, this, &Player::dropSurplus);
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    setChildProcessModifier([this] { prepareChild(); });
#endif
}

Player::~Player()
{
    if (state() == NotRunning)
        return;
    signalGroup(SIGKILL);
    kill(); // in case the child has changed to its own group after signalGroup()
    // Here, while slots of this class can still be called.
    if (waitForFinished(AbandonedChildren::killTime) || state() == NotRunning)
        return;
    AbandonedChildren::add(pid_t(processId()));
    setProcessState(NotRunning); // or else ~QProcess would wait for it
}

bool Player::launch(const QString &program, const QStringList &arguments)
{
    deleteEnded();
    if (AbandonedChildren::areTooMany())
        return false;
    // Qt 6.4 leaks a descriptor for every program that it cannot start.
    if (!isInstalled(program))
        return false;
    start(program, arguments, ReadWrite);
    const bool isStarted = waitForStarted(startWait);
    m_id = pid_t(processId());
    if (!hasEventLoop()) {
        if (!m_canPlay) // nothing will count its error messages
            halt();
        moveToThread(nullptr);
    }
    return isStarted;
}

bool Player::isOwnThread() const
{
    // If its thread has ended, no other thread uses the player.
    const QThread *const owner = thread();
    return !owner || owner == QThread::currentThread() || owner->isFinished();
}

pid_t Player::id() const
{
    if (isOwnThread())
        return pid_t(processId());
    // If its own thread has noticed its end, another process may have this id now.
    siginfo_t state;
    const bool isOurs =
        m_id > 0 && ::waitid(P_PID, id_t(m_id), &state, WEXITED | WNOHANG | WNOWAIT) == 0;
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
    ended.push_back({thread(), this});
    deleteLater();
}

void Player::expectRepeats(const QString &file)
{
    m_repeats = true;
    const QFileInfo sample(file);
    m_canPlay = canPlay(sample);
    if (!hasEventLoop())
        return;
    connect(this, &QProcess::readyReadStandardError, this, &Player::countErrors);
    if (sample.isFile() && sample.size() == 0)
        QTimer::singleShot(emptyTime, this, &Player::halt);
}

void Player::signalGroup(int signal)
{
    const auto leader = pid_t(processId());
    if (leader <= 0)
        return;
    // A child that was started just now may not have its own group yet.
    if (::kill(-leader, signal) != 0)
        ::kill(leader, signal);
}

void Player::halt()
{
    signalGroup(SIGSTOP);
}

void Player::dropSurplus()
{
    for (const ProcessChannel channel : {StandardError, StandardOutput}) {
        setReadChannel(channel);
        if (bytesAvailable() > maxUnread)
            readAll();
    }
}

void Player::countErrors()
{
    // The player also prints notes about the file; cat prints only errors.
    m_errors += int(readAllStandardError().count("cat: "));
    if (m_errors > maxErrors)
        halt();
}

void Player::prepareChild() const
{
    ::setpgid(0, 0);
    if (m_repeats)
        ::signal(SIGPIPE, SIG_IGN); // so that cat prints an error if there is no player
}

} // namespace Internal
