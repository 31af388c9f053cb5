#pragma once

#include <ktv_datasource_export.h>

#include <QList>
#include <QObject>

#include <memory>

/**
 * The user's settings: text by key, in the SQLite file "interfaceConfig.db".
 *
 * Each key is stored under its enumerator name, integers as decimal text. Defaults are not stored:
 * callers pass their own. A file that cannot be opened is replaced by an empty one.
 *
 * One instance at a time, used from one thread: the connection's name is process-wide. A write
 * returns after it has been flushed to the card (tens of milliseconds on an SD card). No other
 * process should use the file: while one writes it, each statement of a call may block for 5 s and
 * then fail. A read is one statement, a write two, and a deletion one for each key.
 */
class KTV_DATASOURCE_EXPORT KTV_InterfaceConfig : public QObject
{
    Q_OBJECT
public:
    /** Keys of the settings; the file contains the enumerators' names. */
    enum SettingKey : qint32
    {
        MAIN_Lang = 1, ///< interface language code
        MAIN_UseScreenKeyboard = 2, ///< whether the on-screen keyboard is used
        MAIN_HideNoCriticalDialog = 3, ///< whether non-critical dialogs are hidden
        MAIN_OffSound = 4, ///< whether the user has switched the sound off
        MAIN_TemperatureUnit = 5, ///< temperature unit
        MAIN_StartScreen = 6, ///< screen shown at start
        MAIN_Pin = 7, ///< screen PIN
        MAIN_MeterSN = 8, ///< serial number, written when the facade is destroyed
        TEST_AutoMetoda_LastSetting = 9, ///< last automatic-method test
        TEST_Rezystanyjny_LastSetting = 10, ///< last resistive test
        TEST_Indukcyjny_LastSetting = 11, ///< last inductive test
        TEST_Rejestrator_LastSetting = 12, ///< last recording
        TEST_EngineTemperature_LastSetting = 13, ///< last motor temperature test
        TEST_ClampTest_LastSetting = 14, ///< last clamp test
        PRINT_Customer_Label = 15, ///< customer label of printouts
        PRINT_AutoPrint = 16, ///< automatic printing
        SERIS_LogerRun = 17, ///< logger running
        Power_Time1 = 18, ///< first power-saving time
        Power_Time2 = 19 ///< second power-saving time
    };
    Q_ENUM(SettingKey)

    /**
     * Opens the file in @p directory, creating it when it is missing.
     * @param directory prefix of the file's path; ends in "/"
     */
    explicit KTV_InterfaceConfig(const QString &directory, QObject *parent = nullptr);
    /** Closes the file; what was stored is on the card already. */
    ~KTV_InterfaceConfig() override;

    /**
     * Opens the file, closing it first when it is open. A missing file is created; one that
     * cannot be opened is deleted and created again, so all its settings are lost.
     * @return whether the store is open
     */
    bool Open();
    /** Deletes the file and creates an empty one. @return whether the store is open */
    bool CreateNew();
    /** Factory reset: removes every setting, so that readers return their defaults. */
    void RestoreFabricalSetting();

    /** Stored text of @p key, or @p defaultValue when there is none or the store is closed. */
    QString getValue(KTV_InterfaceConfig::SettingKey key, const QString &defaultValue);
    /**
     * Stored number of @p key, or @p defaultValue when there is none or the text is no integer.
     * A closed store is opened once more before giving up.
     */
    int getValue(KTV_InterfaceConfig::SettingKey key, int defaultValue);

    /** Stores a text in place of the key's earlier value; does nothing when the store is closed. */
    void setValue(KTV_InterfaceConfig::SettingKey key, const QString &value);
    /** Stores the decimal text of @p value. */
    void setValue(KTV_InterfaceConfig::SettingKey key, int value);

    /** Removes the keys in one transaction; does nothing when the store is closed. */
    void deleteValue(const QList<KTV_InterfaceConfig::SettingKey> &keys);

    /** Enumerator name of @p key; empty for a number that is not a key. */
    QString enumToString(KTV_InterfaceConfig::SettingKey key) const;

private:
    class KTV_DATASOURCE_NO_EXPORT Private;
    const std::unique_ptr<Private> d;
};
