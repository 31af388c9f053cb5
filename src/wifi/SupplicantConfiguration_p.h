#pragma once

#include "wifi/Network.h"

#include <QList>
#include <QString>

#include <optional>

/** The text of the supplicant's configuration file. */
namespace Internal::SupplicantConfiguration {

/**
 * The entry of a protected network with its derived key, as "wpa_passphrase" prints it.
 * Blocks up to 1000 ms. @return empty when the tool refuses or fails
 * @param lacksResources set when no process can be started at the moment, so that the tool may
 *        succeed later
 */
QString protectedNetwork(const QString &essid, const QString &passphrase,
                         bool *lacksResources = nullptr);

/**
 * The whole file: its header and the entries of the networks, in order. A protected network is left
 * out if the tool refuses its key or fails. Blocks up to 1000 ms for each protected network.
 * @param preferred name of the network that comes before all others
 * @return nothing when no process can be started at the moment
 */
std::optional<QString> text(const QString &preferred, const QList<WiFi::Network *> &networks);

} // namespace Internal::SupplicantConfiguration
