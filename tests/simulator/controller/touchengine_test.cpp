#include "host.h"
#include "touchengine.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace controllertest;
using controller::Point;
using controller::Register;
using controller::Registers;
using controller::TouchEngine;

TEST(TouchEngine, EveryPixelComesBackThroughThePanelsOwnTransform) {
    Registers registers(Generation::E3);
    const Register factors[] = {Register::TouchTransformA, Register::TouchTransformB,
                                Register::TouchTransformC, Register::TouchTransformD,
                                Register::TouchTransformE, Register::TouchTransformF};
    for (std::size_t i = 0; i < 6; ++i) {
        registers.set(factors[i], static_cast<std::uint32_t>(panelTransform[i]));
    }
    for (int y = 0; y < 272; ++y) {
        for (int x = 0; x < 480; ++x) {
            const Point screen =
                TouchEngine::screenPosition(registers, TouchEngine::rawPosition({x, y}));
            ASSERT_EQ(screen.x, x) << x << ',' << y;
            // Raw coordinates are not negative: up to seven rows at the top are out of reach.
            const int top = (372 * TouchEngine::rawPosition({x, y}).x + 10494) / 65536;
            ASSERT_EQ(screen.y, std::max(y, top)) << x << ',' << y;
        }
    }
}

TEST(TouchEngine, RawCoordinatesAreThePanelsOwn) {
    // x = (24916 rx - 591770) / 65536, y = (372 rx + 22707 ry + 10494) / 65536, at the pixel's
    // middle, by hand.
    const Point raw = TouchEngine::rawPosition({240, 136});
    EXPECT_EQ(raw.x, 656);
    EXPECT_EQ(raw.y, 383);
    const Point corner = TouchEngine::rawPosition({479, 271});
    EXPECT_NEAR(corner.x, 1285, 1);
    EXPECT_NEAR(corner.y, 762, 1);
}

class TouchOfEveryGeneration : public testing::TestWithParam<Generation> {};

INSTANTIATE_TEST_SUITE_P(TouchEngine, TouchOfEveryGeneration,
                         testing::Values(Generation::E1, Generation::E2, Generation::E3));

TEST_P(TouchOfEveryGeneration, UntouchedRegistersSaySo) {
    Host host(GetParam());
    host.bootWithPanel();
    host.waitFrames(2);
    EXPECT_EQ(host.read32(host.at.touchRawXy()), 0xFFFFFFFFU);
    EXPECT_EQ(host.read32(host.at.touchScreenXy()), 0x80008000U);
    EXPECT_EQ(host.read8(host.at.touchTag()), 0);
}

TEST_P(TouchOfEveryGeneration, ATouchGivesCoordinatesAndTag) {
    Host host(GetParam());
    host.bootWithPanel();
    host.calibrate();
    // Tag 7 on a large point around (100, 50).
    host.send({cmd::dlStart, 0x26000007, 0x03000007, 0x0D000140, 0x1F000002,
               0x80000000U | 100U << 21 | 50U << 12, 0x21000000, 0, cmd::swap});
    host.waitFrames(2);
    host.chip.touch(100, 50);
    host.waitFrames(2);
    EXPECT_EQ(host.read32(host.at.touchScreenXy()), 100U << 16 | 50U);
    EXPECT_EQ(host.read32(host.at.touchTagXy()), 100U << 16 | 50U);
    EXPECT_EQ(host.read8(host.at.touchTag()), 7);
    host.chip.touch(101, 51);
    EXPECT_EQ(host.read32(host.at.touchScreenXy()), 100U << 16 | 50U) << "once per frame";
    host.chip.touch(300, 200);
    host.waitFrames(2);
    EXPECT_EQ(host.read8(host.at.touchTag()), 0) << "cleared background";
    host.chip.release();
    host.waitFrames(2);
    EXPECT_EQ(host.read8(host.at.touchTag()), 0);
    EXPECT_EQ(host.read32(host.at.touchScreenXy()), 0x80008000U);
}

TEST(TouchEngine, TheTagOfTheTouchedPixelChangesWithTheFrame) {
    Host host(Generation::E3);
    host.bootWithPanel();
    host.calibrate();
    host.chip.touch(10, 10);
    const auto showTag = [&](std::uint32_t tag) {
        host.send({cmd::dlStart, 0x12000000U | tag, 0x26000007, 0, cmd::swap});
        host.waitFrames(3);
        return host.read8(host.at.touchTag());
    };
    EXPECT_EQ(showTag(3), 3);
    EXPECT_EQ(showTag(200), 200);
}

TEST(TouchEngine, DrawingWithoutATagIsTag255) {
    Host host(Generation::E3);
    host.bootWithPanel();
    host.calibrate();
    host.send({cmd::dlStart, 0x26000007, cmd::gradient, pair(0, 0), 0, pair(100, 0), 0xFFFFFF, 0,
               cmd::swap});
    host.chip.touch(200, 100);
    host.waitFrames(3);
    EXPECT_EQ(host.read8(host.at.touchTag()), 255);
}

