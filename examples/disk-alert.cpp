// A warning of a memory card that fills up. The library looks once a minute by itself; here a
// change is looked for at once, and whenever the user presses Enter.

#include <datasource/KTV_DataSource.h>

#include <QCoreApplication>
#include <QSocketNotifier>
#include <QTextStream>

#include <memory>

namespace {

void show(const KTV_DataSource &meter)
{
    const char *const warnings[] = {"fine", "the card is filling up", "the card is almost full"};
    // The figures are ours to delete.
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
