#pragma once

#include <QObject>
#include <QRandomGenerator>
#include <QStringList>
#include <QTimer>

class Setup;

/**
 * The measuring hardware, simulated: readings of the object under test at an interval. They serve
 * one taker at a time, a measurement or a series.
 */
class Hardware : public QObject
{
    Q_OBJECT
public:
    /** Whom the readings are for. */
    class Taker
    {
    public:
        /** @param value in ohms, henries or degrees Celsius; NaN while the leads are open */
        virtual void take(float value) = 0;
        virtual void end() = 0; ///< There are no more.

    protected:
        ~Taker() = default;
    };

    explicit Hardware(const Setup &setup, QObject *parent = nullptr);

    /**
     * @param interval between readings, in milliseconds
     * @return false, and nothing done, while another one is served
     */
    bool start(int interval, Taker &taker);
    void stop();
    bool isRunning() const { return m_taker; }
    bool serves(const Taker &taker) const { return m_taker == &taker; }
    /** As if the hardware had measured @p value. */
    void hand(float value);

    /** Meters that can be simulated: the model follows from the first two characters. */
    static QStringList serialNumbers();

private:
    float measure();
    float noise();

    const Setup &m_setup;
    Taker *m_taker = nullptr; ///< null while nothing is measured
    QTimer m_timer;
    QRandomGenerator m_random; ///< the same noise after every start
};
