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
 * The constructor builds the services in a fixed order, the destructor saves what is to be
 * saved and takes them down again. The interface calls setMeterSerialName() once, early, with
 * the serial number that the meter reports, before SetLang() or getHelpManager().
 *
 * All getters hand out services that stay the facade's own. Everything here belongs to the
 * interface's thread; one instance at a time.
 */
class KTV_DATASOURCE_EXPORT KTV_DataSource : public QObject
{
    Q_OBJECT
public:
    /**
     * Builds every service but the help manager, and starts the disk check (once a minute).
     * A failure is logged, and the service itself reports it.
     *
     * Blocks while the databases open, the supplicant restarts and the wireless tools answer, as
     * WiFi::KTV_Connection does. With a WiFi interface that is in no network, a start runs four
     * commands, which are eight processes, or nine with a shell that stays beside its last
     * command: it looks for the interface, restarts the supplicant
     * with the known networks, and reads the state by two more; one is added for each protected
     * network, and two where there is a connection. Most of the time goes into the restart: 31 of
     * 51 ms on a workstation. The commands run one after the other and are waited for, so that
     * the supplicant has the known networks and the state is known when the interface begins.
     */
    explicit KTV_DataSource(QObject *parent = nullptr);
    /**
     * Silences the buzzer, ends a calibration bridge, saves the counters and the serial number,
     * then deletes every service. Blocks for up to half a second and two writes to the card.
     * One that is destroyed after main() has returned, as a static object is, finds the databases
     * given up already, and does not store the serial number.
     */
    ~KTV_DataSource() override;

    LangSerwis *get_Lang() const; ///< Texts of the language in effect.
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
     * Switches the language of the texts, with the fallback of LangSerwis::setLang(), that of the
     * pick lists to the one then in effect, and that of the help pages to @p code. The stored
     * setting is the caller's business. setMeterSerialName() must have been called before. Blocks
     * while the texts are read and, for a new language, its factory lists are written.
     */
    void SetLang(const QString &code);
    /**
     * Takes the meter's serial number and renews everything that depends on the model. Pointers
     * to the updater are void from then on; an earlier help manager lives on with the facade.
     * Blocks no longer than it takes to look for two folders, and to create them.
     */
    void setMeterSerialName(const QString &serial);
    /**
     * Factory reset of what a user can change: settings, lists, known networks and brightness.
     * Counters and the language in effect stay. Blocks for the writes to the card; what fails is
     * logged, and the rest is reset all the same.
     */
    void ClearToDefault();

    /**
     * Switches the USB port and the owner of its serial line, as Tools::SetUSBMode() does:
     * blocks for up to 10 s, longer when commands hang. @return always true
     */
    bool SetUSBMode(QERNTools::Tools::USB_Mode mode,
                    QERNTools::Tools::RS232_Function function) const;
    QERNTools::Tools::USB_Mode getUSB_Mode() const; ///< What the USB port is now.
    /** Who owns the serial line now; blocks for up to three commands. */
    QERNTools::Tools::RS232_Function getRS_Mode() const;

    /** Plays a signal tone as BuzzerClass::Beep() does, and blocks as that. */
    void Buzzer(::Buzzer::BuzzerClass::Tone tone, bool loop) const;

    /** @return new disk figures of the clients directory; the caller deletes them */
    QERNTools::DiskInfo *getDiskInfo() const;
    /** Free-space alert level: 0, 1 (above 70 % used) or 2 (above 80 %). */
    int getFreeSpaceAlert() const;

    /**
     * Whether this is the first start after an installation; true once, for the mark is removed
     * then. False also for a mark that cannot be read.
     */
    static bool FirstStart();
    /** Whether the device has a touch screen. */
    static bool TouchScreenEnable();

public Q_SLOTS:
    /**
     * Computes the alert level anew; the timer's handler, and free to be called directly. A
     * volume that cannot be examined counts as empty.
     */
    void updateTimeDisk();

Q_SIGNALS:
    /** The free-space alert level has changed; getFreeSpaceAlert() has the new one. */
    void changeFreeSpaceAlert();

private:
    class KTV_DATASOURCE_NO_EXPORT Private;
    const std::unique_ptr<Private> d;
};
