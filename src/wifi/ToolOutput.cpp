#include "wifi/ToolOutput_p.h"

#include <QStringList>

#include <algorithm>
#include <memory>

using WiFi::Network;

namespace Internal::ToolOutput {

namespace {

const QLatin1Char blank(' ');
const QLatin1Char lineEnd('\n');

/** A field in the output of "ifconfig", found by its marker. */
struct AddressField
{
    QLatin1String marker;
    int cut; ///< characters removed from its front
    QString Network::*field;
};

const AddressField addressFields[] = {
    // Four of five characters, so the address keeps the colon: clients rely on it.
    {QLatin1String("addr:"), 4, &Network::address},
    {QLatin1String("Mask:"), 5, &Network::mask},
    {QLatin1String("Bcast:"), 6, &Network::broadcast},
};

/** The state for levels above a bound in dBm. */
struct SignalStep
{
    int above;
    Network::wifiStates state;
};

constexpr SignalStep signalSteps[] = {
    {-50, Network::wifi_States_Connect_4},
    {-60, Network::wifi_States_Connect_3},
    {-70, Network::wifi_States_Connect_2},
    {-80, Network::wifi_States_Connect_1},
};

std::unique_ptr<Network> copyOf(const Network &network)
{
    auto copy = std::make_unique<Network>();
    copy->ESSID = network.ESSID;
    copy->state = network.state;
    copy->encryption = network.encryption;
    copy->key = network.key;
    copy->address = network.address;
    copy->mask = network.mask;
    copy->broadcast = network.broadcast;
    return copy;
}

void readScanLine(const QString &line, Network &network)
{
    const QLatin1String name("ESSID:");
    if (line.startsWith(name)) {
        network.ESSID = QString(line).remove(name).remove(QLatin1Char('"')).trimmed();
    } else if (line.startsWith(QLatin1String("Encryption key:"))) {
        network.encryption = line.contains(QLatin1String(":on"));
    } else if (line.startsWith(QLatin1String("Quality"))) {
        bool ok = false;
        const int dbm = line.mid(line.lastIndexOf(QLatin1Char('=')))
                            .remove(QLatin1Char('='))
                            .remove(QLatin1String("dBm"))
                            .trimmed()
                            .toInt(&ok);
        if (ok)
            network.state = signalState(dbm);
    }
}

} // namespace

int signalState(int dbm)
{
    for (const SignalStep &step : signalSteps) {
        if (dbm > step.above)
            return step.state;
    }
    return Network::wifi_States_Connect_0;
}

bool isNamed(const Network *network)
{
    return network && !network->ESSID.trimmed().isEmpty();
}

void merge(QList<Network *> &networks, const Network &network)
{
    for (auto entry = networks.begin(); entry != networks.end();) {
        if ((*entry)->ESSID != network.ESSID) {
            ++entry;
            continue;
        }
        if ((*entry)->state > network.state)
            return;
        delete *entry;
        entry = networks.erase(entry);
    }
    networks.append(copyOf(network).release());
}

bool isWeaker(const Network *a, const Network *b)
{
    return a->state < b->state;
}

QString interfaceName(const QString &listing)
{
    const QStringList names = listing.trimmed().split(lineEnd);
    // There may also be "wlan0mon" or "p2p-wlan0-0", which is listed before "wlan0".
    const QString usual = QStringLiteral("wlan0");
    return names.contains(usual) ? usual : names.first().trimmed();
}

void readAddress(const QString &line, Network &network)
{
    const QString text = line.trimmed();
    if (!text.startsWith(QLatin1String("inet")))
        return;
    const QStringList pieces = text.split(blank);
    for (const QString &piece : pieces) {
        for (const AddressField &field : addressFields) {
            if (piece.startsWith(field.marker))
                network.*field.field = piece.mid(field.cut);
        }
    }
}

void readSignal(const QString &line, Network &network)
{
    const QLatin1String marker("level=");
    const QString text = line.trimmed();
    if (!text.contains(QLatin1String("Signal level=")))
        return;
    const QStringList pieces = text.split(blank);
    for (QString piece : pieces) {
        // A level that is not a number counts as 0, because the network is connected all the same.
        if (piece.startsWith(marker))
            network.state =
                signalState(piece.remove(0, marker.size()).remove(QLatin1String(" dBm")).toInt());
    }
}

NetworkList readScan(const QString &lines)
{
    NetworkList networks = makeNetworkList();
    std::unique_ptr<Network> network; // none before the first cell
    const auto finish = [&networks, &network] {
        if (isNamed(network.get()))
            merge(*networks, *network);
    };
    const QStringList split = lines.split(lineEnd);
    for (const QString &line : split) {
        const QString text = line.trimmed();
        if (text.startsWith(QLatin1String("Cell "))) {
            finish();
            network = std::make_unique<Network>();
        } else if (network) {
            readScanLine(text, *network);
        }
    }
    finish();
    std::stable_sort(networks->begin(), networks->end(), isWeaker);
    return networks;
}

} // namespace Internal::ToolOutput
