#include "Settings.h"

#include "Command.h"
#include "StoreFile.h"

#include <QMetaEnum>

#include <algorithm>

Settings::Settings(Purpose purpose)
    : m_directory(KTV_Configuration().get_mainInterfaceUserDataDirectory())
{
    if (purpose == Reading) {
        const auto file = StoreFile::lookAt(m_directory + QStringLiteral("interfaceConfig.db"));
        m_problem = file.problem;
        if (file.isEmpty || !m_problem.isNull())
            return;
    }
    m_store.emplace(m_directory);
    if (!m_store->Open()) // the constructor cannot report a failure
        m_problem = unusable();
}

QString Settings::unusable() const
{
    return QStringLiteral("the settings in '%1' cannot be used; --verbose tells more")
        .arg(m_directory);
}

QStringList Settings::names()
{
    const auto keys = QMetaEnum::fromType<Key>();
    QStringList names;
    for (int i = 0; i < keys.keyCount(); ++i)
        names += QLatin1String(keys.key(i));
    return names;
}

QString Settings::value(Key key, const QString &byDefault)
{
    return m_store ? m_store->getValue(key, byDefault) : byDefault;
}

bool Settings::write(Key key, const QString &value)
{
    m_store->setValue(key, value);
    const QString stored = m_store->getValue(key, QString());
    return !stored.isNull() && stored == value;
}

bool Settings::remove(const QList<Key> &keys)
{
    m_store->deleteValue(keys);
    return std::all_of(keys.begin(), keys.end(), [this](Key key) { return value(key).isNull(); });
}

bool Settings::reset()
{
    return m_store->CreateNew();
}

int Settings::failure() const
{
    return fail(m_problem.isNull() ? unusable() : m_problem);
}

QString languageOf(const Call &call)
{
    return call.isSet("lang")
        ? call.option("lang")
        : Settings(Settings::Reading).value(KTV_InterfaceConfig::MAIN_Lang, QStringLiteral("EN"));
}

QString serialNumberOf(const Call &call)
{
    return call.isSet("serial")
        ? call.option("serial")
        : Settings(Settings::Reading).value(KTV_InterfaceConfig::MAIN_MeterSN);
}

KTV_Configuration::MeterModels modelOf(const Call &call)
{
    KTV_Configuration meter;
    const QString serialNumber = serialNumberOf(call);
    if (!serialNumber.isNull())
        meter.set_SerialNumber(serialNumber);
    return meter.get_MeterModel();
}
