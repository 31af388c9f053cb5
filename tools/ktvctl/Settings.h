#pragma once

#include <configuration/KTV_Configuration.h>
#include <configuration/KTV_InterfaceConfig.h>

#include <optional>

/** The meter's settings store, with the results that a command line needs. */
class Settings
{
public:
    enum Purpose
    {
        Reading, ///< leaves everything as it is; a file that cannot be read is not touched
        Writing ///< creates a file that is missing
    };
    using Key = KTV_InterfaceConfig::SettingKey;

    explicit Settings(Purpose purpose);

    /** Names of every setting. */
    static QStringList names();

    /** Whether settings can be read, or written; for reading a missing file will do. */
    bool isUsable() const { return m_problem.isNull(); }
    /** Says on standard error why not. @return Failure */
    int failure() const;

    /** What is stored; @p byDefault where nothing is, or it cannot be read. */
    QString value(Key key, const QString &byDefault = {});
    /** Stores a value. @return whether it can be read back */
    bool write(Key key, const QString &value);
    /** Removes the settings. @return whether they are gone */
    bool remove(const QList<Key> &keys);
    /** Begins the file anew. */
    bool reset();

private:
    QString unusable() const;

    const QString m_directory;
    QString m_problem;
    std::optional<KTV_InterfaceConfig> m_store; ///< empty where there is nothing to be read
};

class Call;

/** Language of --lang, else the user's, else "EN". */
QString languageOf(const Call &call);
/** The serial number of --serial, else the one that the interface has stored, else null. */
QString serialNumberOf(const Call &call);
/** Model of that serial number. */
KTV_Configuration::MeterModels modelOf(const Call &call);
