// Bitmaps: formats, cells, transforms, wrapping, memory that is not there, and fonts.

#include "letterpicture.h"
#include "scanner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

using namespace controller;
using namespace controller::listwords;
using letterpicture::rows;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

constexpr std::uint32_t bitmapAddress = 0x100;
constexpr std::uint32_t paletteAddress = 0x800;

// The words that draw the bitmap at bitmapAddress with its corner at (x, y).
std::vector<std::uint32_t> bitmap(std::uint32_t format, std::uint32_t stride, std::uint32_t height,
                                  std::uint32_t size, std::uint32_t x = 0, std::uint32_t y = 0) {
    return {bitmapSource(bitmapAddress),
            bitmapLayout(format, stride, height),
            size,
            begin(primitive::Bitmaps),
            vertex2ii(x, y),
            end()};
}

// The colours of the first row of a bitmap, drawn over black.
std::vector<std::uint32_t> firstRow(Scanner& scanner, int width,
                                    const std::vector<std::uint32_t>& list) {
    const Frame& frame = scanner.scan(width, 1, list);
    EXPECT_THAT(frame.complaints, IsEmpty());
    std::vector<std::uint32_t> colors;
    for (const std::uint32_t pixel : frame.picture.pixels) {
        colors.push_back(pixel & 0xFFFFFF);
    }
    return colors;
}

std::string drawn(Scanner& scanner, int width, int height, const std::vector<std::uint32_t>& list) {
    const Frame& frame = scanner.scan(width, height, list);
    EXPECT_THAT(frame.complaints, IsEmpty());
    return letterpicture::brightness(frame.picture);
}

// An arrow of 4 x 4 texels, L8.
void storeArrow(Scanner& scanner) {
    scanner.store(bitmapAddress, {
                                     0, 255, 0, 0,     //
                                     255, 255, 255, 0, //
                                     0, 255, 0, 0,     //
                                     0, 255, 0, 0,     //
                                 });
}

} // namespace

// --- formats

TEST(BitmapFormats, L1HasItsLeftmostTexelInTheTopBit) {
    Scanner scanner;
    scanner.store(bitmapAddress, {0b10110000, 0b01000001});
    EXPECT_EQ(drawn(scanner, 9, 3, bitmap(format::L1, 1, 2, bitmapSize(nearest, 8, 2))),
              rows({
                  "#.##.....",
                  ".#.....#.",
                  ".........",
              }));
}

TEST(BitmapFormats, L2HasFourLevels) {
    Scanner scanner;
    scanner.store(bitmapAddress, {0b00011011});
    EXPECT_THAT(firstRow(scanner, 4, bitmap(format::L2, 1, 1, bitmapSize(nearest, 4, 1))),
                ElementsAre(0x000000, 0x555555, 0xAAAAAA, 0xFFFFFF));
}

TEST(BitmapFormats, L4HasSixteenLevels) {
    Scanner scanner;
    scanner.store(bitmapAddress, {0x01, 0x8F});
    EXPECT_THAT(firstRow(scanner, 4, bitmap(format::L4, 2, 1, bitmapSize(nearest, 4, 1))),
                ElementsAre(0x000000, 0x111111, 0x888888, 0xFFFFFF));
}

TEST(BitmapFormats, L8IsAnAlphaOfTheCurrentColour) {
    Scanner scanner;
    scanner.store(bitmapAddress, {0, 51, 255});
    EXPECT_THAT(firstRow(scanner, 3,
                         std::vector{colorRgb(0xFF8000)} +
                             bitmap(format::L8, 3, 1, bitmapSize(nearest, 3, 1))),
                ElementsAre(0x000000, 0x331A00, 0xFF8000));
}

TEST(BitmapFormats, Argb1555) {
    Scanner scanner;
    scanner.store(bitmapAddress, {0x00, 0xFC, 0xE0, 0x83, 0x1F, 0x80, 0xFF, 0x7F});
    EXPECT_THAT(firstRow(scanner, 4, bitmap(format::Argb1555, 8, 1, bitmapSize(nearest, 4, 1))),
                ElementsAre(0xFF0000, 0x00FF00, 0x0000FF, 0x000000));
}

