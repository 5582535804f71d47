// What the controller model costs: one frame of the counter screen, from the bus to the picture.

#include "App_Common.h"
#include "Gpu_Hal.h"
#include "counterwidget.h"
#include "displaysettings.h"
#include "modelboard.h"
#include "qpaintercounter.h"
#include "sidebyside.h"

#include <QImage>

#include <benchmark/benchmark.h>

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

void modelAt60FramesPerSecond(benchmark::State& state) {
    CounterScreenOnModel screen;
    while (state.KeepRunning()) {
        screen.drawFrame();
    }
    state.counters["cores_at_60fps"] =
        benchmark::Counter(static_cast<double>(state.iterations()) / 60.0,
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(modelAt60FramesPerSecond)->Unit(benchmark::kMillisecond);

} // namespace
