// Points, lines, rectangles and edge strips, as pictures of letters: '.' is black, '#' the full
// colour, a digit so many tenths of it.

#include "letterpicture.h"
#include "scanner.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

using namespace controller;
using namespace controller::listwords;
using letterpicture::rows;

namespace {

std::string drawn(int width, int height, const std::vector<std::uint32_t>& list) {
    Scanner scanner;
    const Frame& frame = scanner.scan(width, height, list);
    EXPECT_TRUE(frame.complaints.empty());
    return letterpicture::brightness(frame.picture);
}

int greenAt(const Frame& frame, int x, int y) {
    return static_cast<int>(frame.picture.at(x, y) >> 8 & 0xFF);
}

} // namespace

// --- points

TEST(Points, OnePixelDiscCoversItsFourPixelsAlike) {
    EXPECT_EQ(drawn(6, 4, {begin(primitive::Points), pixels(3, 2)}), rows({
                                                                         "......",
                                                                         "..88..",
                                                                         "..88..",
                                                                         "......",
                                                                     }));
}

TEST(Points, HalfPixelDiscInThePixelsMiddleCoversMostOfIt) {
    EXPECT_EQ(drawn(3, 3, {pointSize(8), begin(primitive::Points), vertex2f(24, 24)}), rows({
                                                                                           "...",
                                                                                           ".8.",
                                                                                           "...",
                                                                                       }));
}

TEST(Points, LargeDiscIsRound) {
    EXPECT_EQ(drawn(12, 12, {pointSize(80), begin(primitive::Points), pixels(6, 6)}),
              rows({
                  "............",
                  "...389983...",
                  "..5######5..",
                  ".3########3.",
                  ".8########8.",
                  ".9########9.",
                  ".9########9.",
                  ".8########8.",
                  ".3########3.",
                  "..5######5..",
                  "...389983...",
                  "............",
              }));
}

TEST(Points, AreaIsThatOfACircle) {
    Scanner scanner;
    const Frame& frame =
        scanner.scan(64, 64, {pointSize(20 * 16), begin(primitive::Points), vertex2f(517, 509)});
    double area = 0;
    for (int y = 0; y < 64; ++y) {
        for (int x = 0; x < 64; ++x) {
            area += greenAt(frame, x, y) / 255.0;
        }
    }
    EXPECT_NEAR(area, 3.14159265 * 20 * 20, 1.0);
}

TEST(Points, EachVertexDrawsOne) {
    EXPECT_EQ(drawn(8, 2, {begin(primitive::Points), pixels(1, 1), pixels(7, 1)}), rows({
                                                                                       "88....88",
                                                                                       "88....88",
                                                                                   }));
}

TEST(Points, RadiusZeroDrawsNothing) {
    EXPECT_EQ(drawn(2, 2, {pointSize(0), begin(primitive::Points), pixels(1, 1)}), rows({
                                                                                       "..",
                                                                                       "..",
                                                                                   }));
}

// --- lines

TEST(Lines, LevelLineHasEvenEdgesAndRoundEnds) {
    EXPECT_EQ(drawn(10, 4, {begin(primitive::Lines), pixels(2, 2), pixels(8, 2)}), rows({
                                                                                       "..........",
                                                                                       ".8######8.",
                                                                                       ".8######8.",
                                                                                       "..........",
                                                                                   }));
}

TEST(Lines, UprightLineIsTheSameTurned) {
    EXPECT_EQ(drawn(4, 8, {begin(primitive::Lines), pixels(2, 6), pixels(2, 2)}), rows({
                                                                                      "....",
                                                                                      ".88.",
                                                                                      ".##.",
                                                                                      ".##.",
                                                                                      ".##.",
                                                                                      ".##.",
                                                                                      ".88.",
                                                                                      "....",
                                                                                  }));
}

TEST(Lines, HalfPixelLineBetweenRowsCoversHalfOfBoth) {
    EXPECT_EQ(drawn(8, 4, {lineWidth(8), begin(primitive::Lines), pixels(-4, 2), pixels(12, 2)}),
              rows({
                  "........",
                  "55555555",
                  "55555555",
                  "........",
              }));
}

