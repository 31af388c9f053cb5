// SQLite files with bytes flipped and their schema changed, under every operation of the stores.

#include "Target.h"

#include <configuration/KTV_InterfaceConfig.h>
#include <datalist/KTV_DataList.h>
#include <wifi/KTV_Connection.h>

#include <QSqlDatabase>
#include <QSqlQuery>

namespace {

const QString userData = QStringLiteral("/media/sdcard/UserData/");
const QString languages = QStringLiteral("/home/root/Langs/");

void useSettings()
{
    KTV_InterfaceConfig settings(userData);
    settings.getValue(KTV_InterfaceConfig::MAIN_Lang, QStringLiteral("EN"));
    settings.getValue(KTV_InterfaceConfig::Power_Time1, 5);
    settings.setValue(KTV_InterfaceConfig::MAIN_Lang, QStringLiteral("PL"));
    settings.deleteValue({KTV_InterfaceConfig::MAIN_Lang});
}

template <typename Element> void drop(QList<Element *> *list)
{
    if (list)
        qDeleteAll(*list);
    delete list;
}

void useLists()
{
    KTV_DataList lists(userData, languages, QStringLiteral("EN"));
    drop(lists.GetObiectTyp(true, true, QStringLiteral("a"), 3));
    drop(lists.GetMaterials(true, true, QString(), 0));
    drop(lists.GetLimits_T(QString(), 0));
    lists.AddObiectName(QStringLiteral("Name"));
    lists.UpdateMaterial(1, QStringLiteral("Iron"), 0.005);
    lists.DeleteLimit_R(1);
    lists.SetLang(QStringLiteral("PL"));
}

void useNetworks()
{
    WiFi::KTV_Connection wifi(userData);
    wifi.AddNetwork(QStringLiteral("Guest"), QString());
    drop(wifi.GetMyNetwork());
    wifi.DeleteNetwork(QStringLiteral("Guest"));
}

struct Store
{
    const char *file;
    void (*use)();
};

constexpr Store stores[] = {
    {"interfaceConfig.db", useSettings},
    {"dataList.db", useLists},
    {"wifi.db", useNetworks},
};

constexpr const char *schemaChanges[] = {
    "DROP TABLE Setting",
    "DROP TABLE CONFIG_STR",
    "DROP TABLE OBIECT_TYP",
    "DROP TABLE MATERIALS",
    "DROP TABLE NETWORKS",
    "CREATE TABLE other (a, b)",
    "ALTER TABLE CONFIG_STR RENAME COLUMN CON_Value TO other",
    "ALTER TABLE OBIECT_TYP RENAME TO other",
    "ALTER TABLE MATERIALS ADD COLUMN other",
    "CREATE TRIGGER t BEFORE INSERT ON CONFIG_STR BEGIN SELECT RAISE(ABORT, 'no'); END",
    "CREATE TRIGGER t BEFORE INSERT ON OBIECT_NAME BEGIN SELECT RAISE(ROLLBACK, 'no'); END",
    "CREATE TRIGGER t BEFORE DELETE ON NETWORKS BEGIN SELECT RAISE(FAIL, 'no'); END",
    "CREATE UNIQUE INDEX i ON NETWORKS (NET_Encrypton)",
    ("INSERT INTO MATERIALS (MAT_Lang, MAT_ReadOnly, MAT_Name, MAT_Alpha) "
     "VALUES ('EN', 'x', x'00ff', 'much')"),
    "INSERT INTO CONFIG_STR (CON_Key, CON_Value) VALUES ('MAIN_Lang', NULL)",
    "PRAGMA journal_mode = WAL",
    "PRAGMA user_version = 7",
};

void execute(const QString &path, const char *statement)
{
    {
        auto database =
            QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("fuzz"));
        database.setDatabaseName(path);
        if (database.open())
            QSqlQuery(database).exec(QLatin1String(statement));
    }
    QSqlDatabase::removeDatabase(QStringLiteral("fuzz"));
}

QByteArray goodFiles[3];

QString pathOf(const Store &store)
{
    return userData + QLatin1String(store.file);
}

} // namespace

void prepareTarget()
{
    qputenv("PATH", "/nowhere"); // the tools of the radio only take time here
    for (int i = 0; i < 3; ++i) {
        stores[i].use();
        goodFiles[i] = Meter::readFile(pathOf(stores[i]));
    }
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzInput input(data, size);
    const int index = input.ConsumeIntegralInRange(0, 2);
    const Store &store = stores[index];
    QByteArray file = goodFiles[index];
    const auto flip = [&] {
        for (int left = input.ConsumeIntegralInRange(0, 8); left > 0; --left) {
            const int place = input.ConsumeIntegralInRange(0, file.size() - 1);
            file[place] = char(file.at(place) ^ input.ConsumeIntegral<char>());
        }
        if (input.ConsumeBool())
            file.truncate(input.ConsumeIntegralInRange(0, file.size()));
    };
    for (const char *suffix : {"-journal", "-wal", "-shm"})
        std::remove((pathOf(store) + QLatin1String(suffix)).toUtf8().constData());
    Meter::writeFile(pathOf(store), file);
    for (int left = input.ConsumeIntegralInRange(0, 3); left > 0; --left)
        execute(pathOf(store), input.PickValueInArray(schemaChanges));
    file = Meter::readFile(pathOf(store));
    if (!file.isEmpty())
        flip();
    Meter::writeFile(pathOf(store), file);
    if (input.ConsumeBool()) // a journal that a pulled battery has left, or arbitrary bytes
        Meter::writeFile(pathOf(store) + QStringLiteral("-journal"),
                         QByteArray::fromStdString(input.ConsumeRemainingBytesAsString()));
    store.use();
    return 0;
}
