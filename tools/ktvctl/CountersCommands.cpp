#include "Command.h"

#include <configuration/KTV_Configuration.h>
#include <counters/KTV_Liczniki.h>

#include <QJsonObject>
#include <QMetaEnum>

#include <memory>

namespace {

const QLatin1String prefix("Licznik_");

QMetaEnum counterNames()
{
    return QMetaEnum::fromType<KTV_Liczniki::Licznik>();
}

QString logDirectory()
{
    return KTV_Configuration().get_logDirectory();
}

int show(const Call &call)
{
    KTV_Liczniki counters(logDirectory());
    QJsonObject machine;
    QStringList human;
    for (int i = 0; i < counterNames().keyCount(); ++i) {
        const auto counter = KTV_Liczniki::Licznik(counterNames().value(i));
        const QString name = QString::fromLatin1(counterNames().key(i)).mid(prefix.size());
        machine.insert(name, counters.get_dictionary(counter));
        human += name + QStringLiteral(": ") + QString::number(counters.get_dictionary(counter));
    }
    call.print(machine, human.join(QLatin1Char('\n')));
    return Success;
}

int up(const Call &call)
{
    bool ok = false;
    const QByteArray name = (prefix + call.argument(0)).toLatin1();
    const int counter = counterNames().keyToValue(name.constData(), &ok);
    if (!ok)
        return fail(QStringLiteral("no counter '%1'").arg(call.argument(0)));
    KTV_Liczniki counters(logDirectory());
    counters.up_dictionary(KTV_Liczniki::Licznik(counter));
    const qint64 count = counters.get_dictionary(KTV_Liczniki::Licznik(counter));
    call.print(count, QString::number(count));
    return Success;
}

} // namespace

Family countersFamily()
{
    return {
        "counters",
        "Usage counters. Unwise while the interface runs: it writes its own counts when it "
        "ends.",
        {{"show", "", "print every counter", show}, {"up", "NAME", "add one to a counter", up}}};
}