TEST(Lines, DiagonalIsSymmetric) {
    Scanner scanner;
    const Frame& frame = scanner.scan(
        20, 20, {lineWidth(20), begin(primitive::Lines), pixels(3, 3), pixels(17, 17)});
    for (int y = 0; y < 20; ++y) {
        for (int x = 0; x < 20; ++x) {
            EXPECT_NEAR(greenAt(frame, x, y), greenAt(frame, y, x), 2);
            EXPECT_NEAR(greenAt(frame, x, y), greenAt(frame, 19 - x, 19 - y), 2);
        }
    }
    EXPECT_EQ(greenAt(frame, 10, 10), 255);
    EXPECT_EQ(greenAt(frame, 0, 0), 0);
}

TEST(Lines, SlantingLineIsEquallyWideEverywhere) {
    Scanner scanner;
    const Frame& frame = scanner.scan(
        60, 40, {lineWidth(24), begin(primitive::Lines), pixels(-60, -10), pixels(120, 50)});
    // Slope 1/3: the line crosses each column over 3 px * sqrt(1 + 1/9).
    for (int x = 5; x < 55; ++x) {
        int sum = 0;
        for (int y = 0; y < 40; ++y) {
            sum += greenAt(frame, x, y);
        }
        EXPECT_NEAR(sum / 255.0, 3.1623, 0.05) << x;
    }
}

TEST(Lines, APairIsALineAndAStripGoesOn) {
    const std::vector<std::uint32_t> vertices{pixels(2, 1), pixels(4, 1), pixels(8, 1),
                                              pixels(10, 1)};
    std::vector<std::uint32_t> pairs{lineWidth(8), begin(primitive::Lines)};
    std::vector<std::uint32_t> strip{lineWidth(8), begin(primitive::LineStrip)};
    pairs.insert(pairs.end(), vertices.begin(), vertices.end());
    strip.insert(strip.end(), vertices.begin(), vertices.end());
    EXPECT_EQ(drawn(12, 2, pairs), rows({".2552..2552.", ".2552..2552."}));
    EXPECT_EQ(drawn(12, 2, strip), rows({".2566556652.", ".2566556652."}));
}

TEST(Lines, LineOfNoLengthIsADisc) {
    EXPECT_EQ(drawn(6, 4, {begin(primitive::Lines), pixels(3, 2), pixels(3, 2)}), rows({
                                                                                      "......",
                                                                                      "..88..",
                                                                                      "..88..",
                                                                                      "......",
                                                                                  }));
}

TEST(Lines, ANewBeginForgetsTheOldVertex) {
    EXPECT_EQ(
        drawn(6, 2, {begin(primitive::Lines), pixels(1, 1), begin(primitive::Lines), pixels(5, 1)}),
        rows({
            "......",
            "......",
        }));
}

// --- rectangles

TEST(Rects, ReachesALineWidthBeyondItsCornersAndIsRound) {
    EXPECT_EQ(drawn(9, 6, {begin(primitive::Rects), pixels(2, 2), pixels(7, 4)}), rows({
                                                                                      ".........",
                                                                                      ".8#####8.",
                                                                                      ".#######.",
                                                                                      ".#######.",
                                                                                      ".8#####8.",
                                                                                      ".........",
                                                                                  }));
}

TEST(Rects, AnyTwoOppositeCornersDo) {
    const std::string expected = drawn(9, 6, {begin(primitive::Rects), pixels(2, 2), pixels(7, 4)});
    EXPECT_EQ(drawn(9, 6, {begin(primitive::Rects), pixels(7, 4), pixels(2, 2)}), expected);
    EXPECT_EQ(drawn(9, 6, {begin(primitive::Rects), pixels(2, 4), pixels(7, 2)}), expected);
    EXPECT_EQ(drawn(9, 6, {begin(primitive::Rects), pixels(7, 2), pixels(2, 4)}), expected);
}

TEST(Rects, RoundingIsNeverLessThanOnePixel) {
    const std::string expected = drawn(9, 6, {begin(primitive::Rects), pixels(2, 2), pixels(7, 4)});
    EXPECT_EQ(drawn(9, 6, {lineWidth(1), begin(primitive::Rects), pixels(2, 2), pixels(7, 4)}),
              expected);
}

