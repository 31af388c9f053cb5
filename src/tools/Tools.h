#pragma once

#include <ktv_datasource_export.h>

#include <QFuture>
#include <QObject>
#include <QString>

namespace QERNTools {

/** Size and free space of the volume that a path is on, as texts for the screen. */
struct DiskInfo
{
    QString freeText; ///< bytes available to the user, formatted by humanFileSize()
    QString usedText; ///< total minus available bytes
    QString totalText; ///< size of the volume
    float usedPercent = 0; ///< used part in percent, not rounded; 0 for a volume without size
};

/**
 * System tools: file names, size and free space of disks, the memory card's state, and the USB
 * device port.
 *
 * All operations are static; an instance is never needed.
 *
 * A connected computer sees the port either as a serial line or as a network interface. The serial
 * line has at most one owner: the bridge to the measuring hardware, the system calibration tool, or
 * a login console. Every operation looks up the present state first, so changes made by other
 * programs do no harm; a failure is logged, and false is returned.
 *
 * Only one thread at a time may call the operations on the port. They block it: each command that
 * they run may take 5 s before it counts as failed and is killed. The times given below are for a
 * device whose commands do not hang.
 */
class KTV_DATASOURCE_EXPORT Tools : public QObject
{
    Q_OBJECT
public:
    /** Figures of a volume. */
    using DiskInfo = QERNTools::DiskInfo;

    /** As what a connected computer sees the USB device port. */
    enum USB_Mode : qint32
    {
        USB_None = 0, ///< nothing
        USB_RS232 = 1, ///< serial line, /dev/ttyGS0 on this side
        USB_RNDIS = 2 ///< network interface, usb0 on this side
    };
    Q_ENUM(USB_Mode)

    /** Who owns the serial line. */
    enum RS232_Function : qint32
    {
        RS232_None = 0, ///< nobody, or there is no serial line
        RS232_HardwareCalibration = 1, ///< the bridge to the measuring hardware
        RS232_SystemCalibration = 2, ///< the system calibration tool
        RS232_Console = 3 ///< the login console
    };
    Q_ENUM(RS232_Function)

    /** Not needed: all operations are static. */
    explicit Tools(QObject *parent = nullptr);

    /** Size in bytes as "1023 B", "1.50 kB", "1.00 MB" or "2.00 GB"; steps of 1024. */
    static QString humanFileSize(double size);

    /** @p name with each of \ / : * ? " < > | replaced by "_"; other characters stay. */
    static QString validFileName(const QString &name);

    /**
     * First of "base.extension", "base_1.extension", "base_2.extension", ... that does not exist.
     * @param directory prefix of the path; ends in "/"
     * @param extension with or without its dot; if empty, the name ends in a dot
     * @return file name without the directory
     */
    static QString findFreeFileName(const QString &directory, const QString &base,
                                    const QString &extension);
    /**
     * The same for a complete file name: the base is the text before the first dot, the extension
     * the text after the last one, and anything between them is dropped.
     */
    static QString findFreeFileName(const QString &directory, const QString &fileName);

    /**
     * @return size and free space of the volume that @p path is on, as a new object that the caller
     *         deletes. If there is no such volume, the texts of free and total are "-1 B".
     */
    static QERNTools::DiskInfo *getDiskInfo(const QString &path);
    /** Bytes available on the volume that @p path is on; -1 when there is none. */
    static qint64 getFreeSpace(const QString &path);
    /** Used part of the volume in percent, rounded down; 0 without a volume or a size. */
    static qint64 getUsedSpacePercent(const QString &path);

    /** Whether the memory card is good: false when the system has reported a fault of it. */
    static bool SD_Card_is_OK();

    /**
     * Switches the port to @p mode and, as a serial line, gives it to the owner @p function;
     * network mode ignores that. After any failure the network mode is tried.
     *
     * Blocks for up to 10 s: stopping an owner takes up to 6 s, starting one up to 5 s. Takes far
     * longer when commands hang.
     * @return always true, also after a failure, which is only logged
     */
    static bool SetUSBMode(USB_Mode mode, RS232_Function function);
    /** The same as detectCurrentMode(). */
    static USB_Mode getCurrentMode();
    /** Present mode of the port; examines two files, that of the network first. */
    static USB_Mode detectCurrentMode();
    /**
     * Present owner of the serial line. Looks for bridge, calibration tool and console in this
     * order, each with a command (24 s if all hang); runs none if there is no serial line.
     */
    static RS232_Function getRS232_Function();
    /**
     * Takes the serial line from its owner and gives it to @p function. Blocks as SetUSBMode().
     * @return success; false also for RS232_None if the line had an owner, though it is then
     *         free
     */
    static bool setRS232Mode(RS232_Function function);
    /** Takes the serial line from its owner, if any. Blocks for up to 6 s. */
    static bool StopAllRS232Function();

    /** Makes the port a serial line, configured by ConfigurePort(). Blocks for one command. */
    static bool StartRS232();
    /** Makes the port a network interface and brings it up. Blocks for two commands. */
    static bool StartRNDIS();

    /**
     * Starts the bridge on a pool thread of its own, and checks 5 s later whether it runs; blocks
     * that long. From then on it is restarted whenever it ends, at most once a second, until
     * StopHardwareCalibrationMode() is called, the facade or the application object is destroyed,
     * or the process ends. The latter three end the bridge within half a second.
     */
    static bool StartHardwareCalibrationMode();
    /**
     * Ends every bridge of the system and waits for that: blocks for 2 to 5.5 s, and for as long as
     * the process list cannot be read.
     */
    static bool StopHardwareCalibrationMode();
    /** Starts the calibration tool detached, and checks whether it runs: blocks for 3 s. */
    static bool StartSystemCalibrationMode();
    /** Ends every calibration tool of the system; blocks for 2 to 5 s, 17 s at worst. */
    static bool StopSystemsCalibrationMode();
    /** Starts the login console on the serial line. Blocks for one command. */
    static bool StartRS232Console();
    /** Ends the login console of the serial line. Blocks for one command. */
    static bool StopRS232Console();

    /**
     * Sets the serial line to 19200 baud, 8 data bits, even parity, raw, and discards pending
     * input. Does not block.
     * @return whether the line could be opened; errors of the settings are ignored
     */
    static bool ConfigurePort();
    /**
     * Work of the bridge's thread: configures the line and runs the bridge, again and again, while
     * isCalibrationModeActive is true and asyncSocatRuner is not cancelled. Blocks that long.
     */
    static void socatProces_Avait();

    /** Whether the bridge shall run. Clients must not change it. */
    static bool isCalibrationModeActive;
    /**
     * The latest run of the bridge. After it has been cancelled, the running bridge is not
     * restarted when it ends. After the next start of a bridge, earlier ones that still run are
     * restarted again, too.
     */
    static QFuture<void> asyncSocatRuner;
};

} // namespace QERNTools