TEST(BitmapFormats, Argb2) {
    Scanner scanner;
    scanner.store(bitmapAddress, {0b11110000, 0b11001100, 0b11000011, 0b01111111});
    EXPECT_THAT(firstRow(scanner, 4, bitmap(format::Argb2, 4, 1, bitmapSize(nearest, 4, 1))),
                ElementsAre(0xFF0000, 0x00FF00, 0x0000FF, 0x555555));
}

TEST(BitmapFormats, Argb4HasItsAlphaInTheTopOfTheSecondByte) {
    Scanner scanner;
    scanner.store(bitmapAddress, {0x00, 0xFF, 0xF0, 0xF0, 0x0F, 0xF0, 0xFF, 0x3F, 0xFF, 0x0F});
    EXPECT_THAT(firstRow(scanner, 5, bitmap(format::Argb4, 10, 1, bitmapSize(nearest, 5, 1))),
                ElementsAre(0xFF0000, 0x00FF00, 0x0000FF, 0x333333, 0x000000));
}

TEST(BitmapFormats, Rgb332) {
    Scanner scanner;
    scanner.store(bitmapAddress, {0b11100000, 0b00011100, 0b00000011, 0b10010010});
    EXPECT_THAT(firstRow(scanner, 4, bitmap(format::Rgb332, 4, 1, bitmapSize(nearest, 4, 1))),
                ElementsAre(0xFF0000, 0x00FF00, 0x0000FF, 0x9292AA));
}

TEST(BitmapFormats, Rgb565) {
    Scanner scanner;
    scanner.store(bitmapAddress, {0x00, 0xF8, 0xE0, 0x07, 0x1F, 0x00, 0xFF, 0xFF});
    EXPECT_THAT(firstRow(scanner, 4, bitmap(format::Rgb565, 8, 1, bitmapSize(nearest, 4, 1))),
                ElementsAre(0xFF0000, 0x00FF00, 0x0000FF, 0xFFFFFF));
}

TEST(BitmapFormats, Paletted565LooksUpThePaletteSource) {
    Scanner scanner;
    scanner.store(paletteAddress, {0x00, 0xF8, 0xE0, 0x07});
    scanner.store(bitmapAddress, {1, 0});
    EXPECT_THAT(firstRow(scanner, 2,
                         std::vector{word(opcode::PaletteSource, paletteAddress)} +
                             bitmap(format::Paletted565, 2, 1, bitmapSize(nearest, 2, 1))),
                ElementsAre(0x00FF00, 0xFF0000));
}

TEST(BitmapFormats, Paletted4444HasAlpha) {
    Scanner scanner;
    scanner.store(paletteAddress, {0xFF, 0xFF, 0xFF, 0x3F});
    scanner.store(bitmapAddress, {1, 0});
    EXPECT_THAT(firstRow(scanner, 2,
                         std::vector{word(opcode::PaletteSource, paletteAddress)} +
                             bitmap(format::Paletted4444, 2, 1, bitmapSize(nearest, 2, 1))),
                ElementsAre(0x333333, 0xFFFFFF));
}

TEST(BitmapFormats, Paletted8HasFourBytesAColour) {
    Scanner scanner;
    scanner.store(paletteAddress, {0x11, 0x22, 0x33, 0xFF, 0xFF, 0xFF, 0xFF, 0x33});
    scanner.store(bitmapAddress, {0, 1});
    EXPECT_THAT(firstRow(scanner, 2,
                         std::vector{word(opcode::PaletteSource, paletteAddress)} +
                             bitmap(format::Paletted8, 2, 1, bitmapSize(nearest, 2, 1))),
                ElementsAre(0x332211, 0x333333));
}

