// Which words of a list a pixel comes from.

#include "pixelhistory.h"
#include "randomlists.h"
#include "scanner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

using namespace controller;
using namespace controller::listwords;

namespace {

using List = std::vector<std::uint32_t>;
using testing::ElementsAre;
using testing::Optional;

constexpr int width = 100;
constexpr int height = 50;

PixelHistory history(const List& list, int x, int y) {
    return Scanner().history(width, height, list, x, y);
}

PixelRect area(const List& list, const std::vector<std::size_t>& words) {
    return Scanner().area(width, height, list, words);
}

std::vector<std::size_t> wordsOf(const PixelHistory& history) {
    std::vector<std::size_t> words;
    for (const PixelStep& step : history.steps) {
        words.push_back(step.word);
    }
    return words;
}

const List rectangles = {
    clearAll,                // 0
    dl::colorRgb(0xFF0000),  // 1
    dl::tag(7),              // 2
    begin(primitive::Rects), // 3
    vertex2ii(10, 10),       // 4
    vertex2ii(20, 20),       // 5
    vertex2ii(30, 10),       // 6
    vertex2ii(40, 20),       // 7
};

TEST(PixelHistory, NamesTheVerticesAndTheBeginOfWhatCoversAPixel) {
    const PixelHistory seen = history(rectangles, 35, 15);
    ASSERT_EQ(seen.steps.size(), 2U);
    EXPECT_EQ(seen.steps[0].word, 0U);
    EXPECT_EQ(seen.steps[0].begin, std::nullopt);
    EXPECT_EQ(seen.steps[1].word, 7U);
    EXPECT_THAT(seen.steps[1].begin, Optional(3U));
    EXPECT_THAT(seen.steps[1].vertices, ElementsAre(6, 7));
    EXPECT_TRUE(seen.steps[1].colours);
    EXPECT_TRUE(seen.steps[1].covers);
    EXPECT_TRUE(seen.steps[1].tags);
    EXPECT_EQ(seen.steps[1].after, 0xFFFF0000U);
    EXPECT_EQ(seen.colour, 0xFFFF0000U);
    EXPECT_EQ(seen.tag, 7);
}

TEST(PixelHistory, APixelThatNothingReachesComesFromClear) {
    EXPECT_THAT(wordsOf(history(rectangles, 25, 15)), ElementsAre(0));
    EXPECT_TRUE(history({}, 25, 15).steps.empty());
}

TEST(PixelHistory, TheSameColourOnceMoreCountsToo) {
    const List twice = {clearAll,          begin(primitive::Rects), vertex2ii(0, 0),
                        vertex2ii(99, 49), vertex2ii(0, 0),         vertex2ii(99, 49)};
    EXPECT_THAT(wordsOf(history(twice, 5, 5)), ElementsAre(0, 3, 5));
}

TEST(PixelHistory, WhatShowsThroughIsNotCovered) {
    const List translucent = {clearAll, dl::colorA(128), begin(primitive::Points), pointSize(160),
                              vertex2ii(20, 20)};
    const PixelHistory seen = history(translucent, 20, 20);
    EXPECT_THAT(wordsOf(seen), ElementsAre(0, 4));
    EXPECT_TRUE(seen.steps[1].colours);
    EXPECT_FALSE(seen.steps[1].covers);
    EXPECT_THAT(seen.steps[1].vertices, ElementsAre(4));
}

TEST(PixelHistory, AStripIsOfTheLastTwoVertices) {
    const List strip = {clearAll, begin(primitive::LineStrip), vertex2ii(10, 10), vertex2ii(50, 10),
                        vertex2ii(50, 40)};
    const PixelHistory seen = history(strip, 50, 25);
    EXPECT_THAT(wordsOf(seen), ElementsAre(0, 4));
    EXPECT_THAT(seen.steps[1].vertices, ElementsAre(3, 4));
}

TEST(PixelHistory, WhatIsDrawnWhenAnEdgeStripEndsIsOfItsLastVertex) {
    const List strip = {clearAll, begin(primitive::EdgeStripB), vertex2f(160, 160),
                        vertex2f(328, 160), end()};
    EXPECT_THAT(wordsOf(history(strip, 15, 30)), ElementsAre(0, 3));
    EXPECT_THAT(wordsOf(history(strip, 20, 30)), ElementsAre(0, 3)); // its half column
}

TEST(PixelHistory, AMacroIsTheWordThatItStandsFor) {
    Scanner scanner;
    scanner.macros()[1] = vertex2ii(20, 20);
    const PixelHistory seen = scanner.history(
        width, height, {begin(primitive::Points), pointSize(160), dl::macro(1)}, 20, 20);
    EXPECT_THAT(wordsOf(seen), ElementsAre(2));
    EXPECT_THAT(seen.steps[0].begin, Optional(0U));
}

TEST(PixelHistory, FollowsCalls) {
    const List calls = {clearAll,          dl::word(opcode::Call, 4),  dl::display(),
                        dl::display(),     begin(primitive::Points),   pointSize(160),
                        vertex2ii(20, 20), dl::word(opcode::Return, 0)};
    EXPECT_THAT(wordsOf(history(calls, 20, 20)), ElementsAre(0, 6));
}

// Whatever is limited to one pixel draws that one as the whole picture has it.
TEST(PixelHistory, EndsWithThePixelOfThePicture) {
    for (std::uint32_t seed = 1; seed <= 40; ++seed) {
        Scanner scanner;
        List list;
        RandomLists(seed).append(list, 60, width, height);
        scanner.scan(width, height, list); // handles are now as it leaves them
        const Frame frame = scanner.scan(width, height, list);
        for (int i = 0; i < 20; ++i) {
            const int x = (i * 37 + static_cast<int>(seed)) % width;
            const int y = (i * 11) % height;
            const PixelHistory seen = scanner.history(width, height, list, x, y);
            ASSERT_EQ(seen.colour | 0xFF000000U, frame.picture.at(x, y))
                << seed << ": " << x << ", " << y;
            ASSERT_EQ(seen.tag, frame.tags[static_cast<std::size_t>(y * width + x)]) << seed;
        }
    }
}

TEST(AreaOf, IsWhatTheWordsReach) {
    const PixelRect second = area(rectangles, {6, 7});
    EXPECT_NEAR(second.left, 30, 1);
    EXPECT_NEAR(second.right, 41, 1);
    EXPECT_NEAR(second.top, 10, 1);
    EXPECT_NEAR(second.bottom, 21, 1);
    EXPECT_TRUE(area(rectangles, {1}).empty());
    const PixelRect all = area(rectangles, {0});
    EXPECT_EQ(all.right - all.left, width);
    EXPECT_EQ(all.bottom - all.top, height);
}

} // namespace
