#pragma once

#include <QByteArray>

#include <functional>
#include <utility>
#include <vector>

/**
 * Rows of jobs beside their floors, in one table with the goals: what `./meter bench` shows.
 *
 * A row is a job of the library, the least that any program must do for the same result (its
 * floor), and the goal: how many times the floor's time the job may take. Both are run in turns,
 * so that whatever else the machine does falls upon both; the median of the turns counts.
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
 * The time is the processor time of this process, unless the row says otherwise: wall time for
 * what waits for a disk, and the time of ended children for what starts processes. What has to be
 * done again before each turn, untimed, goes into `before`: each turn is then one call.
 *
 * BENCHMARK()s of Google Benchmark in the same program run with `--details`.
 */
class Comparison
{
public:
    enum Time
    {
        ProcessorTime, ///< of all threads of this process
        ProcessorTimeWithChildren, ///< and of the children that it has waited for
        WallTime
    };

    struct Row
    {
        const char *name;
        double goal = 0; ///< at most so many times the floor; 0 for a row without a goal
        Time time = ProcessorTime;
        long allocations = -1; ///< at most so many for each call of the job; -1 for no goal
        std::function<void()> before = nullptr; ///< untimed, before each single call of both
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

    /** Prints a line of the table for what is no time: memory, processes, descriptors. */
    void figure(const Figure &figure, double value);

    /** Whether each row so far is at most a tenth above its goals. */
    bool isWithinGoals() const { return m_isWithinGoals; }

private:
    using Repeated = std::function<void(long)>; ///< calls so many times in a row

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

/** Memory that the heap has given out and not got back, in KiB. */
double heldKiB();

/**
 * main() of a benchmark program: makes the application object, silences the log, and shows the
 * rows. With --check the result is 1 when a row is more than a tenth above a goal; with --details
 * Google Benchmark runs instead, with its own options.
 */
int benchmarkMain(int argc, char *argv[], const std::function<void(Comparison &)> &rows);
