#include "meter/Networks.h"

#include "meter/NetworkName.h"

#include <wifi/KTV_Connection.h>
#include <wifi/Network.h>

#include <QCoreApplication>
#include <QtConcurrent>

#include <algorithm>
#include <memory>
#include <utility>

using WiFi::KTV_Connection;
using WiFi::Network;

namespace {

constexpr int usualPatience = 20000; // ms; a working network takes 5 to 10 s
constexpr int joiningInterval = 1000; // ms, between checks of the connection
constexpr int switchingTime = 3000; // ms, the most that switching the adapter takes
constexpr int rescanDelay = 1000; // ms; a pause, in case scans fail at once

/** The address without the colon that precedes it. */
QString bare(const QString &address)
{
    return address.startsWith(QLatin1Char(':')) ? address.mid(1) : address;
}

} // namespace

Networks::Networks(KTV_Connection &connection, QObject *parent)
    : QObject(parent)
    , m_connection(connection)
    , m_patience(usualPatience)
{
    connect(&connection, &KTV_Connection::WiFi_Scan, this, &Networks::takeScan);
    connect(&connection, &KTV_Connection::WiFi_DetailState_Change, this, &Networks::takeDetails);
    connect(&connection, &KTV_Connection::WiFi_State_Change, this, &Networks::takeState);
    connect(&m_adapter, &QFutureWatcher<void>::finished, this, &Networks::start);
    connect(&m_reading, &QFutureWatcherBase::finished, this, &Networks::takeReading);
    m_joiningTick.setSingleShot(true);
    m_joiningTick.setInterval(joiningInterval);
    connect(&m_joiningTick, &QTimer::timeout, this, &Networks::checkJoining);
}

Networks::~Networks()
{
    m_adapter.waitForFinished();
    m_reading.waitForFinished();
    stopWatching();
    m_connection.disconnect(this);
    QCoreApplication::sendPostedEvents(this, QEvent::MetaCall);
}

bool Networks::isPassPhrase(const QString &key)
{
    constexpr int shortest = 8;
    constexpr int longest = 63;
    return key.size() >= shortest && key.size() <= longest;
}

void Networks::startWatching()
{
    m_isWatching = true;
    m_isScanned = false;
    m_isScanLate = false;
    m_emptyScans = 0;
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
    if (m_isWatching) {
        m_connection.DetailInfoScan(true);
        m_connection.ScanNetwork(true);
        read(); // the library emits only changes
    }
    emit changed();
}

void Networks::stopWatching()
{
    m_isWatching = false;
    m_connection.ScanNetwork(false);
    m_connection.DetailInfoScan(false);
}

bool Networks::isOpen(const QString &name) const
{
    return std::any_of(m_cells.begin(), m_cells.end(), [&name](const Cell &cell) {
        return cell.name == name && !cell.isProtected;
    });
}

// --- signals of the library

void Networks::takeScan(QList<Network *> *networks)
{
    constexpr int believedEmptyScans = 2;
    const std::unique_ptr<QList<Network *>> owned(networks);
    m_isScanLate = !owned;
    if (!owned) {
        // The library has switched scanning off, as after every scan of more than 5 s; an adapter
        // with two bands needs more.
        QTimer::singleShot(rescanDelay, this, [this] {
            if (m_isWatching)
                m_connection.ScanNetwork(true);
        });
        emit changed();
        return;
    }
    m_emptyScans = owned->isEmpty() ? m_emptyScans + 1 : 0;
    if (!owned->isEmpty() || m_emptyScans >= believedEmptyScans) {
        m_isScanned = true;
        m_cells.clear();
        for (const Network *network : std::as_const(*owned))
            m_cells.prepend({NetworkName::readable(network->ESSID),
                             qMax(0, network->state - Network::wifi_States_Connect_0),
                             network->encryption}); // the weakest come first
    }
    qDeleteAll(*owned);
    emit changed();
}

void Networks::takeDetails(Network *network)
{
    const std::unique_ptr<Network> owned(network);
    m_isReadingOld = true;
    take(*owned);
    emit changed();
    if (!m_joining.isEmpty())
        checkJoining();
}

void Networks::takeState(int state)
{
    m_isReadingOld = true;
    setState(state);
    emit changed();
}

void Networks::read()
{
    if (m_reading.isRunning())
        return;
    m_isReadingOld = false;
    m_reading.setFuture(QtConcurrent::run([connection = &m_connection] {
        QSharedPointer<Network> network(connection->getWiFi_Info());
        network->moveToThread(connection->thread());
        return network;
    }));
}

void Networks::takeReading()
{
    const QSharedPointer<Network> network = m_reading.result();
    if (!m_isReadingOld)
        take(*network);
    emit changed();
    if (std::exchange(m_isChecking, false))
        judgeJoining(*network);
}

void Networks::take(const Network &network)
{
    m_state.name = NetworkName::readable(network.ESSID);
    m_state.address = bare(network.address);
    m_state.mask = bare(network.mask);
    m_state.broadcast = bare(network.broadcast);
    setState(network.state);
}

void Networks::setState(int state)
{
    m_state.isRead = true;
    m_state.isOn = state > Network::wifi_States_OFF;
    m_state.isAssociated = state >= Network::wifi_States_Connecting;
    m_state.isConnected = state >= Network::wifi_States_Connect_0;
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

// --- changes

void Networks::setOn(bool on)
{
    m_connection.set_wifi_Enable(on);
    // The library emits a state only if it differs from the last one that it has read. So it may
    // emit nothing after the adapter has been switched.
    QTimer::singleShot(switchingTime, this, [this] {
        if (m_isWatching)
            read();
    });
}

bool Networks::join(const QString &name, const QString &key)
{
    const bool isStored = m_connection.AddNetwork(name, key);
    if (isStored) {
        m_joining = name;
        m_isJoiningOpen = key.isEmpty();
        m_isChecking = false; // a reading that is under way is of the previous connection
        m_joiningEnd.setRemainingTime(m_patience);
        m_joiningTick.start();
    }
    readKnown();
    return isStored;
}

void Networks::checkJoining()
{
    if (m_reading.isRunning()) { // it may have begun before the network was stored
        m_joiningTick.start();
        return;
    }
    m_isChecking = true;
    read();
}

void Networks::judgeJoining(const Network &network)
{
    const bool isJoined = network.state >= Network::wifi_States_Connect_0
        && NetworkName::readable(network.ESSID) == m_joining;
    if (!isJoined && !m_joiningEnd.hasExpired()) {
        m_joiningTick.start();
        return;
    }
    const QString name = m_joining;
    stopJoining();
    emit changed();
    emit joined(name, isJoined ? Joined : failure(name));
}

Networks::Outcome Networks::failure(const QString &name) const
{
    if (m_isJoiningOpen)
        return NotAnswering;
    const bool isInReach = std::any_of(m_cells.begin(), m_cells.end(),
                                       [&name](const Cell &cell) { return cell.name == name; });
    return isInReach ? PassPhraseRefused : NotFound;
}

void Networks::stopJoining()
{
    m_joining.clear();
    m_joiningTick.stop();
    m_isChecking = false;
}

void Networks::prefer(const QString &name)
{
    m_connection.SetPreferedNetwork(name);
    readKnown();
}

void Networks::forget(const QString &name)
{
    m_connection.DeleteNetwork(name);
    if (name == m_joining)
        stopJoining();
    readKnown();
}
