#include "Command.h"
#include "EventLoop.h"
#include "Settings.h"

#include <configuration/KTV_Configuration.h>
#include <sound/BuzzerClass.h>
#include <sound/Sound.h>

#include <QCoreApplication>
#include <QFutureWatcher>
#include <QMetaEnum>
#include <QProcess>

#include <optional>

#include <fcntl.h>
#include <unistd.h>

using Buzzer::BuzzerClass;
using SoundNamespace::Sound;

namespace {

const QString soundIsOff = QStringLiteral("the device has its sound switched off");

/**
 * Sample with that name, with or without "SOUND_", in any letter case; no value if there is none.
 */
Sound::Sample sampleOf(const QString &name)
{
    const QMetaEnum names = QMetaEnum::fromType<Sound::Sample>();
    for (int i = 0; i < names.keyCount(); ++i) {
        const QString key = QString::fromLatin1(names.key(i));
        for (const QString &form : {name, QStringLiteral("SOUND_") + name}) {
            if (key.compare(form, Qt::CaseInsensitive) == 0)
                return Sound::Sample(names.value(i));
        }
    }
    return Sound::SOUND_Empty;
}

/** Waits until the player or this program is to end. */
int waitForPlayer(int limit)
{
    if (!Sound::process)
        return fail(QStringLiteral("the player could not be started"));
    QObject::connect(Sound::process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished),
                     QCoreApplication::instance(), &QCoreApplication::quit);
    runEventLoop(limit);
    QProcess &player = *Sound::process;
    const bool hasFailed = player.state() == QProcess::NotRunning
        && player.exitStatus() == QProcess::NormalExit && player.exitCode() != 0;
    if (!hasFailed)
        return Success;
    return fail(QStringLiteral("the player failed: ")
                + QString::fromLocal8Bit(player.readAllStandardError()).trimmed());
}

int playSample(const Call &call, bool loop)
{
    const int end = milliseconds(call, "seconds");
    if (end < 0)
        return misuseOfTime();
    const Sound::Sample sample = sampleOf(call.argument(0));
    if (sample == Sound::SOUND_Empty)
        return fail(QStringLiteral("no sample '%1'").arg(call.argument(0)));
    const KTV_Configuration configuration;
    if (configuration.get_SoundOff())
        return fail(soundIsOff);
    const SignalQuit quitOnSignal;
    Sound::Play(sample, loop, true, configuration.get_SoundSampleDirectory());
    return waitForPlayer(end);
}

int play(const Call &call)
{
    return playSample(call, false);
}

int loop(const Call &call)
{
    return playSample(call, true);
}

int list(const Call &call)
{
    const QMetaEnum names = QMetaEnum::fromType<Sound::Sample>();
    QStringList samples;
    for (int i = 0; i < names.keyCount(); ++i) {
        if (names.value(i) != Sound::SOUND_Empty)
            samples += QString::fromLatin1(names.key(i));
    }
    call.print(samples);
    return Success;
}

/** Discards the error output of programs that are started. */
class NoComplaints
{
public:
    NoComplaints() : m_kept(::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0))
    {
        const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
        ::dup2(nowhere, STDERR_FILENO);
        ::close(nowhere);
    }
    ~NoComplaints()
    {
        ::dup2(m_kept, STDERR_FILENO);
        ::close(m_kept);
    }
    Q_DISABLE_COPY_MOVE(NoComplaints)

private:
    const int m_kept;
};

int stop(const Call &call)
{
    // If there is no player, the programs that would end it print errors.
    std::optional<NoComplaints> noComplaints;
    if (!call.isSet("verbose"))
        noComplaints.emplace();
    Sound::KillProcess2();
    return Success;
}

int volume(const Call &call)
{
    bool ok = false;
    const int percent = call.argument(0).toInt(&ok);
    if (!ok || percent < 0 || percent > 100)
        return misuse(QStringLiteral("a volume is a number of percent, 0 to 100"));
    Sound::SetVolumme(percent);
    return Success;
}

int beep(const Call &call)
{
    constexpr int lastTone = BuzzerClass::Tone_Melody;
    bool ok = false;
    const int tone = call.argument(0).toInt(&ok);
    if (!ok || tone < 0 || tone > lastTone)
        return misuse(QStringLiteral("a tone is a number, 0 to %1").arg(lastTone));
    const int end = milliseconds(call, "seconds");
    if (end < 0)
        return misuseOfTime();
    const KTV_Configuration configuration;
    if (configuration.get_SoundOff())
        return fail(soundIsOff);

    const SignalQuit quitOnSignal;
    BuzzerClass::BuzzerClass_Initialiser(modelOf(call), configuration.get_SoundSampleDirectory(),
                                         false);
    if (tone == BuzzerClass::Tone_Empty) {
        BuzzerClass::ClearBeepInterface();
        return Success;
    }
    BuzzerClass::Beep(BuzzerClass::Tone(tone), call.isSet("loop"));
    if (BuzzerClass::playWave)
        return waitForPlayer(end);
    QFutureWatcher<void> watcher;
    QObject::connect(&watcher, &QFutureWatcher<void>::finished, QCoreApplication::instance(),
                     &QCoreApplication::quit);
    watcher.setFuture(BuzzerClass::future);
    runEventLoop(end);
    return Success;
}

} // namespace

Family soundFamily()
{
    return {"sound",
            "Recorded samples and the volume. Safe at any time but for 'stop', which ends "
            "what the interface plays, too.",
            {{"list", "", "print the names of the samples", list},
             {"play", "SAMPLE", "play a sample once", play, {secondsOption()}},
             {"loop",
              "SAMPLE",
              "play a sample over and over, until SIGINT, SIGTERM or SIGHUP",
              loop,
              {secondsOption()}},
             {"stop", "", "end every player of the system", stop},
             {"volume", "PERCENT", "set the volume", volume}}};
}

Family beepFamily()
{
    return {
        "beep",
        "Signal tones, as a sample or with the beep program, whatever the model has. Unwise while "
        "the interface beeps: the one ends the other.",
        {{"",
          "TONE",
          "play a signal tone, 1 to 14; 0 silences the buzzer",
          beep,
          {{QStringLiteral("loop"), QStringLiteral("Repeat it, until SIGINT, SIGTERM or SIGHUP.")},
           secondsOption(),
           serialOption("Serial number that decides the model (else the stored one).")}}}};
}
