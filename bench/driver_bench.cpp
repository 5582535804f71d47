// What the application itself costs: one redraw of the counter screen and one registry lookup.
// The board behind it is idle and free.

#include "Gpu_Hal.h"
#include "counterwidget.h"
#include "displaysettings.h"
#include "idleboard.h"
#include "qpaintercounter.h"
#include "sidebyside.h"

#include <QImage>

#include <benchmark/benchmark.h>

namespace {

constexpr DataReaderData sample = {{48210, 20114, 7031, 1205}};

// A counter screen that has been shown and waits for its next redraw.
class ShownCounterScreen {
public:
    ShownCounterScreen() {
        DisplaySettings::getInstance()->setDisplayGeneration(DisplaySettings::EVE_3);
        Gpu_Hal_Init();
        Gpu_Hal_Open(&m_host);
        m_screen.exec();
    }

    // One pass of the screen's loop with new data: touch read and redraw.
    void redraw() {
        m_screen.updateData(sample);
        m_screen.loop();
    }

private:
    Gpu_Hal_Context_t m_host{};
    CounterWidget m_screen{&m_host};
};

void counterRedrawTraffic(benchmark::State& state) {
    ShownCounterScreen screen;
    idleboard::reset();
    while (state.KeepRunning()) {
        screen.redraw();
    }
    const auto traffic = idleboard::traffic();
    const auto passes = static_cast<double>(state.iterations());
    state.counters["messages"] = static_cast<double>(traffic.messages) / passes;
    state.counters["bytes"] = static_cast<double>(traffic.bytes) / passes;
}
BENCHMARK(counterRedrawTraffic);

void counterRedrawBesideQPainter(benchmark::State& state) {
    ShownCounterScreen screen;
    QImage image(480, 272, QImage::Format_RGB32);
    compareSideBySide(
        state, "of_QPainter", [&] { screen.redraw(); },
        [&] {
            paintCounterScreen(image, {48210, 20114, 7031, 1205});
        });
}
BENCHMARK(counterRedrawBesideQPainter)->UseManualTime();

void registryLookup(benchmark::State& state) {
    DisplaySettings* settings = DisplaySettings::getInstance();
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize((*settings)[QStringLiteral("__REG_CMD_WRITE")]);
    }
}
BENCHMARK(registryLookup);

} // namespace
