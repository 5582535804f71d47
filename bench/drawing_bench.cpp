// What display lists cost to draw: how time grows with what is drawn, and that the costliest of
// lists stay below a tenth of a second.

#include "costlylists.h"
#include "scanner.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

namespace {

using namespace controller;
using namespace controller::words;

// Draws the list again and again, from its beginning.
void draw(benchmark::State& state, int width, int height, const std::vector<std::uint32_t>& list) {
    Scanner scanner;
    std::int64_t work = 0;
    while (state.KeepRunning()) {
        scanner.engine().forget();
        work = scanner.scan(width, height, list).work;
    }
    state.counters["counted_ms"] = static_cast<double>(work) / 1e6;
}

void registerCostlyLists() {
    for (const CostlyList& list : costlyLists()) {
        for (const int side : {1, 272, 2048}) {
            const int width = side == 272 ? 480 : side;
            benchmark::RegisterBenchmark(
                ("costly/" + list.name + "/" + std::to_string(width) + "x" + std::to_string(side))
                    .c_str(),
                [=](benchmark::State& state) { draw(state, width, side, list.words); })
                ->Unit(benchmark::kMillisecond);
        }
    }
}
[[maybe_unused]] const bool registered = (registerCostlyLists(), true);

} // namespace
