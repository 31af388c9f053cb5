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
 * The known networks are stored in the SQLite file "wifi.db". The supplicant's whole configuration
 * file is written again whenever the list or the preference changes, and the supplicant is
 * restarted after the new file has been flushed to the card. If writing fails, for instance on a
 * full card, the file stays as it was, the supplicant is not restarted, and the reason is logged.
 * The state of the interface is read from the wireless tools' output.
 *
 * Threads: the object belongs to the interface's thread, and so do all its operations except
 * the workers. Slow tools run in workers on the global thread pool, at most two of a kind at a
 * time. The signals of a worker are emitted on its pool thread, so receivers in the interface's
 * thread get them through their event loop.
 *
 * Records: the receiver of a signal owns the records that come with it. If nothing is connected
 * they are deleted. Connect at most one receiver to a signal with records. If the receiver is
 * destroyed while a signal is in its thread's event queue, that signal's records leak.
 *
 * One instance at a time in a process: the database connection's name is process-wide. While
 * another process writes the file, operations on the known networks may block for 5 s more.
 */
class KTV_DATASOURCE_EXPORT KTV_Connection : public QObject
{
    Q_OBJECT
public:
    /**
     * Finds the interface, opens the known networks (creating the file when it is missing),
     * configures and restarts the supplicant, reads the state once and polls it every 5000 ms from
     * then on. Blocks as long as the tools need: up to 1000 ms per protected network, the restart
     * of the supplicant without limit, and up to 4000 ms for the state. A database that cannot be
     * opened is logged; then no network is known, and none can be added.
     * @param directory prefix of the database's path, used unchanged; ends in "/". A missing
     *        directory is created, but not its parent.
     */
    explicit KTV_Connection(const QString &directory, QObject *parent = nullptr);
    /**
     * Ends the commands of workers under way and waits for the workers, which takes some
     * hundredths of a second, or 300 ms and more for a tool that ignores SIGTERM. A call of
     * set_wifi_Enable() that is under way and the last one that waits are carried out first, each
     * within 3000 ms. From then on no signal is emitted; one that is already in a receiver's event
     * queue is still delivered.
     *
     * Delete the object on its own thread only. A slot with a direct connection runs on a worker's
     * thread; there the destructor would wait for that worker without end.
     */
    ~KTV_Connection() override;

    /** The WiFi interface that all commands use, normally "wlan0"; empty when there is none. */
    QString getInterfaceName() const;
    /** Looks for the interface again. Blocks until "ls" has ended. May be called on any thread. */
    void findWifiInterfaceName();

    /**
     * Stores a network, replacing one of the same name, and makes it the preferred one: rewrites
     * the supplicant's file and restarts the supplicant. Blocks up to 1000 ms per protected
     * network, and for the restart.
     * @param essid name; letter case counts
     * @param key pass phrase of 8 to 63 characters; empty for an open network
     * @return false, with nothing changed, for an empty name, a key of another length, or when
     *         the database cannot be written; also when it is written but cannot be flushed
     */
    bool AddNetwork(const QString &essid, const QString &key);
    /**
     * Removes a network, if stored, and in any case rewrites the supplicant's file, without a
     * preference, and restarts it. Blocks as AddNetwork(). @return whether the database was written
     */
    bool DeleteNetwork(const QString &essid);
    /**
     * Rewrites the supplicant's file with this network preferred and restarts the supplicant;
     * the choice is not stored. Blocks as AddNetwork() does.
     */
    void SetPreferedNetwork(const QString &essid);
    /**
     * Removes every network. The supplicant's file stays until the next change.
     * @return whether the new, empty database is open
     */
    bool RestoreFabricalSetting();
    /**
     * Every known network, with its pass phrase, in the order of the rows.
     * @return new list; the caller deletes the list and every record in it. Empty when the
     *         database is closed; never null.
     */
    QList<WiFi::Network *> *GetMyNetwork();

    /**
     * Whether the interface is up, according to the last change that detail polling
     * (DetailInfoScan()) has found; false until then.
     */
    bool get_wifi_Enable() const;
    /**
     * Switches the interface on or off; returns at once. Calls are carried out one after the other,
     * in order: each takes up to 3000 ms, and the state is read after it. When more than 30 wait,
     * the oldest are dropped. Does nothing without an interface.
     */
    void set_wifi_Enable(bool on);

    /**
     * Switches detail polling (every 1000 ms) on or off; it replaces the polling of the state
     * (every 5000 ms). Does nothing without an interface.
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
     * each. Without an answer in time, a value stays that of a new record. Any thread may call it.
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
     * The work that the timers start on the thread pool. May also be called directly, on any
     * thread; it is then done when the call returns. @p connection must exist until then.
     */
    static void check_wifiState_Avait(KTV_Connection *connection);
    /** @copydoc check_wifiState_Avait */
    static void check_wifiDetailState_Avait(KTV_Connection *connection);
    /** @copydoc check_wifiState_Avait */
    static void check_wifiScan_Avait(KTV_Connection *connection);
    /** Switches the interface within 3000 ms, then reads the state again. See the other workers. */
    static void _set_wifi_Enable_Avait(KTV_Connection *connection, bool on);

public Q_SLOTS:
    void onStatusTime(); ///< Starts a poll of the state, unless two are running or queued.
    void onStatusDetailTime(); ///< Starts a poll of the details, unless two are running or queued.
    void onScanNetwokTime(); ///< Starts a scan, unless two are running or queued.

Q_SIGNALS:
    /** The state (WiFi::Network::wifiStates) has changed; with detail polling also any detail. */
    void WiFi_State_Change(int state);
    /** Detail polling: state, name or address has changed. The receiver owns the record. */
    void WiFi_DetailState_Change(WiFi::Network *network);
    /**
     * A scan has ended: the networks in reach, one entry per name, weakest first; null when the
     * scan tool failed. Names are as the tool prints them, with bytes beyond ASCII escaped; under
     * such a name a network cannot be joined. The receiver owns the list and its records.
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
