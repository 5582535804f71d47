// Redraws must not take memory that they do not give back.

#include "App_Common.h"
#include "Gpu_Hal.h"
#include "counterwidget.h"
#include "displaysettings.h"
#include "modelboard.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <malloc.h>

namespace {

constexpr int warmUp = 200;
constexpr int redraws = 10'000;
constexpr std::size_t tolerance = 512; // bytes

class CounterScreen {
public:
    CounterScreen() {
        modelboard::fit(controller::Generation::E3);
        DisplaySettings::getInstance()->setDisplayGeneration(DisplaySettings::EVE_3);
        App_Common_Init(&m_host);
        m_screen.exec();
        m_screen.setStarted(true);
    }

    // Values of every length and form that the screen shows.
    void redraw(int count) {
        const double value = count * 7.0;
        m_screen.updateData({{value, value * 1000, -value / 3, 1.0 / (value + 1)}});
        m_screen.loop();
    }

private:
    Gpu_Hal_Context_t m_host{};
    CounterWidget m_screen{&m_host};
};

std::size_t heapInUse() {
    return mallinfo2().uordblks;
}

TEST(Growth, TenThousandRedrawsOfTheCounterScreenLeaveTheHeapAsItWas) {
    CounterScreen screen;
    for (int count = 0; count < warmUp; ++count) {
        screen.redraw(count);
    }
    const std::size_t before = heapInUse();
    for (int count = 0; count < redraws; ++count) {
        screen.redraw(count);
    }
    const std::size_t after = heapInUse();
    RecordProperty("before", std::to_string(before));
    RecordProperty("after", std::to_string(after));
    EXPECT_LE(after, before + tolerance);
    EXPECT_GT(modelboard::controller().listsSwapped(), static_cast<std::uint32_t>(redraws));
}

} // namespace
