#pragma once

#include <QByteArray>

#include <functional>
#include <utility>
#include <vector>

/**
 * The table that `./meter bench` shows: jobs of the library compared with their floors and goals.
 *
 * A row has a job of the library, the least that any program must do for the same result (its
 * floor), and the goal: how many times the floor's time the job may take. Both are run in turns, so
 * that other load on the machine affects both equally; the median of the turns is the result.
 *
 * To add a row, write a function that prepares what both need and calls compare(), and call that
 * function from the rows function of the program:
 *
 *     void settingsRead(Comparison &comparison)
 *     {
 *         Store store; // prepared once, not timed
 *         Comparison::Row row {"settings read", 1.2};
 *         row.allocations = 21; // at most; leave it out when there is no such goal
 *         comparison.compare(
 *             row, [&] { benchmark::DoNotOptimize(store.getValue(key, {})); },
 *             [&] { benchmark::DoNotOptimize(rawRead(store.path())); });
 *         comparison.figure({"memory held by an open store", "KiB", 100}, heldKiB());
 *     }
 *
 *     int main(int argc, char *argv[])
 *     {
 *         return benchmarkMain(argc, argv, settingsRead); // or a lambda that calls several
 *     }
 *
 * The time is the processor time of this process, unless the row says otherwise: wall time for jobs
 * that wait for a disk, and the time of children that have ended for jobs that start processes.
 * `before` is called before each turn and not timed; each turn is then a single call.
 *
 * BENCHMARK()s of Google Benchmark in the same program run with `--details`.
 */
class Comparison
{
public:
    enum Time
    {
        ProcessorTime, ///< of all threads of this process
        ProcessorTimeWithChildren, ///< also of children that it has waited for
        WallTime
    };

    struct Row
    {
        const char *name;
        double goal = 0; ///< largest ratio to the floor; 0 for a row without a goal
        Time time = ProcessorTime;
        long allocations = -1; ///< most allocations for each call of the job; -1 for no goal
        std::function<void()> before = nullptr; ///< called before each call of both, not timed
    };

    struct Figure
    {
        const char *name;
        const char *unit;
        double goal = 0; ///< at most; 0 for a figure without a goal
        double floor = 0; ///< shown beside it; 0 for none
    };

    /** Measures both in turns and prints a line of the table. */
    template <typename Job, typename Floor> void compare(const Row &row, Job job, Floor floor)
    {
        measure(row, repeated(std::move(job)), repeated(std::move(floor)));
    }

    /** Prints a line of the table for something other than time: memory, processes, descriptors. */
    void figure(const Figure &figure, double value);

    /** Whether no row so far is more than a tenth above its goals. */
    bool isWithinGoals() const { return m_isWithinGoals; }

private:
    using Repeated = std::function<void(long)>; ///< makes this number of calls

    template <typename Work> static Repeated repeated(Work work)
    {
        return [work = std::move(work)](long count) mutable {
            for (; count > 0; --count)
                work();
        };
    }

    void measure(const Row &row, const Repeated &job, const Repeated &floor);
    void print(const char *name, bool isAbove, const std::vector<QByteArray> &cells);

    bool m_hasHeader = false;
    bool m_isWithinGoals = true;
};

/** Memory that is allocated on the heap, in KiB. */
double heldKiB();

/**
 * main() of a benchmark program: creates the application object, silences the log, and prints the
 * rows. With --check the result is 1 if a row is more than a tenth above a goal; with --details
 * Google Benchmark runs instead, with its own options.
 */
int benchmarkMain(int argc, char *argv[], const std::function<void(Comparison &)> &rows);