TEST(BitmapFormats, E1LooksUpItsPaletteMemory) {
    Scanner scanner(Generation::E1);
    scanner.palette()[4] = 0x11; // entry 1
    scanner.palette()[5] = 0x22;
    scanner.palette()[6] = 0x33;
    scanner.palette()[7] = 0xFF;
    scanner.store(bitmapAddress, {0, 1});
    EXPECT_THAT(firstRow(scanner, 2, bitmap(format::Paletted, 2, 1, bitmapSize(nearest, 2, 1))),
                ElementsAre(0x000000, 0x332211));
}

TEST(BitmapFormats, ColourAndAlphaAreMultipliedWithTheCurrentOnes) {
    Scanner scanner;
    scanner.store(bitmapAddress, {0xFF, 0xFF});
    EXPECT_THAT(firstRow(scanner, 1,
                         std::vector{colorRgb(0x804020), colorA(51)} +
                             bitmap(format::Rgb565, 2, 1, bitmapSize(nearest, 1, 1))),
                ElementsAre(0x1A0D06));
}

TEST(BitmapFormats, OthersAreComplainedAbout) {
    Scanner scanner;
    const Frame& frame = scanner.scan(2, 1, bitmap(13, 2, 1, bitmapSize(nearest, 2, 1)));
    EXPECT_THAT(frame.complaints, ElementsAre(HasSubstr("format 13")));
}

TEST(BitmapFormats, TheExtendedFormatIsUnknownBeforeE3) {
    for (const Generation generation : {Generation::E1, Generation::E2}) {
        Scanner scanner(generation);
        const Frame& frame =
            scanner.scan(2, 1, bitmap(format::External, 4, 1, bitmapSize(nearest, 2, 1)));
        EXPECT_THAT(frame.complaints, ElementsAre(HasSubstr("format 31")));
    }
}

TEST(BitmapFormats, OnesOfAnotherGenerationAreComplainedAbout) {
    Scanner e1(Generation::E1);
    EXPECT_THAT(e1.scan(2, 1, bitmap(format::L2, 2, 1, bitmapSize(nearest, 2, 1))).complaints,
                ElementsAre(HasSubstr("format 17")));
    Scanner e3(Generation::E3);
    EXPECT_THAT(e3.scan(2, 1, bitmap(format::Paletted, 2, 1, bitmapSize(nearest, 2, 1))).complaints,
                ElementsAre(HasSubstr("format 8")));
}

TEST(BitmapFormats, E3TakesTheExtendedFormatWhenTheLayoutSaysSo) {
    Scanner scanner;
    scanner.store(bitmapAddress, {0, 255});
    EXPECT_THAT(firstRow(scanner, 2,
                         std::vector{bitmapExtFormat(format::L8)} +
                             bitmap(format::External, 2, 1, bitmapSize(nearest, 2, 1))),
                ElementsAre(0x000000, 0xFFFFFF));
}

TEST(BitmapFormats, SwizzleSaysWhereEachChannelComesFrom) {
    Scanner scanner;
    scanner.store(bitmapAddress, {0x21, 0xF3}); // red 3, green 2, blue 1
    const std::uint32_t bgrOne =
        word(opcode::BitmapSwizzle,
             swizzle::Blue << 9 | swizzle::Green << 6 | swizzle::Red << 3 | swizzle::One);
    EXPECT_THAT(
        firstRow(scanner, 1,
                 std::vector{bgrOne} + bitmap(format::Argb4, 2, 1, bitmapSize(nearest, 1, 1))),
        ElementsAre(0x112233));
}

// --- cells, sizes and borders

TEST(Bitmaps, CellsFollowOneAnotherInMemory) {
    Scanner scanner;
    scanner.store(bitmapAddress, {0b10000000, 0b01000000, // cell 0
                                  0b11000000, 0b00000000, // cell 1
                                  0b00000000, 0b11000000});
    const std::vector<std::uint32_t> setUp{bitmapSource(bitmapAddress),
                                           bitmapLayout(format::L1, 1, 2),
                                           bitmapSize(nearest, 2, 2), begin(primitive::Bitmaps)};
    EXPECT_EQ(drawn(scanner, 8, 2,
                    setUp + std::vector{vertex2ii(0, 0), vertex2ii(3, 0, 0, 1), cell(2),
                                        vertex2f(6 * 16, 0)}),
              rows({
                  "#..##...",
                  ".#....##",
              }));
}

