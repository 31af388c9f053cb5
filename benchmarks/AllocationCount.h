#pragma once

#include <benchmark/benchmark.h>

/** Heap allocations of this program so far, from C and C++. */
long allocationCount();

/** Adds "allocs", heap allocations an iteration, to the results of a benchmark. */
class AllocationCounter
{
public:
    explicit AllocationCounter(benchmark::State &state) : m_state(state) { }
    ~AllocationCounter()
    {
        m_state.counters["allocs"] = benchmark::Counter(double(allocationCount() - m_before),
                                                        benchmark::Counter::kAvgIterations);
    }
    AllocationCounter(const AllocationCounter &) = delete;
    AllocationCounter &operator=(const AllocationCounter &) = delete;

private:
    benchmark::State &m_state;
    long m_before = allocationCount();
};
