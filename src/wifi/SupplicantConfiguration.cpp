#include "wifi/SupplicantConfiguration_p.h"

#include "internal/CommandRunner_p.h"
#include "wifi/KnownNetworks_p.h"

using WiFi::Network;

namespace Internal::SupplicantConfiguration {

namespace {

/** The start of the file, including an empty line at its end. */
QString header()
{
    return QStringLiteral("ctrl_interface=/var/run/wpa_supplicant\n"
                          "ctrl_interface_group=0\n"
                          "update_config=1\n"
                          "fast_reauth=1\n"
                          "ap_scan=1\n"
                          "\n");
}

/** The entry of an open network, without a line feed at its end. The name is written unchanged. */
QString openNetwork(const QString &essid)
{
    return QStringLiteral("network={\n\tssid=\"") + essid
        + QStringLiteral("\"\n\tkey_mgmt=NONE\n}");
}

/** Adds the line that gives an entry priority over all others. */
QString preferredEntry(const QString &entry)
{
    QString result = entry;
    const int end = int(entry.lastIndexOf(QLatin1Char('}')));
    return end < 0 ? result : result.insert(end, QStringLiteral("\tpriority=100\n"));
}

} // namespace

QString protectedNetwork(const QString &essid, const QString &passphrase, bool *lacksResources)
{
    constexpr int limit = 1000; // ms
    if (essid.isEmpty() || !isPassphrase(passphrase))
        return {};
    const auto result = runProgram(QStringLiteral("wpa_passphrase"), {essid, passphrase},
                                   {Waits::NoStartWait, limit});
    if (lacksResources)
        *lacksResources = result.lacksResources;
    // An incomplete entry would make the supplicant refuse the whole file.
    const bool isEntry = result.finished() && result.output.startsWith(QLatin1String("network"));
    return isEntry ? result.output : QString();
}

std::optional<QString> text(const QString &preferred, const QList<Network *> &networks)
{
    QString result = header();
    for (const Network *network : networks) {
        bool lacksResources = false;
        const QString entry = network->encryption
            ? protectedNetwork(network->ESSID, network->key, &lacksResources)
            : openNetwork(network->ESSID);
        if (lacksResources)
            return std::nullopt;
        if (!entry.isEmpty())
            result +=
                (network->ESSID == preferred ? preferredEntry(entry) : entry) + QLatin1Char('\n');
    }
    return result;
}

} // namespace Internal::SupplicantConfiguration
