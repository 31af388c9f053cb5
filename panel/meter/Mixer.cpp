#include "meter/Mixer.h"

#include <sound/Sound.h>

#include <QtConcurrent>

Mixer::Mixer(QObject *parent) : QObject(parent)
{
    connect(&m_watcher, &QFutureWatcher<void>::finished, this, [this] {
        if (m_wanted != m_running)
            run();
    });
}

Mixer::~Mixer()
{
    m_watcher.waitForFinished();
}

void Mixer::setVolume(int percent)
{
    m_wanted = percent;
    if (!m_watcher.isRunning())
        run();
}

void Mixer::run()
{
    m_running = m_wanted;
    m_watcher.setFuture(
        QtConcurrent::run([percent = m_running] { SoundNamespace::Sound::SetVolumme(percent); }));
}
