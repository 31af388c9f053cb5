#pragma once

#include <configuration/KTV_Configuration.h>
#include <configuration/KTV_InterfaceConfig.h>

/** The meter's settings store, with the results that a command line needs. */
class Settings
{
public:
    Settings();

    /** Names of every setting. */
    static QStringList names();

    bool isOpen() const { return m_isOpen; }
    KTV_InterfaceConfig &store() { return m_store; }

    /** Stores a value. @return whether it can be read back */
    bool write(KTV_InterfaceConfig::SettingKey key, const QString &value);

    /** Says on standard error that the store failed. @return Failure */
    int failure() const;

private:
    const QString m_directory;
    KTV_InterfaceConfig m_store;
    const bool m_isOpen;
};

class Call;

/** Language of --lang, else the user's, else "EN". */
QString languageOf(const Call &call);
/** Model of the serial number of --serial, else of the one that the interface has stored. */
KTV_Configuration::MeterModels modelOf(const Call &call);
