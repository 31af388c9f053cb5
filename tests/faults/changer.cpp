#include "support/Meter.h"

#include <configuration/KTV_InterfaceConfig.h>
#include <counters/KTV_Liczniki.h>
#include <datalist/KTV_DataList.h>
#include <wifi/KTV_Connection.h>

#include <QCoreApplication>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <unistd.h>

namespace {

using Change = std::function<bool(int)>;

Change settings(const QString &directory)
{
    const auto store = std::make_shared<KTV_InterfaceConfig>(directory);
    return [store](int number) {
        store->setValue(KTV_InterfaceConfig::MAIN_Pin, QString::number(number));
        return true;
    };
}

Change lists(const QString &directory)
{
    const auto store = std::make_shared<KTV_DataList>(
        directory, QStringLiteral("/home/root/Langs/"), QStringLiteral("EN"));
    return [store](int number) { return store->AddObiectTyp(QString::number(number)); };
}

Change networks(const QString &directory)
{
    const auto store = std::make_shared<WiFi::KTV_Connection>(directory);
    return [store](int number) {
        const QString key = number % 2 ? QStringLiteral("ohm-law-1827") : QString();
        return store->AddNetwork(QString::number(number), key);
    };
}

Change counters(const QString &directory)
{
    const auto store = std::make_shared<KTV_Liczniki>(directory);
    return [store](int) {
        store->Up_Licznik_Demagnetyzacja();
        store->SaveLiczniki();
        return true;
    };
}

const std::map<std::string, Change (*)(const QString &)> stores {
    {"settings", settings}, {"lists", lists}, {"networks", networks}, {"counters", counters}};

void say(const QByteArray &line)
{
    if (::write(STDOUT_FILENO, line.constData(), std::size_t(line.size())) != line.size())
        ::_exit(1);
}

} // namespace

/**
 * changer STORE DIRECTORY: changes a store until it is killed. Says "begin", and then the number of
 * each change, from 1, once it was answered.
 */
int main(int argc, char *argv[])
{
    if (!Meter::isInside() || argc != 3)
        return 1;
    const QCoreApplication application(argc, argv);
    say("begin\n");
    const Change change = stores.at(argv[1])(QString::fromLocal8Bit(argv[2]));
    for (int number = 1; change(number); ++number)
        say(QByteArray::number(number) + '\n');
    return 1;
}
