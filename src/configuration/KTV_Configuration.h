#pragma once

#include <ktv_datasource_export.h>

#include <QObject>

#include <memory>

class QDomElement;

/**
 * The description of one meter: maker, model, versions, directories and switches.
 *
 * Directories and switches come from "/home/root/globalInfo.xml", read once by the constructor;
 * whatever the file lacks keeps its default. The serial number, and with it the model, is set
 * later, when the meter has reported it. All directories except the update directory end in "/";
 * values of the file are taken unchanged.
 *
 * Used from the interface's thread only. Nothing here blocks beyond reading a small file.
 */
class KTV_DATASOURCE_EXPORT KTV_Configuration : public QObject
{
    Q_OBJECT
public:
    /** Meter models; unknown until a serial number is set. */
    enum MeterModels : qint32
    {
        MeterModels_NaN = 0, ///< no serial number yet, or one that belongs to no known model
        KTV_410 = 1,
        KTV_420 = 2,
        KTV_4200 = 3,
        KTV_4400 = 4,
        PLX_420 = 5
    };
    Q_ENUM(MeterModels)

    /** Reads the device description; without a valid file every value keeps its default. */
    explicit KTV_Configuration(QObject *parent = nullptr);
    ~KTV_Configuration() override;

    /** Model name such as "KTV-420"; "KTV-xxx" while unknown. */
    QString get_MeterModelName() const;
    /** Directory of the users' measurement files. */
    QString get_clientsDirectory() const;
    /** Directory of logs and usage counters. */
    QString get_logDirectory() const;
    /** The interface's home directory. */
    QString get_mainInterfeaceDirectory() const;
    /** Directory with one folder per language. */
    QString get_mainInterfaceLangsDirectory() const;
    /** Directory of settings, lists and known networks. */
    QString get_mainInterfaceUserDataDirectory() const;
    /** Directory searched for updates; the one directory without a final "/". */
    QString get_UpdateDirecotry() const;
    /** Directory of the installed firmware. */
    QString get_CurrentFirmwareDirectory() const;
    /** Directory of sound samples; empty when no device description could be loaded. */
    QString get_SoundSampleDirectory() const;
    /** Directory of help pages. */
    QString get_mainInterfaceUserHelpDirectory() const;
    /** Serial number last set; "AA0000" before. */
    QString get_SerialNumber() const;

    /** First battery alarm, in percent of charge. */
    int get_batteryAlarm1() const;
    /** Second, lower battery alarm, in percent of charge. */
    int get_batteryAlarm2() const;
    /** Whether the device is to stay silent. */
    bool get_SoundOff() const;
    /** Whether the device must not reboot by itself. */
    bool get_RebootOff() const;

    /** Model derived from the serial number. */
    MeterModels get_MeterModel() const;
    /** The same value as get_MeterModel(), for code that has no configuration object. */
    static MeterModels currentMeterModel();

    /** Maker and model, as "QERN KTV-420". */
    QString get_MeterFullName() const;

    /** Stores the serial number. Its first two characters alone decide the model. */
    void set_SerialNumber(const QString &serial);

    /**
     * Version of the interface, its beta version if there is one, and the system's version, as
     * "1.2.3 beta: 7 - 2.0.1"; " - ????" stands for an unreadable "/etc/version".
     */
    QString get_InterfaceVersion() const;
    /** Text of "/etc/version", trimmed; " - ????" when it cannot be read. */
    QString get_SystemVersion() const;

    /** Model of this process's meter, shared by all instances. */
    static MeterModels _meterModel;

private:
    QString getValueString(const QDomElement *root, const QString &key,
                           const QString &defaultValue) const;
    int getValueInt(const QDomElement *root, const QString &key, int defaultValue) const;
    bool getValueBool(const QDomElement *root, const QString &key, bool defaultValue) const;
    void LoadDataFromXML();
    void _ParseMeterModelName(const QString &name);

    class KTV_DATASOURCE_NO_EXPORT Private;
    const std::unique_ptr<Private> d;
};
