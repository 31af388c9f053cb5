#pragma once

#include <QString>

/** Names of networks. The wireless tools print them with escapes: "K\xC3\xB6ln". */
namespace NetworkName {

/**
 * The real name, under which the network can be joined. A name that is not UTF-8 is returned as
 * printed.
 */
QString readable(const QString &printed);

} // namespace NetworkName
