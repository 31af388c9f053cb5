// Memory of an interface's services, compared with the same program before it creates them. Runs in
// the simulated meter only.
#include "AllocationCount.h"
#include "Comparison.h"

#include <datasource/KTV_DataSource.h>

#include <QFile>

#include <cstdio>
#include <memory>

namespace {

/** Memory that this process does not share with others. */
double privateDirtyKiB()
{
    QFile file(QStringLiteral("/proc/self/smaps_rollup"));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("no smaps_rollup");
    const QByteArray content = file.readAll();
    const int begin = content.indexOf("Private_Dirty:") + 14;
    return content.mid(begin, content.indexOf("kB", begin) - begin).trimmed().toDouble();
}

void facade(Comparison &comparison)
{
    const double dirtyBefore = privateDirtyKiB();
    const double heldBefore = heldKiB();
    const long allocationsBefore = allocationCount();
    const auto services = std::make_unique<KTV_DataSource>();
    const auto allocations = double(allocationCount() - allocationsBefore);
    const double held = heldKiB();
    comparison.figure({"private dirty memory, beside a bare Qt program", "KiB", 0, dirtyBefore},
                      privateDirtyKiB());
    comparison.figure({"memory held on the heap", "KiB", 0, heldBefore}, held);
    comparison.figure({"allocations of the constructor", "", 0, double(allocationsBefore)},
                      allocations);
}

} // namespace

int main(int argc, char *argv[])
{
    if (!QFile::exists(QStringLiteral("/run/meter/inside"))) {
        std::fputs("bench_memory runs in the simulated meter only: ./meter bench memory\n", stderr);
        return 1;
    }
    return benchmarkMain(argc, argv, facade);
}
