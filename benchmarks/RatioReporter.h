#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

/** The usual table, and below it how long some benchmarks took against others of the same run. */
class RatioReporter : public benchmark::ConsoleReporter
{
public:
    using Pair = std::pair<std::string, std::string>;

    explicit RatioReporter(std::vector<Pair> pairs)
        : ConsoleReporter(OO_Tabular)
        , m_pairs(std::move(pairs))
    { }

    void ReportRuns(const std::vector<Run> &runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run &run : runs) {
            // With repetitions the median comes last, and stays.
            if (run.run_type == Run::RT_Iteration || run.aggregate_name == "median")
                m_times[run.run_name.str()] = run.GetAdjustedCPUTime();
        }
    }

    void Finalize() override
    {
        for (const auto &[name, other] : m_pairs) {
            const auto time = m_times.find(name);
            const auto otherTime = m_times.find(other);
            if (time != m_times.end() && otherTime != m_times.end())
                GetOutputStream() << name << " takes " << time->second / otherTime->second
                                  << " times " << other << '\n';
        }
        ConsoleReporter::Finalize();
    }

private:
    std::vector<Pair> m_pairs;
    std::map<std::string, double> m_times;
};
