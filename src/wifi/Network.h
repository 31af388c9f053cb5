#pragma once

#include <ktv_datasource_export.h>

#include <QList>
#include <QMetaType>
#include <QObject>
#include <QString>

namespace WiFi {

/**
 * One wireless network: a known one, one in reach, or the one that the meter has joined.
 *
 * A plain record without a parent. Whoever receives it owns it; it belongs to the thread of its
 * receiver.
 */
class KTV_DATASOURCE_EXPORT Network : public QObject
{
    Q_OBJECT
public:
    /** State of the connection; from wifi_States_Connect_0 on also a network's signal strength. */
    enum wifiStates : qint32
    {
        wifi_States_NAN = 0, ///< no WiFi interface known
        wifi_States_OFF = 1, ///< interface down; of a network in reach: level unreadable
        wifi_States_ON = 2, ///< interface up, not associated
        wifi_States_Connecting = 3, ///< associated, no IPv4 address yet
        wifi_States_Connect_0 = 4, ///< connected, below -79 dBm
        wifi_States_Connect_1 = 5, ///< connected, -79 to -70 dBm
        wifi_States_Connect_2 = 6, ///< connected, -69 to -60 dBm
        wifi_States_Connect_3 = 7, ///< connected, -59 to -50 dBm
        wifi_States_Connect_4 = 8 ///< connected, -49 dBm or stronger
    };
    Q_ENUM(wifiStates)

    /** A network without a name, neither protected nor in reach. */
    Network();
    ~Network() override;

    QString ESSID; ///< network name
    int state = wifi_States_OFF; ///< one of wifiStates
    bool encryption = false; ///< whether the network is protected
    QString key; ///< pass phrase; filled for known networks only
    QString address; ///< IPv4 address of the interface, with a colon in front: ":10.0.0.7"
    QString mask; ///< IPv4 network mask
    QString broadcast; ///< IPv4 broadcast address
};

} // namespace WiFi

Q_DECLARE_METATYPE(QList<WiFi::Network *> *)
