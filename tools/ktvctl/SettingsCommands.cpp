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
    return fail(QStringLiteral("no setting '%1'; the names are: ").arg(name)
                + Settings::names().join(QLatin1Char(' ')));
}

/** Opens the settings and works on the one that the first argument names. */
template <typename Work> int onSetting(const Call &call, Work work)
{
    const auto key = keyOf(call.argument(0));
    if (!key)
        return noSuchKey(call.argument(0));
    Settings settings;
    return settings.isOpen() ? work(settings, *key) : settings.failure();
}

int get(const Call &call)
{
    return onSetting(call, [&call](Settings &settings, Key key) {
        const QString value = settings.store().getValue(key, call.argument(1));
        if (value.isNull())
            return fail(QStringLiteral("%1 is not set").arg(call.argument(0)));
        call.print(value, value);
        return int(Success);
    });
}

int set(const Call &call)
{
    return onSetting(call, [&call](Settings &settings, Key key) {
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
    Settings settings;
    if (!settings.isOpen())
        return settings.failure();
    settings.store().deleteValue(keys);
    for (const Key key : qAsConst(keys)) {
        if (!settings.store().getValue(key, QString()).isNull())
            return settings.failure();
    }
    return Success;
}

int list(const Call &call)
{
    Settings settings;
    if (!settings.isOpen())
        return settings.failure();
    QJsonObject machine;
    Rows human;
    for (int i = 0; i < keyNames().keyCount(); ++i) {
        const QString value = settings.store().getValue(Key(keyNames().value(i)), QString());
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
    Settings settings;
    return settings.store().CreateNew() ? Success : settings.failure();
}

} // namespace

Family settingsFamily()
{
    return {"settings",
            "The user's settings. Reading is safe at any time; writing is unwise while the "
            "interface runs: it keeps what it has read, may hold the file locked for seconds, "
            "and after a reset writes into the file that was deleted.",
            {{"get", "KEY [DEFAULT]", "print a setting, or DEFAULT when it is not set", get},
             {"set", "KEY VALUE", "store a setting", set},
             {"delete", "KEY...", "remove settings", remove},
             {"list", "", "print every setting that is set", list},
             {"reset", "", "factory reset: remove every setting", reset}}};
}
