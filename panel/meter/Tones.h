#pragma once

#include <sound/BuzzerClass.h>

#include <QObject>
#include <QThread>

#include <atomic>

class Preferences;

/**
 * Signal tones and their volume. The library's wait for the end of what sounds, up to some seconds,
 * and it wants one thread at a time for them and for the mixer: all are asked for on a thread of
 * their own, one after the other.
 */
class Tones : public QObject
{
    Q_OBJECT
public:
    explicit Tones(const Preferences &preferences, QObject *parent = nullptr);
    /** Waits for what has been asked for. */
    ~Tones() override;

    /** Sounds a tone once, unless the user has switched the sounds off. */
    void play(Buzzer::BuzzerClass::Tone tone);
    /** The same over and over, until the next tone or silence(). */
    void repeat(Buzzer::BuzzerClass::Tone tone);
    void silence();
    /** Of changes that wait the last one counts. */
    void setVolume(int percent);
    bool isRepeating() const { return m_isRepeating; }

private:
    void ask(Buzzer::BuzzerClass::Tone tone, bool loop);

    const Preferences &m_preferences;
    QThread m_thread; ///< with an event loop, which notices the end of a sample's player
    QObject m_worker;
    bool m_isRepeating = false;
    std::atomic<int> m_volume {-1}; ///< to be set; -1: there is nothing to do
};
