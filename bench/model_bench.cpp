// What the controller model costs: frames of the program's screens, from the bus to the picture.

#include "App_Common.h"
#include "Gpu_Hal.h"
#include "counterwidget.h"
#include "displaysettings.h"
#include "memorylayout.h"
#include "modelboard.h"
#include "qpaintercounter.h"
#include "scanner.h"
#include "sidebyside.h"
#include "waitforserver.h"

#include <QImage>

#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

namespace {

constexpr controller::Nanoseconds frameTime = 1'000'000'000 / 60;

// The counter screen on a controller model that has been brought up as on the instrument.
class CounterScreenOnModel {
public:
    CounterScreenOnModel() {
        modelboard::fit(controller::Generation::E3);
        DisplaySettings::getInstance()->autoDetectDisplayGeneration();
        App_Common_Init(&m_host);
        m_screen.exec();
    }

    // A redraw with new data and the picture that it gives.
    void drawFrame() {
        m_count = m_count < 9999 ? m_count + 1 : 1000; // four digits, all of them shown
        m_screen.updateData({{m_count, m_count, m_count, m_count}});
        m_screen.loop();
        modelboard::pass(frameTime);
        benchmark::DoNotOptimize(modelboard::controller().frame().picture.pixels.data());
    }

private:
    Gpu_Hal_Context_t m_host{};
    CounterWidget m_screen{&m_host};
    double m_count = 1000;
};

void modelFrameBesideQPainter(benchmark::State& state) {
    CounterScreenOnModel screen;
    QImage image(480, 272, QImage::Format_RGB32);
    compareSideBySide(
        state, "times_QPainter", [&] { screen.drawFrame(); },
        [&] {
            paintCounterScreen(image, {48210, 20114, 7031, 1205});
        });
}
BENCHMARK(modelFrameBesideQPainter)->UseManualTime()->Unit(benchmark::kMillisecond);

// The list of the counter screen on the model, as the screen before the last redraw had it.
std::vector<std::uint32_t> counterList() {
    CounterScreenOnModel screen;
    screen.drawFrame();
    screen.drawFrame();
    std::vector<std::uint32_t> list(controller::displayListWords);
    std::uint32_t address = controller::memoryLayout(controller::Generation::E3).displayList.base;
    for (std::uint32_t& word : list) {
        word = modelboard::controller().peek32(address);
        address += 4;
    }
    return list;
}

// The same picture by an engine that has never drawn any of it.
void firstFrameBesideQPainter(benchmark::State& state) {
    const std::vector<std::uint32_t> list = counterList();
    controller::Scanner scanner;
    QImage image(480, 272, QImage::Format_RGB32);
    compareSideBySide(
        state, "times_QPainter",
        [&] {
            scanner.engine().forget();
            benchmark::DoNotOptimize(scanner.scan(480, 272, list).picture.pixels.data());
        },
        [&] {
            paintCounterScreen(image, {48210, 20114, 7031, 1205});
        });
}
BENCHMARK(firstFrameBesideQPainter)->UseManualTime()->Unit(benchmark::kMillisecond);

// A frame that is looked at when nothing has changed but memory that it does not read.
void unchangedFrame(benchmark::State& state) {
    CounterScreenOnModel screen;
    screen.drawFrame();
    std::uint8_t value = 0;
    while (state.KeepRunning()) {
        modelboard::controller().setChipSelect(false, modelboard::now());
        for (const std::uint8_t byte :
             {std::uint8_t{0x80}, std::uint8_t{0x80}, std::uint8_t{0}, ++value}) {
            modelboard::controller().exchange(byte, modelboard::now());
        }
        modelboard::controller().setChipSelect(true, modelboard::now());
        benchmark::DoNotOptimize(modelboard::controller().frame().picture.pixels.data());
    }
}
BENCHMARK(unchangedFrame)->Unit(benchmark::kMicrosecond);

// Cores that `drawFrame` would need 60 times a second.
template<typename DrawFrame>
void at60FramesPerSecond(benchmark::State& state, DrawFrame drawFrame) {
    while (state.KeepRunning()) {
        drawFrame();
    }
    state.counters["cores_at_60fps"] =
        benchmark::Counter(static_cast<double>(state.iterations()) / 60.0,
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void spinnerAt60FramesPerSecond(benchmark::State& state) {
    modelboard::fit(controller::Generation::E3);
    DisplaySettings::getInstance()->autoDetectDisplayGeneration();
    Gpu_Hal_Context_t host{};
    App_Common_Init(&host);
    WaitForServer screen(&host);
    screen.exec();
    at60FramesPerSecond(state, [] {
        modelboard::pass(frameTime);
        benchmark::DoNotOptimize(modelboard::controller().frame().picture.pixels.data());
    });
}
BENCHMARK(spinnerAt60FramesPerSecond)->Unit(benchmark::kMillisecond);

void modelAt60FramesPerSecond(benchmark::State& state) {
    CounterScreenOnModel screen;
    at60FramesPerSecond(state, [&] { screen.drawFrame(); });
}
BENCHMARK(modelAt60FramesPerSecond)->Unit(benchmark::kMillisecond);

} // namespace