TEST(Bitmaps, WindowLargerThanTheBitmapIsTransparentThere) {
    Scanner scanner;
    storeArrow(scanner);
    EXPECT_EQ(drawn(scanner, 7, 6, bitmap(format::L8, 4, 4, bitmapSize(nearest, 6, 6), 1, 0)),
              rows({
                  "..#....",
                  ".###...",
                  "..#....",
                  "..#....",
                  ".......",
                  ".......",
              }));
}

TEST(Bitmaps, WindowSmallerThanTheBitmapCutsIt) {
    Scanner scanner;
    storeArrow(scanner);
    EXPECT_EQ(drawn(scanner, 4, 3, bitmap(format::L8, 4, 4, bitmapSize(nearest, 2, 2))), rows({
                                                                                             ".#..",
                                                                                             "##..",
                                                                                             "....",
                                                                                         }));
}

TEST(Bitmaps, RepeatWrapsInEachDirectionByItself) {
    Scanner scanner;
    storeArrow(scanner);
    EXPECT_EQ(drawn(scanner, 8, 6, bitmap(format::L8, 4, 4, bitmapSize(nearest | repeatX, 8, 6))),
              rows({
                  ".#...#..",
                  "###.###.",
                  ".#...#..",
                  ".#...#..",
                  "........",
                  "........",
              }));
    EXPECT_EQ(drawn(scanner, 8, 6, bitmap(format::L8, 4, 4, bitmapSize(nearest | repeatY, 8, 6))),
              rows({
                  ".#......",
                  "###.....",
                  ".#......",
                  ".#......",
                  ".#......",
                  "###.....",
              }));
}

TEST(Bitmaps, WithoutRepeatBilinearOnesAreTransparentOutsideToo) {
    Scanner scanner;
    storeArrow(scanner);
    EXPECT_EQ(drawn(scanner, 8, 6, bitmap(format::L8, 4, 4, bitmapSize(bilinear, 8, 6))),
              rows({
                  ".#......",
                  "###.....",
                  ".#......",
                  ".#......",
                  "........",
                  "........",
              }));
}

TEST(Bitmaps, PartlyOutsideThePanelAreCut) {
    Scanner scanner;
    storeArrow(scanner);
    const std::vector<std::uint32_t> setUp{bitmapSource(bitmapAddress),
                                           bitmapLayout(format::L8, 4, 4),
                                           bitmapSize(nearest, 4, 4), begin(primitive::Bitmaps)};
    EXPECT_EQ(drawn(scanner, 3, 3, setUp + std::vector{vertex2f(-16, -16)}), rows({
                                                                                 "##.",
                                                                                 "#..",
                                                                                 "#..",
                                                                             }));
    EXPECT_EQ(drawn(scanner, 3, 3, setUp + std::vector{vertex2f(16, 32)}), rows({
                                                                               "...",
                                                                               "...",
                                                                               "..#",
                                                                           }));
}

TEST(Bitmaps, SizeZeroMeansTheLargest) {
    Scanner e3;
    e3.store(bitmapAddress, {255});
    EXPECT_EQ(
        e3.scan(600, 1, bitmap(format::L8, 1, 1, bitmapSize(repeatX, 0, 1))).picture.at(599, 0),
        0xFFFFFFFF);
    Scanner e1(Generation::E1);
    e1.store(bitmapAddress, {255});
    const Frame& frame = e1.scan(600, 1, bitmap(format::L8, 1, 1, bitmapSize(repeatX, 0, 1)));
    EXPECT_EQ(frame.picture.at(511, 0), 0xFFFFFFFF);
    EXPECT_EQ(frame.picture.at(512, 0), 0xFF000000);
}