TEST(Rects, WideRoundingMakesRoundCorners) {
    EXPECT_EQ(drawn(12, 8, {lineWidth(48), begin(primitive::Rects), pixels(4, 4), pixels(8, 4)}),
              rows({
                  "............",
                  ".169####961.",
                  ".6########6.",
                  ".9########9.",
                  ".9########9.",
                  ".6########6.",
                  ".169####961.",
                  "............",
              }));
}

TEST(Rects, FractionalPositionsGiveFractionalEdges) {
    // From 1.5 - 1 to 4.25 + 1 in x, rows 1 to 4.
    EXPECT_EQ(
        drawn(7, 6, {begin(primitive::Rects), vertex2f(24, 32), vertex2f(68, 48)}).substr(16, 7),
        "5####3.");
}

// --- edge strips

TEST(EdgeStrips, AboveFillsUpToTheTop) {
    EXPECT_EQ(drawn(8, 5, {begin(primitive::EdgeStripA), pixels(1, 3), pixels(6, 3)}),
              rows({
                  ".#####..",
                  ".#####..",
                  ".#####..",
                  "........",
                  "........",
              }));
}

TEST(EdgeStrips, BelowFillsDownToTheBottom) {
    EXPECT_EQ(drawn(8, 5, {begin(primitive::EdgeStripB), pixels(6, 3), pixels(1, 3)}),
              rows({
                  "........",
                  "........",
                  "........",
                  ".#####..",
                  ".#####..",
              }));
}

TEST(EdgeStrips, LeftFillsToTheLeftBorder) {
    EXPECT_EQ(drawn(8, 5, {begin(primitive::EdgeStripL), pixels(5, 1), pixels(5, 4)}),
              rows({
                  "........",
                  "#####...",
                  "#####...",
                  "#####...",
                  "........",
              }));
}

TEST(EdgeStrips, RightFillsToTheRightBorder) {
    EXPECT_EQ(drawn(8, 5, {begin(primitive::EdgeStripR), pixels(5, 4), pixels(5, 1)}),
              rows({
                  "........",
                  ".....###",
                  ".....###",
                  ".....###",
                  "........",
              }));
}

TEST(EdgeStrips, TheScissorIsTheBorder) {
    EXPECT_EQ(drawn(8, 5,
                    {scissorXy(2, 1), scissorSize(5, 3), begin(primitive::EdgeStripA), pixels(0, 3),
                     pixels(8, 3)}),
              rows({
                  "........",
                  "..#####.",
                  "..#####.",
                  "........",
                  "........",
              }));
}

TEST(EdgeStrips, SlantingEdgesAreSmooth) {
    EXPECT_EQ(drawn(6, 6, {begin(primitive::EdgeStripA), pixels(0, 0), pixels(6, 6)}), rows({
                                                                                           "5#####",
                                                                                           ".5####",
                                                                                           "..5###",
                                                                                           "...5##",
                                                                                           "....5#",
                                                                                           ".....5",
                                                                                       }));
    EXPECT_EQ(drawn(6, 6, {begin(primitive::EdgeStripB), pixels(0, 6), pixels(6, 0)}), rows({
                                                                                           ".....5",
                                                                                           "....5#",
                                                                                           "...5##",
                                                                                           "..5###",
                                                                                           ".5####",
                                                                                           "5#####",
                                                                                       }));
    EXPECT_EQ(drawn(6, 3, {begin(primitive::EdgeStripL), pixels(0, 3), pixels(6, 0)}), rows({
                                                                                           "####73",
                                                                                           "##73..",
                                                                                           "73....",
                                                                                       }));
    EXPECT_EQ(drawn(6, 3, {begin(primitive::EdgeStripR), pixels(0, 0), pixels(6, 3)}), rows({
                                                                                           "37####",
                                                                                           "..37##",
                                                                                           "....37",
                                                                                       }));
}

