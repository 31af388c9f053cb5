#pragma once

#include "wifi/NetworkList_p.h"

#include <QString>

/** What the wireless tools print, read into records. Only the markers named are relied upon. */
namespace WiFi::ToolOutput {

/** The WiFi interface in a listing of interfaces, one a line; empty when there is none. */
QString interfaceName(const QString &listing);
/** Address, mask and broadcast address from the "inet addr:" line of "ifconfig". */
void readAddress(const QString &line, Network &network);
/** The state of a connection from the "Signal level=" line of "iwconfig". */
void readSignal(const QString &line, Network &network);
/** The networks in the lines of "iwlist scan", one entry per name, weakest first. */
NetworkList readScan(const QString &lines);

} // namespace WiFi::ToolOutput
