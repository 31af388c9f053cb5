// Settings and lists compared with the SQLite library alone: the same statements, prepared once, on
// a file with the same content, where every change is flushed before it returns. Also on a disk, if
// KTV_BENCH_DISK names a directory on one.
#include "Comparison.h"

#include <configuration/KTV_InterfaceConfig.h>
#include <datalist/KTV_DataList.h>

#include <benchmark/benchmark.h>

#include <QDir>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QVariant>

#include <ctime>
#include <map>
#include <memory>
#include <optional>
#include <sqlite3.h>
#include <vector>

namespace {

void check(bool ok)
{
    if (!ok)
        qFatal("the bare library failed");
}

/** A connection to a file and its statements, each prepared once. */
class RawStore
{
public:
    explicit RawStore(const QString &path)
    {
        check(sqlite3_open(path.toUtf8().constData(), &m_database) == SQLITE_OK);
        run("PRAGMA synchronous = EXTRA");
    }
    ~RawStore()
    {
        for (const auto &statement : m_statements)
            sqlite3_finalize(statement.second);
        sqlite3_close(m_database);
    }
    Q_DISABLE_COPY_MOVE(RawStore)

    void run(const char *text, const std::vector<QString> &values = {})
    {
        sqlite3_stmt *const statement = begin(text, values);
        check(sqlite3_step(statement) == SQLITE_DONE);
        sqlite3_reset(statement);
    }

    /** Calls @p take with each row. */
    template <typename Take>
    void query(const char *text, const std::vector<QString> &values, Take take)
    {
        sqlite3_stmt *const statement = begin(text, values);
        while (sqlite3_step(statement) == SQLITE_ROW)
            take(statement);
        sqlite3_reset(statement);
    }

    static QString text(sqlite3_stmt *row, int column)
    {
        return QString(static_cast<const QChar *>(sqlite3_column_text16(row, column)),
                       sqlite3_column_bytes16(row, column) / int(sizeof(QChar)));
    }

private:
    sqlite3_stmt *begin(const char *text, const std::vector<QString> &values)
    {
        sqlite3_stmt *&statement = m_statements[text];
        if (!statement)
            check(sqlite3_prepare_v2(m_database, text, -1, &statement, nullptr) == SQLITE_OK);
        for (size_t i = 0; i < values.size(); ++i)
            sqlite3_bind_text16(statement, int(i) + 1, values[i].utf16(),
                                values[i].size() * int(sizeof(QChar)), SQLITE_STATIC);
        return statement;
    }

    sqlite3 *m_database = nullptr;
    std::map<const char *, sqlite3_stmt *> m_statements; // by address of the literal
};

struct RawRow
{
    int id;
    bool readOnly;
    QString value;
};

/** A directory for the library and one for SQLite alone, with the same files. */
struct ComparedStores
{
    explicit ComparedStores(const QString &where)
        : directory(where + QStringLiteral("/bench-XXXXXX"))
    {
        for (const QString &name : {ours(), theirs(), ours() + QStringLiteral("EN")})
            QDir().mkpath(name);
        for (const char *name : {"obiectTyp", "obiectName", "materials"}) {
            QFile file(ours() + QStringLiteral("EN/default_") + QLatin1String(name)
                       + QStringLiteral(".txt"));
            check(file.open(QIODevice::WriteOnly));
            for (int i = 0; i < entries; ++i)
                file.write("Entry " + QByteArray::number(i)
                           + (name == QByteArray("materials") ? "?0.00393\n" : "\n"));
        }
    }

    QString ours() const { return directory.path() + QStringLiteral("/ours/"); }
    QString theirs() const { return directory.path() + QStringLiteral("/theirs/"); }

    std::unique_ptr<RawStore> copy(const QString &name) const
    {
        check(QFile::copy(ours() + name, theirs() + name));
        return std::make_unique<RawStore>(theirs() + name);
    }

