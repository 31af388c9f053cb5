#pragma once

#include <QDeadlineTimer>
#include <QFutureWatcher>
#include <QObject>
#include <QSet>
#include <QSharedPointer>
#include <QString>
#include <QTimer>
#include <QVector>

namespace WiFi {
class KTV_Connection;
class Network;
} // namespace WiFi

/**
 * Networks in reach, known networks, the present connection, and the result of joining a network.
 * Functions that change the known networks block for as long as the library does, on the
 * interface's thread; their callers show a StillSheet first.
 */
class Networks : public QObject
{
    Q_OBJECT
public:
    /** A network in reach. */
    struct Cell
    {
        QString name; ///< the readable one, see NetworkName
        int bars = 0; ///< 0 to 4
        bool isProtected = false;
    };
    /** The present connection; a text that is not known is empty. */
    struct State
    {
        bool hasAdapter = false;
        bool isRead = false; ///< if false, the members below are not known yet
        bool isOn = false;
        bool isAssociated = false; ///< with or without an address
        bool isConnected = false;
        QString name;
        QString address;
        QString mask;
        QString broadcast;
    };
    /** The result of joining a network. */
    enum Outcome
    {
        Joined,
        NotAnswering, ///< an open network that does not answer
        PassPhraseRefused, ///< in reach, but not connected: probably a wrong pass phrase
        NotFound ///< not in the last scan; the pass phrase may be wrong as well
    };
    Q_ENUM(Outcome)

    explicit Networks(WiFi::KTV_Connection &connection, QObject *parent = nullptr);
    /**
     * Receives signals that are still in the event queue, because their records would leak
     * otherwise.
     */
    ~Networks() override;

    /** Whether the text has a valid length for a pass phrase. */
    static bool isPassPhrase(const QString &key);

    /**
     * Starts scanning and polling of the connection. Looks for an adapter first if there was none.
     */
    void startWatching();
    /** Stops both. If a network is being joined, its result is emitted all the same. */
    void stopWatching();

    /**
     * Networks in reach, the strongest first. A busy adapter sometimes finds none, so they are kept
     * until a scan finds others, or two scans in a row find none.
     */
    const QVector<Cell> &cells() const { return m_cells; }
    /** Whether a scan has been completed; until then cells() is not up to date. */
    bool isScanned() const { return m_isScanned; }
    /** Whether the last scan took too long, so that another one has been started. */
    bool isScanLate() const { return m_isScanLate; }
    /** Whether this network is in reach and needs no pass phrase. */
    bool isOpen(const QString &name) const;
    const QSet<QString> &known() const { return m_known; }
    const State &state() const { return m_state; }
    QString joining() const { return m_joining; } ///< network that is being joined; empty for none

    void setOn(bool on);
    /**
     * Stores a network, which blocks, and then checks the connection until it is that of the
     * network or the patience is over; joined() has the result. A network that hides its name is
     * usually not found: the supplicant's file does not ask for it by name (scan_ssid).
     * @return whether it could be stored
     */
    bool join(const QString &name, const QString &key);
    void prefer(const QString &name); ///< Blocks.
    void forget(const QString &name); ///< Blocks.

    /** How long joining a network may take, in milliseconds. */
    void setPatience(int milliseconds) { m_patience = milliseconds; }

signals:
    void changed();
    void joined(const QString &name, Networks::Outcome outcome);

private:
    void takeScan(QList<WiFi::Network *> *networks);
    void takeDetails(WiFi::Network *network);
    void takeState(int state);
    void read();
    void takeReading();
    void take(const WiFi::Network &network);
    void setState(int state);
    void checkJoining();
    void judgeJoining(const WiFi::Network &network);
    Outcome failure(const QString &name) const;
    void stopJoining();
    void readKnown();
    void start();

    WiFi::KTV_Connection &m_connection;
    QFutureWatcher<void> m_adapter; ///< the search for an adapter
    QFutureWatcher<QSharedPointer<WiFi::Network>> m_reading; ///< state and details
    bool m_isReadingOld = false; ///< the library has emitted a change since the reading began
    bool m_isChecking = false; ///< the reading decides whether the network has been joined
    QVector<Cell> m_cells;
    QSet<QString> m_known;
    State m_state;
    bool m_isWatching = false;
    bool m_isScanned = false;
    bool m_isScanLate = false;
    int m_emptyScans = 0; ///< how many scans in a row have found none
    QString m_joining;
    bool m_isJoiningOpen = false;
    int m_patience;
    QDeadlineTimer m_joiningEnd;
    QTimer m_joiningTick;
};
