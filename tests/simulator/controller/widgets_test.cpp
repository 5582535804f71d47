#include "host.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace controllertest;
using testing::ElementsAre;
using V = std::vector<std::uint32_t>;

constexpr std::uint32_t flat = 0x100;
constexpr std::uint32_t black = 0xFF000000;
constexpr std::uint32_t white = 0xFFFFFFFF;
constexpr std::uint32_t foreground = 0xFF003870;
constexpr std::uint32_t background = 0xFF002040;
constexpr std::uint32_t light = 0xFF3F6993; // a quarter of the way from the foreground to white

// Where on the panel a widget shows which of the colours that it has from the start.
class Widgets : public testing::Test {
protected:
    Widgets() { host.bootWithPanel(); }
    void show(const V& commands) {
        host.send(V{cmd::dlStart, 0x26000007} + commands + V{0, cmd::swap});
        host.waitFrames(2);
    }
    std::uint32_t at(int x, int y) { return host.chip.frame().picture.at(x, y); }

    Host host{Generation::E3};
};

TEST_F(Widgets, AScrollbarsBarStandsAtItsPlaceAndHasItsSize) {
    // From a quarter to half of 200 pixels.
    show({cmd::scrollbar, pair(100, 100), pair(200, 16), pair(flat, 25), pair(25, 100)});
    EXPECT_EQ(at(110, 108), background);
    EXPECT_EQ(at(140, 108), background);
    EXPECT_EQ(at(160, 108), foreground);
    EXPECT_EQ(at(190, 108), foreground);
    EXPECT_EQ(at(210, 108), background);
    EXPECT_EQ(at(90, 108), black);
}

TEST_F(Widgets, AnUprightScrollbarGoesDown) {
    show({cmd::scrollbar, pair(100, 20), pair(16, 200), pair(flat, 75), pair(25, 100)});
    EXPECT_EQ(at(108, 100), background);
    EXPECT_EQ(at(108, 200), foreground);
}

TEST_F(Widgets, ATogglesKnobIsLeftWhenOffAndRightWhenOn) {
    const V toggle = {cmd::toggle, pair(100, 100), pair(60, 27), pair(flat, 0)};
    show(toggle + words("on\xFFoff"));
    EXPECT_EQ(at(100, 110), foreground);
    EXPECT_NE(at(160, 104), foreground);
    EXPECT_THAT(host.chip.textOnPanel(), ElementsAre("on")) << "the first label is for off";
    show(V{cmd::toggle, pair(100, 100), pair(60, 27), pair(flat, 65535)} + words("on\xFFoff"));
    EXPECT_EQ(at(160, 110), foreground);
    EXPECT_NE(at(100, 104), foreground);
    EXPECT_THAT(host.chip.textOnPanel(), ElementsAre("off"));
}

TEST_F(Widgets, AGaugesPointerSweepsThreeQuartersOfATurn) {
    constexpr std::uint32_t noTicks = 0x2000;
    const auto gauge = [&](int value) {
        show({cmd::gauge, pair(240, 136), pair(100, flat | noTicks), pair(4, 2), pair(value, 100)});
    };
    gauge(50);
    EXPECT_EQ(at(240, 76), light) << "half is up";
    EXPECT_EQ(at(240, 196), background);
    gauge(0);
    EXPECT_EQ(at(240 - 42, 136 + 42), light) << "nothing is down left";
    gauge(100);
    EXPECT_EQ(at(240 + 42, 136 + 42), light) << "all is down right";
    EXPECT_EQ(at(380, 136), black);
}

TEST_F(Widgets, AGaugeHasTicksUnlessToldNot) {
    show({cmd::gauge, pair(240, 136), pair(100, flat), pair(2, 1), pair(0, 100)});
    EXPECT_EQ(at(240, 136 - 81), white) << "in the middle of the scale";
    show({cmd::gauge, pair(240, 136), pair(100, static_cast<int>(flat | 0x2000)), pair(2, 1),
          pair(0, 100)});
    EXPECT_EQ(at(240, 136 - 81), background);
}

TEST_F(Widgets, AClocksHandsShowTheTime) {
    constexpr int noTicks = 0x2000;
    show({cmd::clock, pair(240, 136), pair(100, static_cast<int>(flat) | noTicks), pair(6, 0),
          pair(15, 0)});
    EXPECT_EQ(at(240, 136 + 40), white) << "the hour hand at six";
    EXPECT_EQ(at(240, 136 - 60), white) << "the minute hand up";
    EXPECT_EQ(at(240 + 70, 136), foreground) << "the second hand at three";
    EXPECT_EQ(at(240 - 60, 136), background);
}

