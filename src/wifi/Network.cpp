#include "wifi/Network.h"

namespace WiFi {

Network::Network() = default;

Network::~Network() = default;

} // namespace WiFi
