#include "logowidget.h"
#include "screentest.h"
#include "streams.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <sstream>
#include <string>
#include <vector>

namespace {

using testing::Each;
using testing::SizeIs;

// One frame: what shows of the image, the lines that scale it, and the line it starts at.
std::string logoFrame(int visibleWidth, const std::string& transform, int top) {
    std::ostringstream text;
    text << "DLSTART\n"
            "GRADIENT 21 13 CACACA 455 268 F3F3F3\n"
            "BITMAP_HANDLE 0\n"
            "SETBITMAP 0 6 470 85\n"
            "SCISSOR_SIZE "
         << visibleWidth
         << " 272\n"
            "BEGIN BITMAPS\n"
            "PALETTE_SOURCE 0\n"
         << transform << "VERTEX2II (5," << top
         << ")\n"
            "END\n"
            "DISPLAY\n"
            "SWAP\n";
    return text.str();
}

std::string breathingFrame(int scale, int top) {
    return logoFrame(
        175, "BITMAP_TRANSFORM 0 0 100 0 0 " + std::to_string(scale) + " 0 0 100 0 0 100 0\n", top);
}

class LogoWidgetTest : public ScreenTest {
protected:
    static constexpr std::size_t streamWords = 1507; // 6025 bytes, filled up

    LogoWidgetTest() { screen.exec(); }

    static std::string drawnAfterTheImage() {
        const std::vector<std::uint32_t> words = board.commandWords();
        return listCommands({words.begin() + 2 + streamWords, words.end()});
    }

    LogoWidget screen{&host};
};

TEST_F(LogoWidgetTest, HasTheControllerInflateTheImageToAddress0First) {
    const std::vector<std::uint32_t> words = board.commandWords();
    EXPECT_EQ(words.at(0), 0xFFFFFF22U);
    EXPECT_EQ(words.at(1), 0U);
    const std::vector<std::uint8_t> stream(board.commandBytes().begin() + 8,
                                           board.commandBytes().begin() + 8 + 6025);
    EXPECT_TRUE(std::equal(stream.begin(), stream.end(), assets::logo.begin(), assets::logo.end()));
}

TEST_F(LogoWidgetTest, BreathesIn15FramesThenUncoversTheImageIn9) {
    struct Breath {
        int scale;
        int top;
    };
    constexpr std::array<Breath, 15> breaths{{{80, 108},
                                              {84, 106},
                                              {88, 104},
                                              {92, 102},
                                              {96, 101},
                                              {100, 99},
                                              {96, 101},
                                              {92, 102},
                                              {88, 104},
                                              {84, 106},
                                              {80, 108},
                                              {84, 106},
                                              {88, 104},
                                              {92, 102},
                                              {96, 101}}};
    constexpr std::array<int, 9> visibleWidths{175, 215, 255, 295, 335, 375, 415, 455, 495};

    std::string expected = "DLSTART\n"; // of exec(), with the first frame
    for (const Breath& breath : breaths) {
        expected += breathingFrame(breath.scale, breath.top);
    }
    for (const int width : visibleWidths) {
        expected += logoFrame(width, "", 100);
    }
    expected += "MEMCPY 100000 3145728 456\nDISPLAY\nSWAP\n"; // of exec()
    EXPECT_EQ(drawnAfterTheImage(), expected);
}

TEST_F(LogoWidgetTest, Sleeps50MsAfterEachFrameAnd500MsAtTheEnd) {
    std::vector<std::string> sleeps;
    for (const std::string& event : board.eventsBesidesMessages()) {
        if (event.rfind("sleep", 0) == 0) {
            sleeps.push_back(event);
        }
    }
    ASSERT_THAT(sleeps, SizeIs(25));
    EXPECT_EQ(sleeps.back(), "sleep 500");
    sleeps.pop_back();
    EXPECT_THAT(sleeps, Each("sleep 50"));
}

TEST_F(LogoWidgetTest, EndsWithoutARedraw) {
    EXPECT_TRUE(screen.isStoped());
    board.clearRecord();
    screen.loop();
    EXPECT_TRUE(board.events().empty());
}

using LogoWidgetDeathTest = ScreenTest;

TEST_F(LogoWidgetDeathTest, AnEVE1ControllerHasNoCommandForTheBitmap) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH(
        {
            DisplaySettings::getInstance()->setDisplayGeneration(DisplaySettings::EVE_1);
            LogoWidget(&host).exec();
        },
        "this function is worked only on EVE2 or EVE3");
}

} // namespace
