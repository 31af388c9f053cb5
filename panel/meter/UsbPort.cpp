#include "meter/UsbPort.h"

#include <datasource/KTV_DataSource.h>

#include <QtConcurrent>

using QERNTools::Tools;

namespace {

UsbPort::State stateOf(const KTV_DataSource &library)
{
    return {library.getUSB_Mode(), library.getRS_Mode()};
}

void switchTo(const KTV_DataSource &library, const UsbPort::State &wanted)
{
    // Asked to give a line to nobody, the library frees it, and then falls back to the
    // network: a line is taken from its owner in so many words.
    if (wanted.mode == Tools::USB_RS232 && wanted.owner == Tools::RS232_None
        && library.getUSB_Mode() == Tools::USB_RS232)
        Tools::StopAllRS232Function();
    else
        library.SetUSBMode(wanted.mode, wanted.owner);
}

} // namespace

UsbPort::UsbPort(const KTV_DataSource &library, QObject *parent)
    : QObject(parent)
    , m_library(library)
{
    connect(&m_work, &QFutureWatcher<State>::finished, this, [this] {
        m_state = m_work.result();
        emit looked();
        // The switching itself always calls itself a success.
        if (m_isBringing)
            emit brought(m_state == m_wanted);
    });
}

UsbPort::~UsbPort()
{
    m_work.waitForFinished();
}

void UsbPort::look()
{
    if (isBusy())
        return;
    m_isBringing = false;
    m_work.setFuture(QtConcurrent::run([library = &m_library] { return stateOf(*library); }));
}

void UsbPort::bring(const State &wanted)
{
    if (isBusy())
        return;
    m_isBringing = true;
    m_wanted = wanted;
    m_work.setFuture(QtConcurrent::run([library = &m_library, wanted] {
        switchTo(*library, wanted);
        return stateOf(*library);
    }));
}