TEST(Bitmaps, HighBitsOfSizeAndLayoutComeInWordsOfTheirOwn) {
    Scanner scanner;
    scanner.store(bitmapAddress, {255});
    const Frame& frame = scanner.scan(700, 1,
                                      std::vector{word(opcode::BitmapSizeH, 1 << 2)} +
                                          bitmap(format::L8, 1, 1, bitmapSize(repeatX, 100, 1)));
    EXPECT_EQ(frame.picture.at(611, 0), 0xFFFFFFFF);
    EXPECT_EQ(frame.picture.at(612, 0), 0xFF000000);

    scanner.store(bitmapAddress + 1024, {255}); // second row of 1024 bytes
    EXPECT_EQ(drawn(scanner, 1, 2,
                    std::vector{word(opcode::BitmapLayoutH, 1 << 2), word(opcode::BitmapSizeH)} +
                        bitmap(format::L8, 0, 2, bitmapSize(nearest, 1, 2))),
              rows({"#", "#"}));
}

TEST(Bitmaps, HandlesKeepTheirBitmapFromFrameToFrame) {
    Scanner scanner;
    scanner.store(bitmapAddress, {255});
    scanner.scan(2, 1,
                 {bitmapHandle(7), bitmapSource(bitmapAddress), bitmapLayout(format::L8, 1, 1),
                  bitmapSize(nearest, 1, 1)});
    const std::vector<std::uint32_t> list{begin(primitive::Bitmaps), vertex2ii(1, 0, 7)};
    EXPECT_EQ(drawn(scanner, 2, 1, list), rows({".#"}));
    scanner.engine().reset();
    EXPECT_THAT(scanner.scan(2, 1, list).complaints, ElementsAre(HasSubstr("no layout")));
}

// --- transforms

TEST(BitmapTransforms, HalfTheStepDrawsItTwiceAsLarge) {
    Scanner scanner;
    storeArrow(scanner);
    EXPECT_EQ(drawn(scanner, 8, 8,
                    std::vector{bitmapTransform(0, 128), bitmapTransform(4, 128)} +
                        bitmap(format::L8, 4, 4, bitmapSize(nearest, 8, 8))),
              rows({
                  "..##....",
                  "..##....",
                  "######..",
                  "######..",
                  "..##....",
                  "..##....",
                  "..##....",
                  "..##....",
              }));
}

TEST(BitmapTransforms, E3HasFinerFactors) {
    Scanner scanner;
    storeArrow(scanner);
    const std::uint32_t fine = 1 << 17;
    EXPECT_EQ(drawn(scanner, 8, 4,
                    std::vector{bitmapTransform(0, 16384) | fine} +
                        bitmap(format::L8, 4, 4, bitmapSize(nearest, 8, 4))),
              rows({
                  "..##....",
                  "######..",
                  "..##....",
                  "..##....",
              }));
}

TEST(BitmapTransforms, AQuarterTurnSwapsRowsAndColumns) {
    Scanner scanner;
    storeArrow(scanner);
    // s = v, t = 3 - u
    EXPECT_EQ(
        drawn(scanner, 4, 4,
              std::vector{bitmapTransform(0, 0), bitmapTransform(1, 256), bitmapTransform(3, -256),
                          bitmapTransform(4, 0), bitmapTransform(5, 3 * 256)} +
                  bitmap(format::L8, 4, 4, bitmapSize(nearest, 4, 4))),
        rows({
            "..#.",
            "####",
            "..#.",
            "....",
        }));
}

TEST(BitmapTransforms, OffsetsShiftThePicture) {
    Scanner scanner;
    storeArrow(scanner);
    EXPECT_EQ(drawn(scanner, 4, 4,
                    std::vector{bitmapTransform(2, -256), bitmapTransform(5, 256)} +
                        bitmap(format::L8, 4, 4, bitmapSize(nearest, 4, 4))),
              rows({
                  ".###",
                  "..#.",
                  "..#.",
                  "....",
              }));
}

TEST(BitmapTransforms, BilinearBlendsNeighbouringTexels) {
    Scanner scanner;
    scanner.store(bitmapAddress, {0, 255});
    EXPECT_EQ(drawn(scanner, 9, 1,
                    std::vector{bitmapTransform(0, 64)} +
                        bitmap(format::L8, 2, 1, bitmapSize(bilinear, 9, 1))),
              rows({".357#753."}));
}

