#pragma once

#include <wifi/KTV_Connection.h>

#include <QThread>
#include <QVector>

#include <memory>
#include <mutex>
#include <utility>

/**
 * Receives a manager's signals, with their records, on the thread that emits them. A mutex protects
 * all data that goes from thread to thread.
 */
class Inbox
{
public:
    using Record = std::shared_ptr<WiFi::Network>;
    struct Scan
    {
        bool isNull = false;
        QVector<Record> networks;

        QStringList names() const
        {
            QStringList result;
            for (const Record &network : networks)
                result += network->ESSID;
            return result;
        }
    };

    explicit Inbox(WiFi::KTV_Connection &connection)
    {
        using WiFi::KTV_Connection;
        QObject::connect(
            &connection, &KTV_Connection::WiFi_State_Change, &m_context,
            [this](int state) {
                add([this, state] { m_states += state; });
                note('s');
            },
            Qt::DirectConnection);
        QObject::connect(
            &connection, &KTV_Connection::WiFi_DetailState_Change, &m_context,
            [this](WiFi::Network *network) {
                add([this, network] { m_details += Record(network); });
                note('d');
            },
            Qt::DirectConnection);
        QObject::connect(
            &connection, &KTV_Connection::WiFi_Scan, &m_context,
            [this](QList<WiFi::Network *> *networks) {
                Scan scan;
                scan.isNull = !networks;
                if (networks) {
                    for (WiFi::Network *network : std::as_const(*networks))
                        scan.networks += Record(network);
                    delete networks;
                }
                add([this, &scan] { m_scans += scan; });
                note('n');
            },
            Qt::DirectConnection);
    }

    QVector<int> states() const { return get(m_states); }
    QVector<Record> details() const { return get(m_details); }
    QVector<Scan> scans() const { return get(m_scans); }
    /** The signals in order: s for a state, d for details, n for a scan. */
    QByteArray order() const { return get(m_order); }
    int count() const { return int(order().size()); }
    /** Threads that have emitted signals, in the order of the signals. */
    QVector<QThread *> threads() const { return get(m_threads); }

private:
    template <typename Change> void add(Change change)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        change();
    }
    void note(char signal)
    {
        add([this, signal] {
            m_order += signal;
            m_threads += QThread::currentThread();
        });
    }
    template <typename Value> Value get(const Value &value) const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        Value copy = value;
        copy.detach();
        return copy;
    }

    QObject m_context;
    mutable std::mutex m_mutex;
    QVector<int> m_states;
    QVector<Record> m_details;
    QVector<Scan> m_scans;
    QVector<QThread *> m_threads;
    QByteArray m_order;
};
