#include "Comparison.h"

#include <datalist/KTV_DataList.h>

#include <benchmark/benchmark.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <chrono>
#include <memory>
#include <sqlite3.h>
#include <vector>

/**
 * The pick lists compared with the SQLite library alone: the same statements on the same file, in
 * turns; "ratio" is the time of the lists relative to SQLite. Both use the same rows of 100
 * characters, and both end with the same values in memory.
 */
namespace {

using Clock = std::chrono::steady_clock;

const char *const language = "EN";

struct RawRow
{
    int id;
    bool readOnly;
    std::u16string value;
};

/** The statements that the lists run for the object types. */
class RawTypes
{
public:
    explicit RawTypes(const QString &path)
    {
        check(sqlite3_open(path.toUtf8().constData(), &m_database) == SQLITE_OK);
    }
    ~RawTypes() { sqlite3_close(m_database); }
    Q_DISABLE_COPY_MOVE(RawTypes)

    void run(const char *text) const
    {
        check(sqlite3_exec(m_database, text, nullptr, nullptr, nullptr) == SQLITE_OK);
    }

    std::vector<RawRow> find(const QString &filter, int limit) const
    {
        QString text = QStringLiteral("SELECT `OBTk_1_ID`,`OBT_ReadOnly`,`OBT_Value` FROM "
                                      "OBIECT_TYP WHERE `OBT_Lang`='EN'");
        if (!filter.isEmpty())
            text += QStringLiteral(" AND `OBT_Value` LIKE :OBT_Value");
        if (limit > 0)
            text += QStringLiteral(" LIMIT ") + QString::number(limit);
        const Statement statement(m_database, text);
        if (!filter.isEmpty())
            statement.bind(1, QLatin1Char('%') + filter + QLatin1Char('%'));
        std::vector<RawRow> rows;
        while (statement.step())
            rows.push_back({statement.number(0), statement.number(1) != 0, statement.text(2)});
        return rows;
    }

    bool isPresent(const QString &value) const
    {
        const Statement statement(
            m_database,
            QStringLiteral("SELECT COUNT(*) FROM OBIECT_TYP WHERE `OBT_Value` = :OBT_Value"));
        statement.bind(1, value);
        check(statement.step());
        return statement.number(0) != 0;
    }

    bool add(const QString &value) const
    {
        run("BEGIN");
        if (isPresent(value)) {
            run("ROLLBACK");
            return false;
        }
        {
            const Statement statement(
                m_database,
                QStringLiteral("INSERT INTO OBIECT_TYP (`OBT_Lang`,`OBT_ReadOnly`,`OBT_Value`) "
                               "VALUES (:OBT_Lang,:OBT_ReadOnly,:OBT_Value)"));
            statement.bind(1, QLatin1String(language));
            statement.bind(2, QStringLiteral("0"));
            statement.bind(3, value);
            statement.step();
        }
        run("COMMIT");
        return true;
    }

private:
    static void check(bool ok)
    {
        if (!ok)
            qFatal("the bare library failed");
    }

    class Statement
    {
    public:
        Statement(sqlite3 *database, const QString &text)
        {
            check(sqlite3_prepare16_v2(database, text.utf16(), -1, &m_statement, nullptr)
                  == SQLITE_OK);
        }
        ~Statement() { sqlite3_finalize(m_statement); }
        Q_DISABLE_COPY_MOVE(Statement)

        void bind(int index, const QString &text) const
        {
            sqlite3_bind_text16(m_statement, index, text.utf16(), text.size() * 2,
                                SQLITE_TRANSIENT);
        }
        bool step() const { return sqlite3_step(m_statement) == SQLITE_ROW; }
        int number(int column) const { return sqlite3_column_int(m_statement, column); }
        std::u16string text(int column) const
        {
            return static_cast<const char16_t *>(sqlite3_column_text16(m_statement, column));
        }

    private:
        sqlite3_stmt *m_statement = nullptr;
    };

    sqlite3 *m_database = nullptr;
};

/** A store with that number of rows, opened by the lists and by SQLite alone. */
struct Bench
{
    explicit Bench(int rowCount)
    {
        const QString prefix = directory.path() + QLatin1Char('/');
        lists = std::make_unique<KTV_DataList>(prefix, prefix, QLatin1String(language));
        raw = std::make_unique<RawTypes>(prefix + QStringLiteral("dataList.db"));
        raw->run("BEGIN");
        raw->run(("WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i+1 FROM n WHERE i<"
                  + std::to_string(rowCount - 1)
                  + ") INSERT INTO OBIECT_TYP (OBT_Lang,OBT_ReadOnly,OBT_Value) SELECT 'EN',0,"
                    "substr('Winding '||i||' of transformer '||replace(hex(zeroblob(50)),'0','x'),"
                    "1,100) FROM n")
                     .c_str());
        raw->run("COMMIT");
    }

