#include "meter/Tones.h"

#include "meter/Preferences.h"

using Buzzer::BuzzerClass;
using SoundNamespace::Sound;

Tones::Tones(const Preferences &preferences, QObject *parent)
    : QObject(parent)
    , m_preferences(preferences)
{
    m_worker.moveToThread(&m_thread);
    m_thread.start();
}

Tones::~Tones()
{
    if (BuzzerClass::playWave)
        silence(); // the player of a sample must end before the thread that has started it
    // Queued after all waiting calls: quit() by itself would drop them.
    QMetaObject::invokeMethod(&m_worker, [this] { m_thread.quit(); });
    m_thread.wait();
}

void Tones::play(BuzzerClass::Tone tone)
{
    if (m_preferences.isSoundOn())
        ask(tone, false);
}

void Tones::repeat(BuzzerClass::Tone tone)
{
    if (m_preferences.isSoundOn())
        ask(tone, true);
}

void Tones::silence()
{
    ask(BuzzerClass::Tone_Empty, true);
}

void Tones::setVolume(int percent)
{
    if (m_volume.exchange(percent) < 0)
        QMetaObject::invokeMethod(&m_worker, [this] { Sound::SetVolumme(m_volume.exchange(-1)); });
}

void Tones::ask(BuzzerClass::Tone tone, bool loop)
{
    m_isRepeating = loop && tone != BuzzerClass::Tone_Empty;
    QMetaObject::invokeMethod(&m_worker, [tone, loop] { BuzzerClass::Beep(tone, loop); });
}
