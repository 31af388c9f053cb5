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

const QString languages = QStringLiteral("/home/root/Langs/");

using Change = std::function<bool(int)>;

/** Changes a store. */
template <typename Store> using ChangeOf = bool (*)(Store &, int);

template <typename Store>
Change changeOf(const std::shared_ptr<Store> &store, ChangeOf<Store> change)
{
    return [store, change](int number) { return change(*store, number); };
}

/** Odd numbers set something, even ones remove it. */
template <typename Store>
Change inTurns(const std::shared_ptr<Store> &store, ChangeOf<Store> set, ChangeOf<Store> takeBack)
{
    return [store, set, takeBack](int number) {
        return (number % 2 ? set : takeBack)(*store, number);
    };
}

// --- settings

bool set(KTV_InterfaceConfig &store, int number)
{
    store.setValue(KTV_InterfaceConfig::MAIN_Pin, QString::number(number));
    return true;
}

bool unset(KTV_InterfaceConfig &store, int)
{
    store.deleteValue({KTV_InterfaceConfig::MAIN_Pin});
    return true;
}

bool reset(KTV_InterfaceConfig &store, int)
{
    return store.CreateNew();
}

auto settings(const QString &directory)
{
    return std::make_shared<KTV_InterfaceConfig>(directory);
}

// --- lists

bool addEntry(KTV_DataList &store, int number)
{
    return store.AddObiectTyp(QString::number(number));
}

bool deleteEntry(KTV_DataList &store, int)
{
    const std::unique_ptr<QList<DataList_Element *>> own(
        store.GetObiectTyp(false, true, QString(), 0));
    const bool isDone = own->size() == 1 && store.DeleteObiectTyp(own->constFirst()->ID);
    qDeleteAll(*own);
    return isDone;
}

bool resetLists(KTV_DataList &store, int)
{
    return store.RestoreFabricalSetting();
}

auto lists(const QString &directory)
{
    return std::make_shared<KTV_DataList>(directory, languages, QStringLiteral("EN"));
}

// --- known networks

bool addNetwork(WiFi::KTV_Connection &store, int number)
{
    // One is protected: deriving its key takes longer than everything else, at each change.
    const QString key = number == 1 ? QStringLiteral("ohm-law-1827") : QString();
    return store.AddNetwork(QString::number(number), key);
}

bool deleteNetwork(WiFi::KTV_Connection &store, int number)
{
    return store.DeleteNetwork(QString::number(number - 1));
}

bool resetNetworks(WiFi::KTV_Connection &store, int)
{
    return store.RestoreFabricalSetting();
}

auto networks(const QString &directory)
{
    return std::make_shared<WiFi::KTV_Connection>(directory);
}

// --- counters

bool count(KTV_Liczniki &store, int)
{
    store.Up_Licznik_Demagnetyzacja();
    store.SaveLiczniki();
    return true;
}

const std::map<std::string, Change (*)(const QString &)> stores {
    {"settings", [](const QString &directory) { return changeOf(settings(directory), set); }},
    {"deleted settings",
     [](const QString &directory) { return inTurns(settings(directory), set, unset); }},
    {"reset settings",
     [](const QString &directory) { return inTurns(settings(directory), set, reset); }},
    {"lists", [](const QString &directory) { return changeOf(lists(directory), addEntry); }},
    {"deleted entries",
     [](const QString &directory) { return inTurns(lists(directory), addEntry, deleteEntry); }},
    {"reset lists",
     [](const QString &directory) { return inTurns(lists(directory), addEntry, resetLists); }},
    {"networks",
     [](const QString &directory) { return changeOf(networks(directory), addNetwork); }},
    {"deleted networks",
     [](const QString &directory) {
         return inTurns(networks(directory), addNetwork, deleteNetwork);
     }},
    {"reset networks",
     [](const QString &directory) {
         return inTurns(networks(directory), addNetwork, resetNetworks);
     }},
    {"counters",
     [](const QString &directory) {
         return changeOf(std::make_shared<KTV_Liczniki>(directory), count);
     }},
};

void say(const QByteArray &line)
{
    if (::write(STDOUT_FILENO, line.constData(), std::size_t(line.size())) != line.size())
        ::_exit(1);
}

} // namespace

/**
 * changer STORE DIRECTORY: changes a store until it is killed. Prints "begin", and then the number
 * of each change, from 1, after its call has returned.
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
