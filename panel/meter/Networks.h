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
 * Networks in reach and known ones, the connection as it is now, and whether joining one has
 * worked. What changes the known networks blocks as the library does: it belongs to the interface's
 * thread, and whoever asks for it tells so before.
 */
class Networks : public QObject
{
    Q_OBJECT
public:
    /** A network in reach. */
    struct Cell
    {
        QString name; ///< as people know it
        int bars = 0; ///< 0 to 4
        bool isProtected = false;
    };
    /** The connection as it is now; texts are empty where nothing is known. */
    struct State
    {
        bool hasAdapter = false;
        bool isRead = false; ///< until then the rest says nothing
        bool isOn = false;
        bool isAssociated = false; ///< with or without an address
        bool isConnected = false;
        QString name;
        QString address;
        QString mask;
        QString broadcast;
    };
    /** How joining a network has ended. */
    enum Outcome
    {
        Joined,
        NotAnswering, ///< an open network
        PassPhraseRefused, ///< perhaps; in reach, but not connected
        NotFound ///< or its pass phrase is wrong: the scan does not have it
    };
    Q_ENUM(Outcome)

    explicit Networks(WiFi::KTV_Connection &connection, QObject *parent = nullptr);
    /** Takes what the library has already sent: nobody else would delete it. */
    ~Networks() override;

    /** Whether a pass phrase has a length that a network can have. */
    static bool isPassPhrase(const QString &key);

    /** Looks at the connection and around, until rest(). An adapter may have been plugged in. */
    void look();
    /** What is being joined is followed to its end all the same. */
    void rest();

    /**
     * The strongest first. An adapter that is busy finds nothing at times: they stay until a scan
     * finds others, or two in a row find none.
     */
    const QVector<Cell> &cells() const { return m_cells; }
    /** Whether cells() tells what is in reach; until then a scan is under way. */
    bool isScanned() const { return m_isScanned; }
    /** Whether the last scan has not ended in time, and another one is under way. */
    bool isScanLate() const { return m_isScanLate; }
    /** Whether a network in reach needs no pass phrase. */
    bool isOpen(const QString &name) const;
    const QSet<QString> &known() const { return m_known; }
    const State &state() const { return m_state; }
    QString joining() const { return m_joining; } ///< empty: none

    void setOn(bool on);
    /**
     * Stores a network and waits for the connection; joined() tells how it went. Blocks.
     * A network that hides its name is usually not found: what the library writes for the
     * supplicant does not have it ask for networks by name.
     * @return whether it could be stored
     */
    bool join(const QString &name, const QString &key);
    void prefer(const QString &name); ///< Blocks.
    void forget(const QString &name); ///< Blocks.

    /** How long a network that is joined may take, in milliseconds. */
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
    QFutureWatcher<void> m_adapter; ///< looks for one
    QFutureWatcher<QSharedPointer<WiFi::Network>> m_reading; ///< of the connection
    bool m_isReadingOld = false; ///< the library has told of a change since it began
    bool m_isChecking = false; ///< the reading decides about the network that is joined
    QVector<Cell> m_cells;
    QSet<QString> m_known;
    State m_state;
    bool m_isLooking = false;
    bool m_isScanned = false;
    bool m_isScanLate = false;
    int m_emptyScans = 0; ///< in a row
    QString m_joining;
    bool m_isJoiningOpen = false;
    int m_patience;
    QDeadlineTimer m_joiningEnd;
    QTimer m_joiningTick;
};
