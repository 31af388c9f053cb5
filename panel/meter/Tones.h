#pragma once

#include <sound/BuzzerClass.h>

#include <QObject>
#include <QThread>

#include <atomic>

class Preferences;

/**
 * Signal tones and their volume. The library's functions block for up to some seconds, and only one
 * thread at a time may call them; so all calls are made on a separate thread, one after the other.
 */
class Tones : public QObject
{
    Q_OBJECT
public:
    explicit Tones(const Preferences &preferences, QObject *parent = nullptr);
    /** Waits until all requested tones have been handled. */
    ~Tones() override;

    /** Plays a tone once, unless the user has switched the sound off. */
    void play(Buzzer::BuzzerClass::Tone tone);
    /** Plays a tone repeatedly, until the next tone or silence(). */
    void repeat(Buzzer::BuzzerClass::Tone tone);
    void silence();
    /** While calls are waiting, only the last volume is kept. */
    void setVolume(int percent);
    bool isRepeating() const { return m_isRepeating; }

private:
    void ask(Buzzer::BuzzerClass::Tone tone, bool loop);

    const Preferences &m_preferences;
    QThread m_thread; ///< has an event loop, because that notices the end of a sample's player
    QObject m_worker;
    bool m_isRepeating = false;
    std::atomic<int> m_volume {-1}; ///< still to be set; -1: none
};
