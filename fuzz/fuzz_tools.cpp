// Programs that print anything, run by the operations of the library.

#include "Target.h"

#include "wifi/SupplicantConfiguration_p.h"

#include <tools/Tools.h>
#include <wifi/KTV_Connection.h>

#include <QProcess>

#include <memory>

namespace {

const QString outputs = QStringLiteral("/run/meter/fuzz/");

constexpr const char *programs[] = {"ifconfig", "iwgetid", "iwconfig", "wpa_passphrase", "ps"};

WiFi::KTV_Connection *wifi = nullptr;

} // namespace

void prepareTarget()
{
    QProcess::execute(QStringLiteral("modprobe-usb-gadget"), {QStringLiteral("g_serial")});
    wifi = new WiFi::KTV_Connection(QStringLiteral("/media/sdcard/UserData/"));
    for (const char *program : programs)
        Meter::replaceProgram(QLatin1String(program), "cat /run/meter/fuzz/" + QByteArray(program));
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QList<QByteArray> parts = bytesOf(data, size).split('\f'); // one output for each program
    for (int i = 0; i < 5; ++i)
        Meter::writeFile(outputs + QLatin1String(programs[i]), parts.value(i));
    const std::unique_ptr<WiFi::Network> network(wifi->getWiFi_Info());
    FUZZ_EXPECT(network->state > WiFi::Network::wifi_States_NAN
                && network->state <= WiFi::Network::wifi_States_Connect_4);
    FUZZ_EXPECT(network->ESSID.trimmed() == network->ESSID);
    const QString entry = Internal::SupplicantConfiguration::protectedNetwork(
        QStringLiteral("Lab"), QStringLiteral("12345678"));
    FUZZ_EXPECT(entry.isEmpty() || entry.startsWith(QLatin1String("network")));
    QERNTools::Tools::getRS232_Function();
    return 0;
}
