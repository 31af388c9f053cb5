#pragma once

#include <QFutureWatcher>
#include <QObject>

/** Sets the output volume off the interface's thread; of quick changes the last one counts. */
class Mixer : public QObject
{
    Q_OBJECT
public:
    explicit Mixer(QObject *parent = nullptr);
    ~Mixer() override;

    void setVolume(int percent);

private:
    void run();

    int m_wanted = -1;
    int m_running = -1;
    QFutureWatcher<void> m_watcher;
};
