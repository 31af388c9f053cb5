#include "Comparison.h"

#include "AllocationCount.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QFile>
#include <QString>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <malloc.h>
#include <sys/resource.h>
#include <vector>

#if __has_include(<valgrind/callgrind.h>)
#include <valgrind/callgrind.h>
#else
#define RUNNING_ON_VALGRIND false
#define CALLGRIND_ZERO_STATS
#define CALLGRIND_DUMP_STATS
#endif

namespace {

constexpr double tolerance = 1.1;
constexpr double shortestTurn = 2e-3; // seconds; a turn has enough calls to last this long
constexpr double timeOfRow = 3; // seconds, about
constexpr int minTurns = 7;
constexpr int maxTurns = 101;

double seconds(clockid_t clock)
{
    timespec time {};
    clock_gettime(clock, &time);
    return double(time.tv_sec) + double(time.tv_nsec) * 1e-9;
}

double seconds(const timeval &time)
{
    return double(time.tv_sec) + double(time.tv_usec) * 1e-6;
}

double childrenSeconds()
{
    rusage usage {};
    getrusage(RUSAGE_CHILDREN, &usage);
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

double now(Comparison::Time time)
{
    switch (time) {
    case Comparison::ProcessorTime:
        return seconds(CLOCK_PROCESS_CPUTIME_ID);
    case Comparison::ProcessorTimeWithChildren:
        return seconds(CLOCK_PROCESS_CPUTIME_ID) + childrenSeconds();
    case Comparison::WallTime:
        break;
    }
    return seconds(CLOCK_MONOTONIC);
}

double median(std::vector<double> values)
{
    const auto middle = values.begin() + std::ptrdiff_t(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

using Work = std::function<void(long)>; ///< calls a job this many times

/** Time and allocations of one call, averaged over a turn. */
struct CallCost
{
    double time; ///< seconds
    double allocations;
};

CallCost takeTurn(const Comparison::Row &row, const Work &work, long calls)
{
    if (row.before)
        row.before();
    const long allocations = allocationCount();
    const double start = now(row.time);
    work(calls);
    const double time = now(row.time) - start;
    return {time / double(calls), double(allocationCount() - allocations) / double(calls)};
}

/** Number of calls in a turn, and number of turns. */
struct Plan
{
    long calls;
    int turns;
};

Plan planFor(const Comparison::Row &row, const Work &job, const Work &floor)
{
    takeTurn(row, job, 1); // fills the caches
    takeTurn(row, floor, 1);
    for (long calls = 1;; calls *= 2) {
        const double start = now(Comparison::WallTime);
        const double floorTime = takeTurn(row, floor, calls).time * double(calls);
        takeTurn(row, job, calls);
        const double both = now(Comparison::WallTime) - start;
        if (row.before || floorTime >= shortestTurn || both >= timeOfRow / minTurns)
            return {calls, qBound(minTurns, int(timeOfRow / both), maxTurns)};
    }
}

/** Instructions of one call, averaged over many; the program runs under callgrind. */
double instructions(const Comparison::Row &row, const Work &work)
{
    constexpr double timeOfCalls = 1; // seconds, about
    constexpr long maxCalls = 4096;
    takeTurn(row, work, 1); // loads what is loaded once
    const double start = now(Comparison::WallTime);
    takeTurn(row, work, 1);
    const double time = now(Comparison::WallTime) - start;
    const long calls = row.before ? 1 : qBound(1L, long(timeOfCalls / time), maxCalls);

    static int dumps = 0;
    if (row.before)
        row.before();
    CALLGRIND_ZERO_STATS;
    work(calls);
    CALLGRIND_DUMP_STATS;
    QFile dump(qEnvironmentVariable("KTV_CALLGRIND_FILE") + QLatin1Char('.')
               + QString::number(++dumps));
    if (!dump.open(QIODevice::ReadOnly))
        qFatal("callgrind has written no %s", qPrintable(dump.fileName()));
    const QByteArray content = dump.readAll();
    const QByteArray label = "\nsummary: ";
    const int begin = content.indexOf(label) + label.size();
    return content.mid(begin, content.indexOf('\n', begin) - begin).toDouble() / double(calls);
}

QByteArray timeText(double time)
{
    struct Unit
    {
        double seconds;
        const char *name;
    };
    for (const Unit &unit : {Unit {1, "s"}, Unit {1e-3, "ms"}, Unit {1e-6, "\u03BCs"}}) {
        if (time >= unit.seconds)
            return QByteArray::number(time / unit.seconds, 'f', 2) + ' ' + unit.name;
    }
    return QByteArray::number(time * 1e9, 'f', 1) + " ns";
}

QByteArray figureText(double value, const char *unit)
{
    const int decimals = value < 10 ? 2 : 0;
    return QByteArray::number(value, 'f', decimals) + ' ' + unit;
}

QByteArray goalText(double goal, const QByteArray &text)
{
    return goal > 0 ? "\u2264 " + text : QByteArray("-");
}

void printLine(const QByteArray &name, const std::vector<QByteArray> &cells, const char *note)
{
    constexpr int nameWidth = 52;
    constexpr int cellWidth = 13;
    const auto padding = [](const QByteArray &text, int width) {
        return QByteArray(qMax(1, width - QString::fromUtf8(text).size()), ' ');
    };
    QByteArray line = name + padding(name, nameWidth);
    for (const QByteArray &cell : cells)
        line += padding(cell, cellWidth) + cell;
    std::printf("%s%s\n", line.constData(), note);
    std::fflush(stdout);
}

} // namespace

double heldKiB()
{
    const auto information = mallinfo2();
    return double(information.uordblks + information.hblkhd) / 1024;
}

void Comparison::print(const char *name, bool isAbove, const std::vector<QByteArray> &cells)
{
    if (!m_hasHeader)
        printLine(QCoreApplication::applicationName().toUtf8(),
                  {"job", "floor", "ratio", "goal", "allocations"}, "");
    m_hasHeader = true;
    m_isWithinGoals = m_isWithinGoals && !isAbove;
    printLine(name, cells, isAbove ? "  above its goal" : "");
}

void Comparison::measure(const Row &row, const Work &job, const Work &floor)
{
    if (RUNNING_ON_VALGRIND) {
        const double ofJob = instructions(row, job);
        const double ofFloor = instructions(row, floor);
        print(row.name, false,
              {QByteArray::number(ofJob, 'f', 0), QByteArray::number(ofFloor, 'f', 0),
               QByteArray::number(ofJob / ofFloor, 'f', 2), "-", "-"});
        return;
    }
    const Plan plan = planFor(row, job, floor);
    std::vector<double> jobTimes;
    std::vector<double> floorTimes;
    std::vector<double> ratios;
    std::vector<double> allocations;
    for (int i = 0; i < plan.turns; ++i) {
        const bool isFloorFirst = i % 2 == 0;
        const CallCost first = takeTurn(row, isFloorFirst ? floor : job, plan.calls);
        const CallCost second = takeTurn(row, isFloorFirst ? job : floor, plan.calls);
        const CallCost &ofJob = isFloorFirst ? second : first;
        const CallCost &ofFloor = isFloorFirst ? first : second;
        jobTimes.push_back(ofJob.time);
        floorTimes.push_back(ofFloor.time);
        ratios.push_back(ofJob.time / ofFloor.time);
        allocations.push_back(ofJob.allocations);
    }
    const double ratio = median(ratios);
    const double allocated = median(allocations);
    const bool isAbove = (row.goal > 0 && ratio > row.goal * tolerance)
        || (row.allocations >= 0 && allocated > double(row.allocations) * tolerance);

    QByteArray allocationsText = QByteArray::number(allocated, 'f', 1);
    if (row.allocations >= 0)
        allocationsText += " (\u2264 " + QByteArray::number(qlonglong(row.allocations)) + ')';
    print(row.name, isAbove,
          {timeText(median(jobTimes)), timeText(median(floorTimes)),
           QByteArray::number(ratio, 'f', 2),
           goalText(row.goal, QByteArray::number(row.goal, 'f', 2)), allocationsText});
}

void Comparison::figure(const Figure &figure, double value)
{
    if (RUNNING_ON_VALGRIND)
        return; // the table shows instructions; under callgrind time and memory are not meaningful
    const bool hasFloor = figure.floor > 0;
    print(figure.name, figure.goal > 0 && value > figure.goal * tolerance,
          {figureText(value, figure.unit), hasFloor ? figureText(figure.floor, figure.unit) : "-",
           hasFloor ? QByteArray::number(value / figure.floor, 'f', 2) : "-",
           goalText(figure.goal, figureText(figure.goal, figure.unit)), "-"});
}

int benchmarkMain(int argc, char *argv[], const std::function<void(Comparison &)> &rows)
{
    const QCoreApplication application(argc, argv);
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &, const QString &line) {
        if (type == QtFatalMsg)
            std::fprintf(stderr, "%s\n", qPrintable(line));
    });
    const bool isDetailed = argc > 1 && std::strcmp(argv[1], "--details") == 0;
    if (isDetailed) {
        argv[1] = argv[0];
        int count = argc - 1;
        benchmark::Initialize(&count, argv + 1);
        if (benchmark::ReportUnrecognizedArguments(count, argv + 1))
            return 1;
        benchmark::RunSpecifiedBenchmarks();
        return 0;
    }
    const bool isChecked = argc > 1 && std::strcmp(argv[1], "--check") == 0;
    if (argc > 1 && !isChecked) {
        std::fprintf(stderr, "usage: %s [--check | --details [options of Google Benchmark]]\n",
                     argv[0]);
        return 1;
    }
    Comparison comparison;
    rows(comparison);
    return isChecked && !comparison.isWithinGoals() ? 1 : 0;
}