TEST(TouchEngine, AWrongTransformPutsTouchesInTheWrongPlace) {
    Host host(Generation::E3);
    host.bootWithPanel(); // the transform is still the identity
    host.chip.touch(240, 136);
    host.waitFrames(2);
    EXPECT_EQ(host.read32(host.at.touchScreenXy()), 656U << 16 | 383U);
}

TEST(TouchEngine, ATouchOutsideOfThePanelHasNoTag) {
    Host host(Generation::E3);
    host.bootWithPanel();
    host.send({cmd::dlStart, 0x12000009, 0x26000007, 0, cmd::swap});
    host.chip.touch(479, 271); // with the identity far outside
    host.waitFrames(3);
    EXPECT_EQ(host.read8(host.at.touchTag()), 0);
}

TEST(TouchEngine, SwitchedOffItSeesNothing) {
    Host host(Generation::E3);
    host.bootWithPanel();
    host.write8(host.at.touchMode(), 0);
    host.chip.touch(100, 100);
    host.waitFrames(2);
    EXPECT_EQ(host.read32(host.at.touchRawXy()), 0xFFFFFFFFU);
}

TEST(TouchEngine, OneShotSamplesOneFrame) {
    Host host(Generation::E3);
    host.bootWithPanel();
    host.chip.touch(100, 100);
    host.waitFrames(1);
    host.write8(host.at.touchMode(), 1);
    host.waitFrames(1);
    EXPECT_NE(host.read32(host.at.touchRawXy()), 0xFFFFFFFFU);
    EXPECT_EQ(host.read8(host.at.touchMode()), 0);
    host.waitFrames(1);
    EXPECT_EQ(host.read32(host.at.touchRawXy()), 0xFFFFFFFFU);
}

TEST(TouchEngine, AThresholdBelowTheTouchsResistanceHidesIt) {
    Host host(Generation::E3);
    host.bootWithPanel();
    host.write16(0x302118, 500);
    host.chip.touch(100, 100);
    host.waitFrames(2);
    EXPECT_EQ(host.read32(host.at.touchRawXy()), 0xFFFFFFFFU);
    host.write16(0x302118, 1200);
    host.waitFrames(2);
    EXPECT_NE(host.read32(host.at.touchRawXy()), 0xFFFFFFFFU);
}

TEST(TouchEngine, ATouchsResistanceIsAThousandAndMayBeTheThresholdItself) {
    Host host(Generation::E3);
    host.bootWithPanel();
    constexpr std::uint32_t threshold = 0x302118;
    constexpr std::uint32_t resistance = 0x302120;
    host.waitFrames(2);
    EXPECT_EQ(host.read16(resistance), 0x7FFF) << "untouched";
    host.chip.touch(100, 100);
    host.write16(threshold, 999);
    host.waitFrames(2);
    EXPECT_EQ(host.read32(host.at.touchRawXy()), 0xFFFFFFFFU);
    EXPECT_EQ(host.read16(resistance), 0x7FFF) << "hidden";
    host.write16(threshold, 1000);
    host.waitFrames(2);
    EXPECT_NE(host.read32(host.at.touchRawXy()), 0xFFFFFFFFU);
    EXPECT_EQ(host.read16(resistance), 1000);
}

TEST(TouchEngine, ThePollsOfTheTagAreCounted) {
    Host host(Generation::E3);
    host.bootWithPanel();
    host.calibrate();
    host.send({cmd::dlStart, 0x12000009, 0x26000007, 0, cmd::swap});
    host.chip.touch(5, 5);
    host.waitFrames(3);
    EXPECT_EQ(host.chip.touchTagReads(), 0U);
    host.read8(host.at.touchTag());
    host.read8(host.at.touchTag());
    EXPECT_EQ(host.chip.touchTagReads(), 2U);
    EXPECT_EQ(host.chip.lastTouchTagRead(), 9);
    host.chip.peek8(host.at.touchTag());
    EXPECT_EQ(host.chip.touchTagReads(), 2U);
}

// --- five fingers

