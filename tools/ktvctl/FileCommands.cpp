#include "Command.h"

#include <configuration/KTV_Configuration.h>
#include <tools/Tools.h>

#include <QJsonObject>

#include <memory>

using QERNTools::Tools;

namespace {

int disk(const Call &call)
{
    const QString path =
        call.argument(0).isNull() ? KTV_Configuration().get_clientsDirectory() : call.argument(0);
    const qint64 available = Tools::getFreeSpace(path);
    if (available < 0)
        return fail(QStringLiteral("no volume holds '%1'").arg(path));
    const std::unique_ptr<QERNTools::DiskInfo> figures(Tools::getDiskInfo(path));
    const qint64 percent = Tools::getUsedSpacePercent(path);
    const bool cardIsOk = Tools::SD_Card_is_OK();

    NamedValues human;
    human.add("Path", path);
    human.add("Free", figures->freeText);
    human.add("Used", QStringLiteral("%1 (%2 %)").arg(figures->usedText).arg(percent));
    human.add("Total", figures->totalText);
    human.add("Memory card", cardIsOk ? QStringLiteral("ok") : QStringLiteral("faulty"));
    call.print(QJsonObject {{QStringLiteral("path"), path},
                            {QStringLiteral("freeBytes"), available},
                            {QStringLiteral("freeText"), figures->freeText},
                            {QStringLiteral("usedText"), figures->usedText},
                            {QStringLiteral("totalText"), figures->totalText},
                            {QStringLiteral("usedPercent"), percent},
                            {QStringLiteral("memoryCardOk"), cardIsOk}},
               human.text());
    return Success;
}

int validName(const Call &call)
{
    const QString name = Tools::validFileName(call.argument(0));
    call.print(name, name);
    return Success;
}

int freeName(const Call &call)
{
    QString directory = call.argument(0);
    if (!directory.endsWith(QLatin1Char('/')))
        directory += QLatin1Char('/');
    const QString name = call.argument(2).isNull()
        ? Tools::findFreeFileName(directory, call.argument(1))
        : Tools::findFreeFileName(directory, call.argument(1), call.argument(2));
    call.print(name, name);
    return Success;
}

} // namespace

Family diskFamily()
{
    return {"disk",
            "Space on the volume of the clients directory, or of PATH. Safe at any time.",
            {{"", "[PATH]", "print the figures of a disk and the state of the card", disk}}};
}

Family filenameFamily()
{
    return {"filename",
            "File names that can be saved. Safe at any time.",
            {{"valid", "NAME", "print NAME without what no file system takes", validName},
             {"free", "DIRECTORY NAME [EXTENSION]",
              "print the first name not taken: NAME, or the base NAME with EXTENSION", freeName}}};
}
