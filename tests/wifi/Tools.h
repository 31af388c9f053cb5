#pragma once

#include "support/Meter.h"

#include <QProcess>

/** The wireless tools of the meter, told what to print or to do. */
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

/** An interface that is in a network, as the tools show it. */
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

/** An interface that is up and in no network. */
inline void idle()
{
    print("ifconfig", "wlan0     Link encap:Ethernet  HWaddr 02:4B:54:56:00:00");
    print("iwgetid", QByteArray()); // a line feed
    print("iwconfig", "wlan0     IEEE 802.11  ESSID:off/any");
}

} // namespace Tools
