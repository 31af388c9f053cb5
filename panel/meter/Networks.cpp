#include "meter/Networks.h"

#include "meter/NetworkName.h"

#include <wifi/KTV_Connection.h>
#include <wifi/Network.h>

#include <QCoreApplication>
#include <QtConcurrent>

#include <memory>
#include <utility>

using WiFi::KTV_Connection;
using WiFi::Network;

namespace {

constexpr int usualPatience = 20000; // ms; a sound network takes 5 to 10 s

/** The tool tells an address behind a colon. */
QString bare(const QString &address)
{
    return address.startsWith(QLatin1Char(':')) ? address.mid(1) : address;
}

} // namespace

Networks::Networks(KTV_Connection &connection, QObject *parent)
    : QObject(parent)
    , m_connection(connection)
{
    connect(&connection, &KTV_Connection::WiFi_Scan, this, &Networks::takeScan);
    connect(&connection, &KTV_Connection::WiFi_DetailState_Change, this, &Networks::takeDetails);
    connect(&connection, &KTV_Connection::WiFi_State_Change, this, &Networks::takeState);
    connect(&m_adapter, &QFutureWatcher<void>::finished, this, &Networks::start);
    m_patience.setSingleShot(true);
    m_patience.setInterval(usualPatience);
    connect(&m_patience, &QTimer::timeout, this,
            [this] { endJoining(m_state.isConnected && m_state.name == m_joining); });
}

Networks::~Networks()
{
    m_adapter.waitForFinished();
    rest();
    m_connection.disconnect(this);
    QCoreApplication::sendPostedEvents(this, QEvent::MetaCall);
}

void Networks::look()
{
    m_isLooking = true;
    m_isScanned = false;
    readKnown();
    m_state.hasAdapter = !m_connection.getInterfaceName().isEmpty();
    if (m_state.hasAdapter)
        start();
    else if (!m_adapter.isRunning())
        m_adapter.setFuture(QtConcurrent::run(
            [connection = &m_connection] { connection->findWifiInterfaceName(); }));
}

void Networks::start()
{
    m_state.hasAdapter = !m_connection.getInterfaceName().isEmpty();
    if (m_isLooking) {
        m_connection.DetailInfoScan(true);
        m_connection.ScanNetwork(true);
    }
    emit changed();
}

void Networks::rest()
{
    m_isLooking = false;
    m_connection.ScanNetwork(false);
    m_connection.DetailInfoScan(false);
}

// --- what the library tells

void Networks::takeScan(QList<Network *> *networks)
{
    const std::unique_ptr<QList<Network *>> owned(networks);
    m_isScanned = true;
    m_cells.clear();
    if (owned) {
        for (const Network *network : std::as_const(*owned))
            m_cells.prepend({NetworkName::readable(network->ESSID),
                             qMax(0, network->state - Network::wifi_States_Connect_0),
                             network->encryption}); // the weakest came first
        qDeleteAll(*owned);
    }
    emit changed();
}

void Networks::takeDetails(Network *network)
{
    const std::unique_ptr<Network> owned(network);
    m_state.name = NetworkName::readable(network->ESSID);
    m_state.address = bare(network->address);
    m_state.mask = bare(network->mask);
    m_state.broadcast = bare(network->broadcast);
    takeState(network->state);
    if (m_state.isConnected && !m_joining.isEmpty() && m_state.name == m_joining)
        endJoining(true);
}

void Networks::takeState(int state)
{
    m_state.isOn = state > Network::wifi_States_OFF;
    m_state.isAssociated = state >= Network::wifi_States_Connecting;
    m_state.isConnected = state >= Network::wifi_States_Connect_0;
    emit changed();
}

void Networks::readKnown()
{
    const std::unique_ptr<QList<Network *>> known(m_connection.GetMyNetwork());
    m_known.clear();
    for (const Network *network : std::as_const(*known))
        m_known += network->ESSID;
    qDeleteAll(*known);
    emit changed();
}

// --- changing

void Networks::setOn(bool on)
{
    m_connection.set_wifi_Enable(on);
}

bool Networks::join(const QString &name, const QString &key)
{
    const bool isStored = m_connection.AddNetwork(name, key);
    if (isStored) {
        m_joining = name;
        m_patience.start();
    }
    readKnown();
    return isStored;
}

void Networks::endJoining(bool isWell)
{
    m_patience.stop();
    const QString name = std::exchange(m_joining, QString());
    emit changed();
    emit joined(name, isWell);
}

void Networks::prefer(const QString &name)
{
    m_connection.SetPreferedNetwork(name);
    readKnown();
}

void Networks::forget(const QString &name)
{
    m_connection.DeleteNetwork(name);
    if (name == m_joining) {
        m_patience.stop();
        m_joining.clear();
    }
    readKnown();
}
