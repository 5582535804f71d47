#include "host.h"

#include <gtest/gtest.h>

#include <tuple>

namespace {

using namespace controllertest;
using V = std::vector<std::uint32_t>;

constexpr std::uint32_t red = 0xFFFF0000;
constexpr int panelWidth = 480;
constexpr int panelHeight = 272;

std::uint32_t vertexAt(int x, int y) {
    return 0x80000000U | static_cast<std::uint32_t>(x) << 21U |
           static_cast<std::uint32_t>(y) << 12U;
}

// A red square of 4 pixels with tag 9, its top left corner at (10, 20).
V picture() {
    return {cmd::dlStart,     0x26000007,       0x04FF0000, 0x03000009, 0x1F000009,
            vertexAt(10, 20), vertexAt(14, 24), 0x21000000, 0x00000000, cmd::swap};
}

// Where REG_ROTATE puts the picture's pixel (11, 21) on the panel.
struct Turned {
    std::uint32_t rotate;
    int x;
    int y;
};

class Rotation : public testing::TestWithParam<std::tuple<Generation, Turned>> {
protected:
    Rotation() : host(std::get<0>(GetParam())), expected(std::get<1>(GetParam())) {
        host.bootWithPanel();
        host.calibrate();
    }
    void show() {
        host.send(picture());
        host.waitFrames(2);
    }
    std::int16_t touchX() {
        return static_cast<std::int16_t>(host.read32(host.at.touchTagXy()) >> 16U);
    }
    std::int16_t touchY() { return static_cast<std::int16_t>(host.read32(host.at.touchTagXy())); }

    Host host;
    Turned expected;
};

// Portrait turns a quarter clockwise; the picture is then 272 wide and 480 high.
constexpr Turned turns[] = {
    {0, 11, 21},
    {1, panelWidth - 1 - 11, panelHeight - 1 - 21},
    {2, panelWidth - 1 - 21, 11},
    {3, 21, panelHeight - 1 - 11},
    {4, panelWidth - 1 - 11, 21},
    {5, 11, panelHeight - 1 - 21},
    {6, panelWidth - 1 - 21, panelHeight - 1 - 11},
    {7, 21, 11},
};

INSTANTIATE_TEST_SUITE_P(EveryTurn, Rotation,
                         testing::Combine(testing::Values(Generation::E2, Generation::E3),
                                          testing::ValuesIn(turns)));

TEST_P(Rotation, ThePictureTurns) {
    host.send({cmd::setRotate, expected.rotate});
    show();
    EXPECT_EQ(host.read32(0x302058), expected.rotate);
    EXPECT_EQ(host.chip.frame().picture.width, panelWidth);
    EXPECT_EQ(host.chip.frame().picture.height, panelHeight);
    EXPECT_EQ(host.chip.frame().picture.at(expected.x, expected.y), red);
    const auto index = static_cast<std::size_t>(expected.y * panelWidth + expected.x);
    EXPECT_EQ(host.chip.frame().tags[index], 9);
    EXPECT_TRUE(host.seen.complaints.empty());
}

TEST_P(Rotation, TouchesAndTagsAreInThePicturesCoordinates) {
    host.send({cmd::setRotate, 6}); // another turn first: it must be undone
    host.send({cmd::setRotate, expected.rotate});
    show();
    host.chip.touch(expected.x, expected.y);
    host.waitFrames(2);
    EXPECT_EQ(touchX(), 11);
    EXPECT_EQ(touchY(), 21);
    EXPECT_EQ(host.read8(host.at.touchTag()), 9);
}

TEST_P(Rotation, TracksAreInThePicturesCoordinates) {
    host.send({cmd::setRotate, expected.rotate});
    host.send({cmd::track, pair(0, 21), pair(22, 1), 9});
    show();
    host.chip.touch(expected.x, expected.y);
    host.waitFrames(2);
    EXPECT_EQ(host.read32(0x309000), 0x80000009U) << "half of the way";
}

TEST_P(Rotation, ASnapshotIsOfThePictureAsItIsDrawn) {
    host.send({cmd::setRotate, expected.rotate});
    show();
    host.send({cmd::snapshot2, 0x20, 1000, pair(11, 21), pair(1, 1)});
    EXPECT_EQ(host.read32(1000), red);
}

TEST_P(Rotation, TheRegisterAloneLeavesTheTouchesWhereTheyWere) {
    host.write8(0x302058, static_cast<std::uint8_t>(expected.rotate));
    show();
    EXPECT_EQ(host.chip.frame().picture.at(expected.x, expected.y), red);
    host.chip.touch(300, 100);
    host.waitFrames(2);
    EXPECT_EQ(touchX(), 300);
    EXPECT_EQ(touchY(), 100);
}

TEST(RotationOfTheFirstGeneration, IsUpsideDownOnly) {
    Host host(Generation::E1);
    host.bootWithPanel();
    host.write8(0x102454, 1);
    host.send(picture());
    host.waitFrames(2);
    EXPECT_EQ(host.chip.frame().picture.at(panelWidth - 1 - 11, panelHeight - 1 - 21), red);
    EXPECT_TRUE(host.seen.complaints.empty());
    host.write8(0x102454, 2);
    EXPECT_TRUE(host.seen.complainedAbout("upside down only"));
    EXPECT_EQ(host.chip.frame().picture.at(11, 21), red);
    EXPECT_EQ(host.chip.frame().picture.width, panelWidth);
}

TEST(RotationOfWidgets, TheyAreAsWideAsThePicture) {
    Host host(Generation::E3);
    host.bootWithPanel();
    host.send({cmd::setRotate, 2, cmd::dlStart, 0x26000007});
    // Along the picture's height, which is the panel's width.
    host.send({cmd::gradient, pair(0, 0), 0x000000, pair(0, 479), 0x0000FF, 0, cmd::swap});
    host.waitFrames(2);
    EXPECT_NEAR(host.chip.frame().picture.at(479, 100) & 0xFF, 0, 2);
    EXPECT_NEAR(host.chip.frame().picture.at(240, 100) & 0xFF, 127, 2);
    EXPECT_NEAR(host.chip.frame().picture.at(0, 100) & 0xFF, 255, 2);
}

} // namespace