TEST(BitmapTransforms, BilinearWorksInBothDirections) {
    Scanner scanner;
    scanner.store(bitmapAddress, {0, 255, 255, 0});
    EXPECT_EQ(drawn(scanner, 3, 3,
                    std::vector{bitmapTransform(0, 128), bitmapTransform(4, 128)} +
                        bitmap(format::L8, 2, 2, bitmapSize(bilinear, 3, 3))),
              rows({
                  ".5#",
                  "555",
                  "#5.",
              }));
}

TEST(BitmapTransforms, BilinearRepeatBlendsAcrossTheSeam) {
    Scanner scanner;
    scanner.store(bitmapAddress, {0, 255});
    EXPECT_EQ(drawn(scanner, 8, 1,
                    std::vector{bitmapTransform(0, 128)} +
                        bitmap(format::L8, 2, 1, bitmapSize(bilinear | repeatX, 8, 1))),
              rows({".5#5.5#5"}));
}

TEST(BitmapTransforms, BilinearColoursBlendChannelByChannel) {
    Scanner scanner;
    scanner.store(bitmapAddress, {0x00, 0xF8, 0x1F, 0x00}); // red, blue
    EXPECT_THAT(firstRow(scanner, 3,
                         std::vector{bitmapTransform(0, 128)} +
                             bitmap(format::Rgb565, 4, 1, bitmapSize(bilinear, 3, 1))),
                ElementsAre(0xFF0000, 0x800080, 0x0000FF));
}

TEST(BitmapTransforms, AreTheSameWhateverPartOfThePanelIsDrawnFirst) {
    const std::vector<std::uint32_t> scene =
        std::vector{bitmapTransform(0, 77), bitmapTransform(1, -31), bitmapTransform(3, 45),
                    bitmapTransform(4, 99)} +
        bitmap(format::L8, 4, 4, bitmapSize(bilinear | repeatX, 40, 30), 3, 2);
    Scanner whole;
    storeArrow(whole);
    Scanner tiled;
    storeArrow(tiled);
    std::vector<std::uint32_t> tiles;
    for (std::uint32_t y = 32; y > 0; y -= 8) {
        for (std::uint32_t x = 0; x < 48; x += 12) {
            tiles = tiles + std::vector{scissorXy(x, y - 8), scissorSize(12, 8)} + scene;
        }
    }
    EXPECT_EQ(drawn(tiled, 48, 32, tiles), drawn(whole, 48, 32, scene));
}

// --- memory that is not there

TEST(BitmapMemory, WhatIsOutsideIsReadAsZeroAndComplainedAbout) {
    Scanner scanner;
    const std::uint32_t lastRow = 1024 * 1024 - 4;
    scanner.store(lastRow, {255, 255, 255, 255});
    const Frame& frame =
        scanner.scan(4, 2,
                     {bitmapSource(lastRow), bitmapLayout(format::L8, 4, 2),
                      bitmapSize(nearest, 4, 2), begin(primitive::Bitmaps), vertex2ii(0, 0)});
    EXPECT_EQ(letterpicture::brightness(frame.picture), rows({"####", "...."}));
    EXPECT_THAT(frame.complaints, ElementsAre(HasSubstr("outside memory")));
}

TEST(BitmapMemory, RowsThatAreNotSampledNeedNotExist) {
    Scanner scanner;
    const std::uint32_t lastRow = 1024 * 1024 - 4;
    EXPECT_THAT(scanner
                    .scan(4, 2,
                          {bitmapSource(lastRow), bitmapLayout(format::L8, 4, 200),
                           bitmapSize(nearest, 4, 1), begin(primitive::Bitmaps), vertex2ii(0, 0)})
                    .complaints,
                IsEmpty());
}

