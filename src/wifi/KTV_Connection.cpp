#include "wifi/KTV_Connection.h"

#include "internal/CommandRunner_p.h"
#include "internal/DurableFile_p.h"
#include "internal/Guarded_p.h"
#include "internal/log_p.h"
#include "wifi/KnownNetworks_p.h"
#include "wifi/NetworkList_p.h"
#include "wifi/SupplicantConfiguration_p.h"
#include "wifi/ToolOutput_p.h"
#include "wifi/Workers_p.h"

#include <QMetaMethod>
#include <QTimer>

#include <utility>

using Internal::guarded;
using Internal::KnownNetworks;
using Internal::log;
using Internal::NetworkList;
using Internal::PowerRequests;
using Internal::Shared;
using Internal::StopFlag;
using Internal::Waits;
using Internal::Workers;
namespace SupplicantConfiguration = Internal::SupplicantConfiguration;
namespace ToolOutput = Internal::ToolOutput;

namespace WiFi {

namespace {

constexpr int statusInterval = 5000; // ms
constexpr int detailInterval = 1000; // ms
constexpr int scanInterval = 10000; // ms

constexpr int readingLimit = 1000; // ms, each tool
constexpr int scanLimit = 5000; // ms
constexpr int powerLimit = 3000; // ms

/** Fields of the last record with details, which the next one is compared with. */
struct Detail
{
    int state = Network::wifi_States_OFF;
    QString essid;
    QString address;

    bool operator==(const Detail &other) const
    {
        return state == other.state && essid == other.essid && address == other.address;
    }
};

} // namespace

/**
 * Timers, database and futures are used on the manager's thread only. Data shared with workers is
 * atomic: a number, or a pointer to a constant value.
 */
class KTV_Connection::Private
{
public:
    Private(const QString &directory, KTV_Connection *connection)
        : known(directory)
        , workers(connection)
    { }

    static void carryOutPowerRequests(KTV_Connection *connection);
    QString answer(const QString &command) const;
    void read(Network &network) const;
    void dropEndedScanTimer();

    KnownNetworks known;
    const QString configurationFile =
        QStringLiteral("/etc/wpa_supplicant/wpa_supplicant-wlan0.conf");

    Shared<QString> interfaceName;
    Shared<Detail> myNetwork;
    std::atomic<int> state {Network::wifi_States_OFF};

    QTimer *statusTimer = nullptr;
    QTimer *detailTimer = nullptr;
    QTimer *scanTimer = nullptr;
    std::atomic<bool> isDetailed {false}; ///< whether the detail timer exists
    /** When a worker ends scanning, this is set to false before the timer is stopped. */
    std::atomic<bool> isScanning {false};
    PowerRequests powerRequests;

