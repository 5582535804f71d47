// What display lists cost to draw: how time grows with what is drawn, and that the costliest of
// lists stay below a tenth of a second.

#include "costlylists.h"
#include "scanner.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace {

using namespace controller;
using namespace controller::listwords;

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

using List = std::vector<std::uint32_t>;

constexpr int panelWidth = 480;
constexpr int panelHeight = 272;

List rectangles(int count, int width, int height) {
    List list = {clearAll, dl::lineWidth(16), dl::colorA(128), begin(primitive::Rects)};
    for (int i = 0; i < count; ++i) {
        list.push_back(vertex2f(16, 16));
        list.push_back(vertex2f(16 * (width - 1), 16 * (height - 1)));
    }
    return list;
}

// --- how time grows

void listOfWords(benchmark::State& state) {
    List list = {clearAll};
    while (list.size() < static_cast<std::size_t>(state.range(0))) {
        list.push_back(dl::colorRgb(static_cast<std::uint32_t>(list.size())));
    }
    draw(state, panelWidth, panelHeight, list);
}
BENCHMARK(listOfWords)->Arg(1)->Arg(500)->Arg(1000)->Arg(2000)->Unit(benchmark::kMicrosecond);

void listOfLetters(benchmark::State& state) {
    List list = {clearAll, begin(primitive::Bitmaps)};
    for (std::uint32_t i = 0; list.size() < static_cast<std::size_t>(state.range(0)) + 2; ++i) {
        list.push_back(dl::vertex2ii(i * 11 % 460, i * 7 % 250, 26, 'a' + i % 26));
    }
    draw(state, panelWidth, panelHeight, list);
}
BENCHMARK(listOfLetters)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);

void coveredPercent(benchmark::State& state) {
    const int height = panelHeight * static_cast<int>(state.range(0)) / 100;
    draw(state, panelWidth, panelHeight, rectangles(1, panelWidth, height));
}
BENCHMARK(coveredPercent)->Arg(10)->Arg(50)->Arg(100)->Unit(benchmark::kMicrosecond);

void layers(benchmark::State& state) {
    draw(state, panelWidth, panelHeight,
         rectangles(static_cast<int>(state.range(0)), panelWidth, panelHeight));
}
BENCHMARK(layers)->Arg(1)->Arg(10)->Arg(100)->Unit(benchmark::kMicrosecond);

// --- one layer over the whole panel, by kind

void registerLayers() {
    const auto add = [](const char* name, const List& list) {
        benchmark::RegisterBenchmark(
            (std::string("layer/") + name).c_str(),
            [=](benchmark::State& state) { draw(state, panelWidth, panelHeight, list); })
            ->Unit(benchmark::kMicrosecond);
    };
    const List bitmap = {clearAll, begin(primitive::Bitmaps), dl::vertex2ii(0, 0, 1, 0)};
    const auto turned = [&](std::uint32_t format, std::uint32_t flags) {
        return costly::turnedBitmap(format, flags) + bitmap;
    };
    const std::uint32_t alphaTest = word(opcode::AlphaFunc, test::Greater << 8 | 3);
    add("cleared", {clearAll});
    add("opaque", {clearAll, begin(primitive::Rects), vertex2f(0, 0), vertex2f(7680, 4352)});
    add("translucent", rectangles(1, panelWidth, panelHeight));
    add("turned L8", turned(format::L8, repeatX | repeatY));
    add("turned ARGB4", turned(format::Argb4, repeatX | repeatY));
    add("turned PALETTED8", turned(format::Paletted8, repeatX | repeatY));
    add("turned ARGB4 bilinear", turned(format::Argb4, bilinear | repeatX | repeatY));
    add("turned ARGB4 alpha test", List{alphaTest} + turned(format::Argb4, repeatX | repeatY));
    add("disc", {clearAll, pointSize(8191), begin(primitive::Points), vertex2f(3840, 2176)});
}
[[maybe_unused]] const bool layersRegistered = (registerLayers(), true);

// --- the costliest

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
[[maybe_unused]] const bool costlyRegistered = (registerCostlyLists(), true);

} // namespace
