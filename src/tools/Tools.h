#pragma once

#include <ktv_datasource_export.h>

#include <QFuture>
#include <QObject>
#include <QString>

namespace QERNTools {

/** Figures of the volume that holds a path, with texts ready for the screen. */
struct DiskInfo
{
    QString freeText; ///< bytes available to the user, as humanFileSize() writes them
    QString usedText; ///< total less available bytes
    QString totalText; ///< size of the volume
    float usedPercent = 0; ///< used part in percent, not rounded; 0 for a volume without size
};

/**
 * System tools: file names, disk figures, the memory card's state, and the USB device port.
 *
 * All operations are static; an instance is never needed.
 *
 * The port shows itself to a connected computer either as a serial line or as a network
 * interface. The serial line has at most one owner: the bridge to the measuring hardware, the
 * system calibration tool, or a login console. Every operation finds the present state anew, so
 * it copes with what has been changed behind its back; a failure is returned as false and
 * logged.
 *
 * What concerns the port belongs to one thread at a time and blocks it: each command started
 * may take 5 s to finish before it counts as failed and is killed. The times
 * given below are those of a sound device.
 */
class KTV_DATASOURCE_EXPORT Tools : public QObject
{
    Q_OBJECT
public:
    /** Figures of a volume. */
    using DiskInfo = QERNTools::DiskInfo;

    /** What the USB device port shows itself as. */
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

    /** Nothing needs an instance. */
    explicit Tools(QObject *parent = nullptr);

    /** Size in bytes as "1023 B", "1.50 kB", "1.00 MB" or "2.00 GB"; steps of 1024. */
    static QString humanFileSize(double size);

    /** @p name with each of \ / : * ? " < > | replaced by "_"; nothing else is changed. */
    static QString validFileName(const QString &name);

    /**
     * First of "base.extension", "base_1.extension", "base_2.extension", ... that does not exist.
     * @param directory prefix of the path; ends in "/"
     * @param extension with or without its dot; an empty one leaves a final dot
     * @return file name without the directory
     */
    static QString findFreeFileName(const QString &directory, const QString &base,
                                    const QString &extension);
    /**
     * The same for a whole file name: the base ends at the first dot, the extension begins
     * after the last one, and what lies between is dropped.
     */
    static QString findFreeFileName(const QString &directory, const QString &fileName);

    /**
     * @return new figures of the volume that holds @p path; the caller deletes them. Where there
     *         is none, free and total read "-1 B".
     */
    static QERNTools::DiskInfo *getDiskInfo(const QString &path);
    /** Bytes available on the volume that holds @p path; -1 when there is none. */
    static qint64 getFreeSpace(const QString &path);
    /** Used part of the volume in whole percent, cut off; 0 for a volume without size or none. */
    static qint64 getUsedSpacePercent(const QString &path);

    /** Whether the system image has marked no fault of the memory card. */
    static bool SD_Card_is_OK();

    /**
     * Brings the port into @p mode and, as a serial line, gives it to @p function, which the
     * network mode ignores. Whatever fails ends with an attempt at the network mode.
     *
     * Blocks for up to 10 s: stopping an owner takes up to 6 s, starting one up to 5 s. Far
     * longer when commands hang.
     * @return always true, also after a failure, which is only logged
     */
    static bool SetUSBMode(USB_Mode mode, RS232_Function function);
    /** The same as detectCurrentMode(). */
    static USB_Mode getCurrentMode();
    /** What the port shows itself as now; looks at two files, the network comes first. */
    static USB_Mode detectCurrentMode();
    /**
     * Who owns the serial line now: bridge before calibration tool before console. Blocks for
     * the three commands it runs, 24 s if each of them hangs; runs none without a serial line.
     */
    static RS232_Function getRS232_Function();
    /**
     * Gives the serial line to @p function and takes it from its owner before. Blocks as
     * SetUSBMode() does.
     * @return false also for RS232_None where the line had an owner, though it is free then
     */
    static bool setRS232Mode(RS232_Function function);
    /** Takes the serial line from whoever owns it. Blocks for up to 6 s. */
    static bool StopAllRS232Function();

    /** Shows the port as a serial line, set up by ConfigurePort(). Blocks for one command. */
    static bool StartRS232();
    /** Shows the port as a network interface and brings it up. Blocks for two commands. */
    static bool StartRNDIS();

    /**
     * Starts the bridge on a pool thread of its own and looks for it 5 s later; blocks that long.
     * From then on it comes back whenever it ends, at most once a second, until
     * StopHardwareCalibrationMode() or the end of the facade, the application or the process.
     * These leave no bridge behind and take no longer than half a second for it.
     */
    static bool StartHardwareCalibrationMode();
    /**
     * Ends every bridge of the system and waits for that: blocks for 2 to 5.5 s, and for as long
     * as the process list does not come.
     */
    static bool StopHardwareCalibrationMode();
    /** Starts the calibration tool detached, and looks whether it runs: blocks for 3 s. */
    static bool StartSystemCalibrationMode();
    /** Ends every calibration tool of the system; blocks for 2 to 5 s, 17 s at worst. */
    static bool StopSystemsCalibrationMode();
    /** Starts the login console on the serial line. Blocks for one command. */
    static bool StartRS232Console();
    /** Ends the login console of the serial line. Blocks for one command. */
    static bool StopRS232Console();

    /**
     * Sets the serial line to 19200 baud, 8 data bits, even parity, raw, and drops pending
     * input. Does not block.
     * @return whether the line could be opened; the rest is not examined
     */
    static bool ConfigurePort();
    /**
     * What the bridge's thread runs: sets up the line and connects it, again and again, while
     * isCalibrationModeActive holds and asyncSocatRuner is not cancelled. Blocks that long.
     */
    static void socatProces_Avait();

    /** Whether the bridge is wanted. Clients only read it. */
    static bool isCalibrationModeActive;
    /**
     * The latest run of the bridge. Cancelling it does not interrupt a bridge, but none comes back
     * any more: not before the next start, which speaks for a bridge that still runs, too.
     */
    static QFuture<void> asyncSocatRuner;
};

} // namespace QERNTools
