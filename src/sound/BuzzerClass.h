#pragma once

#include <ktv_datasource_export.h>

#include <configuration/KTV_Configuration.h>
#include <sound/Sound.h>

#include <QFuture>
#include <QList>
#include <QMap>
#include <QMutex>
#include <QString>

namespace Buzzer {

/** One step of a tone, as the beep program takes it. */
struct BeepParameter
{
    int frequency; ///< hertz
    int length; ///< milliseconds
    int delay; ///< milliseconds of silence after it
    int repeats; ///< how often it sounds
};

/**
 * Plays the interface's signal tones: as samples on the models with an audio codec for signals
 * (KTV_4200 and KTV_4400), with the beep program on all others.
 *
 * All members are static. Tones may be asked for from any thread; they take turns. Initialising
 * and freeing belong to one thread, while no tone is asked for. A tone still sounding when the
 * facade, the application or the process ends is stopped, which takes half a second at most.
 */
class KTV_DATASOURCE_EXPORT BuzzerClass
{
public:
    /** The interface's signals. */
    enum Tone : qint32
    {
        Tone_Empty = 0, ///< silence: ends what is sounding
        Tone_Decline = 1, ///< an entry is not taken
        Tone_Question = 2, ///< the user has to decide
        Tone_Decline_Short = 3, ///< the same as 1, with a pause for repeating it
        Tone_Measure_Fail = 4, ///< a measurement has ended outside its limits
        Tone_Series_Fail = 5, ///< the same signal for a whole series
        Tone_Measure_Pass = 6, ///< a measurement has ended within its limits
        Tone_Fuse = 7, ///< a fuse is being tested
        Tone_Alarm = 8, ///< the user has to decide at once
        Tone_Error = 9, ///< something went wrong
        Tone_Error_Measure = 10, ///< a measurement went wrong
        Tone_Error_Device = 11, ///< the device has a fault
        Tone_Notice = 12, ///< the same signal as 2
        Tone_Saved = 13, ///< a result has been written to the memory
        Tone_Melody = 14 ///< a tune
    };

    /**
     * Sets the class up for a model; again whenever the model changes. Does not block.
     * @param path prefix of the sample files; ends in "/"
     * @param soundOff the device has its sound switched off: nothing ever sounds
     */
    static void BuzzerClass_Initialiser(KTV_Configuration::MeterModels model, const QString &path,
                                        bool soundOff);
    /**
     * Ends what sounds and empties both tables. Blocks for up to half a second, with a sample
     * as Sound::KillProcess() does.
     */
    static void BuzzerClass_Free();

    /**
     * Plays a tone once or, with @p loop, over and over until the next request. Tone_Empty ends
     * what is sounding.
     *
     * With samples it blocks as Sound::Play() does, up to 5 s. With beeps a tone asked for once
     * does not block, and is dropped while another one sounds; a repeated one and Tone_Empty wait
     * for the end of the step that is just sounding, which takes up to 2 s and longer when beep
     * hangs, and for a killall of up to 30 s.
     */
    static void Beep(Tone tone, bool loop);
    /** Silences the buzzer's hardware. Blocks for one beep command without a limit. */
    static void ClearBeepInterface();

    /** What the worker of a single tone runs: every step in its order. Blocks that long. */
    static void _beep(Tone tone);
    /**
     * What the worker of a repeated tone runs, until future is cancelled. A tone that cannot
     * sound, because beep is missing or fails at once, is repeated twice a second at most.
     */
    static void _loopBeep(Tone tone);

    static QMap<Tone, QList<BeepParameter>> toneDefinition; ///< Steps of each tone.
    static QMap<Tone, SoundNamespace::Sound::Sample> toneTranscode; ///< Sample of each tone.
    static bool playWave; ///< Samples instead of beeps.
    static QString _pathtoWave; ///< Prefix of the sample files.
    static bool pernamentOff; ///< Every request is ignored.
    static QMutex mutex; ///< Held by each request; not recursive.
    static QFuture<void> future; ///< The worker that beeps, or has beeped last.
};

} // namespace Buzzer
