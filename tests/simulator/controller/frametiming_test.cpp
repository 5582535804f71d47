#include "host.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace controllertest;
using testing::ElementsAre;

// 5 clocks a pixel, 548 x 292 pixels a frame, at 60 MHz.
constexpr Nanoseconds frameTime = 800'080ULL * 1'000'000'000ULL / 60'000'000ULL;

TEST(FrameTiming, NothingIsScannedWhileThePixelClockIsOff) {
    Host host(Generation::E3);
    host.boot();
    host.wait(1000 * ms);
    EXPECT_EQ(host.chip.framesScanned(), 0U);
    EXPECT_FALSE(host.chip.panel().scanning);
    EXPECT_EQ(host.chip.panel().framesPerSecond, 0);
}

TEST(FrameTiming, FramesFollowTheTimingRegisters) {
    Host host(Generation::E3);
    host.bootWithPanel();
    const Nanoseconds start = host.now;
    host.wait(1000 * ms);
    EXPECT_EQ(host.chip.framesScanned(), 74U);
    EXPECT_NEAR(host.chip.panel().framesPerSecond, 75, 0.1);
    ASSERT_GE(host.seen.frameTimes.size(), 2U);
    EXPECT_EQ(host.seen.frameTimes[1] - host.seen.frameTimes[0], frameTime);
    EXPECT_NEAR(static_cast<double>(host.seen.frameTimes[0] - start),
                static_cast<double>(frameTime), 2e3);
    EXPECT_EQ(host.read32(host.at.frames()), 74U);
}

TEST(FrameTiming, TheFirstGenerationRunsAtItsOwnClock) {
    Host host(Generation::E1);
    host.bootWithPanel();
    EXPECT_NEAR(host.chip.panel().framesPerSecond, 60, 0.1);
}

TEST(FrameTiming, ALongPauseIsWalkedFrameByFrame) {
    Host host(Generation::E3);
    host.bootWithPanel();
    host.wait(100 * ms);
    EXPECT_THAT(host.seen.frames, ElementsAre(1, 2, 3, 4, 5, 6, 7));
}

TEST(FrameTiming, ASwapHappensAtTheEndOfTheFrame) {
    Host host(Generation::E3);
    host.bootWithPanel();
    host.waitFrames(1);
    host.write(host.at.ramDl(), {0, 0, 0xFF, 2, 7, 0, 0, 0x26, 0, 0, 0, 0});
    host.write8(host.at.dlSwap(), 2);
    EXPECT_EQ(host.read8(host.at.dlSwap()), 2);
    EXPECT_EQ(host.chip.listsSwapped(), 0U);
    host.wait(frameTime);
    EXPECT_EQ(host.read8(host.at.dlSwap()), 0);
    ASSERT_EQ(host.seen.swapTimes.size(), 1U);
    EXPECT_EQ(host.seen.swapTimes[0], host.seen.frameTimes[1]);
    EXPECT_EQ(host.chip.frame().picture.at(5, 5), 0xFFFF0000);
}

TEST(FrameTiming, ALineSwapThatIsTakenBackDoesNotHappen) {
    Host host(Generation::E3);
    host.bootWithPanel();
    host.waitFrames(1);
    const std::uint32_t swapped = host.chip.listsSwapped();
    host.write8(host.at.dlSwap(), 1);
    host.write8(host.at.dlSwap(), 0);
    host.waitFrames(2);
    EXPECT_EQ(host.chip.listsSwapped(), swapped);
}

TEST(FrameTiming, ALineSwapDoesNotWaitForTheFrame) {
    Host host(Generation::E3);
    host.bootWithPanel();
    host.waitFrames(1);
    host.write8(host.at.dlSwap(), 1);
    host.wait(ms);
    EXPECT_EQ(host.read8(host.at.dlSwap()), 0);
    EXPECT_EQ(host.chip.framesScanned(), 1U);
}

TEST(FrameTiming, WithoutAScanASwapCompletesAtOnce) {
    Host host(Generation::E3);
    host.boot();
    host.write8(host.at.dlSwap(), 2);
    EXPECT_EQ(host.read8(host.at.dlSwap()), 0);
    EXPECT_EQ(host.chip.listsSwapped(), 1U);
}

TEST(FrameTiming, StoppingTheScanCompletesAPendingSwap) {
    Host host(Generation::E3);
    host.bootWithPanel();
    host.write8(host.at.dlSwap(), 2);
    host.write8(host.at.pclk(), 0);
    EXPECT_EQ(host.read8(host.at.dlSwap()), 0);
}

TEST(FrameTiming, ASwapExchangesTheBuffersAndCopiesNothing) {
    Host host(Generation::E3);
    host.boot();
    host.write32(host.at.ramDl(), 0x11111111);
    host.write8(host.at.dlSwap(), 2);
    EXPECT_EQ(host.read32(host.at.ramDl()), 0U);
    host.write32(host.at.ramDl(), 0x22222222);
    host.write8(host.at.dlSwap(), 2);
    EXPECT_EQ(host.read32(host.at.ramDl()), 0x11111111U) << "the list before the last one";
}

TEST(FrameTiming, SenselessTimingsDoNotHoldUpTheModel) {
    Host host(Generation::E3);
    host.boot();
    host.write16(host.at.hCycle(), 1);
    host.write8(host.at.pclk(), 1);
    host.wait(1000 * ms);
    EXPECT_LE(host.chip.framesScanned(), 1000U);
    host.write16(host.at.hCycle(), 0);
    EXPECT_FALSE(host.chip.panel().scanning);
}

TEST(FrameTiming, ThePanelShowsItsDisplayLineAndBacklight) {
    Host e1(Generation::E1);
    e1.boot();
    EXPECT_FALSE(e1.chip.panel().displayOn);
    e1.write8(0x102490, 0xFF);
    EXPECT_TRUE(e1.chip.panel().displayOn);
    e1.write8(0x10248C, 0x00); // the line as an input
    EXPECT_FALSE(e1.chip.panel().displayOn);

    Host e3(Generation::E3);
    e3.boot();
    EXPECT_TRUE(e3.chip.panel().displayOn) << "high after reset";
    e3.write16(0x30209C, 0x7FFF);
    EXPECT_FALSE(e3.chip.panel().displayOn);
    EXPECT_EQ(e3.chip.panel().backlight, 128);
    e3.write8(0x3020D4, 40);
    EXPECT_EQ(e3.chip.panel().backlight, 40);
    e3.chip.setPowerDown(false, e3.now);
    EXPECT_FALSE(e3.chip.panel().displayOn);
}

TEST(FrameTiming, InterruptFlagsTellOfSwapsAndAreClearedByReading) {
    Host host(Generation::E3);
    host.boot();
    host.write8(host.at.dlSwap(), 2);
    EXPECT_EQ(host.read8(host.at.intFlags()) & 1, 1);
    EXPECT_EQ(host.read8(host.at.intFlags()), 0);
}

} // namespace
