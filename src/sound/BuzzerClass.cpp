#include "sound/BuzzerClass.h"

#include "configuration/MeterModel_p.h"
#include "internal/BackgroundWork_p.h"
#include "internal/CommandRunner_p.h"
#include "internal/SharedFlag_p.h"
#include "internal/log_p.h"
#include "sound/ToneTables_p.h"

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QThread>

#include <algorithm>

#if defined(__SANITIZE_THREAD__)
#include <sanitizer/tsan_interface.h>
#endif

using Internal::loadShared;
using Internal::log;
using Internal::runDirect;
using Internal::runProgram;
using Internal::storeShared;
using Internal::Waits;
using SoundNamespace::Sound;

namespace Buzzer {

QMap<BuzzerClass::Tone, QList<BeepParameter>> BuzzerClass::toneDefinition;
QMap<BuzzerClass::Tone, Sound::Sample> BuzzerClass::toneTranscode;
bool BuzzerClass::playWave = false;
QString BuzzerClass::_pathtoWave = QStringLiteral("/etc/wav/");
bool BuzzerClass::pernamentOff = false;
QMutex BuzzerClass::mutex;
QFuture<void> BuzzerClass::future;

namespace {

Internal::EndlessWork worker(BuzzerClass::future);

constexpr qint64 shortestRepeat = 500; // ms, for a tone that cannot be played
constexpr Waits killallWaits {Waits::NoStartWait, 30000};

const QString killBeep = QStringLiteral("killall beep");

/**
 * Locks the mutex of the requests, and reports that to the thread sanitizer, which does not
 * recognise QMutex.
 */
class RequestLock
{
public:
    RequestLock()
    {
        BuzzerClass::mutex.lock();
#if defined(__SANITIZE_THREAD__)
        __tsan_acquire(&BuzzerClass::mutex);
#endif
    }
    ~RequestLock()
    {
#if defined(__SANITIZE_THREAD__)
        __tsan_release(&BuzzerClass::mutex);
#endif
        BuzzerClass::mutex.unlock();
    }
    Q_DISABLE_COPY_MOVE(RequestLock)
};

Waits withoutLimit()
{
    return {Waits::NoStartWait, Waits::Forever, &worker.isStopping()};
}

bool isOver(const QFuture<void> &self)
{
    return worker.isStopping() || (self.isRunning() && self.isCanceled());
}

/** How long `beep` ran, in ms. */
qint64 play(const QList<BeepParameter> &steps, const QFuture<void> &self)
{
    qint64 time = 0;
    for (const BeepParameter &step : steps) {
        if (isOver(self))
            break;
        QElapsedTimer beeping;
        beeping.start();
        runProgram(QStringLiteral("beep"),
                   {QStringLiteral("-f"), QString::number(step.frequency), QStringLiteral("-l"),
                    QString::number(step.length), QStringLiteral("-d"), QString::number(step.delay),
                    QStringLiteral("-r"), QString::number(step.repeats)},
                   withoutLimit());
        time += beeping.elapsed();
        runProgram(QStringLiteral("killall"), {QStringLiteral("beep")}, withoutLimit());
    }
    return time;
}

/** How long a tone sounds, in ms, without its pauses. If it ends sooner, it has not been played. */
qint64 soundingTime(const QList<BeepParameter> &steps)
{
    qint64 time = 0;
    for (const BeepParameter &step : steps)
        time += qint64(step.length) * step.repeats;
    return time;
}

/** Ends the tone that is beeping: first the worker, then any beep process that is left. */
void silence()
{
    while (!BuzzerClass::future.isFinished()) {
        BuzzerClass::future.cancel();
        BuzzerClass::future.waitForFinished();
        runDirect(killBeep, killallWaits);
    }
}

void playOnce(BuzzerClass::Tone tone)
{
    if (!BuzzerClass::future.isFinished())
        return; // a single tone never interrupts another tone
    worker.start([tone] { BuzzerClass::_beep(tone); });
    while (!BuzzerClass::future.isRunning() && !BuzzerClass::future.isFinished()) {
        log() << "czekam...";
        QThread::msleep(1);
    }
}

} // namespace

void BuzzerClass::BuzzerClass_Initialiser(KTV_Configuration::MeterModels model, const QString &path,
                                          bool soundOff)
{
    storeShared(pernamentOff, soundOff);
    storeShared(Sound::pernamentOFF, soundOff);
    playWave = Internal::meterModel(model).playsSamples;
    if (playWave)
        _pathtoWave = path;
    if (!toneDefinition.isEmpty())
        return;
    toneDefinition = Internal::toneSteps();
    toneTranscode = Internal::toneSamples();
}

void BuzzerClass::BuzzerClass_Free()
{
    worker.stop(); // the worker reads the tables
    const RequestLock lock;
    Sound::KillProcess();
    toneDefinition.clear();
    toneTranscode.clear();
}

void BuzzerClass::Beep(Tone tone, bool loop)
{
    if (loadShared(pernamentOff))
        return;
    const RequestLock lock;
    const auto sample = toneTranscode.constFind(tone);
    if (playWave && sample != toneTranscode.constEnd()) {
        Sound::Play(*sample, loop, true, _pathtoWave);
    } else if (tone == Tone_Empty) {
        log() << "BuzzerClass::Beep tone empty";
        silence();
    } else if (!loop) {
        log() << "BuzzerClass::Beep play";
        playOnce(tone);
    } else {
        log() << "BuzzerClass::Beep repeat";
        silence();
        worker.start([tone] { _loopBeep(tone); });
    }
}

void BuzzerClass::ClearBeepInterface()
{
    runDirect(QStringLiteral("beep -f 1 -l 0"), Waits());
    Internal::startDetached(killBeep);
}

void BuzzerClass::_beep(Tone tone)
{
    play(toneDefinition.value(tone), worker.handle());
}

void BuzzerClass::_loopBeep(Tone tone)
{
    const QFuture<void> self = worker.handle();
    const QList<BeepParameter> steps = toneDefinition.value(tone);
    const qint64 sounding = soundingTime(steps);
    while (!isOver(self)) {
        const QDeadlineTimer nextRound(std::max(sounding, shortestRepeat));
        const qint64 beeping = play(steps, self);
        if (sounding == 0 || beeping < sounding) // it cannot have been played
            worker.sleepUntil(nextRound, [&self] { return isOver(self); });
    }
}

} // namespace Buzzer