    Workers workers;
    const StopFlag stopping = workers.stopping();
};

/** Output of a shell command; empty unless it ends in time. */
QString KTV_Connection::Private::answer(const QString &command) const
{
    const auto result =
        Internal::runShell(command, {Waits::NoStartWait, readingLimit, stopping.get()});
    return result.finished() ? result.output : QString();
}

void KTV_Connection::Private::read(Network &network) const
{
    const QString name = *interfaceName.get();
    if (name.isEmpty()) {
        network.state = Network::wifi_States_NAN;
        return;
    }
    if (!answer(QStringLiteral("ifconfig | grep -e \"") + name + QLatin1Char('"')).startsWith(name))
        return;
    network.state = Network::wifi_States_ON;
    // Without an association the tool prints a line feed and succeeds.
    network.ESSID = answer(QStringLiteral("iwgetid ") + name + QStringLiteral(" -r")).trimmed();
    if (network.ESSID.isEmpty())
        return;
    ToolOutput::readAddress(
        answer(QStringLiteral("ifconfig ") + name + QStringLiteral(" | grep -e \"inet \"")),
        network);
    if (network.address.isEmpty()) {
        network.state = Network::wifi_States_Connecting;
        return;
    }
    ToolOutput::readSignal(
        answer(QStringLiteral("iwconfig ") + name + QStringLiteral(" | grep \"Signal level=\"")),
        network);
}

KTV_Connection::KTV_Connection(const QString &directory, QObject *parent)
    : QObject(parent)
    , d(std::make_unique<Private>(directory, this))
{
    qRegisterMetaType<WiFi::Network *>("WiFi::Network*");
    qRegisterMetaType<QList<WiFi::Network *> *>("QList<WiFi::Network*>*");

    findWifiInterfaceName();
    _Open();
    if (!getInterfaceName().isEmpty())
        _updateSystem(QString());

    d->statusTimer = new QTimer(this);
    connect(d->statusTimer, &QTimer::timeout, this, &KTV_Connection::onStatusTime);
    d->statusTimer->start(statusInterval);
    check_wifiState_Avait(this);
}

KTV_Connection::~KTV_Connection()
{
    d->workers.stop();
    _freeDB();
}

QString KTV_Connection::getInterfaceName() const
{
    return *d->interfaceName.get();
}

void KTV_Connection::findWifiInterfaceName()
{
    const auto result = Internal::runShell(QStringLiteral("ls /sys/class/net | grep \"wlan0\""),
                                           {Waits::NoStartWait, Waits::Forever, d->stopping.get()});
    // Output without end, which is cut off, is not a list of interfaces.
    d->interfaceName.set(ToolOutput::interfaceName(result.finished() ? result.output : QString()));
}

// --- known networks and the supplicant

bool KTV_Connection::AddNetwork(const QString &essid, const QString &key)
{
    if (!_AddWifiToDataBase(essid, key))
        return false;
    _updateSystem(essid);
    return true;
}

bool KTV_Connection::DeleteNetwork(const QString &essid)
{
    if (!d->known.remove(essid))
        return false;
    _updateSystem(QString());
    return true;
}

void KTV_Connection::SetPreferedNetwork(const QString &essid)
{
    _updateSystem(essid);
}

bool KTV_Connection::RestoreFabricalSetting()
{
    return _CreateNew();
}

QList<Network *> *KTV_Connection::GetMyNetwork()
{
    return d->known.all().release();
}

bool KTV_Connection::_Open()
{
    return d->known.open();
}

bool KTV_Connection::_CreateNew()
{
    return d->known.createNew();
}

void KTV_Connection::_freeDB()
{
    d->known.release();
}

bool KTV_Connection::_AddWifiToDataBase(const QString &essid, const QString &key)
{
    return d->known.add(essid, key);
}

bool KTV_Connection::_UpdateWifiInDataBase(int id, const QString &essid, const QString &key)
{
    return d->known.updateRow(id, essid, key);
}

bool KTV_Connection::_DeleteWifiInDataBase(int id)
{
    return d->known.removeRow(id);
}

QString KTV_Connection::_WPA_Passphrase(const QString &essid, const QString &passphrase)
{
    return SupplicantConfiguration::protectedNetwork(essid, passphrase);
}

void KTV_Connection::_buildConfFile(const QString &preferred, QList<Network *> *networks)
{
    guarded("KTV_Connection::_buildConfFile: exception:", [&] {
        Internal::FileReplacement file(d->configurationFile);
        QString reason;
        if (!file.open(&reason)) {
            log() << "KTV_Connection::_buildConfFile: open file:" << reason;
            return;
        }
        const auto text = SupplicantConfiguration::text(preferred, *networks);
        if (!text) {
            // The old file is better than a new one without the protected networks.
            log() << "KTV_Connection::_buildConfFile: no process for wpa_passphrase";
            return;
        }
        if (file.commit(text->toUtf8(), &reason))
            _restart();
        else
            log() << "KTV_Connection::_buildConfFile: open file:" << reason;
    });
}

void KTV_Connection::_updateSystem(const QString &preferred)
{
    const NetworkList networks = d->known.all();
    _buildConfFile(preferred, networks.get());
}

void KTV_Connection::_restart() const
{
    const QString name = getInterfaceName();
    if (name.isEmpty())
        return;
    Internal::runProgram(QStringLiteral("systemctl"),
                         {QStringLiteral("restart"), QStringLiteral("wpa_supplicant@") + name},
                         Waits());
}

// --- power

bool KTV_Connection::get_wifi_Enable() const
{
    const int state = d->myNetwork.get()->state;
    return !getInterfaceName().isEmpty() && state != Network::wifi_States_NAN
        && state != Network::wifi_States_OFF;
}

void KTV_Connection::set_wifi_Enable(bool on)
{
    if (!getInterfaceName().isEmpty() && d->powerRequests.add(on))
        d->workers.start(Workers::Power, Private::carryOutPowerRequests);
}

void KTV_Connection::Private::carryOutPowerRequests(KTV_Connection *connection)
{
    PowerRequests &requests = connection->d->powerRequests;
    const std::atomic<bool> &isStopping = *connection->d->stopping;
    do
        _set_wifi_Enable_Avait(connection,
                               isStopping ? requests.takeLatest() : requests.takeOldest());
    while (!requests.finish());
}

void KTV_Connection::_set_wifi_Enable_Avait(KTV_Connection *connection, bool on)
{
    const QString name = connection->getInterfaceName();
    if (name.isEmpty())
        return;
    // Without the stop flag: the user's choice is carried out even if the manager is being
    // destroyed.
    const auto result = Internal::runDirect(
        QStringLiteral("ifconfig ") + name + (on ? QStringLiteral(" up") : QStringLiteral(" down")),
        {Waits::NoStartWait, powerLimit});
    // kept: the two texts are swapped, but service engineers are used to them
    if (!result.finished())
        log() << (on ? "ifconfig down - not respond!" : "ifconfig up - not respond!");
    if (!result.output.isEmpty())
        log() << "set_wifiPower: " << result.output;
    if (connection->d->isDetailed)
        check_wifiDetailState_Avait(connection);
    else
        check_wifiState_Avait(connection);
}

// --- state

void KTV_Connection::DetailInfoScan(bool on)
{
    if (on && !d->detailTimer && !getInterfaceName().isEmpty()) {
        d->statusTimer->stop();
        d->detailTimer = new QTimer(this);
        d->isDetailed = true;
        connect(d->detailTimer, &QTimer::timeout, this, &KTV_Connection::onStatusDetailTime);
        d->detailTimer->start(detailInterval);
    } else if (!on && d->detailTimer) {
        d->isDetailed = false;
        d->detailTimer->stop();
        d->detailTimer->deleteLater();
        d->detailTimer = nullptr;
        d->statusTimer->start(statusInterval);
    }
}

bool KTV_Connection::isDetailInfoScan() const
{
    return d->isDetailed;
}

Network *KTV_Connection::getWiFi_Info()
{
    auto network = std::make_unique<Network>();
    d->read(*network);
    return network.release();
}

void KTV_Connection::onStatusTime()
{
    d->workers.poll(Workers::Status, check_wifiState_Avait);
}

void KTV_Connection::onStatusDetailTime()
{
    d->workers.poll(Workers::Detail, check_wifiDetailState_Avait);
}

void KTV_Connection::check_wifiState_Avait(KTV_Connection *connection)
{
    Private &data = *connection->d;
    if (*data.stopping)
        return;
    if (connection->getInterfaceName().isEmpty()) {
        connection->findWifiInterfaceName();
        return;
    }
    const auto details = data.myNetwork.get();
    const std::unique_ptr<const Network> fresh(connection->getWiFi_Info());
    // Details that were emitted meanwhile may be newer than this state. If it were emitted after
    // them, nothing would correct it soon, because details are emitted only when they differ from
    // the last ones.
    if (*data.stopping || data.myNetwork.get() != details)
        return;
    if (data.state.exchange(fresh->state) != fresh->state)
        emit connection->WiFi_State_Change(fresh->state);
}

void KTV_Connection::check_wifiDetailState_Avait(KTV_Connection *connection)
{
    Private &data = *connection->d;
    const StopFlag stopping = data.stopping; // a receiver may delete the manager
    std::unique_ptr<Network> fresh(connection->getWiFi_Info());
    if (*stopping)
        return;
    const auto detail =
        std::make_shared<const Detail>(Detail {fresh->state, fresh->ESSID, fresh->address});
    auto last = data.myNetwork.get();
    do {
        if (*last == *detail)
            return;
    } while (!data.myNetwork.replace(last, detail)); // replaced by another worker: compare again
    data.state = fresh->state;
    emit connection->WiFi_State_Change(fresh->state);
    static const auto signal = QMetaMethod::fromSignal(&KTV_Connection::WiFi_DetailState_Change);
    if (*stopping || !connection->isSignalConnected(signal))
        return;
    fresh->moveToThread(connection->thread());
    emit connection->WiFi_DetailState_Change(fresh.release());
}

// --- scanning

bool KTV_Connection::ScanNetwork(bool on)
{
    if (on && !d->isScanning) {
        if (getInterfaceName().isEmpty())
            return false;
        d->dropEndedScanTimer();
        d->scanTimer = new QTimer(this);
        d->isScanning = true;
        connect(d->scanTimer, &QTimer::timeout, this, &KTV_Connection::onScanNetwokTime);
        onScanNetwokTime();
        d->scanTimer->start(scanInterval);
    } else if (!on) {
        d->isScanning = false;
        d->dropEndedScanTimer();
    }
    return true;
}

void KTV_Connection::Private::dropEndedScanTimer()
{
    if (isScanning || !scanTimer)
        return;
    scanTimer->stop();
    scanTimer->deleteLater();
    scanTimer = nullptr;
}

bool KTV_Connection::isScanMode() const
{
    return d->isScanning;
}

void KTV_Connection::onScanNetwokTime()
{
    d->workers.poll(Workers::Scan, check_wifiScan_Avait);
}

void KTV_Connection::check_wifiScan_Avait(KTV_Connection *connection)
{
    Private &data = *connection->d;
    const StopFlag stopping = data.stopping; // a receiver may delete the manager
    const QString name = connection->getInterfaceName();
    if (name.isEmpty())
        return;
    const auto result = Internal::runShell(
        QStringLiteral("iwlist ") + name
            + QStringLiteral(" scan |grep -e \"Cell\" -e \"ESSID\" -e \"Signal level\" "
                             "-e \"Encryption key\""),
        {Waits::NoStartWait, scanLimit, stopping.get()});
    if (*stopping)
        return;
    if (!result.finished()) {
        log() << "iwlist - not respond!";
        // Set before the signal is emitted: if its receiver switches scanning on again, it must
        // stay on.
        data.isScanning = false;
        emit connection->WiFi_Scan(nullptr);
        if (*stopping)
            return;
        // A timer can be stopped only on its own thread: called there through the event loop, or
        // directly if this is that thread.
        QMetaObject::invokeMethod(connection,
                                  [connection] { connection->d->dropEndedScanTimer(); });
        return;
    }
    NetworkList networks = ToolOutput::readScan(result.output);
    if (!data.isScanning)
        return;
    log() << "LIST.COUNT = " << networks->size();
    static const auto signal = QMetaMethod::fromSignal(&KTV_Connection::WiFi_Scan);
    if (!connection->isSignalConnected(signal))
        return;
    for (Network *network : std::as_const(*networks))
        network->moveToThread(connection->thread());
    emit connection->WiFi_Scan(networks.release());
}

int KTV_Connection::_dbmToSignal(int dbm)
{
    return ToolOutput::signalState(dbm);
}

bool KTV_Connection::_validateNetwork(Network *network)
{
    return ToolOutput::isNamed(network);
}

void KTV_Connection::_addToList(QList<Network *> *list, Network *network)
{
    ToolOutput::merge(*list, *network);
}

bool variantLessThan(const Network *a, const Network *b)
{
    return ToolOutput::isWeaker(a, b);
}

} // namespace WiFi
