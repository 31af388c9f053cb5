#pragma once

#include <QObject>
#include <QRandomGenerator>
#include <QTimer>

class Setup;

/** The measuring hardware, simulated: readings of the object under test at an interval. */
class Hardware : public QObject
{
    Q_OBJECT
public:
    explicit Hardware(const Setup &setup, QObject *parent = nullptr);

    /** @param interval between readings, in milliseconds */
    void start(int interval);
    void stop();
    bool isRunning() const { return m_timer.isActive(); }

signals:
    /** In ohms, henries or degrees Celsius; NaN while the leads are open. */
    void reading(float value);
    void stopped();

private:
    float measure();
    float noise();

    const Setup &m_setup;
    QTimer m_timer;
    QRandomGenerator m_random; ///< the same noise after every start
};