TEST(BitmapMemory, APaletteOutsideIsComplainedAbout) {
    Scanner scanner;
    const Frame& frame =
        scanner.scan(1, 1,
                     std::vector{word(opcode::PaletteSource, 0x3FFFFF)} +
                         bitmap(format::Paletted565, 1, 1, bitmapSize(nearest, 1, 1)));
    EXPECT_THAT(frame.complaints, ElementsAre(HasSubstr("palette")));
}

TEST(BitmapMemory, AnEmptyHandleIsComplainedAbout) {
    Scanner scanner;
    EXPECT_THAT(scanner.scan(1, 1, {begin(primitive::Bitmaps), vertex2ii(0, 0, 9)}).complaints,
                ElementsAre(HasSubstr("no layout")));
}

// --- fonts

TEST(RomFonts, HandlesSixteenToThirtyOneAreFontsAfterReset) {
    for (const Generation generation : {Generation::E1, Generation::E2, Generation::E3}) {
        Scanner scanner(generation);
        const RomFont& font = romFont(generation, 18);
        const Frame& frame =
            scanner.scan(static_cast<int>(font.width), static_cast<int>(font.height),
                         {begin(primitive::Bitmaps), vertex2ii(0, 0, 18, 'E')});
        EXPECT_THAT(frame.complaints, IsEmpty());
        EXPECT_EQ(letterpicture::brightness(frame.picture), rows({
                                                                "........",
                                                                "........",
                                                                "........",
                                                                ".#######",
                                                                ".#......",
                                                                ".#......",
                                                                ".#......",
                                                                ".#######",
                                                                ".#......",
                                                                ".#......",
                                                                ".#......",
                                                                ".#######",
                                                                "........",
                                                                "........",
                                                                "........",
                                                                "........",
                                                            }));
    }
}

TEST(RomFonts, CharactersDrawnAreReported) {
    Scanner scanner;
    const Frame& frame = scanner.scan(200, 60,
                                      {begin(primitive::Bitmaps), vertex2ii(30, 5, 30, 'O'),
                                       vertex2ii(52, 5, 30, ' '), vertex2ii(3, 5, 26, 'k')});
    ASSERT_EQ(frame.characters.size(), 3U);
    EXPECT_EQ(frame.characters[0].x, 30);
    EXPECT_EQ(frame.characters[0].y, 5);
    EXPECT_EQ(frame.characters[0].handle, 30);
    EXPECT_EQ(frame.characters[0].cell, 'O');
    EXPECT_EQ(frame.characters[1].cell, ' ');
    EXPECT_EQ(frame.characters[2].handle, 26);
}

TEST(RomFonts, ARomFontAtAnotherHandleIsReportedToo) {
    Scanner scanner;
    const RomFont& font = romFont(Generation::E3, 32);
    const Frame& frame = scanner.scan(80, 80,
                                      {bitmapHandle(2), bitmapSource(font.address),
                                       bitmapLayout(font.format, font.stride, font.height),
                                       bitmapSize(nearest, font.width, font.height),
                                       begin(primitive::Bitmaps), vertex2ii(4, 4, 2, 'A')});
    ASSERT_EQ(frame.characters.size(), 1U);
    EXPECT_EQ(frame.characters[0].handle, 2);
    EXPECT_EQ(frame.characters[0].cell, 'A');
}

TEST(RomFonts, WhatIsNotAFontOrNotOnThePanelIsNotReported) {
    Scanner scanner;
    EXPECT_THAT(
        scanner
            .scan(20, 20,
                  bitmap(format::L8, 4, 4, bitmapSize(nearest, 4, 4)) +
                      std::vector{bitmapHandle(20), bitmapSource(0), begin(primitive::Bitmaps),
                                  vertex2ii(0, 0, 20, 'x'), vertex2ii(300, 0, 28, 'y')})
            .characters,
        IsEmpty());
}

TEST(RomFonts, ReportsAreOfTheLastFrameOnly) {
    Scanner scanner;
    scanner.scan(20, 20, {begin(primitive::Bitmaps), vertex2ii(0, 0, 28, 'y')});
    EXPECT_THAT(scanner.scan(20, 20, {}).characters, IsEmpty());
}
