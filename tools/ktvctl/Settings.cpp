#include "Settings.h"

#include "Command.h"

#include <QMetaEnum>

Settings::Settings()
    : m_directory(KTV_Configuration().get_mainInterfaceUserDataDirectory())
    , m_store(m_directory)
    , m_isOpen(m_store.Open()) // a constructor cannot tell
{ }

QStringList Settings::names()
{
    const auto keys = QMetaEnum::fromType<KTV_InterfaceConfig::SettingKey>();
    QStringList names;
    for (int i = 0; i < keys.keyCount(); ++i)
        names += QLatin1String(keys.key(i));
    return names;
}

bool Settings::write(KTV_InterfaceConfig::SettingKey key, const QString &value)
{
    m_store.setValue(key, value);
    const QString stored = m_store.getValue(key, QString());
    return !stored.isNull() && stored == value;
}

int Settings::failure() const
{
    return fail(QStringLiteral("the settings in '%1' cannot be used; --verbose tells more")
                    .arg(m_directory));
}

QString languageOf(const Call &call)
{
    if (call.isSet("lang"))
        return call.option("lang");
    return Settings().store().getValue(KTV_InterfaceConfig::MAIN_Lang, QStringLiteral("EN"));
}

KTV_Configuration::MeterModels modelOf(const Call &call)
{
    KTV_Configuration meter;
    meter.set_SerialNumber(call.isSet("serial")
                               ? call.option("serial")
                               : Settings().store().getValue(KTV_InterfaceConfig::MAIN_MeterSN,
                                                             meter.get_SerialNumber()));
    return meter.get_MeterModel();
}
