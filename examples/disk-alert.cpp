// A warning when the memory card is nearly full. The library checks once a minute by itself; this
// program also checks at the start, and whenever the user presses Enter.

#include <datasource/KTV_DataSource.h>

#include <QCoreApplication>
#include <QSocketNotifier>
#include <QTextStream>

#include <memory>

namespace {

void show(const KTV_DataSource &meter)
{
    const char *const warnings[] = {"fine", "the card is filling up", "the card is almost full"};
    // The caller deletes the figures.
    const std::unique_ptr<QERNTools::DiskInfo> disk(meter.getDiskInfo());
    QTextStream(stdout) << warnings[meter.getFreeSpaceAlert()] << ": " << disk->usedText << " of "
                        << disk->totalText << Qt::endl;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    KTV_DataSource meter;
    QObject::connect(&meter, &KTV_DataSource::changeFreeSpaceAlert, &meter, [&] { show(meter); });
    show(meter);
    meter.updateTimeDisk();

    QTextStream in(stdin);
    QSocketNotifier key(0, QSocketNotifier::Read);
    QObject::connect(&key, &QSocketNotifier::activated, &meter, [&] {
        if (in.readLine().isNull())
            QCoreApplication::quit();
        meter.updateTimeDisk();
    });
    return QCoreApplication::exec();
}
