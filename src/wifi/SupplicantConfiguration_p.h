#pragma once

#include <QString>

/** The texts that the supplicant's configuration file is put together from. */
namespace Internal::SupplicantConfiguration {

/** What the file begins with, an empty line at its end included. */
QString header();
/** The entry of an open network, without a line end. The name stands there as it is. */
QString openNetwork(const QString &essid);
/**
 * The entry of a protected network with its derived key, as "wpa_passphrase" prints it.
 * Blocks up to 1000 ms. @return empty when the tool refuses or fails
 * @param lacksResources set when no process can be started at the moment: the tool would have
 *        had an answer
 */
QString protectedNetwork(const QString &essid, const QString &passphrase,
                         bool *lacksResources = nullptr);
/** An entry with the line in it that puts it before all others. */
QString preferred(const QString &entry);

} // namespace Internal::SupplicantConfiguration
