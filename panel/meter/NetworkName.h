#pragma once

#include <QString>

/** Names of networks, which the wireless tools print with escapes: "K\xC3\xB6ln". */
namespace NetworkName {

/** A name as people know it, and as it is joined by; one that is no text stays as printed. */
QString readable(const QString &printed);

} // namespace NetworkName
