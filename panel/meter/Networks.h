#pragma once

#include <QFutureWatcher>
#include <QObject>
#include <QSet>
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
        bool isOn = false;
        bool isAssociated = false; ///< with or without an address
        bool isConnected = false;
        QString name;
        QString address;
        QString mask;
        QString broadcast;
    };

    explicit Networks(WiFi::KTV_Connection &connection, QObject *parent = nullptr);
    /** Takes what the library has already sent: nobody else would delete it. */
    ~Networks() override;

    /** Looks at the connection and around, until rest(). An adapter may have been plugged in. */
    void look();
    void rest();

    const QVector<Cell> &cells() const { return m_cells; } ///< the strongest first
    bool isScanned() const { return m_isScanned; }
    const QSet<QString> &known() const { return m_known; }
    const State &state() const { return m_state; }
    QString joining() const { return m_joining; } ///< empty: none

    void setOn(bool on);
    /**
     * Stores a network and waits for the connection; joined() tells how it went. Blocks.
     * @return whether it could be stored
     */
    bool join(const QString &name, const QString &key);
    void prefer(const QString &name); ///< Blocks.
    void forget(const QString &name); ///< Blocks.

    /** How long a network that is joined may take, in milliseconds. */
    void setPatience(int milliseconds) { m_patience.setInterval(milliseconds); }

signals:
    void changed();
    void joined(const QString &name, bool isWell);

private:
    void takeScan(QList<WiFi::Network *> *networks);
    void takeDetails(WiFi::Network *network);
    void takeState(int state);
    void endJoining(bool isWell);
    void readKnown();
    void start();

    WiFi::KTV_Connection &m_connection;
    QFutureWatcher<void> m_adapter; ///< looks for one
    QVector<Cell> m_cells;
    QSet<QString> m_known;
    State m_state;
    bool m_isLooking = false;
    bool m_isScanned = false;
    QString m_joining;
    QTimer m_patience;
};
