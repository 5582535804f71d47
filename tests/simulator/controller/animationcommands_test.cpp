#include "host.h"
#include "spinner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>

namespace {

using namespace controllertest;
using testing::ElementsAre;
using V = std::vector<std::uint32_t>;

constexpr std::uint32_t orange = 0xFFF26421;

int count(const controller::Picture& picture, std::uint32_t color) {
    int pixels = 0;
    for (const std::uint32_t pixel : picture.pixels) {
        pixels += pixel == color ? 1 : 0;
    }
    return pixels;
}

// How far from a place there is anything but black.
double farthest(const controller::Picture& picture, int fromX, int fromY) {
    double distance = 0;
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            if (picture.at(x, y) != 0xFF000000) {
                distance = std::max(distance, std::hypot(x - fromX, y - fromY));
            }
        }
    }
    return distance;
}

class AnimationCommands : public testing::Test {
protected:
    explicit AnimationCommands(Generation generation = Generation::E3) : host(generation) {
        host.bootWithPanel();
    }
    void showSpinner(std::uint32_t style = 3, std::uint32_t scale = 1) {
        host.send({cmd::dlStart, 0x02FFFFFF, 0x26000007, 0x04F26421, cmd::spinner, pair(236, 196),
                   style | scale << 16U, 0, cmd::swap});
    }
    void useRightTransform() {
        const std::int32_t factors[] = {24916, 0, -591770, 372, 22707, 10494};
        for (std::uint32_t i = 0; i < 6; ++i) {
            host.write32(host.at.touchTransformA() + 4 * i, static_cast<std::uint32_t>(factors[i]));
        }
    }
    void tap(int x, int y) {
        host.chip.touch(x, y);
        host.waitFrames(3);
        host.chip.release();
        host.waitFrames(3);
    }

    Host host;
};

TEST_F(AnimationCommands, TheSpinnerMovesFrameByFrameInTheCurrentColour) {
    showSpinner();
    host.waitFrames(2);
    EXPECT_TRUE(host.ringIsEmpty());
    std::set<std::vector<std::uint32_t>> pictures;
    for (int i = 0; i < 10; ++i) {
        const controller::Picture& picture = host.chip.frame().picture;
        EXPECT_EQ(picture.at(2, 2), 0xFFFFFFFF) << "the list under it stays";
        EXPECT_GT(count(picture, orange), 500);
        pictures.insert(picture.pixels);
        host.waitFrames(1);
    }
    EXPECT_EQ(pictures.size(), 10U);
}

TEST_F(AnimationCommands, TheSpinnerIsSwappedInOncePerFrame) {
    showSpinner();
    host.waitFrames(1);
    const std::uint32_t before = host.chip.listsSwapped();
    host.waitFrames(5);
    host.send({cmd::swap}); // the host's own list is never shown in between
    host.waitFrames(5);
    EXPECT_EQ(host.chip.listsSwapped(), before + 10);
}

TEST_F(AnimationCommands, NeitherWordsNorDisplayNorSwapEndTheSpinner) {
    showSpinner();
    host.waitFrames(3);
    host.send({0x02000000, 0x26000007, 0, cmd::swap});
    host.waitFrames(3);
    EXPECT_EQ(host.chip.frame().picture.at(2, 2), 0xFFFFFFFF);
    EXPECT_GT(count(host.chip.frame().picture, orange), 500);
}

TEST_F(AnimationCommands, TheSpinnersWordsAreNotCounted) {
    host.send({cmd::dlStart, 0x26000007, cmd::spinner, pair(100, 100), pair(0, 0)});
    host.waitFrames(3);
    EXPECT_EQ(host.read16(host.at.cmdDl()), 4);
    EXPECT_EQ(host.read32(host.at.ramDl()), 0x26000007U);
}

TEST_F(AnimationCommands, ItsPhaseDependsOnTheNumberOfFramesAlone) {
    showSpinner();
    host.waitFrames(17);
    const controller::Picture first = host.chip.frame().picture;
    host.send({cmd::dlStart, 0, cmd::swap});
    host.waitFrames(5);
    showSpinner();
    host.waitFrames(8);
    host.send({0x2D000000});
    host.waitFrames(9);
    EXPECT_TRUE(host.chip.frame().picture == first);
}

TEST_F(AnimationCommands, TheNextListEndsTheSpinner) {
    showSpinner();
    host.waitFrames(3);
    host.send({cmd::dlStart, 0x020000FF, 0x26000007, 0, cmd::swap});
    host.waitFrames(3);
    EXPECT_EQ(count(host.chip.frame().picture, 0xFF0000FF), 480 * 272);
    const std::uint32_t swaps = host.chip.listsSwapped();
    host.waitFrames(3);
    EXPECT_EQ(host.chip.listsSwapped(), swaps);
}

