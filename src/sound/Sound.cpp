#include "sound/Sound.h"

#include "internal/BackgroundWork_p.h"
#include "internal/CommandRunner_p.h"
#include "internal/SharedFlag_p.h"
#include "internal/log_p.h"
#include "sound/Player_p.h"

#include <QMetaEnum>

#include <algorithm>

using Internal::CommandResult;
using Internal::loadShared;
using Internal::log;
using Internal::Player;
using Internal::runDirect;
using Internal::runProgram;
using Internal::runShell;
using Internal::startDetached;

namespace SoundNamespace {

bool Sound::SoundEnable = true;
bool Sound::pernamentOFF = false;
bool Sound::_isLoop = false;
QProcess *Sound::process = nullptr;

namespace {

const QStringList playerArguments {"-t", "raw", "-f", "S16_LE", "-r", "44100"};

Player *currentPlayer()
{
    return dynamic_cast<Player *>(Sound::process);
}

void closePlayer()
{
    if (Player *const player = currentPlayer())
        player->discard();
    Sound::process = nullptr;
    Sound::_isLoop = false;
}

Player *newPlayer()
{
    Internal::stopBeforeExit(&Sound::process, closePlayer);
    auto *const player = new Player;
    Sound::process = player;
    return player;
}

} // namespace

Sound::Sound(QObject *parent) : QObject(parent)
{ }

QString Sound::SampleToString(Sound::Sample sample)
{
    return QString::fromLatin1(QMetaEnum::fromType<Sample>().valueToKey(sample));
}

void Sound::Play(Sound::Sample sample, bool loop, bool force, const QString &directory)
{
    if (loadShared(pernamentOFF))
        return;
    if (sample == SOUND_Empty) {
        if (!_isLoop || loop)
            KillProcess();
        return;
    }
    if (!loadShared(SoundEnable) && !force)
        return;
    const QString file = directory + SampleToString(sample) + QStringLiteral(".raw");
    if (loop)
        _loopBeep(file);
    else
        _beep(file);
}

void Sound::_beep(const QString &file)
{
    KillProcess();
    // The path is a separate argument, so that quotation marks in it have no effect.
    if (!newPlayer()->launch(QStringLiteral("aplay"), playerArguments + QStringList(file)))
        KillProcess();
}

void Sound::_loopBeep(const QString &file)
{
    KillProcess();
    Player *const player = newPlayer();
    player->expectRepeats(file);
    const QString line = QStringLiteral("while true; do cat ") + file
        + QStringLiteral("; done  | aplay -t raw -f S16_LE -r 44100");
    if (player->launch(QStringLiteral("sh"), {QStringLiteral("-c"), line})) {
        _isLoop = true;
        return;
    }
    // Qt would complain if a closed device were read.
    const QByteArray errors = player->isOpen() ? player->readAllStandardError() : QByteArray();
    log() << "Sound::_loopBeep: waitForStarted error:" << QString::fromLocal8Bit(errors);
}

void Sound::KillProcess()
{
    const Player *const player = currentPlayer();
    const pid_t id = player ? player->id() : 0;
    if (id != 0) { // "pkill -P 0" would signal the system's first process
        const CommandResult result =
            runDirect(QStringLiteral("pkill -P ") + QString::number(id), {1000, 1000});
        if (result.outcome == CommandResult::NotStarted)
            log() << "Sound::KillProcess(): start pkill no run at 1s";
        if (!result.finished())
            log() << "Sound::KillProcess(): stop pkill no at 1s";
    }
    closePlayer();
}

void Sound::KillProcess2()
{
    const QString list =
        runShell(QStringLiteral("ps | grep \"[s]h -c while true; do cat /etc/wav/\""), {1000, 1000})
            .output;
    // The id is taken from the start of the line; if it is indented, nothing is killed.
    for (const QString &line : list.split(QLatin1Char('\n'))) {
        const QString id = line.split(QLatin1Char(' ')).first();
        log() << "KILL2: PID:" << id;
        startDetached(QStringLiteral("kill ") + id);
    }
    runDirect(QStringLiteral("killall aplay"), {1000, 3000});
    closePlayer();
}

void Sound::SetVolumme(int percent)
{
    const QString volume = QString::number(std::clamp(percent, 0, 100)) + QLatin1Char('%');
    constexpr Internal::Waits mixerWaits {Internal::Waits::NoStartWait, 30000};
    if (!runProgram(QStringLiteral("amixer"),
                    {QStringLiteral("set"), QStringLiteral("DAC R&L"), volume}, mixerWaits)
             .finished())
        log() << "Sound::SetVolumme() no finish!";
}

} // namespace SoundNamespace