    QTemporaryDir directory;
    std::unique_ptr<KTV_DataList> lists;
    std::unique_ptr<RawTypes> raw;
};

/** Runs both in turns; the result is the time of the lists. */
template <typename Lists, typename Raw>
void compare(benchmark::State &state, Lists withLists, Raw withRaw)
{
    using Seconds = std::chrono::duration<double>;
    double listsTime = 0;
    double rawTime = 0;
    const auto timed = [](auto &work) {
        const auto start = Clock::now();
        work();
        return Seconds(Clock::now() - start).count();
    };
    for (auto _ : state) {
        rawTime += timed(withRaw);
        const double time = timed(withLists);
        listsTime += time;
        state.SetIterationTime(time);
    }
    state.counters["raw"] =
        benchmark::Counter(rawTime / double(state.iterations()), benchmark::Counter::kDefaults);
    state.counters["ratio"] = listsTime / rawTime;
}

void query(benchmark::State &state, const QString &filter, int limit)
{
    const Bench bench(int(state.range(0)));
    compare(
        state,
        [&] {
            const std::unique_ptr<QList<DataList_Element *>> rows(
                bench.lists->GetObiectTyp(true, true, filter, limit));
            qDeleteAll(*rows);
        },
        [&] { benchmark::DoNotOptimize(bench.raw->find(filter, limit)); });
}

/** One row in a hundred matches, as while a user types into a search field. */
void filteredQuery(benchmark::State &state)
{
    query(state, QStringLiteral("77 OF"), 50);
}

/** The first rows match, so no search is needed: this is the cost of a call and of 50 rows. */
void firstRows(benchmark::State &state)
{
    query(state, QStringLiteral("winding"), 50);
}

/** Every row without a filter. */
void wholeList(benchmark::State &state)
{
    query(state, QString(), 0);
}

/** A text that exists already: the whole table is compared, nothing is written. */
void duplicateTest(benchmark::State &state)
{
    const Bench bench(int(state.range(0)));
    const QString value =
        QString::fromStdU16String(bench.raw->find(QString(), int(state.range(0))).back().value);
    compare(
        state,
        [&] {
            if (bench.lists->AddObiectTyp(value))
                qFatal("added twice");
        },
        [&] {
            if (bench.raw->add(value))
                qFatal("added twice");
        });
}

/** A new text: duplicate test, row and commit. */
void insert(benchmark::State &state)
{
    const Bench bench(int(state.range(0)));
    int next = 0;
    compare(
        state, [&] { bench.lists->AddObiectTyp(QStringLiteral("a%1").arg(next++)); },
        [&] { bench.raw->add(QStringLiteral("b%1").arg(next)); });
}

/** The first start of a device: tables, and three lists with that number of entries. */
void firstStart(benchmark::State &state)
{
    const QTemporaryDir directory;
    const QString prefix = directory.path() + QLatin1Char('/');
    QDir(prefix).mkdir(QLatin1String(language));
    for (const char *name : {"obiectTyp", "obiectName", "materials"}) {
        QFile file(prefix + QStringLiteral("EN/default_") + QLatin1String(name)
                   + QStringLiteral(".txt"));
        file.open(QIODevice::WriteOnly);
        for (int i = 0; i < state.range(0); ++i)
            file.write("Entry " + QByteArray::number(i)
                       + (name == QByteArray("materials") ? "?0.00393\n" : "\n"));
    }
    for (auto _ : state) {
        KTV_DataList(prefix, prefix, QLatin1String(language));
        state.PauseTiming();
        QFile::remove(prefix + QStringLiteral("dataList.db"));
        state.ResumeTiming();
    }
}

BENCHMARK(filteredQuery)->Arg(10000)->Arg(100000)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(firstRows)->Arg(10000)->Arg(100000)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(wholeList)->Arg(10000)->Arg(100000)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(duplicateTest)->Arg(10000)->Arg(100000)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(insert)->Arg(10000)->Arg(100000)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(firstStart)->Arg(100)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char *argv[])
{
    return benchmarkMain(argc, argv, [](Comparison &) {});
}
