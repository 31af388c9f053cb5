#pragma once

#include <tools/Tools.h>

#include <QFutureWatcher>
#include <QObject>

class KTV_DataSource;

/** The USB port, looked at and switched off the interface's thread: that takes up to 10 s. */
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

    explicit UsbPort(const KTV_DataSource &library, QObject *parent = nullptr);
    /** Waits until the port has been switched. */
    ~UsbPort() override;

    State state() const { return m_state; } ///< as it was seen last
    bool isBusy() const { return m_work.isRunning(); }
    void look();
    void bring(const State &wanted);

signals:
    void looked(); ///< The state is known.
    void brought(bool isWell); ///< The same after bring(), and whether it is the wanted one.

private:
    const KTV_DataSource &m_library;
    QFutureWatcher<State> m_work; ///< one thread at a time for the port
    State m_state;
    State m_wanted;
    bool m_isBringing = false;
};
