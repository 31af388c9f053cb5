#pragma once

#include <tools/Tools.h>

#include <QFutureWatcher>
#include <QObject>
#include <QStringList>

/**
 * The USB port, looked at and switched off the interface's thread: that takes up to 10 s. The
 * library wants one thread at a time for it; nobody else in the panel touches it.
 */
class UsbPort : public QObject
{
    Q_OBJECT
public:
    /** What the port shows itself as, and who owns its serial line. */
    struct State
    {
        QERNTools::Tools::USB_Mode mode = QERNTools::Tools::USB_None;
        QERNTools::Tools::RS232_Function owner = QERNTools::Tools::RS232_None;

        bool operator==(const State &other) const
        {
            return mode == other.mode && owner == other.owner;
        }
    };

    explicit UsbPort(QObject *parent = nullptr);
    /** Waits until the port has been switched. */
    ~UsbPort() override;

    State state() const { return m_state; } ///< as it was seen last
    /**
     * After a failure the processes that have the serial line open, each "login (212)": the port
     * stays a serial line for as long as any of them does.
     */
    const QStringList &holders() const { return m_holders; }
    /** From look() or bring() until its signal: what is asked of the port meanwhile is dropped. */
    bool isBusy() const { return m_isBusy; }
    void look();
    void bring(const State &wanted);

signals:
    void looked(); ///< The state is known.
    void brought(bool isWell); ///< The same after bring(), and whether it is the wanted one.

private:
    struct Look
    {
        State state;
        QStringList holders;
    };

    static Look stateAfter(const State &wanted);

    QFutureWatcher<Look> m_work; ///< one thread at a time for the port
    State m_state;
    QStringList m_holders;
    State m_wanted;
    bool m_isBringing = false;
    bool m_isBusy = false;
};
