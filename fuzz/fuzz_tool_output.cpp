// Any output of the wireless tools, read into records.

#include "Target.h"

#include "wifi/ToolOutput_p.h"

#include <wifi/KTV_Connection.h>

#include <QSet>

void prepareTarget()
{ }

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = QString::fromUtf8(bytesOf(data, size));
    FUZZ_EXPECT(Internal::ToolOutput::interfaceName(text).trimmed()
                == Internal::ToolOutput::interfaceName(text));
    WiFi::Network network;
    Internal::ToolOutput::readAddress(text, network);
    Internal::ToolOutput::readSignal(text, network);
    const auto isState = [](int state) {
        return state == WiFi::Network::wifi_States_OFF
            || (state >= WiFi::Network::wifi_States_Connect_0
                && state <= WiFi::Network::wifi_States_Connect_4);
    };
    FUZZ_EXPECT(isState(network.state));
    const auto networks = Internal::ToolOutput::readScan(text);
    QSet<QString> names;
    int weakest = 0;
    for (const WiFi::Network *one : *networks) {
        FUZZ_EXPECT(!one->ESSID.trimmed().isEmpty());
        FUZZ_EXPECT(!names.contains(one->ESSID));
        FUZZ_EXPECT(isState(one->state) && one->state >= weakest);
        names.insert(one->ESSID);
        weakest = one->state;
    }
    return 0;
}
