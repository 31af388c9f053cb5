#pragma once

#include "wifi/NetworkList_p.h"

#include <QString>

/** Reads the output of the wireless tools into records. Only the markers named here matter. */
namespace Internal::ToolOutput {

/** A level in dBm as wifi_States_Connect_0 (weakest) to wifi_States_Connect_4. */
int signalState(int dbm);
/** Whether a scanned network has a name to show; false for null. */
bool isNamed(const WiFi::Network *network);
/**
 * Appends a copy of the network, unless the list has a stronger one of that name; a weaker or equal
 * one of that name is removed.
 */
void merge(QList<WiFi::Network *> &networks, const WiFi::Network &network);
/** Sort order of scan results: the weakest network comes first. */
bool isWeaker(const WiFi::Network *a, const WiFi::Network *b);

/** The WiFi interface in a list of interfaces, one per line; empty when there is none. */
QString interfaceName(const QString &listing);
/** Address, mask and broadcast address from the "inet addr:" line of "ifconfig". */
void readAddress(const QString &line, WiFi::Network &network);
/** The state of a connection from the "Signal level=" line of "iwconfig". */
void readSignal(const QString &line, WiFi::Network &network);
/** The networks in the lines of "iwlist scan", one entry per name, weakest first. */
NetworkList readScan(const QString &lines);

} // namespace Internal::ToolOutput
