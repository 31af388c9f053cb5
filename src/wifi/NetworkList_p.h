#pragma once

#include "wifi/Network.h"

#include <QList>

#include <memory>

namespace Internal {

struct DeleteNetworks
{
    void operator()(QList<WiFi::Network *> *networks) const
    {
        qDeleteAll(*networks);
        delete networks;
    }
};

/** A list that owns its records. */
using NetworkList = std::unique_ptr<QList<WiFi::Network *>, DeleteNetworks>;

inline NetworkList makeNetworkList()
{
    return NetworkList(new QList<WiFi::Network *>);
}

} // namespace Internal
