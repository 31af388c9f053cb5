#pragma once

#include <ktv_datasource_export.h>

#include <QObject>
#include <QString>

class QProcess;

namespace SoundNamespace {

/**
 * Plays recorded samples through the audio output. There is one player for the whole process,
 * so every new sound ends the one before.
 *
 * All operations are static and none reports a failure to its caller; the debug log has it. They
 * share their state without a lock: one thread at a time, which the buzzer sees to for its own
 * calls. A player still sounding when the facade, the application or the process ends is stopped.
 */
class KTV_DATASOURCE_EXPORT Sound : public QObject
{
    Q_OBJECT
public:
    /** Each sample is the file of its own name and ".raw": signed 16 bit, 44100 Hz, mono. */
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

    explicit Sound(QObject *parent = nullptr); ///< Needed by nobody: all operations are static.

    /** Name of a sample, as its file has it; empty for an unknown one. */
    static QString SampleToString(Sound::Sample sample);

    /**
     * Plays a sample once, or over and over until something else is to be played. SOUND_Empty
     * ends a single sample, and with @p loop a repeated one, too.
     *
     * Blocks until the player has started, at most 3 s, and before that up to 2 s to end the
     * former one; it does not wait for the sound's end.
     * @param force plays although SoundEnable is off
     * @param directory prefix of the sample's file; ends in "/"
     */
    static void Play(Sound::Sample sample, bool loop, bool force, const QString &directory);
    /** Plays a file once. Blocks as Play() does. */
    static void _beep(const QString &file);
    /**
     * Plays a file over and over. Blocks as Play() does. The path becomes part of a shell line,
     * so it must hold nothing that a shell reads in its own way, and no blanks. Where it cannot
     * sound, for want of the file or of a player, the shell is halted after some tries.
     */
    static void _loopBeep(const QString &file);

    /** Ends the player and what it has started. Blocks for up to 2 s, usually a few ms. */
    static void KillProcess();
    /**
     * Ends every repeated factory sample (/etc/wav/) and every player of the system, also those
     * that this process has lost track of. Blocks for up to 6 s, usually a few ms.
     */
    static void KillProcess2();

    /** Sets the output volume, 0 to 100 percent. Blocks for the mixer, at most 30 s. */
    static void SetVolumme(int percent);

    static bool SoundEnable; ///< Off: only what is forced sounds. The interface may switch it.
    static bool pernamentOFF; ///< The device has its sound switched off: nothing sounds.
    static bool _isLoop; ///< The player repeats its sample.
    /** The player; null when there is none. Owned here; it stays after a sample's end. */
    static QProcess *process;
};

} // namespace SoundNamespace