TEST(EdgeStrips, NeighbouringSegmentsLeaveNoGapAndDoNotOverlap) {
    constexpr int size = 32;
    for (const std::uint32_t side : {primitive::EdgeStripR, primitive::EdgeStripL,
                                     primitive::EdgeStripA, primitive::EdgeStripB}) {
        const bool goesDown = side == primitive::EdgeStripR || side == primitive::EdgeStripL;
        const bool isBehind = side == primitive::EdgeStripR || side == primitive::EdgeStripB;
        // Half transparent, so that a pixel drawn twice or not at all would show.
        std::vector<std::uint32_t> list{colorA(128), begin(side)};
        for (int i = 0; i <= 40; ++i) {
            const int along = i * 13;
            const int across = 16 * (14 + i % 3);
            list.push_back(goesDown ? vertex2f(across, along) : vertex2f(along, across));
        }
        Scanner scanner;
        const Frame& frame = scanner.scan(size, size, list);
        for (int along = 0; along < size; ++along) {
            for (int i = 0; i < 14; ++i) {
                const int across = isBehind ? size - 1 - i : i;
                const int x = goesDown ? across : along;
                const int y = goesDown ? along : across;
                EXPECT_EQ(greenAt(frame, x, y), 128) << side << ": " << x << ' ' << y;
            }
        }
    }
}

// What a picture that is drawn in white covers, in pixels.
double coveredArea(const Picture& picture) {
    std::int64_t sum = 0;
    for (const std::uint32_t pixel : picture.pixels) {
        sum += pixel >> 8 & 0xFF;
    }
    return static_cast<double>(sum) / 255;
}

TEST(EdgeStrips, ASteepSegmentEndsWithItsVertices) {
    Scanner scanner;
    const Frame& frame = scanner.scan(
        70, 150, {begin(primitive::EdgeStripA), vertex2f(1000, 1600), vertex2f(1010, 800)});
    for (int y = 0; y < 150; ++y) {
        // Above both vertices half of column 62 and an eighth of the next; below them nothing.
        if (y < 50 || y >= 100) {
            EXPECT_EQ(greenAt(frame, 62, y), y < 50 ? 128 : 0) << y;
            EXPECT_EQ(greenAt(frame, 63, y), y < 50 ? 32 : 0) << y;
        }
        EXPECT_EQ(greenAt(frame, 61, y), 0) << y;
        EXPECT_EQ(greenAt(frame, 64, y), 0) << y;
    }
}

TEST(EdgeStrips, ASegmentWithinAPixelCoversItsPart) {
    Scanner scanner;
    const Frame& frame =
        scanner.scan(70, 4, {begin(primitive::EdgeStripB), vertex2f(1002, 32), vertex2f(1006, 32)});
    EXPECT_EQ(greenAt(frame, 62, 1), 0);
    EXPECT_EQ(greenAt(frame, 62, 2), 64);
    EXPECT_EQ(greenAt(frame, 62, 3), 64);
    EXPECT_DOUBLE_EQ(coveredArea(frame.picture), 128.0 / 255);
}

struct EdgeArea {
    std::uint32_t primitive;
    bool isUpright;
    bool isBefore; // the edge, as far as the smaller positions are
};

class EdgeStripArea : public testing::TestWithParam<EdgeArea> {};

TEST_P(EdgeStripArea, IsTrueWhereverTheSegmentEnds) {
    constexpr int side = 128;
    std::uint32_t seed = 1;
    const auto position = [&seed] {
        seed = seed * 1664525 + 1013904223;
        return static_cast<int>(seed >> 16) % (side * 16 + 1);
    };
    Scanner scanner;
    for (int i = 0; i < 300; ++i) {
        // Every other one is steep: it reaches over a few pixels at most.
        const int start = position();
        const int end = i % 2 == 0 ? position() : std::min(start + position() % 48, side * 16);
        const int startHeight = position();
        const int endHeight = position();
        const double height = (startHeight + endHeight) / 32.0;
        const double expected =
            std::abs(end - start) / 16.0 * (GetParam().isBefore ? height : side - height);
        const Frame& frame = scanner.scan(
            side, side,
            {begin(GetParam().primitive),
             GetParam().isUpright ? vertex2f(start, startHeight) : vertex2f(startHeight, start),
             GetParam().isUpright ? vertex2f(end, endHeight) : vertex2f(endHeight, end)});
        EXPECT_NEAR(coveredArea(frame.picture), expected, expected * 0.005 + 0.01)
            << start << ' ' << startHeight << " to " << end << ' ' << endHeight;
    }
}