TEST_F(AnimationCommands, StopFreezesTheSpinner) {
    showSpinner();
    host.waitFrames(5);
    host.send({cmd::stop});
    host.waitFrames(1);
    const controller::Picture frozen = host.chip.frame().picture;
    host.waitFrames(5);
    EXPECT_TRUE(host.chip.frame().picture == frozen);
}

TEST_F(AnimationCommands, AResetOfTheCoprocessorEndsTheSpinner) {
    showSpinner();
    host.waitFrames(3);
    host.write8(host.at.cpuReset(), 1);
    host.write8(host.at.cpuReset(), 0);
    host.waitFrames(1);
    const std::uint32_t swaps = host.chip.listsSwapped();
    host.waitFrames(3);
    EXPECT_EQ(host.chip.listsSwapped(), swaps);
}

// Scale 0 is an eighth of the panel's height in radius, 1 half of the panel, 2 all of it.
TEST_F(AnimationCommands, EverySpinnerFillsItsCircleAndStaysInside) {
    for (std::uint32_t style = 0; style < 5; ++style) {
        for (std::uint32_t scale = 0; scale < 3; ++scale) {
            const int radius = 272 / 8 << scale;
            host.send({cmd::dlStart, 0x26000007, 0x04F26421, cmd::spinner, pair(240, 136),
                       style | scale << 16U, 0, cmd::swap});
            for (int frame = 0; frame < 3; ++frame) {
                host.waitFrames(30);
                const controller::Picture& picture = host.chip.frame().picture;
                EXPECT_GT(count(picture, orange), 10) << style << ' ' << scale;
                const double reach = farthest(picture, 240, 136);
                EXPECT_GT(reach, 0.75 * radius) << style << ' ' << scale;
                EXPECT_LT(reach, radius + 2) << style << ' ' << scale;
            }
        }
    }
}

TEST_F(AnimationCommands, ASpinnerBehindAFullListIsAFault) {
    host.send({cmd::dlStart});
    host.send(V(1020, 0x2D000000));
    host.send(V(1020, 0x2D000000));
    host.send({cmd::spinner, pair(100, 100), pair(0, 0)});
    EXPECT_EQ(host.read16(host.at.cmdRead()), 0xFFF);
}

TEST_F(AnimationCommands, CalibrationWaitsForThreeTouchesAndStoresTheTransform) {
    host.send(V{cmd::dlStart, 0x26000007, cmd::text, pair(240, 136), pair(26, 0x600)} +
              words("Please tap on a dot"));
    const std::uint32_t start = host.read16(host.at.cmdWrite());
    host.send({cmd::calibrate, 0});
    EXPECT_FALSE(host.ringIsEmpty());
    host.waitFrames(3);
    EXPECT_THAT(host.chip.textOnPanel(), ElementsAre("Please tap on a dot"));
    EXPECT_EQ(host.chip.frame().picture.at(48, 27), 0xFFFFFFFF) << "first dot";
    tap(48, 27);
    EXPECT_EQ(host.chip.frame().picture.at(48, 27), 0xFF000000);
    EXPECT_EQ(host.chip.frame().picture.at(432, 136), 0xFFFFFFFF) << "second dot";
    tap(432, 136);
    EXPECT_FALSE(host.ringIsEmpty());
    EXPECT_EQ(host.chip.frame().picture.at(240, 244), 0xFFFFFFFF) << "third dot";
    tap(240, 244);
    EXPECT_TRUE(host.ringIsEmpty());
    EXPECT_NE(host.read32(host.at.ramCmd() + start + 4), 0U);
    // Near the transform the panel is built with.
    const std::int32_t expected[] = {24916, 0, -591770, 372, 22707, 10494};
    const std::int32_t tolerance[] = {60, 60, 40000, 60, 60, 40000};
    for (std::uint32_t i = 0; i < 6; ++i) {
        EXPECT_NEAR(static_cast<std::int32_t>(host.read32(host.at.touchTransformA() + 4 * i)),
                    expected[i], tolerance[i]);
    }
}

TEST_F(AnimationCommands, AFingerKeptDownIsOneTouchForTheCalibration) {
    host.send({cmd::dlStart, 0x26000007, cmd::calibrate, 0});
    host.waitFrames(2);
    host.chip.touch(48, 27);
    host.waitFrames(20);
    EXPECT_EQ(host.chip.frame().picture.at(432, 136), 0xFFFFFFFF) << "still the second dot";
}

TEST_F(AnimationCommands, TheLogoEndsWithBothPointersAtTheStart) {
    host.send({cmd::dlStart, 0x2D000000, cmd::logo});
    host.waitFrames(50);
    EXPECT_FALSE(host.ringIsEmpty());
    EXPECT_EQ(host.chip.frame().picture.at(1, 1), 0xFFFFFFFF);
    host.waitFrames(100);
    EXPECT_EQ(host.read16(host.at.cmdRead()), 0);
    EXPECT_EQ(host.read16(host.at.cmdWrite()), 0);
}

