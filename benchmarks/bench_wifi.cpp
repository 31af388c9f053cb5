// Cost of polling: processes, memory and descriptors. Runs in the simulated meter only.
#include "Comparison.h"

#include <wifi/KTV_Connection.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QThreadPool>

#include <benchmark/benchmark.h>

#include <cstdio>

namespace {

using WiFi::KTV_Connection;

void write(const char *file, const QByteArray &content)
{
    QFile target(QString::fromLatin1(file));
    if (target.open(QIODevice::WriteOnly))
        target.write(content);
}

QByteArray read(const char *file)
{
    QFile source(QString::fromLatin1(file));
    return source.open(QIODevice::ReadOnly) ? source.readAll() : QByteArray();
}

/** Id of the latest process or thread in the meter. */
qint64 lastProcess()
{
    return read("/proc/loadavg").simplified().split(' ').last().toLongLong();
}

qint64 residentKiB()
{
    const QByteArray status = read("/proc/self/status");
    const int begin = status.indexOf("VmRSS:") + 6;
    return status.mid(begin, status.indexOf("kB", begin) - begin).trimmed().toLongLong();
}

int openDescriptors()
{
    return QDir(QStringLiteral("/proc/self/fd"))
               .entryList(QDir::NoDotAndDotDot | QDir::AllEntries)
               .size()
        - 1; // without the process that prints the list
}

/** State of the interface while it is polled. */
enum World
{
    Off,
    NotAssociated,
    Connected
};

void enter(World world)
{
    const bool isUp = world != Off;
    QProcess::execute(
        QStringLiteral("ifconfig"),
        {QStringLiteral("wlan0"), isUp ? QStringLiteral("up") : QStringLiteral("down")});
    write("/run/meter/behaviour/iwgetid", world == Connected ? "stdout=Lab" : "stdout=");
    if (world == Connected)
        QProcess::execute(QStringLiteral("ifconfig"),
                          {QStringLiteral("wlan0"), QStringLiteral("10.0.0.7")});
}

/** One poll of a mode, started as its timer does it, until it has ended. */
struct Mode
{
    void (KTV_Connection::*tick)();
    int interval; // ms
};

constexpr Mode status {&KTV_Connection::onStatusTime, 5000};
constexpr Mode detail {&KTV_Connection::onStatusDetailTime, 1000};
constexpr Mode scan {&KTV_Connection::onScanNetwokTime, 10000};

void poll(benchmark::State &state, const Mode &mode, World world)
{
    const QTemporaryDir directory;
    write("/run/meter/behaviour/systemctl", "stdout=");
    write("/run/meter/behaviour/iwlist", "stdout=Cell 01\\n  ESSID:\"Lab\"");
    KTV_Connection wifi(directory.path() + QLatin1Char('/'));
    if (mode.tick == scan.tick)
        wifi.ScanNetwork(true);
    enter(world);
    const auto turn = [&wifi, &mode] {
        (wifi.*mode.tick)();
        QThreadPool::globalInstance()->waitForDone();
        write("/run/meter/journal", QByteArray());
    };
    for (int i = 0; i < 20; ++i)
        turn(); // until every buffer has its final size
    const qint64 processes = lastProcess();
    const qint64 memory = residentKiB();
    const int descriptors = openDescriptors();
    for ([[maybe_unused]] auto _ : state)
        turn();
    const auto turns = double(state.iterations());
    constexpr double minute = 60000; // ms
    // Waiting for the pool ends its thread, so each poll starts one, which counts like a process.
    const double started = double(lastProcess() - processes) / turns - 1;
    state.counters["processes"] = started;
    state.counters["processes/min"] = started * minute / mode.interval;
    state.counters["memory KiB"] = double(residentKiB() - memory);
    state.counters["descriptors"] = double(openDescriptors() - descriptors);
}

} // namespace

BENCHMARK_CAPTURE(poll, status_off, status, Off)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(poll, status_not_associated, status, NotAssociated)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(poll, status_connected, status, Connected)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(poll, detail_connected, detail, Connected)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(poll, scan, scan, NotAssociated)->Unit(benchmark::kMillisecond);
// As many polls of the details as in nearly three hours: memory and descriptors must not grow.
BENCHMARK_CAPTURE(poll, soak_detail, detail, Connected)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(10000);

int main(int argc, char *argv[])
{
    if (!QFile::exists(QStringLiteral("/run/meter/inside"))) {
        std::fputs("bench_wifi runs in the simulated meter only: ./meter bench --details wifi\n",
                   stderr);
        return 1;
    }
    return benchmarkMain(argc, argv, [](Comparison &) {});
}