TEST_F(Widgets, AClocksHandsCanBeLeftOut) {
    constexpr int noTicksHandsSeconds = 0x2000 | 0x4000 | 0x8000;
    show({cmd::clock, pair(240, 136), pair(100, static_cast<int>(flat) | noTicksHandsSeconds),
          pair(6, 0), pair(15, 0)});
    EXPECT_EQ(at(240, 136 + 40), background);
    EXPECT_EQ(at(240 + 70, 136), background);
}

TEST_F(Widgets, ADialsMarkTurnsClockwiseFromStraightDown) {
    const auto dial = [&](int value) {
        show({cmd::dial, pair(240, 136), pair(100, flat), pair(value, 0)});
    };
    dial(0);
    EXPECT_EQ(at(240, 136 + 68), white);
    dial(0x4000);
    EXPECT_EQ(at(240 - 68, 136), white);
    EXPECT_EQ(at(240, 136 + 68), foreground);
    dial(0xC000);
    EXPECT_EQ(at(240 + 68, 136), white);
}

TEST_F(Widgets, SetFont2SetsUpItsHandleAndCountsFromItsFirstCharacter) {
    // One character, 'C', 8 x 2 pixels of L8 at 2000, all set; its metrics at 1000.
    host.write8(1000 + 'C', 8);
    const V block = {3, 8, 8, 2, 2000};
    for (std::uint32_t i = 0; i < block.size(); ++i) {
        host.write32(1128 + 4 * i, block[i]);
    }
    host.write(2000, std::vector<std::uint8_t>(16, 0xFF));
    show(V{cmd::setFont2, 5, 1000, 'C', cmd::text, pair(40, 50), pair(5, 0)} + words("C"));
    EXPECT_EQ(at(40, 50), white);
    EXPECT_EQ(at(47, 51), white);
    EXPECT_EQ(at(48, 51), black);
    EXPECT_EQ(at(40, 52), black);
}

TEST_F(Widgets, ResetFontsBringsTheRomFontsBack) {
    host.send({cmd::dlStart, cmd::setFont, 27, 0, 0xFFFFFF52});
    host.send(V{cmd::text, pair(0, 0), pair(27, 0)} + words("A"));
    EXPECT_EQ(host.listWritten().size(), 6U) << "a character of the ROM font";
}

TEST_F(Widgets, TheScratchHandleCanBeAnother) {
    host.send(V{cmd::dlStart, cmd::setScratch, 3, cmd::text, pair(10, 10), pair(33, 0)} +
              words("A"));
    EXPECT_THAT(host.listWritten(), testing::Contains(0x05000003U));
}

TEST_F(Widgets, TurnAndScaleAroundAPointLeaveItWhereItIs) {
    // Half a turn around (10, 20).
    host.send(
        {cmd::dlStart, cmd::loadIdentity, 0xFFFFFF51, 10, 20, 0x8000, 0x10000, cmd::setMatrix});
    EXPECT_THAT(host.listWritten(), ElementsAre(0x1501FF00, 0x16000000, 0x17000000 | 20 * 256,
                                                0x18000000, 0x1901FF00, 0x1A000000 | 40 * 256));
}

TEST_F(Widgets, ASketchOnACapacitivePanelDrawsToo) {
    host.calibrate();
    host.send({0xFFFFFF35, pair(100, 50), pair(80, 40), 5000, pair(3, 100)});
    host.chip.touch(110, 60);
    host.waitFrames(2);
    EXPECT_EQ(host.read8(5000 + 10 * 80 + 10), 0xFF);
}

TEST_F(Widgets, ASnapshotHasTheFormatThatItsRegisterSays) {
    host.write8(0x30201C, 7); // RGB565
    show({0x02FF8040, 0x26000007});
    host.send({cmd::snapshot, 1000});
    EXPECT_EQ(host.read16(1000), 0xFC08);
    EXPECT_EQ(host.read16(1000 + 2 * (480 * 272 - 1)), 0xFC08);
}

TEST_F(Widgets, CommandsThatDoNothingAreTaken) {
    host.send({cmd::dlStart, 0xFFFFFF5B, 0xFFFFFF4F, 0x26000007});
    EXPECT_THAT(host.listWritten(), ElementsAre(0x26000007));
    EXPECT_TRUE(host.seen.complaints.empty());
}

} // namespace
