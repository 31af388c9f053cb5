#include "wifi/SupplicantConfiguration_p.h"

#include "internal/CommandRunner_p.h"
#include "wifi/KnownNetworks_p.h"

namespace Internal::SupplicantConfiguration {

QString header()
{
    return QStringLiteral("ctrl_interface=/var/run/wpa_supplicant\n"
                          "ctrl_interface_group=0\n"
                          "update_config=1\n"
                          "fast_reauth=1\n"
                          "ap_scan=1\n"
                          "\n");
}

QString openNetwork(const QString &essid)
{
    return QStringLiteral("network={\n\tssid=\"") + essid
        + QStringLiteral("\"\n\tkey_mgmt=NONE\n}");
}

QString protectedNetwork(const QString &essid, const QString &passphrase, bool *lacksResources)
{
    constexpr int limit = 1000; // ms
    if (essid.isEmpty() || !isPassphrase(passphrase))
        return {};
    const auto result = runProgram(QStringLiteral("wpa_passphrase"), {essid, passphrase},
                                   {Waits::NoStartWait, limit});
    if (lacksResources)
        *lacksResources = result.lacksResources;
    // Half an entry would make the supplicant refuse the whole file.
    const bool isEntry = result.finished() && result.output.startsWith(QLatin1String("network"));
    return isEntry ? result.output : QString();
}

QString preferred(const QString &entry)
{
    QString result = entry;
    const int end = int(entry.lastIndexOf(QLatin1Char('}')));
    return end < 0 ? result : result.insert(end, QStringLiteral("\tpriority=100\n"));
}

} // namespace Internal::SupplicantConfiguration
