#include "Command.h"

#include <configuration/KTV_Configuration.h>
#include <counters/KTV_Liczniki.h>

#include <QJsonObject>
#include <QMetaEnum>

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

/** The counters on the card. Never destroyed, because the destructor would write the file. */
const KTV_Liczniki &storedCounters()
{
    static const auto *const counters = new KTV_Liczniki(logDirectory());
    return *counters;
}

int show(const Call &call)
{
    const KTV_Liczniki &counters = storedCounters();
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
    const auto counter = KTV_Liczniki::Licznik(counterNames().keyToValue(name.constData(), &ok));
    if (!ok)
        return misuse(QStringLiteral("no counter '%1'; the names are those of 'counters show'")
                          .arg(call.argument(0)));
    qint64 count = 0;
    {
        KTV_Liczniki counters(logDirectory());
        counters.up_dictionary(counter);
        count = counters.get_dictionary(counter);
    }
    if (storedCounters().get_dictionary(counter) != count)
        return fail(QStringLiteral("the counters in '%1' cannot be written; --verbose tells more")
                        .arg(logDirectory()));
    call.print(count, QString::number(count));
    return Success;
}

} // namespace

Family countersFamily()
{
    return {
        "counters",
        "Usage counters. 'show' is safe at any time; 'up' is unwise while the interface runs, "
        "which writes its own counts when it ends.",
        {{"show", "", "print every counter", show}, {"up", "NAME", "add one to a counter", up}}};
}
