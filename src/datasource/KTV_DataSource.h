#pragma once

#include <ktv_datasource_export.h>
#include <sound/BuzzerClass.h>
#include <tools/Tools.h>

#include <QObject>
#include <QString>

#include <memory>

class KTV_Configuration;
class KTV_DataList;
class KTV_InterfaceConfig;
class KTV_Liczniki;
class LangSerwis;
class PowerManager;
namespace Printing {
class PrintOnSato;
}
namespace QERNTools {
class helpManager;
} // namespace QERNTools
namespace QRReader {
class skanerQR;
}
namespace Tools_Pendrive {
class Pendrive;
}
namespace Updater {
class Update;
}
namespace WiFi {
class KTV_Connection;
}

/** Free-space alert level of this process's meter: 0, 1 (above 70 % used) or 2 (above 80 %). */
extern KTV_DATASOURCE_EXPORT int currentFreeSpaceAlletr;

/**
 * The one object through which the interface reaches every service of the meter.
 *
 * The constructor creates the services in a fixed order; the destructor saves the counters and the
 * serial number, and destroys the services. The interface calls setMeterSerialName() once, early,
 * with the serial number that the meter reports, before SetLang() or getHelpManager().
 *
 * All getters return services that the facade owns. Everything here belongs to the interface's
 * thread; only one instance may exist at a time.
 */
class KTV_DATASOURCE_EXPORT KTV_DataSource : public QObject
{
    Q_OBJECT
public:
    /**
     * Creates every service except the help manager, and starts the disk check (once a minute).
     * Failures are logged, and can be seen in the service itself.
     *
     * Blocks while the databases open, the supplicant restarts and the wireless tools answer, as
     * WiFi::KTV_Connection does. With a WiFi interface that has joined no network, the constructor
     * runs four commands, which are eight processes, or nine if the shell does not replace itself
     * with its last command: one looks for the interface, one restarts the supplicant with the
     * known networks, two read the state. Each protected network adds one command, and a connection
     * two. The restart takes most of the time: 31 of 51 ms on a workstation. The commands run one
     * after the other and are waited for, so that the supplicant has the known networks and the
     * state is known when the interface starts.
     */
    explicit KTV_DataSource(QObject *parent = nullptr);
    /**
     * Silences the buzzer, ends a calibration bridge, saves the counters and the serial number,
     * then deletes every service. Blocks for up to half a second and two writes to the card.
     * A static object is destroyed after main() has returned, when the databases are closed
     * already: then the serial number is not stored.
     */
    ~KTV_DataSource() override;

    LangSerwis *get_Lang() const; ///< Texts of the current language.
    KTV_InterfaceConfig *get_InterfaceConfig() const; ///< The user's settings.
    KTV_Configuration *getMainConfig() const; ///< The device's description.
    KTV_DataList *get_DataList() const; ///< The pick lists.
    WiFi::KTV_Connection *getConnection() const; ///< WiFi: known networks, power, state, scans.
    /** Help pages; null until the first setMeterSerialName(), replaced by each later one. */
    QERNTools::helpManager *getHelpManager() const;
    Printing::PrintOnSato *getPrinter() const; ///< Label printer.
    QRReader::skanerQR *getSkaner() const; ///< QR code reader.
    KTV_Liczniki *getLiczniki() const; ///< Usage counters.
    Tools_Pendrive::Pendrive *getPendrive() const; ///< USB stick.
    Updater::Update *getUpdate() const; ///< Firmware updater; replaced by setMeterSerialName().
    PowerManager *getPowerManager() const; ///< Power manager.

    /**
     * Switches the texts to the language @p code, or to the fallback of LangSerwis::setLang(); the
     * pick lists to the language that the texts then have; and the help pages to @p code. The
     * caller has to store the setting. setMeterSerialName() must have been called before. Blocks
     * while the texts are read and, for a new language, its factory lists are written.
     */
    void SetLang(const QString &code);
    /**
     * Sets the meter's serial number and renews everything that depends on the model. Earlier
     * pointers to the updater are invalid from then on; an earlier help manager exists as long as
     * the facade. Blocks only to look for two folders and to create them.
     */
    void setMeterSerialName(const QString &serial);
    /**
     * Factory reset of what a user can change: settings, lists, known networks and brightness.
     * Counters and the current language stay. Blocks for the writes to the card; what fails is
     * logged, and the rest is reset all the same.
     */
    void ClearToDefault();

    /**
     * Switches the USB port and the owner of its serial line, as Tools::SetUSBMode() does:
     * blocks for up to 10 s, longer when commands hang. @return always true
     */
    bool SetUSBMode(QERNTools::Tools::USB_Mode mode,
                    QERNTools::Tools::RS232_Function function) const;
    QERNTools::Tools::USB_Mode getUSB_Mode() const; ///< Present mode of the USB port.
    /** Present owner of the serial line; blocks for up to three commands. */
    QERNTools::Tools::RS232_Function getRS_Mode() const;

    /** Plays a signal tone with BuzzerClass::Beep(), and blocks for as long. */
    void Buzzer(::Buzzer::BuzzerClass::Tone tone, bool loop) const;

    /** @return new disk figures of the clients directory; the caller deletes them */
    QERNTools::DiskInfo *getDiskInfo() const;
    /** Free-space alert level: 0, 1 (above 70 % used) or 2 (above 80 %). */
    int getFreeSpaceAlert() const;

    /**
     * Whether this is the first start after an installation. True only once, because the file that
     * says so is then removed. False also if that file cannot be read.
     */
    static bool FirstStart();
    /** Whether the device has a touch screen. */
    static bool TouchScreenEnable();

public Q_SLOTS:
    /**
     * Computes the alert level again. Called by a timer; may also be called directly. A volume that
     * cannot be examined counts as empty.
     */
    void updateTimeDisk();

Q_SIGNALS:
    /** The free-space alert level has changed; getFreeSpaceAlert() has the new one. */
    void changeFreeSpaceAlert();

private:
    class KTV_DATASOURCE_NO_EXPORT Private;
    const std::unique_ptr<Private> d;
};
