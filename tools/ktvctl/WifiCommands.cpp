#include "Command.h"
#include "EventLoop.h"
#include "StoreFile.h"

#include <configuration/KTV_Configuration.h>
#include <wifi/KTV_Connection.h>

#include <QEventLoop>
#include <QFile>
#include <QJsonArray>
#include <QJsonObject>
#include <QMetaEnum>
#include <QTextStream>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <utility>

#include <net/if.h>

namespace {

using WiFi::KTV_Connection;
using WiFi::Network;

struct Delete
{
    void operator()(QList<Network *> *networks) const
    {
        qDeleteAll(*networks);
        delete networks;
    }
};
using Networks = std::unique_ptr<QList<Network *>, Delete>;

/** The manager, constructed as the interface does it. */
class Manager : public KTV_Connection
{
public:
    Manager() : KTV_Connection(KTV_Configuration().get_mainInterfaceUserDataDirectory()) { }

    bool knows(const QString &essid)
    {
        const Networks known(GetMyNetwork());
        return std::any_of(known->begin(), known->end(),
                           [&essid](const Network *one) { return one->ESSID == essid; });
    }
};

/** Name of a state without the common "wifi_States_": "Connect_2". */
QString stateName(int state)
{
    return QString::fromLatin1(QMetaEnum::fromType<Network::wifiStates>().valueToKey(state))
        .remove(QStringLiteral("wifi_States_"));
}

/** Removes the colon with which the library's address begins. */
QString addressOf(const Network &network)
{
    return network.address.startsWith(QLatin1Char(':')) ? network.address.mid(1) : network.address;
}

QJsonObject connectionJson(const Network &network)
{
    return {{QStringLiteral("state"), network.state},
            {QStringLiteral("stateName"), stateName(network.state)},
            {QStringLiteral("name"), network.ESSID},
            {QStringLiteral("address"), addressOf(network)},
            {QStringLiteral("mask"), network.mask},
            {QStringLiteral("broadcast"), network.broadcast}};
}

QString connectionText(const Network &network)
{
    QStringList words {stateName(network.state)};
    for (const QString &word : {network.ESSID, addressOf(network)}) {
        if (!word.isEmpty())
            words += word;
    }
    return words.join(QStringLiteral("  "));
}

QString protection(const Network &network)
{
    return network.encryption ? QStringLiteral("protected") : QStringLiteral("open");
}

QJsonArray scanJson(const QList<Network *> &networks)
{
    QJsonArray result;
    for (const Network *network : networks)
        result.append(QJsonObject {{QStringLiteral("name"), network->ESSID},
                                   {QStringLiteral("state"), network->state},
                                   {QStringLiteral("protected"), network->encryption}});
    return result;
}

QString scanText(const QList<Network *> &networks)
{
    constexpr int weakest = Network::wifi_States_Connect_0;
    constexpr int bars = Network::wifi_States_Connect_4 - weakest + 1;
    QStringList lines;
    for (const Network *network : networks) {
        const int strength = std::max(0, network->state - weakest + 1);
        lines += QString(strength, QLatin1Char('#')).leftJustified(bars + 2)
            + protection(*network).leftJustified(11) + network->ESSID;
    }
    return lines.join(QLatin1Char('\n'));
}

int noInterface()
{
    return fail(QStringLiteral("there is no WiFi interface"));
}

int noSuchNetwork(const QString &essid)
{
    return fail(QStringLiteral("no network '%1' is known; see ktvctl wifi list").arg(essid));
}

/**
 * Whether there is an adapter and it is off. Then no manager must be created: it restarts the
 * supplicant, which switches the adapter on.
 */
bool isSwitchedOff()
{
    QFile file(QStringLiteral("/sys/class/net/wlan0/flags"));
    if (!file.open(QIODevice::ReadOnly))
        return false;
    bool ok = false;
    const uint flags = file.readAll().trimmed().toUInt(&ok, 0);
    return ok && (flags & IFF_UP) == 0;
}

int refuseToSwitchOn()
{
    return fail(QStringLiteral("the adapter is off, and this would switch it on; see "
                               "ktvctl wifi power"));
}

void printStatus(const Call &call, const Network &network, const QString &interfaceName)
{
    QJsonObject machine = connectionJson(network);
    machine.insert(QStringLiteral("interface"), interfaceName);
    NamedValues rows;
    const QPair<const char *, QString> lines[] = {
        {"Interface", interfaceName}, {"State", stateName(network.state)},
        {"Network", network.ESSID},   {"Address", addressOf(network)},
        {"Mask", network.mask},       {"Broadcast", network.broadcast},
    };
    for (const auto &line : lines) {
        if (!line.second.isEmpty())
            rows.add(line.first, line.second);
    }
    call.print(machine, rows.text());
}

bool isConnected(const Network &network)
{
    return network.state >= Network::wifi_States_Connect_0;
}

int status(const Call &call)
{
    const int limit = milliseconds(call, "wait");
    if (limit < 0)
        return misuseOfTime();
    if (isSwitchedOff()) {
        if (limit > 0)
            return refuseToSwitchOn();
        printStatus(call, Network(), QStringLiteral("wlan0")); // the state of a new record is OFF
        return Success;
    }
    Manager wifi;
    std::unique_ptr<Network> network(wifi.getWiFi_Info());
    if (limit > 0 && !isConnected(*network)) {
        QEventLoop loop;
        QObject::connect(&wifi, &KTV_Connection::WiFi_DetailState_Change, &loop,
                         [&network, &loop](Network *fresh) {
                             network.reset(fresh);
                             if (isConnected(*fresh))
                                 loop.quit();
                         });
        QTimer::singleShot(limit, &loop, &QEventLoop::quit);
        wifi.DetailInfoScan(true);
        loop.exec();
        wifi.DetailInfoScan(false);
    }
    printStatus(call, *network, wifi.getInterfaceName());
    return limit == 0 || isConnected(*network) ? Success : TimedOut;
}

/** How often a scan is repeated, and after which pause. */
constexpr int maxRepeats = 3;
constexpr int pauseMs = 2000;

int scan(const Call &call)
{
    if (isSwitchedOff())
        return refuseToSwitchOn();
    Manager wifi;
    Networks found;
    QEventLoop loop;
    QObject::connect(&wifi, &KTV_Connection::WiFi_Scan, &loop,
                     [&found, &loop](QList<Network *> *networks) {
                         found.reset(networks);
                         loop.quit();
                     });
    const auto scanOnce = [&] {
        const bool begun = wifi.ScanNetwork(true);
        if (begun)
            loop.exec();
        wifi.ScanNetwork(false);
        return begun;
    };
    if (!scanOnce())
        return noInterface();
    // With many channels a scan may take longer than the library waits, and then goes on. During
    // it, or during a scan of the supplicant, the list may be empty. So scanning is repeated.
    int slowScans = 0;
    for (int again = 0; again < maxRepeats && (!found || found->isEmpty()); ++again) {
        if (!found && ++slowScans == 2)
            break;
        remark(found ? QStringLiteral("no network was heard; scanning again")
                     : QStringLiteral("the scan took longer than 5 s; scanning again"));
        QTimer::singleShot(pauseMs, &loop, &QEventLoop::quit);
        loop.exec();
        scanOnce();
    }
    if (!found)
        return fail(QStringLiteral("the scan tool does not answer"));
    const QString text = scanText(*found);
    call.print(scanJson(*found), text.isEmpty() ? QString() : text);
    return Success;
}

int list(const Call &call)
{
    const auto file = StoreFile::lookAt(KTV_Configuration().get_mainInterfaceUserDataDirectory()
                                        + QStringLiteral("wifi.db"));
    if (!file.problem.isNull())
        return fail(file.problem);
    if (!file.isEmpty && isSwitchedOff())
        return refuseToSwitchOn();
    const Networks known(file.isEmpty ? new QList<Network *> : Manager().GetMyNetwork());
    QJsonArray machine;
    QStringList human;
    for (const Network *network : std::as_const(*known)) {
        machine.append(QJsonObject {{QStringLiteral("name"), network->ESSID},
                                    {QStringLiteral("protected"), network->encryption}});
        human += protection(*network).leftJustified(11) + network->ESSID;
    }
    call.print(machine, human.isEmpty() ? QString() : human.join(QLatin1Char('\n')));
    return Success;
}

int add(const Call &call)
{
    const QString essid = call.argument(0);
    if (essid.isEmpty())
        return misuse(QStringLiteral("a network has a name"));
    QString key = call.argument(1);
    if (call.isSet("open") != key.isNull())
        return misuse(QStringLiteral("a network has a pass phrase, or is --open"));
    if (key == QLatin1String("-"))
        key = QTextStream(stdin).readLine();
    if (!call.isSet("open") && (key.size() < 8 || key.size() > 63))
        return misuse(QStringLiteral("a pass phrase has 8 to 63 characters"));
    Manager wifi;
    return wifi.AddNetwork(essid, key) ? Success
                                       : fail(QStringLiteral("the network cannot be stored"));
}

int remove(const Call &call)
{
    Manager wifi;
    if (!wifi.knows(call.argument(0)))
        return noSuchNetwork(call.argument(0));
    return wifi.DeleteNetwork(call.argument(0))
        ? Success
        : fail(QStringLiteral("the network cannot be removed"));
}

int prefer(const Call &call)
{
    Manager wifi;
    if (!wifi.knows(call.argument(0)))
        return noSuchNetwork(call.argument(0));
    wifi.SetPreferedNetwork(call.argument(0));
    return Success;
}

/**
 * Switches the adapter off for good. The supplicant, which the manager has just restarted, switches
 * the adapter on, some tenths of a second later.
 */
void switchOff(Manager *wifi)
{
    constexpr int maxTries = 5;
    constexpr int pollMs = 50;
    int quietMs = 0; // for how long it has been off
    for (int tries = 0; tries < maxTries && quietMs < 1000; quietMs += pollMs) {
        if (!isSwitchedOff()) {
            KTV_Connection::_set_wifi_Enable_Avait(wifi, false);
            ++tries;
            quietMs = 0;
        }
        QThread::msleep(pollMs);
    }
}

int power(const Call &call)
{
    const QString state = call.argument(0);
    if (state != QLatin1String("on") && state != QLatin1String("off"))
        return misuse(QStringLiteral("power is switched on or off"));
    Manager wifi;
    if (wifi.getInterfaceName().isEmpty())
        return noInterface();
    if (state == QLatin1String("off"))
        switchOff(&wifi);
    else
        KTV_Connection::_set_wifi_Enable_Avait(&wifi, true);
    const std::unique_ptr<const Network> network(wifi.getWiFi_Info());
    call.print(connectionJson(*network), stateName(network->state));
    return Success;
}

int watch(const Call &call)
{
    const int end = milliseconds(call, "seconds");
    if (end < 0)
        return misuseOfTime();
    if (isSwitchedOff())
        return refuseToSwitchOn();
    const SignalQuit quitOnSignal;
    Manager wifi;
    if (wifi.getInterfaceName().isEmpty())
        return noInterface();
    QObject context; // in this thread, so that signals of workers arrive through the event loop
    QObject::connect(&wifi, &KTV_Connection::WiFi_State_Change, &context, [&call](int state) {
        printEvent(
            call, "state",
            {{QStringLiteral("state"), state}, {QStringLiteral("stateName"), stateName(state)}},
            QStringLiteral("state   ") + stateName(state));
    });
    QObject::connect(&wifi, &KTV_Connection::WiFi_DetailState_Change, &context,
                     [&call](Network *network) {
                         const std::unique_ptr<const Network> owner(network);
                         printEvent(call, "detail", connectionJson(*network),
                                    QStringLiteral("detail  ") + connectionText(*network));
                     });
    QObject::connect(
        &wifi, &KTV_Connection::WiFi_Scan, &context, [&call, &wifi](QList<Network *> *networks) {
            const Networks owner(networks);
            const QJsonValue found = owner ? QJsonValue(scanJson(*owner)) : QJsonValue();
            printEvent(call, "scan", {{QStringLiteral("networks"), found}},
                       !owner ? QStringLiteral("scan    took longer than 5 s; scanning again")
                              : QStringLiteral("scan    %1 networks in reach").arg(owner->size()));
            if (!owner)
                wifi.ScanNetwork(true); // a scan that has failed switches scanning off
        });
    wifi.DetailInfoScan(true);
    if (call.isSet("scan"))
        wifi.ScanNetwork(true);
    runEventLoop(end);
    return Success;
}

} // namespace

Family wifiFamily()
{
    return {"wifi",
            "WiFi. Unwise while the interface runs: every command begins as the interface does, "
            "hands the known networks to the supplicant, none preferred, and restarts it, which "
            "drops the connection and switches the adapter on. While that is off, what only "
            "reads does not begin.",
            {{"status",
              "",
              "print state, network and address",
              status,
              {timeOption("wait", "Wait up to N seconds for a connection.")}},
             {"scan", "", "print the networks in reach, weakest first", scan},
             {"list", "", "print the known networks", list},
             {"add",
              "NAME [KEY]",
              "know a network, and prefer it; KEY - is read from a line of input",
              add,
              {{QStringLiteral("open"), QStringLiteral("It is an open network, without KEY.")}}},
             {"delete", "NAME", "forget a known network", remove},
             {"prefer", "NAME", "prefer a known network until the next command", prefer},
             {"power", "on|off", "switch the interface", power},
             {"watch",
              "",
              "print what is signalled, until SIGINT, SIGTERM or SIGHUP",
              watch,
              {secondsOption(),
               {QStringLiteral("scan"), QStringLiteral("Scan every 10 seconds, too.")}}}}};
}
