#pragma once

#include <tools/Tools.h>

#include <QFutureWatcher>
#include <QObject>
#include <QStringList>

/**
 * The USB port. Its state is read and changed on a pool thread, because that takes up to 10 s. Only
 * one thread at a time may call the library's functions for it, so nothing else in the panel does.
 */
class UsbPort : public QObject
{
    Q_OBJECT
public:
    /** The mode of the port and the owner of its serial line. */
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

    State state() const { return m_state; } ///< as last read
    /**
     * After a failure: the processes that have the serial line open, each as "login (212)". As long
     * as there is one, the port stays a serial line.
     */
    const QStringList &holders() const { return m_holders; }
    /** True from a call of refresh() or switchTo() until its signal; calls meanwhile are ignored.
     */
    bool isBusy() const { return m_isBusy; }
    void refresh();
    void switchTo(const State &wanted);

signals:
    void refreshed(); ///< The state has been read.
    void switched(bool isWell); ///< After switchTo(): whether the state is the requested one.

private:
    struct Findings
    {
        State state;
        QStringList holders;
    };

    static Findings stateAfter(const State &wanted);

    QFutureWatcher<Findings> m_work; ///< one at a time
    State m_state;
    QStringList m_holders;
    State m_wanted;
    bool m_isSwitching = false;
    bool m_isBusy = false;
};
