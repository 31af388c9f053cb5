#pragma once

#include <ktv_datasource_export.h>

#include "wifi/Network.h"

#include <QList>
#include <QObject>
#include <QString>

#include <memory>

namespace WiFi {

/**
 * The meter's WiFi manager: known networks, power, connection state and scanning.
 *
 * The known networks live in the SQLite file "wifi.db". The supplicant's whole configuration
 * file is derived from it whenever the list or the preference changes, and the supplicant is
 * restarted when the new file is on the card. Where that fails, on a full card for instance, the
 * file stays as it was, the supplicant is not restarted, and the log has the reason. The state of
 * the interface is learnt from the wireless tools' output.
 *
 * Threads: the object belongs to the interface's thread, and so do all its operations except
 * the workers. Slow tools run in workers on the global thread pool, at most two of a kind at a
 * time. The signals of a worker are emitted on its pool thread, so receivers in the interface's
 * thread get them queued.
 *
 * Records: the receiver of a signal owns the records that come with it. With nobody connected
 * they are deleted. Connect at most one receiver that takes records. One that is destroyed while
 * a signal waits in its thread's event queue leaks that signal's records.
 *
 * One instance at a time in a process: the database connection's name is process-wide. While
 * another process writes the file, what concerns the known networks may block for 5 s more.
 */
class KTV_DATASOURCE_EXPORT KTV_Connection : public QObject
{
    Q_OBJECT
public:
    /**
     * Finds the interface, opens the known networks (creating the file when it is missing),
     * hands them to the supplicant, reads the state once and polls it every 5000 ms from then
     * on. Blocks as long as the tools need: up to 1000 ms per protected network, the restart of
     * the supplicant without limit, and up to 4000 ms for the state. A database that cannot be
     * opened is logged; no network is known then, and none can be added.
     * @param directory prefix of the database's path, used unchanged; ends in "/". Created when
     *        it is missing, its parent is not.
     */
    explicit KTV_Connection(const QString &directory, QObject *parent = nullptr);
    /**
     * Ends the commands of workers under way and waits for the workers, which takes some
     * hundredths of a second, or 300 ms and more for a tool that does not heed SIGTERM. The call
     * of set_wifi_Enable() under way and the last one that waits are carried out first, each
     * within 3000 ms. Nothing is emitted from then on; a signal that already waits in a
     * receiver's event queue is still delivered.
     *
     * Delete the object on its own thread only: a slot that is connected directly runs on the
     * thread of a worker, and there this would wait for that worker without end.
     */
    ~KTV_Connection() override;

    /** The interface that every command is about, normally "wlan0"; empty when there is none. */
    QString getInterfaceName() const;
    /** Looks for the interface anew. Blocks until "ls" has ended. May be called on any thread. */
    void findWifiInterfaceName();

    /**
     * Stores a network in place of an earlier one of that name, and prefers it: rewrites the
     * supplicant's file and restarts the supplicant. Blocks up to 1000 ms per protected network,
     * and for the restart.
     * @param essid name; letter case counts
     * @param key pass phrase of 8 to 63 characters; empty for an open network
     * @return false, with nothing changed, for an empty name, a key of another length, or when
     *         the database cannot be written
     */
    bool AddNetwork(const QString &essid, const QString &key);
    /**
     * Forgets a network, stored or not, and hands the others to the supplicant, none preferred.
     * Blocks as AddNetwork() does. @return false when the database cannot be written
     */
    bool DeleteNetwork(const QString &essid);
    /**
     * Rewrites the supplicant's file with this network preferred and restarts the supplicant;
     * the choice is not stored. Blocks as AddNetwork() does.
     */
    void SetPreferedNetwork(const QString &essid);
    /**
     * Forgets every network. The supplicant keeps its file until the next change.
     * @return whether the new, empty database is open
     */
    bool RestoreFabricalSetting();
    /**
     * Every known network, pass phrases included, in the order of the rows.
     * @return new list; the caller deletes the list and every record in it. Empty when the
     *         database is closed; never null.
     */
    QList<WiFi::Network *> *GetMyNetwork();

