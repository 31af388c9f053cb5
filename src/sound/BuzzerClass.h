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

/** One step of a tone: the arguments for the beep program. */
struct BeepParameter
{
    int frequency; ///< hertz
    int length; ///< milliseconds
    int delay; ///< milliseconds of silence after it
    int repeats; ///< how often it is played
};

/**
 * Plays the interface's signal tones: as samples on the models with an audio codec (KTV_4200 and
 * KTV_4400), with the beep program on all others.
 *
 * All members are static. Beep() may be called on any thread; calls wait for each other. No other
 * call may run during initialising and freeing. A tone still sounding when the facade, the
 * application object or the process ends is stopped, which takes half a second at most.
 */
class KTV_DATASOURCE_EXPORT BuzzerClass
{
public:
    /** The interface's signals. */
    enum Tone : qint32
    {
        Tone_Empty = 0, ///< silence: ends the tone that is sounding
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
     * Sets the class up for a model; to be called again whenever the model changes. Does not block.
     * @param path prefix of the sample files; ends in "/"
     * @param soundOff the sound of the device is switched off: nothing is ever played
     */
    static void BuzzerClass_Initialiser(KTV_Configuration::MeterModels model, const QString &path,
                                        bool soundOff);
    /**
     * Ends the tone that is sounding and empties both tables. Blocks for up to half a second, for a
     * sample as long as Sound::KillProcess().
     */
    static void BuzzerClass_Free();

    /**
     * Plays a tone once or, with @p loop, over and over until the next request. Tone_Empty ends the
     * tone that is sounding.
     *
     * With samples it blocks as Sound::Play() does, up to 5 s. With the beep program a single tone
     * does not block, and is dropped while another one sounds. A repeated tone and Tone_Empty first
     * wait for the end of the step that is sounding, which takes up to 2 s, or longer when beep
     * hangs, and for a killall of up to 30 s.
     */
    static void Beep(Tone tone, bool loop);
    /** Silences the buzzer's hardware. Blocks for one beep command, without a time limit. */
    static void ClearBeepInterface();

    /** Work of the worker thread for a single tone: plays every step in order. Blocks that long. */
    static void _beep(Tone tone);
    /**
     * Work of the worker thread for a repeated tone, until "future" is cancelled. A tone that
     * cannot be played, because beep is missing or fails, is repeated twice a second at most.
     */
    static void _loopBeep(Tone tone);

    static QMap<Tone, QList<BeepParameter>> toneDefinition; ///< Steps of each tone.
    static QMap<Tone, SoundNamespace::Sound::Sample> toneTranscode; ///< Sample of each tone.
    static bool playWave; ///< Whether samples are played instead of beeps.
    static QString _pathtoWave; ///< Prefix of the sample files.
    static bool pernamentOff; ///< Whether every request is ignored.
    static QMutex mutex; ///< Locked during each request; not recursive.
    static QFuture<void> future; ///< The latest worker that has played beeps.
};

} // namespace Buzzer
