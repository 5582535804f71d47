#include "display.h"
#include "fontrom.h"
#include "host.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace controllertest;
using V = std::vector<std::uint32_t>;

std::uint32_t point(int x, int y, int handle = 0) {
    return 0x80000000U | static_cast<std::uint32_t>(x) << 21U |
           static_cast<std::uint32_t>(y) << 12U | static_cast<std::uint32_t>(handle) << 7U;
}

class DisplayTest : public testing::Test {
protected:
    DisplayTest() { host.bootWithPanel(); }
    void show(const V& commands) {
        host.send(V{cmd::dlStart} + commands + V{0, cmd::swap});
        host.waitFrames(2);
    }
    Host host{Generation::E3};
};

TEST_F(DisplayTest, ThePictureIsNotDrawnAgainWhileNothingChanges) {
    // A bitmap of one texel at address 0
    const V list{0x26000007,
                 0x01000000,
                 0x07000000U | 3U << 19U | 1U << 9U | 1U,
                 0x08000000U | 1U << 9U | 1U,
                 0x1F000001,
                 point(0, 0)};
    show(list);
    show(list); // handles are now as it leaves them
    const std::uint32_t* pixels = host.chip.frame().picture.pixels.data();
    const_cast<std::uint32_t*>(pixels)[0] = 0x12345678; // a mark that a new drawing would wipe out
    host.waitFrames(5);
    EXPECT_EQ(host.chip.frame().picture.at(0, 0), 0x12345678U);
    show(list);
    EXPECT_EQ(host.chip.frame().picture.at(0, 0), 0x12345678U);
    host.write8(100000, 1); // memory that the picture is not made from
    EXPECT_EQ(host.chip.frame().picture.at(0, 0), 0x12345678U);
    host.write8(0, 1); // and memory that it is
    EXPECT_EQ(host.chip.frame().picture.at(0, 0), 0xFF010101U);
}

TEST_F(DisplayTest, AChangedBitmapShowsInTheSameList) {
    show({0x26000007, 0x01000000, 0x07000000U | 3U << 19U | 1U << 9U | 1U,
          0x08000000U | 1U << 9U | 1U, 0x1F000001, point(10, 10)});
    EXPECT_EQ(host.chip.frame().picture.at(10, 10), 0xFF000000);
    host.write8(0, 0xFF);
    EXPECT_EQ(host.chip.frame().picture.at(10, 10), 0xFFFFFFFF);
}

TEST_F(DisplayTest, AChangedMacroShowsInTheSameList) {
    host.write32(host.at.macro0(), 0x02FF0000);
    show({0x25000000, 0x26000007});
    EXPECT_EQ(host.chip.frame().picture.at(0, 0), 0xFFFF0000);
    host.write32(host.at.macro0(), 0x0200FF00);
    EXPECT_EQ(host.chip.frame().picture.at(0, 0), 0xFF00FF00);
}

TEST_F(DisplayTest, BitmapHandlesOutliveAListNobodyLookedAt) {
    host.write8(0, 0xFF);
    show({0x26000007, 0x05000003, 0x01000000, 0x07000000U | 3U << 19U | 1U << 9U | 1U,
          0x08000000U | 1U << 9U | 1U});
    show({0x26000007, 0x1F000001, point(10, 10, 3)});
    EXPECT_EQ(host.chip.frame().picture.at(10, 10), 0xFFFFFFFF);
}

TEST_F(DisplayTest, ABadWordIsComplainedAboutOnceThoughNobodyLooks) {
    show({0x3F000000, 0x26000007});
    host.waitFrames(5);
    EXPECT_EQ(host.seen.complaints.size(), 1U);
    show({0x3F000000, 0x26000007, 0x2D000000});
    EXPECT_EQ(host.seen.complaints.size(), 1U) << "the same as before";
}

TEST_F(DisplayTest, AListThatIsTooMuchOnlyWhenDrawnIsComplainedAboutOnceWhenItIs) {
    // Rectangles over the panel one over the other, each pixel tested.
    V list{0x26000007, 0x09000000U | 5U << 8U | 3U, 0x1F000009};
    for (int i = 0; i < 400; ++i) {
        list.push_back(point(0, 0));
        list.push_back(point(479, 271));
    }
    show(list);
    EXPECT_TRUE(host.seen.complaints.empty()) << "nobody has looked";
    host.chip.frame();
    const std::string complaint = "display list: more to draw than a frame has time for";
    EXPECT_THAT(host.seen.complaints, testing::ElementsAre(complaint));
    list[0] = 0x26000004;
    show(list);
    host.chip.frame();
    EXPECT_THAT(host.seen.complaints, testing::ElementsAre(complaint)) << "the same as before";
}

