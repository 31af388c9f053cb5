#include "meter/UsbPort.h"

#include "meter/SerialLineHolders.h"

#include <QtConcurrent>

using QERNTools::Tools;

namespace {

UsbPort::State stateNow()
{
    return {Tools::getCurrentMode(), Tools::getRS232_Function()};
}

void carryOut(const UsbPort::State &wanted)
{
    // For a serial line without owner SetUSBMode() would free the line, and then fall back to the
    // network. So the owner is stopped by its own function.
    if (wanted.mode == Tools::USB_RS232 && wanted.owner == Tools::RS232_None
        && Tools::getCurrentMode() == Tools::USB_RS232)
        Tools::StopAllRS232Function();
    else
        Tools::SetUSBMode(wanted.mode, wanted.owner);
}

} // namespace

UsbPort::UsbPort(QObject *parent) : QObject(parent)
{
    connect(&m_work, &QFutureWatcher<Findings>::finished, this, [this] {
        m_isBusy = false;
        m_state = m_work.result().state;
        m_holders = m_work.result().holders;
        emit refreshed();
        // SetUSBMode() always returns true, so the state is compared.
        if (m_isSwitching)
            emit switched(m_state == m_wanted);
    });
}

UsbPort::~UsbPort()
{
    m_work.waitForFinished();
}

void UsbPort::refresh()
{
    if (isBusy())
        return;
    m_isSwitching = false;
    m_isBusy = true;
    m_work.setFuture(QtConcurrent::run([] { return Findings {stateNow(), {}}; }));
}

void UsbPort::switchTo(const State &wanted)
{
    if (isBusy())
        return;
    m_isSwitching = true;
    m_isBusy = true;
    m_wanted = wanted;
    m_work.setFuture(QtConcurrent::run(stateAfter, wanted));
}

UsbPort::Findings UsbPort::stateAfter(const State &wanted)
{
    carryOut(wanted);
    const State state = stateNow();
    return {state, state == wanted ? QStringList() : serialLineHolders()};
}
