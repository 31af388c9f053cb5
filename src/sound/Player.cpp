#include "sound/Player_p.h"

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
constexpr int mostComplaints = 20;
constexpr qint64 mostUnread = 65536; // bytes; a player that prints without end fills no memory

/** A player that another thread has ended, until its own thread gets to deleting it. */
struct Ended
{
    const QThread *thread = nullptr;
    QPointer<Player> player;
};

std::vector<Ended> ended;

/** Deletes those of this thread, which has not got to its event loop since. */
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

/** As far as is known before; of an empty file nothing complains. */
bool canSound(const QFileInfo &file)
{
    return file.exists() && (!file.isFile() || file.size() > 0)
        && !QStandardPaths::findExecutable(QStringLiteral("aplay")).isEmpty();
}

/** The application's thread gets to its event loop, if it is not in it already. */
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
    kill(); // covers a child that leaves for its own group between the two
    waitForFinished(-1); // while its own slot can still be called
}

bool Player::launch(const QString &program, const QStringList &arguments)
{
    deleteEnded();
    start(program, arguments, ReadWrite);
    const bool isStarted = waitForStarted(startWait);
    m_id = static_cast<pid_t>(processId());
    if (!hasEventLoop()) {
        if (!m_canSound) // nobody will count the complaints
            halt();
        moveToThread(nullptr);
    }
    return isStarted;
}

bool Player::isOwnThread() const
{
    // Nobody else can touch a player whose thread has ended.
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
    ended.push_back({thread(), this});
    deleteLater();
}

void Player::expectRepeats(const QString &file)
{
    m_repeats = true;
    const QFileInfo sample(file);
    m_canSound = canSound(sample);
    if (!hasEventLoop())
        return;
    connect(this, &QProcess::readyReadStandardError, this, &Player::countComplaints);
    if (sample.isFile() && sample.size() == 0)
        QTimer::singleShot(emptyTime, this, &Player::halt);
}

void Player::signalGroup(int signal)
{
    const auto leader = static_cast<pid_t>(processId());
    if (leader <= 0)
        return;
    // The child has not reached its own group yet when it was started just now.
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
        if (bytesAvailable() > mostUnread)
            readAll();
    }
}

void Player::countComplaints()
{
    // The player may remark on what it plays; cat speaks only when it fails.
    m_complaints += int(readAllStandardError().count("cat: "));
    if (m_complaints > mostComplaints)
        halt();
}

void Player::prepareChild() const
{
    ::setpgid(0, 0);
    if (m_repeats)
        ::signal(SIGPIPE, SIG_IGN); // so that a missing player, too, is something to complain about
}

} // namespace Internal
