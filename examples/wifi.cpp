// The WiFi symbol of an interface: stores a network, and prints the state whenever it changes. Ends
// when the network is joined.

#include <datasource/KTV_DataSource.h>
#include <wifi/KTV_Connection.h>
#include <wifi/Network.h>

#include <QCoreApplication>
#include <QMetaEnum>
#include <QTextStream>

using WiFi::KTV_Connection;
using WiFi::Network;

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    if (argc < 2) {
        QTextStream(stderr) << "usage: example-wifi NETWORK [PASS-PHRASE]\n";
        return 2;
    }
    KTV_DataSource meter;
    KTV_Connection *connection = meter.getConnection();

    // A worker emits the signal; the receiver gets it through the event loop of its own thread.
    QObject::connect(
        connection, &KTV_Connection::WiFi_State_Change, &application,
        [](int state) {
            QTextStream(stdout) << QMetaEnum::fromType<Network::wifiStates>().valueToKey(state)
                                << Qt::endl;
            if (state >= Network::wifi_States_Connect_0)
                QCoreApplication::quit();
        },
        Qt::QueuedConnection);

    // Blocks for a second and more: an interface should show that it is busy.
    connection->AddNetwork(QString::fromLocal8Bit(argv[1]),
                           argc > 2 ? QString::fromLocal8Bit(argv[2]) : QString());
    return QCoreApplication::exec();
}
