#pragma once

#include <ktv_datasource_export.h>

#include <QObject>
#include <QString>

class QProcess;

namespace SoundNamespace {

/**
 * Plays recorded samples through the audio output. There is one player for the whole process, so
 * every new sound ends the previous one.
 *
 * All operations are static and only log failures. They share state without a lock, so only one
 * thread at a time may call them; BuzzerClass ensures that for its own calls. A player still
 * sounding when the facade, the application object or the process ends is stopped.
 */
class KTV_DATASOURCE_EXPORT Sound : public QObject
{
    Q_OBJECT
public:
    /** Each sample is a file with its name and ".raw": signed 16 bit, 44100 Hz, mono. */
    enum Sample : qint32
    {
        SOUND_Empty = 0, ///< silence
        SOUND_DELETED_BANK = 1, ///< a bank of the memory was deleted
        SOUND_ERROR = 2, ///< something went wrong
        SOUND_ERROR_SHORT = 3, ///< the same, shorter
        SOUND_ESC_STOP_MEAS = 4, ///< a measurement was stopped
        SOUND_FUSE_TEST = 5, ///< a fuse is being tested
        SOUND_MEAS_END_WITH_FAIL = 6, ///< a measurement ended outside its limits
        SOUND_MEAS_END_WITH_PASS = 7, ///< a measurement ended within its limits
        SOUND_MEM_WRITE = 8, ///< a result was stored
        SOUND_Riso_CURRENT_LIMIT = 9, ///< the test current reached its limit
        SOUND_SET_ACCEPT = 10, ///< an entry is taken
        SOUND_SET_DECLINE = 11, ///< an entry is not taken
        SOUND_USER_MUST_DECIDE = 12, ///< the user has to decide
        intro = 13, ///< the start
        sheep = 14 ///< a sheep
    };
    Q_ENUM(Sample)

    explicit Sound(QObject *parent = nullptr); ///< Not needed: all operations are static.

    /** Name of a sample, which is its file's name without ".raw"; empty for an unknown one. */
    static QString SampleToString(Sound::Sample sample);

    /**
     * Plays a sample once, or over and over until the next request. SOUND_Empty ends a single
     * sample, and with @p loop a repeated one, too.
     *
     * Blocks for up to 2 s to end the previous player, and then until the new one has started, at
     * most 3 s; does not wait for the end of the sound.
     * @param force plays even while SoundEnable is off
     * @param directory prefix of the sample's file; ends in "/"
     */
    static void Play(Sound::Sample sample, bool loop, bool force, const QString &directory);
    /** Plays a file once. Blocks as Play() does. */
    static void _beep(const QString &file);
    /**
     * Plays a file over and over. Blocks as Play() does. The path becomes part of a shell line,
     * so it must not contain spaces or any character with a meaning for the shell. If it cannot be
     * played, because the file or the player is missing, the shell is halted after some tries.
     */
    static void _loopBeep(const QString &file);

    /** Ends the player and what it has started. Blocks for up to 2 s, usually a few ms. */
    static void KillProcess();
    /**
     * Ends every repeated factory sample (/etc/wav/) and every player of the system, also those
     * that an earlier process has left. Blocks for up to 6 s, usually a few ms.
     */
    static void KillProcess2();

    /** Sets the output volume, 0 to 100 percent. Blocks for the mixer, at most 30 s. */
    static void SetVolumme(int percent);

    static bool SoundEnable; ///< If false, only forced samples play. The interface may change it.
    static bool pernamentOFF; ///< Whether the device's sound is switched off: nothing is played.
    static bool _isLoop; ///< Whether the player repeats its sample.
    /** The player, owned by this class; null when there is none. Kept after its sample's end. */
    static QProcess *process;
};

} // namespace SoundNamespace
