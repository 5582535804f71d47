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

// The transform of this instrument's panel.
constexpr std::int32_t panelTransform[] = {24916, 0, -591770, 372, 22707, 10494};

void writeTransform(Host& host) {
    for (std::uint32_t i = 0; i < 6; ++i) {
        host.write32(host.at.touchTransformA() + 4 * i,
                     static_cast<std::uint32_t>(panelTransform[i]));
    }
}

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
    writeTransform(host);
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
    writeTransform(host);
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
    writeTransform(host);
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
    writeTransform(host);
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

} // namespace
