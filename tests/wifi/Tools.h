#pragma once

#include "support/Meter.h"

#include <QProcess>

/** Controls what the wireless tools of the meter print and do. */
namespace Tools {

inline QStringList names()
{
    return {QStringLiteral("ls"),       QStringLiteral("ifconfig"), QStringLiteral("iwgetid"),
            QStringLiteral("iwconfig"), QStringLiteral("iwlist"),   QStringLiteral("systemctl"),
            QStringLiteral("sh")};
}

inline void reset()
{
    for (const QString &program : names()) {
        Meter::setBehaviour(program, QByteArray());
        Meter::showProgram(program);
    }
    QProcess::execute(QStringLiteral("ifconfig"), {QStringLiteral("wlan0"), QStringLiteral("up")});
    Meter::recordProgram(QStringLiteral("ifconfig"));
    Meter::recordProgram(QStringLiteral("ls"));
    Meter::clearJournal();
}

inline void print(const char *program, const QByteArray &output)
{
    Meter::setBehaviour(QLatin1String(program), "stdout=" + output);
}

inline void hang(const char *program)
{
    Meter::setBehaviour(QLatin1String(program), "hang=1");
}

inline void delay(const char *program, const QByteArray &seconds)
{
    Meter::setBehaviour(QLatin1String(program), "delay=" + seconds);
}

/** Makes the tools show an interface that has joined a network. */
inline void connected(const QByteArray &essid = "Lab", const QByteArray &address = "10.1.2.3",
                      const QByteArray &level = "-60")
{
    print("ifconfig",
          "wlan0     Link encap:Ethernet  HWaddr 02:4B:54:56:00:00\\n"
          "          inet addr:"
              + address + "  Bcast:10.1.2.255  Mask:255.255.255.0\\n");
    print("iwgetid", essid);
    print("iwconfig", "          Link Quality=50/70  Signal level=" + level + " dBm  ");
}

/** Makes the tools show an interface that is up and has joined no network. */
inline void idle()
{
    print("ifconfig", "wlan0     Link encap:Ethernet  HWaddr 02:4B:54:56:00:00");
    print("iwgetid", QByteArray()); // a line feed
    print("iwconfig", "wlan0     IEEE 802.11  ESSID:off/any");
}

} // namespace Tools
