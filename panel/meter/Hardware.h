#pragma once

#include <QObject>
#include <QRandomGenerator>
#include <QStringList>
#include <QTimer>

class Setup;

/**
 * The simulated measuring hardware. It measures the object under test at an interval, and delivers
 * the readings to one receiver at a time: a measurement or a series.
 */
class Hardware : public QObject
{
    Q_OBJECT
public:
    /** Receives the readings. */
    class Receiver
    {
    public:
        /** @param value in ohms, henries or degrees Celsius; NaN while the leads are open */
        virtual void receive(float value) = 0;
        virtual void end() = 0; ///< No further reading follows.

    protected:
        ~Receiver() = default;
    };

    explicit Hardware(const Setup &setup, QObject *parent = nullptr);

    /**
     * @param interval between readings, in milliseconds
     * @return false, with nothing done, while there is a receiver
     */
    bool start(int interval, Receiver &receiver);
    void stop();
    bool isRunning() const { return m_receiver; }
    bool serves(const Receiver &receiver) const { return m_receiver == &receiver; }
    /** Delivers @p value as if the hardware had measured it. */
    void deliver(float value);

    /**
     * Serial numbers of meters that can be simulated; the first two characters decide the model.
     */
    static QStringList serialNumbers();

private:
    float measure();
    float noise();

    const Setup &m_setup;
    Receiver *m_receiver = nullptr; ///< null while no measurement is running
    QTimer m_timer;
    QRandomGenerator m_random; ///< has the same seed at every start
};
