#include "configuration/KTV_InterfaceConfig.h"

#include "internal/DurableFile_p.h"
#include "internal/Guarded_p.h"
#include "internal/NamedDatabase_p.h"
#include "internal/log_p.h"

#include <QFile>
#include <QMetaEnum>
#include <QVariant>

#include <optional>

using Internal::guarded;
using Internal::log;

namespace {

constexpr int schemaVersion = 0;

QStringList schema()
{
    return Internal::versionTable(schemaVersion)
        + QStringList {
            QStringLiteral(
                "CREATE TABLE IF NOT EXISTS CONFIG_STR (CONk_1_ID INTEGER UNIQUE PRIMARY "
                "KEY,CON_Key VARCHAR(255),CON_Value VARCHAR(255))"),
        };
}

} // namespace

class KTV_InterfaceConfig::Private
{
public:
    explicit Private(const QString &prefix)
        : directory(prefix)
        , path(prefix + QStringLiteral("interfaceConfig.db"))
    { }

    std::optional<QString> read(const QString &key);
    bool remove(const QString &key, QLatin1String failure);
    bool insert(const QString &key, const QString &value);

    const QString directory;
    const QString path;
    Internal::NamedDatabase database {QStringLiteral("interfaceConfig")};
};

std::optional<QString> KTV_InterfaceConfig::Private::read(const QString &key)
{
    // The key is an enumerator's name: nothing in it can end the quotation.
    Internal::Statement statement(
        database,
        QStringLiteral("SELECT `CON_Value` FROM CONFIG_STR WHERE `CON_Key` = '") + key
            + QLatin1Char('\''),
        {}, Internal::Statement::Often);
    if (!statement.isDone() || !statement.next())
        return std::nullopt;
    return statement.value(0).toString();
}

bool KTV_InterfaceConfig::Private::remove(const QString &key, QLatin1String failure)
{
    const Internal::Statement statement(database,
                                        QStringLiteral("DELETE FROM CONFIG_STR WHERE `CON_Key` = '")
                                            + key + QLatin1Char('\''),
                                        {}, Internal::Statement::Often);
    if (!statement.isDone())
        log() << failure << statement.lastError().text();
    return statement.isDone();
}

bool KTV_InterfaceConfig::Private::insert(const QString &key, const QString &value)
{
    const Internal::Statement statement(
        database,
        QStringLiteral("INSERT INTO CONFIG_STR (`CON_Key`,`CON_Value`)VALUES "
                       "(:CON_Key,:CON_Value)"),
        {key, value}, Internal::Statement::Often);
    if (!statement.isDone())
        log() << "setValue - INSERT: " << statement.lastError().text();
    return statement.isDone();
}

KTV_InterfaceConfig::KTV_InterfaceConfig(const QString &directory, QObject *parent)
    : QObject(parent)
    , d(std::make_unique<Private>(directory))
{
    Open();
}

KTV_InterfaceConfig::~KTV_InterfaceConfig() = default;

bool KTV_InterfaceConfig::Open()
{
    d->database.close();
    if (Internal::isMissing(d->path))
        return CreateNew();
    if (d->database.open(d->path))
        return true;
    log() << "!no open database:" << d->database.lastError().text();
    return CreateNew(); // kept: a settings file that cannot be opened is replaced
}

bool KTV_InterfaceConfig::CreateNew()
{
    if (Internal::areDatabasesClosed())
        return false; // a deleted file could not be created again
    d->database.release();
    QFile file(d->path);
    if (file.exists() && !file.remove()) {
        log() << "KTV_InterfaceConfig::CreateNew(): file delete error:" << file.errorString();
        return false;
    }
    Internal::makeDirectory(d->directory);
    if (!d->database.open(d->path)) {
        log() << "No open :(" << d->database.lastError().text();
        return false;
    }
    guarded([this] { Internal::createSchema(d->database, schema()); });
    return true;
}

void KTV_InterfaceConfig::RestoreFabricalSetting()
{
    if (!CreateNew())
        log() << "KTV_InterfaceConfig::RestoreFabricalSetting(): false";
}

QString KTV_InterfaceConfig::getValue(SettingKey key, const QString &defaultValue)
{
    if (!d->database.isOpen())
        return defaultValue;
    return guarded("getValue: ", defaultValue,
                   [&] { return d->read(enumToString(key)).value_or(defaultValue); });
}

int KTV_InterfaceConfig::getValue(SettingKey key, int defaultValue)
{
    if (!d->database.isOpen() && !Open()) {
        log() << "DB is CLOSE!";
        return defaultValue;
    }
    return guarded("getValue: ", defaultValue, [&] {
        bool ok = false;
        const int value = d->read(enumToString(key)).value_or(QString()).toInt(&ok);
        return ok ? value : defaultValue;
    });
}

void KTV_InterfaceConfig::setValue(SettingKey key, const QString &value)
{
    if (!d->database.isOpen()) {
        log() << "KTV_InterfaceConfig: DB is CLOSE!";
        return;
    }
    guarded("setValue: ", [&] {
        Internal::Transaction transaction(d->database);
        const QString name = enumToString(key);
        const bool removed = d->remove(name, QLatin1String("setValue - DELETE:"));
        const bool inserted = d->insert(name, value);
        // If one of the statements has failed, which is logged, the other one is committed all the
        // same.
        if (!transaction.commit() && removed && inserted)
            log() << "setValue: " << d->database.lastError().text();
    });
}

void KTV_InterfaceConfig::setValue(SettingKey key, int value)
{
    setValue(key, QString::number(value));
}

void KTV_InterfaceConfig::deleteValue(const QList<SettingKey> &keys)
{
    if (!d->database.isOpen()) {
        log() << "KTV_InterfaceConfig: DB is CLOSE!";
        return;
    }
    guarded("deleteValue: ", [&] {
        Internal::Transaction transaction(d->database);
        bool removed = true;
        for (const SettingKey key : keys)
            removed &= d->remove(enumToString(key), QLatin1String("deleteValue:"));
        if (!transaction.commit() && removed)
            log() << "deleteValue: " << d->database.lastError().text();
    });
}

QString KTV_InterfaceConfig::enumToString(SettingKey key) const
{
    return QString::fromLatin1(QMetaEnum::fromType<SettingKey>().valueToKey(key));
}
