#pragma once

#include <benchmark/benchmark.h>

#include <chrono>

// Times two works in turn within one run, so that their ratio holds on a noisy machine, and reports
// it beside the time of the first.
template<typename First, typename Second>
void compareSideBySide(benchmark::State& state, const char* ratioName, First first, Second second) {
    using Clock = std::chrono::steady_clock;
    std::chrono::duration<double> firstTime{0};
    std::chrono::duration<double> secondTime{0};
    while (state.KeepRunning()) {
        const auto start = Clock::now();
        first();
        const auto between = Clock::now();
        second();
        const auto end = Clock::now();
        state.SetIterationTime(std::chrono::duration<double>(between - start).count());
        firstTime += between - start;
        secondTime += end - between;
    }
    state.counters[ratioName] = firstTime / secondTime;
}