TEST_F(AnimationCommands, SyncWaitsForTheEndOfTheFrame) {
    host.waitFrames(1);
    host.send({cmd::sync});
    EXPECT_FALSE(host.ringIsEmpty());
    host.waitFrames(1);
    EXPECT_TRUE(host.ringIsEmpty());
}

TEST_F(AnimationCommands, TheScreenSaverMovesTheVertexInItsMacro) {
    host.send({cmd::screenSaver});
    host.waitFrames(2);
    const std::uint32_t first = host.read32(host.at.macro0());
    EXPECT_EQ(first >> 30U, 1U);
    host.waitFrames(5);
    EXPECT_NE(host.read32(host.at.macro0()), first);
    host.send({cmd::stop});
    host.waitFrames(1);
    const std::uint32_t last = host.read32(host.at.macro0());
    host.waitFrames(5);
    EXPECT_EQ(host.read32(host.at.macro0()), last);
}

TEST_F(AnimationCommands, ASketchMarksWhereTheFingerGoes) {
    useRightTransform();
    host.send({cmd::memZero, 0, 20000, cmd::sketch, pair(100, 50), pair(80, 40), 0, 3});
    host.chip.touch(110, 60);
    host.waitFrames(3);
    host.chip.touch(20, 20); // outside
    host.waitFrames(3);
    host.chip.release();
    EXPECT_EQ(host.read8(10 * 80 + 10), 0xFF);
    EXPECT_EQ(host.read8(10 * 80 + 11), 0);
    host.send({cmd::stop, cmd::memZero, 0, 20000, cmd::sketch, pair(100, 50), pair(80, 40), 0, 1});
    host.chip.touch(110, 60);
    host.waitFrames(3);
    EXPECT_EQ(host.read8(10 * 10 + 1), 0x20) << "bit 5 of byte 1 in line 10";
    host.chip.touch(108, 60);
    host.waitFrames(3);
    EXPECT_EQ(host.read8(10 * 10 + 1), 0xA0) << "and bit 7";
}

TEST_F(AnimationCommands, AStoppedSketchMarksNothing) {
    useRightTransform();
    host.send({cmd::sketch, pair(100, 50), pair(80, 40), 0, 3, cmd::stop});
    host.chip.touch(110, 60);
    host.waitFrames(3);
    EXPECT_EQ(host.read8(10 * 80 + 10), 0);
}

TEST_F(AnimationCommands, ATrackFollowsTheFingerThatBeganOnIt) {
    useRightTransform();
    host.send({cmd::dlStart, 0x26000007, 0x03000021, 0x0E0000A0, 0x1F000009,
               0x80000000U | 100U << 21 | 100U << 12, 0x80000000U | 300U << 21 | 120U << 12, 0,
               cmd::swap, cmd::track, pair(100, 100), pair(200, 20), 0x21});
    host.waitFrames(2);
    host.chip.touch(150, 110);
    host.waitFrames(3);
    EXPECT_EQ(host.read16(0x309000), 0x21);
    EXPECT_NEAR(host.read16(0x309002), 16384, 200);
    host.chip.touch(250, 200); // off the bar, but still the same touch
    host.waitFrames(3);
    EXPECT_NEAR(host.read16(0x309002), 49152, 200);
    host.chip.release();
    host.waitFrames(2);
    EXPECT_EQ(host.read32(0x309000), 0U);
    host.chip.touch(250, 200); // another touch, that did not begin on the bar
    host.waitFrames(3);
    EXPECT_EQ(host.read32(0x309000), 0U);
}

TEST_F(AnimationCommands, AColdStartForgetsTheTracks) {
    useRightTransform();
    host.send({cmd::dlStart, 0x12000005, 0x26000007, 0, cmd::swap, cmd::track, pair(100, 100),
               pair(200, 20), 5, cmd::coldStart});
    host.waitFrames(2);
    host.chip.touch(150, 110);
    host.waitFrames(3);
    EXPECT_EQ(host.read8(host.at.touchTag()), 5);
    EXPECT_EQ(host.read32(0x309000), 0U);
}

TEST_F(AnimationCommands, ARotaryTrackGivesTheAngle) {
    useRightTransform();
    host.send({cmd::dlStart, 0x12000005, 0x26000007, 0, cmd::swap, cmd::track, pair(240, 136),
               pair(1, 1), 5});
    host.waitFrames(2);
    const auto angleAt = [&](int x, int y) {
        host.chip.touch(x, y);
        host.waitFrames(3);
        return static_cast<int>(host.read16(0x309002));
    };
    EXPECT_NEAR(angleAt(190, 136), 0x4000, 100) << "left";
    EXPECT_NEAR(angleAt(240, 86), 0x8000, 100) << "up";
    EXPECT_NEAR(angleAt(290, 136), 0xC000, 100) << "right";
}

} // namespace