    /**
     * Whether the interface is up, as the last change in detail mode (DetailInfoScan()) has it;
     * false until then.
     */
    bool get_wifi_Enable() const;
    /**
     * Switches the interface on or off; returns at once. Calls are carried out one after the
     * other in their order, each within 3000 ms and with a reading of the state after it; of
     * more than 30 that wait the oldest are dropped. Does nothing without an interface.
     */
    void set_wifi_Enable(bool on);

    /**
     * Switches detail polling on or off: every 1000 ms, in place of the state every 5000 ms.
     * Does nothing without an interface.
     */
    void DetailInfoScan(bool on);
    bool isDetailInfoScan() const; ///< Whether detail polling is on.

    /**
     * Switches scanning on (one scan at once, then every 10000 ms) or off. The results
     * of a scan under way when scanning is switched off are dropped. A scan tool that does not
     * answer within 5000 ms switches scanning off; WiFi_Scan(nullptr) is emitted even if it was
     * off already, and its receiver may switch scanning on again.
     * @return false when there is no interface to scan with
     */
    bool ScanNetwork(bool on);
    bool isScanMode() const; ///< Whether scanning is on.

    /**
     * Reads state and details of the connection. Blocks up to 4000 ms: four tools, 1000 ms
     * each. What no tool answers in time keeps the value of a new record. Any thread.
     * @return new record; the caller deletes it
     */
    WiFi::Network *getWiFi_Info();

    /** Signal level in dBm as wifi_States_Connect_0 (weakest) to wifi_States_Connect_4. */
    static int _dbmToSignal(int dbm);
    /** Whether a scanned network has a name to show; false for null. */
    static bool _validateNetwork(WiFi::Network *network);
    /**
     * Appends a copy of @p network unless the list has a stronger one of that name; a weaker or
     * equal one is deleted and makes room. @p network stays the caller's.
     */
    static void _addToList(QList<WiFi::Network *> *list, WiFi::Network *network);

    /**
     * Workers: what the timers start on the thread pool. A direct call, on any thread, does the
     * same and has taken effect when it returns; @p connection must outlive it.
     */
    static void check_wifiState_Avait(KTV_Connection *connection);
    /** @copydoc check_wifiState_Avait */
    static void check_wifiDetailState_Avait(KTV_Connection *connection);
    /** @copydoc check_wifiState_Avait */
    static void check_wifiScan_Avait(KTV_Connection *connection);
    /** Switches the interface within 3000 ms, then reads the state anew. See the other workers. */
    static void _set_wifi_Enable_Avait(KTV_Connection *connection, bool on);

public Q_SLOTS:
    void onStatusTime(); ///< Starts one reading of the state, unless two are outstanding.
    void onStatusDetailTime(); ///< Starts one reading of the details, unless two are outstanding.
    void onScanNetwokTime(); ///< Starts one scan, unless two are outstanding.

Q_SIGNALS:
    /** The state (a WiFi::Network::wifiStates) has changed, or in detail mode any detail. */
    void WiFi_State_Change(int state);
    /** In detail mode state, name or address have changed. The receiver owns the record. */
    void WiFi_DetailState_Change(WiFi::Network *network);
    /**
     * A scan has ended: the networks in reach, one entry per name, weakest first; null when the
     * scan tool failed. Names are as the tool prints them: what is not ASCII stands in escapes,
     * and added like that the network is not joined. The receiver owns the list and its records.
     */
    void WiFi_Scan(QList<WiFi::Network *> *networks);

private:
    bool _Open();
    bool _CreateNew();
    void _freeDB();
    bool _AddWifiToDataBase(const QString &essid, const QString &key);
    bool _UpdateWifiInDataBase(int id, const QString &essid, const QString &key);
    bool _DeleteWifiInDataBase(int id);
    QString _WPA_Passphrase(const QString &essid, const QString &passphrase);
    void _buildConfFile(const QString &preferred, QList<WiFi::Network *> *networks);
    void _updateSystem(const QString &preferred);
    void _restart() const;

    class KTV_DATASOURCE_NO_EXPORT Private;
    const std::unique_ptr<Private> d;
};

/** Sort order of scan results: ascending by state, so the weakest network comes first. */
KTV_DATASOURCE_EXPORT bool variantLessThan(const WiFi::Network *a, const WiFi::Network *b);

} // namespace WiFi