TEST_F(DisplayTest, AComplaintSaysOnceWhereItComesFrom) {
    show({0xC0000001});
    EXPECT_THAT(host.seen.complaints,
                testing::ElementsAre("display list: unknown word 0xC0000001"));
}

TEST_F(DisplayTest, TextKeepsTheCallersColourInFourSavedContexts) {
    constexpr std::uint32_t save = 0x22000000;
    constexpr std::uint32_t restore = 0x23000000;
    constexpr std::uint32_t points = 0x1F000002;
    constexpr std::uint32_t large = 0x0D000040;
    show(V{0x26000007, large, save, save, save, save, 0x04FF0000, cmd::text, pair(200, 100),
           pair(27, 0)} +
         words("A") +
         V{points, point(20, 20), 0x21000000, restore, restore, restore, restore, points,
           point(40, 20), 0x21000000});
    EXPECT_EQ(host.chip.frame().picture.at(20, 20), 0xFFFF0000);
    EXPECT_EQ(host.chip.frame().picture.at(40, 20), 0xFFFFFFFF);
    EXPECT_THAT(host.seen.complaints, testing::ElementsAre(testing::HasSubstr("too deep")));
}

TEST_F(DisplayTest, ThePictureHasThePanelsSize) {
    host.write16(0x302034, 320);
    host.write16(0x302048, 240);
    EXPECT_EQ(host.chip.frame().picture.width, 320);
    EXPECT_EQ(host.chip.frame().picture.height, 240);
}

TEST_F(DisplayTest, WithoutPowerThePictureIsBlack) {
    show({0x02FF0000, 0x26000007});
    host.chip.setPowerDown(false, host.now);
    EXPECT_EQ(host.chip.frame().picture.at(100, 100), 0xFF000000);
    EXPECT_EQ(host.chip.frame().picture.width, 480);
}

TEST_F(DisplayTest, TheTagAtAPixelCanBeAskedFor) {
    show({0x12000009, 0x26000007});
    host.write16(0x302074, 100);
    host.write16(0x302078, 50);
    EXPECT_EQ(host.read8(0x30207C), 9);
    host.write16(0x302074, 2000);
    EXPECT_EQ(host.read8(0x30207C), 0);
}

TEST_F(DisplayTest, TextOnThePanelIsGroupedIntoStrings) {
    show(V{0x26000007, cmd::text, pair(300, 100), pair(27, 0)} + words("right of it") +
         V{cmd::text, pair(10, 100), pair(27, 0)} + words("two words") +
         V{cmd::text, pair(10, 20), pair(30, 0)} + words("above") +
         V{cmd::text, pair(10, 20), pair(30, 0)} + words("above"));
    EXPECT_THAT(host.chip.textOnPanel(), testing::ElementsAre("above", "two words", "right of it"));
}

TEST_F(DisplayTest, TextOnThePanelHasAPlace) {
    show(V{0x26000007, cmd::text, pair(100, 60), pair(26, 0)} + words("  1 2 "));
    const std::vector<controller::PlacedText> texts = host.chip.placedTextOnPanel();
    ASSERT_EQ(texts.size(), 1U);
    const controller::RomFont& font = controller::romFont(controller::Generation::E3, 26);
    EXPECT_EQ(texts[0].text, "  1 2 ");
    EXPECT_EQ(texts[0].x, 100 + 2 * font.widths[' ']);
    EXPECT_EQ(texts[0].y, 60);
    EXPECT_EQ(texts[0].width, font.widths['1'] + font.widths[' '] + font.widths['2']);
    EXPECT_EQ(texts[0].height, static_cast<int>(font.height));
}

TEST_F(DisplayTest, TextInFontsOfAProgramsOwnHandlesHasNoSize) {
    show(V{0x26000007, cmd::romFont, 3, 26, cmd::text, pair(100, 60), pair(3, 0)} + words("i"));
    const std::vector<controller::PlacedText> texts = host.chip.placedTextOnPanel();
    ASSERT_EQ(texts.size(), 1U);
    EXPECT_EQ(texts[0].x, 100);
    EXPECT_EQ(texts[0].width, 0);
    EXPECT_EQ(texts[0].height, 0);
}

} // namespace
