#pragma once

#include <configuration/KTV_Configuration.h>
#include <configuration/KTV_InterfaceConfig.h>

#include <optional>

/** The meter's settings; unlike the library's class, its functions report whether they succeed. */
class Settings
{
public:
    enum Purpose
    {
        Reading, ///< changes nothing, even if the file cannot be read
        Writing ///< creates a missing file
    };
    using Key = KTV_InterfaceConfig::SettingKey;

    explicit Settings(Purpose purpose);

    /** Names of every setting. */
    static QStringList names();

    /** Whether settings can be read or written; a missing file counts as readable. */
    bool isUsable() const { return m_problem.isNull(); }
    /** Prints on standard error why they cannot. @return Failure */
    int failure() const;

    /** The stored value; @p byDefault if there is none or it cannot be read. */
    QString value(Key key, const QString &byDefault = {});
    /** Stores a value. @return whether it can be read back */
    bool write(Key key, const QString &value);
    /** Removes the settings. @return success */
    bool remove(const QList<Key> &keys);
    /** Replaces the file by a new one. */
    bool reset();

private:
    QString unusable() const;

    const QString m_directory;
    QString m_problem;
    std::optional<KTV_InterfaceConfig> m_store; ///< no value if there is nothing to read
};

class Call;

/** The language given by --lang, else the user's, else "EN". */
QString languageOf(const Call &call);
/** The serial number given by --serial, else the one stored by the interface, else null. */
QString serialNumberOf(const Call &call);
/** Model of that serial number. */
KTV_Configuration::MeterModels modelOf(const Call &call);