INSTANTIATE_TEST_SUITE_P(EdgeStrips, EdgeStripArea,
                         testing::Values(EdgeArea{primitive::EdgeStripA, true, true},
                                         EdgeArea{primitive::EdgeStripB, true, false},
                                         EdgeArea{primitive::EdgeStripL, false, true},
                                         EdgeArea{primitive::EdgeStripR, false, false}));

TEST(EdgeStrips, WhereSegmentsMeetInAPixelItIsDrawnOnceInEitherDirection) {
    for (const bool backwards : {false, true}) {
        std::vector<std::uint32_t> list{colorA(128), begin(primitive::EdgeStripR)};
        for (int i = 0; i <= 51; ++i) {
            const int step = backwards ? 51 - i : i;
            list.push_back(vertex2f(16 * (2 + step % 5), step * 5)); // three a pixel
        }
        Scanner scanner;
        const Frame& frame = scanner.scan(12, 16, list);
        for (int y = 0; y < 15; ++y) {
            for (int x = 6; x < 12; ++x) {
                EXPECT_EQ(greenAt(frame, x, y), 128) << x << ' ' << y;
            }
        }
        EXPECT_EQ(greenAt(frame, 11, 15), 120); // 15 of its 16 lines
    }
}

TEST(EdgeStrips, APixelOfTwoSegmentsHasTheColourOfTheOneThatReachesItsMiddle) {
    for (const int meeting : {7, 8, 9}) {
        Scanner scanner;
        const Frame& frame = scanner.scan(
            2, 2,
            {colorRgb(0xFF0000), begin(primitive::EdgeStripB), vertex2f(0, 16),
             vertex2f(meeting, 16), colorRgb(0x00FF00), scissorSize(1, 2), vertex2f(32, 16)});
        EXPECT_EQ(frame.picture.at(0, 1), meeting > 8 ? 0xFFFF0000 : 0xFF00FF00) << meeting;
        EXPECT_EQ(frame.picture.at(1, 1), 0xFF000000); // outside the second one's scissor
    }
}

TEST(EdgeStrips, WhatASegmentHasBegunIsDrawnBeforeTheBuffersAreCleared) {
    EXPECT_EQ(
        drawn(2, 1, {begin(primitive::EdgeStripB), vertex2f(0, 0), vertex2f(24, 0), clearAll}),
        rows({".."}));
}

TEST(EdgeStrips, AStripThatTurnsBackDrawsItsPixelAnew) {
    // Half transparent: what is drawn twice is brighter.
    Scanner scanner;
    const Frame& frame = scanner.scan(2, 1,
                                      {colorA(128), begin(primitive::EdgeStripB), vertex2f(0, 0),
                                       vertex2f(24, 0), vertex2f(16, 0), end()});
    EXPECT_EQ(greenAt(frame, 0, 0), 128);
    EXPECT_EQ(greenAt(frame, 1, 0), 64 + 48);
}

TEST(EdgeStrips, ASegmentHasTheColourOfItsSecondVertex) {
    Scanner scanner;
    const Frame& frame =
        scanner.scan(6, 2,
                     {colorRgb(0xFF0000), begin(primitive::EdgeStripB), pixels(0, 1),
                      colorRgb(0x00FF00), pixels(3, 1), colorRgb(0x0000FF), pixels(6, 1)});
    EXPECT_EQ(letterpicture::colors(frame.picture,
                                    {{0, '.'}, {0xFF0000, 'R'}, {0x00FF00, 'G'}, {0x0000FF, 'B'}}),
              rows({
                  "......",
                  "GGGBBB",
              }));
}

TEST(EdgeStrips, ALevelEdgeBetweenRowsCoversPartOfTheRow) {
    EXPECT_EQ(drawn(3, 3, {begin(primitive::EdgeStripA), vertex2f(0, 24), vertex2f(48, 24)}),
              rows({
                  "###",
                  "555",
                  "...",
              }));
    EXPECT_EQ(drawn(3, 3, {begin(primitive::EdgeStripB), vertex2f(0, 28), vertex2f(48, 28)}),
              rows({
                  "...",
                  "333",
                  "###",
              }));
}

