#include "Command.h"
#include "Settings.h"

#include <QJsonObject>
#include <QMetaEnum>

#include <optional>

namespace {

using Key = KTV_InterfaceConfig::SettingKey;

QMetaEnum keyNames()
{
    return QMetaEnum::fromType<Key>();
}

std::optional<Key> keyOf(const QString &name)
{
    bool ok = false;
    const int key = keyNames().keyToValue(name.toUtf8().constData(), &ok);
    return ok ? std::make_optional(Key(key)) : std::nullopt;
}

int noSuchKey(const QString &name)
{
    return misuse(QStringLiteral("no setting '%1'; the names are: ").arg(name)
                  + Settings::names().join(QLatin1Char(' ')));
}

/** Opens the settings and runs an operation on the one that the first argument names. */
template <typename Work> int onSetting(const Call &call, Settings::Purpose purpose, Work work)
{
    const auto key = keyOf(call.argument(0));
    if (!key)
        return noSuchKey(call.argument(0));
    Settings settings(purpose);
    return settings.isUsable() ? work(settings, *key) : settings.failure();
}

int get(const Call &call)
{
    return onSetting(call, Settings::Reading, [&call](Settings &settings, Key key) {
        const QString value = settings.value(key, call.argument(1));
        if (value.isNull())
            return fail(QStringLiteral("%1 is not set").arg(call.argument(0)));
        call.print(value, value);
        return int(Success);
    });
}

int set(const Call &call)
{
    return onSetting(call, Settings::Writing, [&call](Settings &settings, Key key) {
        return settings.write(key, call.argument(1)) ? Success : settings.failure();
    });
}

int remove(const Call &call)
{
    QList<Key> keys;
    const QStringList names = call.arguments();
    for (const QString &name : names) {
        const auto key = keyOf(name);
        if (!key)
            return noSuchKey(name);
        keys += *key;
    }
    Settings settings(Settings::Writing);
    return settings.isUsable() && settings.remove(keys) ? Success : settings.failure();
}

int list(const Call &call)
{
    Settings settings(Settings::Reading);
    if (!settings.isUsable())
        return settings.failure();
    QJsonObject machine;
    NamedValues human;
    for (int i = 0; i < keyNames().keyCount(); ++i) {
        const QString value = settings.value(Key(keyNames().value(i)));
        if (value.isNull())
            continue;
        machine.insert(QLatin1String(keyNames().key(i)), value);
        human.add(keyNames().key(i), value);
    }
    call.print(machine, human.text());
    return Success;
}

int reset(const Call &)
{
    Settings settings(Settings::Writing);
    return settings.reset() ? Success : settings.failure();
}

} // namespace

Family settingsFamily()
{
    return {"settings",
            "The user's settings. Reading is safe at any time: a file that is missing or cannot be "
            "read stays as it is. Writing is unwise while the interface runs: it keeps what it has "
            "read, may hold the file locked for seconds, "
            "and after a reset writes into the file that was deleted.",
            {{"get", "KEY [DEFAULT]", "print a setting, or DEFAULT when it is not set", get},
             {"set", "KEY VALUE", "store a setting", set},
             {"delete", "KEY...", "remove settings", remove},
             {"list", "", "print every setting that is set", list},
             {"reset", "", "factory reset: remove every setting", reset}}};
}