    static constexpr int entries = 100;
    QTemporaryDir directory;
};

constexpr auto deletion = "DELETE FROM CONFIG_STR WHERE `CON_Key` = 'MAIN_Lang'";
constexpr auto insertion =
    "INSERT INTO CONFIG_STR (`CON_Key`,`CON_Value`)VALUES (:CON_Key,:CON_Value)";
constexpr auto count = "SELECT COUNT(*) FROM OBIECT_TYP WHERE `OBT_Value` = :OBT_Value";
constexpr auto typeInsertion = "INSERT INTO OBIECT_TYP (`OBT_Lang`,`OBT_ReadOnly`,`OBT_Value`) "
                               "VALUES (:OBT_Lang,:OBT_ReadOnly,:OBT_Value)";
constexpr auto twentyRows = "SELECT `OBTk_1_ID`,`OBT_ReadOnly`,`OBT_Value` FROM OBIECT_TYP WHERE "
                            "`OBT_Lang`='EN' LIMIT 20";

void settings(Comparison &comparison, const QString &where, Comparison::Row write,
              std::optional<Comparison::Row> read)
{
    const ComparedStores stores(where);
    KTV_InterfaceConfig config(stores.ours());
    const auto key = KTV_InterfaceConfig::MAIN_Lang;
    const QString name = QStringLiteral("MAIN_Lang");
    config.setValue(key, QStringLiteral("PL"));
    const auto raw = stores.copy(QStringLiteral("interfaceConfig.db"));
    if (read) {
        comparison.compare(
            *read, [&] { benchmark::DoNotOptimize(config.getValue(key, QString())); },
            [&] {
                raw->query(
                    "SELECT `CON_Value` FROM CONFIG_STR WHERE `CON_Key` = 'MAIN_Lang'", {},
                    [](sqlite3_stmt *row) { benchmark::DoNotOptimize(RawStore::text(row, 0)); });
            });
    }
    comparison.compare(
        write, [&] { config.setValue(key, QStringLiteral("DE")); },
        [&] {
            raw->run("BEGIN");
            raw->run(deletion);
            raw->run(insertion, {name, QStringLiteral("DE")});
            raw->run("COMMIT");
        });
}

void addType(RawStore &raw, const QString &readOnly, const QString &value)
{
    raw.query(count, {value}, [](sqlite3_stmt *row) { check(sqlite3_column_int(row, 0) == 0); });
    raw.run(typeInsertion, {QStringLiteral("EN"), readOnly, value});
}

void adding(Comparison &comparison, const QString &where, Comparison::Row row)
{
    const ComparedStores stores(where);
    KTV_DataList lists(stores.ours(), stores.ours(), QStringLiteral("EN"));
    const auto raw = stores.copy(QStringLiteral("dataList.db"));
    constexpr int id = ComparedStores::entries + 1; // the next one, each time
    row.before = [&] {
        lists.DeleteObiectTyp(id);
        raw->run("DELETE FROM OBIECT_TYP WHERE `OBTk_1_ID`=101");
    };
    comparison.compare(
        row, [&] { check(lists.AddObiectTyp(QStringLiteral("added"))); },
        [&] {
            raw->run("BEGIN");
            addType(*raw, QStringLiteral("0"), QStringLiteral("added"));
            raw->run("COMMIT");
        });
}

void firstRows(Comparison &comparison)
{
    const ComparedStores stores(QDir::tempPath());
    KTV_DataList lists(stores.ours(), stores.ours(), QStringLiteral("EN"));
    const auto raw = stores.copy(QStringLiteral("dataList.db"));
    comparison.compare(
        {"first 20 rows of a list", 1.3},
        [&] {
            const std::unique_ptr<QList<DataList_Element *>> rows(
                lists.GetObiectTyp(true, true, QString(), 20));
            qDeleteAll(*rows);
        },
        [&] {
            std::vector<RawRow> rows;
            raw->query(twentyRows, {}, [&](sqlite3_stmt *row) {
                rows.push_back({sqlite3_column_int(row, 0), sqlite3_column_int(row, 1) != 0,
                                RawStore::text(row, 2)});
            });
            benchmark::DoNotOptimize(rows);
        });
}

/** The part of Qt's driver and of the objects in the row above. */
void firstRowsByQt(Comparison &comparison)
{
    const ComparedStores stores(QDir::tempPath());
    KTV_DataList lists(stores.ours(), stores.ours(), QStringLiteral("EN"));
    QSqlQuery query(QSqlDatabase::database(QStringLiteral("dataList")));
    query.setForwardOnly(true);
    check(query.prepare(QLatin1String(twentyRows)));
    comparison.compare(
        {"the same, to a kept QSqlQuery and the same objects"},
        [&] {
            const std::unique_ptr<QList<DataList_Element *>> rows(
                lists.GetObiectTyp(true, true, QString(), 20));
            qDeleteAll(*rows);
        },
        [&] {
            QList<DataList_Element *> rows;
            check(query.exec());
            while (query.next()) {
                rows.append(new DataList_Element);
                rows.last()->ID = query.value(0).toInt();
                rows.last()->ReadOnly = query.value(1).toBool();
                rows.last()->Value = query.value(2).toString();
            }
            query.finish();
            qDeleteAll(rows);
        });
}

/** A list of a language that is selected for the first time, in one transaction. */
void seeding(Comparison &comparison)
{
    const ComparedStores stores(QDir::tempPath());
    KTV_DataList lists(stores.ours(), stores.ours(), QStringLiteral("XX"));
    const auto raw = stores.copy(QStringLiteral("dataList.db"));
    RawStore ours(stores.ours() + QStringLiteral("dataList.db"));
    lists.SetLang(QStringLiteral("EN"));
    Comparison::Row row {"seeding a list of 100 entries"};
    row.before = [&] {
        ours.run("DELETE FROM OBIECT_TYP");
        raw->run("DELETE FROM OBIECT_TYP");
    };
    comparison.compare(
        row, [&] { lists.FillDefaultObiectTyp(); },
        [&] {
            QFile file(stores.ours() + QStringLiteral("EN/default_obiectTyp.txt"));
            check(file.open(QIODevice::ReadOnly | QIODevice::Text));
            raw->run("BEGIN");
            while (!file.atEnd())
                addType(*raw, QStringLiteral("1"), QString::fromUtf8(file.readLine().chopped(1)));
            raw->run("COMMIT");
        });
}

/** Tables and three lists, as created by the first start of a device. */
void firstStart(Comparison &comparison)
{
    constexpr int starts = 20;
    const ComparedStores stores(QDir::tempPath());
    const std::clock_t begin = std::clock();
    for (int i = 0; i < starts; ++i) {
        KTV_DataList(stores.ours(), stores.ours(), QStringLiteral("EN"));
        QFile::remove(stores.ours() + QStringLiteral("dataList.db"));
    }
    const double time = double(std::clock() - begin) / CLOCKS_PER_SEC / starts;
    comparison.figure({"first start, three lists of 100 entries: processor", "ms", 3}, time * 1000);
}

} // namespace

int main(int argc, char *argv[])
{
    return benchmarkMain(argc, argv, [](Comparison &comparison) {
        Comparison::Row read {"settings read", 1.2};
        read.allocations = 21;
        settings(comparison, QDir::tempPath(), {"settings write, in memory", 1.2}, read);
        adding(comparison, QDir::tempPath(), {"list add, in memory", 1.2});
        seeding(comparison);
        firstStart(comparison);
        firstRows(comparison);
        firstRowsByQt(comparison);
        const QString disk = qEnvironmentVariable("KTV_BENCH_DISK");
        if (disk.isEmpty())
            return;
        settings(comparison, disk, {"settings write, on a disk", 1.05, Comparison::WallTime}, {});
        adding(comparison, disk, {"list add, on a disk", 1.06, Comparison::WallTime});
    });
}