TEST(EdgeStrips, AnUprightSegmentHasNothingAboveOrBelowIt) {
    EXPECT_EQ(drawn(3, 2, {begin(primitive::EdgeStripA), pixels(1, 0), pixels(1, 2)}), rows({
                                                                                           "...",
                                                                                           "...",
                                                                                       }));
}

// --- all of them

TEST(Shapes, AreTheSameWhateverPartOfThePanelIsDrawnFirst) {
    const std::vector<std::uint32_t> scene{begin(primitive::Points),
                                           pointSize(123),
                                           vertex2f(201, 333),
                                           begin(primitive::LineStrip),
                                           lineWidth(21),
                                           vertex2f(17, 400),
                                           vertex2f(700, 90),
                                           vertex2f(710, 480),
                                           begin(primitive::Rects),
                                           lineWidth(55),
                                           vertex2f(300, 200),
                                           vertex2f(455, 299),
                                           begin(primitive::EdgeStripL),
                                           colorRgb(0x00A000),
                                           vertex2f(100, 10),
                                           vertex2f(161, 200),
                                           vertex2f(80, 380),
                                           begin(primitive::EdgeStripA),
                                           colorRgb(0x00FFFF),
                                           vertex2f(500, 0),
                                           vertex2f(730, 211)};
    Scanner whole;
    std::vector<std::uint32_t> list{colorA(190)};
    list.insert(list.end(), scene.begin(), scene.end());
    const Picture expected = whole.scan(48, 32, list).picture;

    std::vector<std::uint32_t> tiles{colorA(190)};
    for (std::uint32_t y = 32; y > 0; y -= 8) { // from the bottom up
        for (std::uint32_t x = 0; x < 48; x += 12) {
            tiles.push_back(scissorXy(x, y - 8));
            tiles.push_back(scissorSize(12, 8));
            tiles.push_back(colorRgb(0xFFFFFF));
            tiles.insert(tiles.end(), scene.begin(), scene.end());
        }
    }
    Scanner tiled;
    EXPECT_EQ(letterpicture::brightness(tiled.scan(48, 32, tiles).picture),
              letterpicture::brightness(expected));
    EXPECT_TRUE(tiled.scan(48, 32, tiles).picture == expected);
}

TEST(Shapes, MoveByWholePixelsUnchanged) {
    const auto scene = [](int dx, int dy) {
        const auto at = [&](int x, int y) { return vertex2f(x + dx * 16, y + dy * 16); };
        return std::vector<std::uint32_t>{begin(primitive::Points), pointSize(50), at(100, 103),
                                          begin(primitive::Lines),  at(33, 40),    at(190, 77),
                                          begin(primitive::Rects),  at(60, 150),   at(91, 170)};
    };
    Scanner one;
    Scanner other;
    const Frame& here = one.scan(32, 32, scene(0, 0));
    const Frame& there = other.scan(32, 32, scene(7, 11));
    for (int y = 0; y < 21; ++y) {
        for (int x = 0; x < 25; ++x) {
            EXPECT_EQ(here.picture.at(x, y), there.picture.at(x + 7, y + 11));
        }
    }
}

TEST(Shapes, FarOutsideThePanelDrawNothing) {
    const std::string empty = rows({"....", "...."});
    for (const std::uint32_t kind :
         {primitive::Points, primitive::Lines, primitive::Rects, primitive::EdgeStripA,
          primitive::EdgeStripB, primitive::EdgeStripL}) {
        EXPECT_EQ(drawn(4, 2,
                        {pointSize(100), begin(kind), vertex2f(-16384, 300), vertex2f(-9000, 500),
                         begin(kind), vertex2f(16383, -300), vertex2f(15000, -500)})
                      .size(),
                  empty.size());
    }
    EXPECT_EQ(drawn(4, 2, {begin(primitive::Lines), vertex2f(16383, 16383), vertex2f(9000, 16383)}),
              empty);
}

TEST(Shapes, LinesFromFarAwayCrossThePanelTrue) {
    EXPECT_EQ(drawn(4, 4,
                    {lineWidth(16), vertexFormat(0), begin(primitive::Lines), vertex2f(-16000, 2),
                     vertex2f(16000, 2)}),
              rows({
                  "....",
                  "####",
                  "####",
                  "....",
              }));
}