class Fingers : public testing::TestWithParam<Generation> {
protected:
    Fingers() : host(GetParam()) {
        host.bootWithPanel();
        host.calibrate();
        // Five vertical bars with tags 1 to 5, 96 pixels wide.
        std::vector<std::uint32_t> list = {cmd::dlStart, 0x26000007, 0x1F000009};
        for (std::uint32_t i = 0; i < 5; ++i) {
            list.push_back(0x03000001 + i);
            list.push_back(0x80000000U | (i * 96 + 2) << 21U);
            list.push_back(0x80000000U | (i * 96 + 93) << 21U | 270U << 12U);
        }
        host.send(list + std::vector<std::uint32_t>{0, cmd::swap});
        host.waitFrames(2);
    }
    void showFingers() { host.write8(0x302108, 0); } // CTOUCH_EXTENDED
    void touchAll() {
        for (std::size_t i = 0; i < 5; ++i) {
            host.chip.touch(x(i), y(i), i);
        }
        host.waitFrames(2);
    }
    static int x(std::size_t finger) { return static_cast<int>(finger) * 96 + 40; }
    static int y(std::size_t finger) { return static_cast<int>(finger) * 30 + 50; }
    static std::uint32_t xy(std::size_t finger) { return pair(y(finger), x(finger)); }
    std::uint32_t placeOf(std::size_t finger) {
        constexpr std::uint32_t registers[] = {0x302124, 0x30211C, 0x30218C, 0x302190};
        return finger < 4 ? host.read32(registers[finger])
                          : pair(host.read16(0x302120), host.read16(0x30216C));
    }
    std::uint32_t tagOf(std::uint32_t finger) { return host.read32(0x30212C + 8 * finger); }
    std::uint32_t tagPlaceOf(std::uint32_t finger) { return host.read32(0x302128 + 8 * finger); }

    Host host;
};

INSTANTIATE_TEST_SUITE_P(TouchEngine, Fingers, testing::Values(Generation::E2, Generation::E3));

TEST_P(Fingers, AllFiveShowWithTheirTags) {
    showFingers();
    touchAll();
    for (std::uint32_t i = 0; i < 5; ++i) {
        EXPECT_EQ(placeOf(i), xy(i)) << i;
        EXPECT_EQ(tagPlaceOf(i), xy(i)) << i;
        EXPECT_EQ(tagOf(i), i + 1) << i;
    }
}

TEST_P(Fingers, EachGoesByItself) {
    showFingers();
    touchAll();
    host.chip.release(0);
    host.chip.release(3);
    host.waitFrames(2);
    for (const std::uint32_t gone : {0U, 3U}) {
        EXPECT_EQ(placeOf(gone), 0x80008000U) << gone;
        EXPECT_EQ(tagPlaceOf(gone), 0x80008000U) << gone;
        EXPECT_EQ(tagOf(gone), 0U) << gone;
    }
    EXPECT_EQ(tagOf(1), 2U);
    EXPECT_EQ(tagOf(4), 5U);
    host.chip.release(4);
    host.waitFrames(2);
    EXPECT_EQ(placeOf(4), 0x80008000U);
}

TEST_P(Fingers, OnlyTheFirstShowsOtherwise) {
    touchAll();
    EXPECT_EQ(placeOf(0), xy(0));
    EXPECT_EQ(tagOf(0), 1U);
    EXPECT_NE(placeOf(1), xy(1)) << "raw coordinates of the first";
    for (std::uint32_t i = 1; i < 5; ++i) {
        EXPECT_EQ(tagPlaceOf(i), 0x80008000U) << i;
        EXPECT_EQ(tagOf(i), 0U) << i;
    }
}

TEST_P(Fingers, EachHasItsTrack) {
    showFingers();
    for (std::uint32_t i = 0; i < 5; ++i) {
        host.send({cmd::track, pair(static_cast<int>(i) * 96, 0), pair(80, 10), i + 1});
    }
    touchAll();
    for (std::uint32_t i = 0; i < 5; ++i) {
        EXPECT_EQ(host.read32(0x309000 + 4 * i), 0x80000000U | (i + 1)) << "half of each";
    }
    host.chip.release(2);
    host.waitFrames(2);
    EXPECT_EQ(host.read32(0x309008), 0U);
    EXPECT_EQ(host.read32(0x30900C), 0x80000004U);
}

TEST_P(Fingers, CalibrationNeedsTheRawCoordinatesOfOne) {
    showFingers();
    const std::uint32_t start = host.read16(host.at.cmdWrite());
    host.send({cmd::calibrate, 0xEEEEEEEE});
    EXPECT_TRUE(host.ringIsEmpty());
    EXPECT_EQ(host.read32(host.at.ramCmd() + start + 4), 0U);
    EXPECT_TRUE(host.seen.complainedAbout("CALIBRATE: no raw coordinates"));
}

TEST(TouchEngine, TheFirstGenerationHasOneFinger) {
    Host host(Generation::E1);
    host.bootWithPanel();
    host.calibrate();
    host.write8(0x1024F4, 0); // REG_TOUCH_ADC_MODE
    host.chip.touch(100, 100);
    host.chip.touch(200, 200, 1);
    host.waitFrames(2);
    EXPECT_EQ(host.read32(host.at.touchScreenXy()), pair(100, 100));
    const Point raw = TouchEngine::rawPosition({100, 100});
    EXPECT_EQ(host.read32(host.at.touchRawXy()), pair(raw.y, raw.x));
}

} // namespace
