#include "wifi/KnownNetworks_p.h"

#include "internal/DurableFile_p.h"
#include "internal/Guarded_p.h"
#include "internal/log_p.h"
#include "wifi/SecretFile_p.h"

#include <QFile>
#include <QVariant>

#include <memory>

using WiFi::Network;

namespace Internal {

namespace {

constexpr int schemaVersion = 0;
constexpr int shortestPassphrase = 8;
constexpr int longestPassphrase = 63;

QString connectionName()
{
    return QStringLiteral("WiFi");
}

QStringList schema()
{
    return versionTable(schemaVersion)
        + QStringList {
            QStringLiteral(
                "CREATE TABLE IF NOT EXISTS NETWORKS (NETk_1_ID INTEGER UNIQUE PRIMARY KEY,"
                "NET_ESSID VARCHAR(255),NET_Encrypton int,NET_Key VARCHAR(255))"),
        };
}

/** Values of a row, in the order of the placeholders: name, whether protected, key. */
QVariantList columns(const QString &essid, const QString &key)
{
    // A null text would be stored as NULL.
    return {essid, !key.isEmpty(), key.isEmpty() ? QStringLiteral("") : key};
}

bool failed(QLatin1String text, const QSqlError &error)
{
    log() << text << error.text();
    return false;
}

} // namespace

bool isPassphrase(const QString &text)
{
    return text.size() >= shortestPassphrase && text.size() <= longestPassphrase;
}

KnownNetworks::KnownNetworks(const QString &directory)
    : m_directory(directory)
    , m_path(directory + QStringLiteral("wifi.db"))
    , m_database(connectionName())
{ }

bool KnownNetworks::open()
{
    m_database.close();
    if (isMissing(m_path))
        return createNew();
    release();
    keepSecret(m_path);
    if (m_database.open(m_path))
        return true;
    log() << "!no open database:" << m_database.lastError().text();
    return false;
}

bool KnownNetworks::createNew()
{
    if (areDatabasesClosed())
        return false; // a deleted file could not be created again
    m_database.close();
    if (QFile::exists(m_path) && !QFile::remove(m_path))
        return false;
    release();
    makeDirectory(m_directory);
    keepSecret(m_path);
    if (!m_database.open(m_path)) {
        log() << "KTV_Connection - No open database :("
              << (m_database.handle().isOpenError() ? "true" : "false");
        return false;
    }
    guarded([this] { createSchema(m_database, schema()); });
    return true;
}

void KnownNetworks::release()
{
    if (m_database.release())
        QSqlDatabase::removeDatabase(connectionName()); // a second time, which is harmless
}

bool KnownNetworks::add(const QString &essid, const QString &key)
{
    if (essid.isEmpty() || (!key.isEmpty() && !isPassphrase(key)))
        return false;
    if (!isOpenOrLog(QLatin1String("KTV_Connection::DB is CLOSE!")))
        return false;
    const QLatin1String failure("KTV_Connection::_AddWifiToDataBase: ");
    return change(failure, [&] {
        return removeName(essid, QLatin1String("_AddWifiToDataBase: "))
            && run(QStringLiteral("INSERT INTO NETWORKS (`NET_ESSID`,`NET_Encrypton`,`NET_Key`)"
                                  "VALUES (:NET_ESSID,:NET_Encrypton,:NET_Key)"),
                   columns(essid, key), failure);
    });
}

bool KnownNetworks::remove(const QString &essid)
{
    if (!isOpenOrLog(QLatin1String("DB is CLOSE!")))
        return false;
    const QLatin1String failure("_AddWifiToDataBase: "); // kept: the text names another operation
    return change(failure, [&] { return removeName(essid, failure); });
}

bool KnownNetworks::updateRow(int id, const QString &essid, const QString &key)
{
    if (!isOpenOrLog(QLatin1String("DB is CLOSE!")))
        return false;
    const QLatin1String failure("_AddWifiToDataBase: ");
    return change(failure, [&] {
        // Kept: the last backtick is never closed, so the statement is refused.
        return run(QStringLiteral("UPDATE NETWORKS SET`NET_ESSID`=:NET_ESSID,`NET_Encrypton`="
                                  ":NET_Encrypton,`NET_Key`=:NET_Key WHERE `NETk_1_ID=")
                       + QString::number(id),
                   columns(essid, key), failure);
    });
}

bool KnownNetworks::removeRow(int id)
{
    if (!isOpenOrLog(QLatin1String("DB is CLOSE!")))
        return false;
    const QLatin1String failure("_DeleteWifiInDataBase:");
    return change(failure, [&] {
        return run(QStringLiteral("DELETE FROM NETWORKS WHERE `NETk_1_ID` = '")
                       + QString::number(id) + QLatin1Char('\''),
                   {}, failure);
    });
}

NetworkList KnownNetworks::all()
{
    NetworkList networks = makeNetworkList();
    if (!m_database.isOpen())
        return networks;
    guarded("GetMyNetwork: ", [&] {
        Statement query(m_database, QStringLiteral("SELECT * FROM NETWORKS"));
        while (query.next()) {
            auto network = std::make_unique<Network>();
            network->ESSID = query.value(QStringLiteral("NET_ESSID")).toString();
            network->encryption = query.value(QStringLiteral("NET_Encrypton")).toBool();
            network->key = query.value(QStringLiteral("NET_Key")).toString();
            networks->append(network.get());
            static_cast<void>(network.release()); // owned by the list from here on
        }
    });
    return networks;
}

bool KnownNetworks::isOpenOrLog(QLatin1String text) const
{
    if (!m_database.isOpen())
        log() << text;
    return m_database.isOpen();
}

template <typename Steps> bool KnownNetworks::change(QLatin1String failure, Steps steps)
{
    return guarded(failure, [&] {
        Transaction transaction(m_database);
        return steps() && (transaction.commit() || failed(failure, m_database.lastError()));
    });
}

bool KnownNetworks::run(const QString &text, const QVariantList &values, QLatin1String failure)
{
    const Statement statement(m_database, text, values);
    return statement.isDone() || failed(failure, statement.lastError());
}

bool KnownNetworks::removeName(const QString &essid, QLatin1String failure)
{
    return run(QStringLiteral("DELETE FROM NETWORKS WHERE `NET_ESSID`=:NET_ESSID"), {essid},
               failure);
}

} // namespace Internal
