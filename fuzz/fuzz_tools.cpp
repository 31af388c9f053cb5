// Programs that print anything, run by the operations of the library.

#include "Target.h"

#include "wifi/SupplicantConfiguration_p.h"

#include <tools/Tools.h>
#include <wifi/KTV_Connection.h>

#include <QFile>
#include <QProcess>

#include <memory>

namespace {

const QString outputs = QStringLiteral("/run/meter/fuzz/");

enum Program
{
    Ifconfig,
    Iwgetid,
    Iwconfig,
    WpaPassphrase,
    Ps,
    Systemctl
};

constexpr const char *programs[] = {"ifconfig",       "iwgetid", "iwconfig",
                                    "wpa_passphrase", "ps",      "systemctl"};

WiFi::KTV_Connection *wifi = nullptr;

} // namespace

void prepareTarget()
{
    QProcess::execute(QStringLiteral("modprobe-usb-gadget"), {QStringLiteral("g_serial")});
    wifi = new WiFi::KTV_Connection(QStringLiteral("/media/sdcard/UserData/"));
    for (const char *program : programs) {
        const QString path = QStringLiteral("/run/meter/bin/") + QLatin1String(program);
        QFile::remove(path);
        QFile::link(QStringLiteral(FUZZ_OUTPUT), path);
    }
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QList<QByteArray> parts = bytesOf(data, size).split('\f'); // one output for each program
    for (int i = Ifconfig; i <= Systemctl; ++i)
        Meter::writeFile(outputs + QLatin1String(programs[i]), parts.value(i));
    // Only the operations that run one of these programs: starting processes takes time.
    const std::unique_ptr<WiFi::Network> network(wifi->getWiFi_Info());
    FUZZ_EXPECT(network->state > WiFi::Network::wifi_States_NAN
                && network->state <= WiFi::Network::wifi_States_Connect_4);
    FUZZ_EXPECT(network->ESSID.trimmed() == network->ESSID);
    if (parts.size() > WpaPassphrase) {
        const QString entry = Internal::SupplicantConfiguration::protectedNetwork(
            QStringLiteral("Lab"), QStringLiteral("12345678"));
        FUZZ_EXPECT(entry.isEmpty() || entry.startsWith(QLatin1String("network")));
    }
    if (parts.size() > Ps)
        QERNTools::Tools::getRS232_Function();
    return 0;
}
