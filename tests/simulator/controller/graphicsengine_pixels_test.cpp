// What happens to a pixel: clear, scissor, blending, alpha and stencil tests, masks and tags.

#include "letterpicture.h"
#include "scanner.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

using namespace controller;
using namespace controller::listwords;
using letterpicture::rows;

namespace {

// The words that fill pixels [x, right) of the first rows: sharp upright edges.
std::vector<std::uint32_t> columns(int x, int right) {
    return {begin(primitive::EdgeStripA), pixels(x, 100), pixels(right, 100), end()};
}

std::uint32_t stencilFunc(std::uint32_t function, std::uint32_t reference, std::uint32_t mask) {
    return word(opcode::StencilFunc, function << 16 | reference << 8 | mask);
}
std::uint32_t stencilOp(std::uint32_t fail, std::uint32_t pass) {
    return word(opcode::StencilOp, fail << 3 | pass);
}
std::uint32_t alphaFunc(std::uint32_t function, std::uint32_t reference) {
    return word(opcode::AlphaFunc, function << 8 | reference);
}

// The colour of the one pixel that the words draw on.
std::uint32_t pixelAfter(const std::vector<std::uint32_t>& list) {
    Scanner scanner;
    const Frame& frame = scanner.scan(1, 1, list);
    EXPECT_TRUE(frame.complaints.empty());
    EXPECT_EQ(frame.picture.at(0, 0) >> 24, 0xFFU);
    return frame.picture.at(0, 0) & 0xFFFFFF;
}

std::string brightness(int width, const std::vector<std::uint32_t>& list) {
    Scanner scanner;
    return letterpicture::brightness(scanner.scan(width, 1, list).picture);
}

std::string tags(int width, int height, const std::vector<std::uint32_t>& list) {
    Scanner scanner;
    return letterpicture::tags(scanner.scan(width, height, list),
                               {{0, '.'}, {1, '1'}, {2, '2'}, {3, '3'}, {255, 'F'}});
}

const std::vector<std::uint32_t> onePixel = columns(0, 1);

} // namespace

// --- clear and scissor

TEST(Clear, AListWithoutClearStartsBlack) {
    Scanner scanner;
    scanner.scan(1, 1, {clearColorRgb(0x123456), clearAll});
    EXPECT_EQ(scanner.scan(1, 1, {}).picture.at(0, 0), 0xFF000000);
}

TEST(Clear, ClearsColourTagAndStencilEachByItsBit) {
    const std::vector<std::uint32_t> values{clearColorRgb(0xFFFFFF), word(opcode::ClearTag, 2),
                                            word(opcode::ClearStencil, 7)};
    Scanner scanner;
    const Frame& color = scanner.scan(1, 1, values + std::vector{word(opcode::Clear, 4)});
    EXPECT_EQ(color.picture.at(0, 0), 0xFFFFFFFF);
    EXPECT_EQ(color.tags[0], 0);
    const Frame& tag = scanner.scan(1, 1, values + std::vector{word(opcode::Clear, 1)});
    EXPECT_EQ(tag.picture.at(0, 0), 0xFF000000);
    EXPECT_EQ(tag.tags[0], 2);
    const Frame& stencil = scanner.scan(1, 1, values + std::vector{word(opcode::Clear, 2)});
    EXPECT_EQ(stencil.picture.at(0, 0), 0xFF000000);
    EXPECT_EQ(stencil.tags[0], 0);
    EXPECT_EQ(pixelAfter(values +
                         std::vector{word(opcode::Clear, 2), stencilFunc(test::Equal, 7, 255)} +
                         onePixel),
              0xFFFFFFU);
    EXPECT_EQ(pixelAfter(values +
                         std::vector{word(opcode::Clear, 1), stencilFunc(test::Equal, 7, 255)} +
                         onePixel),
              0x000000U);
}

TEST(Clear, IsLimitedByTheScissor) {
    Scanner scanner;
    EXPECT_EQ(
        letterpicture::brightness(
            scanner
                .scan(6, 4, {scissorXy(1, 1), scissorSize(3, 2), clearColorRgb(0xFFFFFF), clearAll})
                .picture),
        rows({
            "......",
            ".###..",
            ".###..",
            "......",
        }));
}

TEST(Clear, KeepsMaskedColourChannels) {
    EXPECT_EQ(pixelAfter({clearColorRgb(0x112233), clearAll, word(opcode::ColorMask, 0b0101),
                          clearColorRgb(0xFFFFFF), clearAll}),
              0x11FF33U);
}

TEST(Scissor, LimitsEveryPrimitive) {
    Scanner scanner;
    EXPECT_EQ(letterpicture::brightness(
                  scanner
                      .scan(8, 4,
                            {scissorXy(2, 1), scissorSize(4, 2), begin(primitive::Points),
                             pointSize(400), pixels(4, 2)})
                      .picture),
              rows({
                  "........",
                  "..####..",
                  "..####..",
                  "........",
              }));
}

TEST(Scissor, HasNarrowerFieldsInE1) {
    Scanner scanner(Generation::E1);
    const std::uint32_t xy = word(opcode::ScissorXy, 2 << 9 | 1);
    const std::uint32_t size = word(opcode::ScissorSize, 3 << 10 | 2);
    EXPECT_EQ(letterpicture::brightness(
                  scanner.scan(6, 4, {xy, size, clearColorRgb(0xFFFFFF), clearAll}).picture),
              rows({
                  "......",
                  "..###.",
                  "..###.",
                  "......",
              }));
}

TEST(Scissor, OfNoSizeOrOutsideThePanelDrawsNothing) {
    for (const auto& scissor : {std::vector{scissorSize(0, 0)}, std::vector{scissorXy(2000, 0)},
                                std::vector{scissorXy(0, 2000)}}) {
        EXPECT_EQ(pixelAfter(scissor + std::vector{clearColorRgb(0xFFFFFF), clearAll} + onePixel),
                  0U);
    }
}

// --- blending

TEST(Blending, AlphaMixesSourceAndDestination) {
    EXPECT_EQ(
        pixelAfter(std::vector{clearColorRgb(0x0000FF), clearAll, colorRgb(0xFF0000), colorA(51)} +
                   onePixel),
        0x3300CCU);
}

TEST(Blending, OneAndZeroReplace) {
    EXPECT_EQ(pixelAfter(std::vector{clearColorRgb(0x0000FF), clearAll, colorRgb(0x806040),
                                     colorA(51), blendFunc(blend::One, blend::Zero)} +
                         onePixel),
              0x806040U);
}

TEST(Blending, OneAndOneAddUpToFull) {
    EXPECT_EQ(pixelAfter(std::vector{clearColorRgb(0x0080FF), clearAll, colorRgb(0x104090),
                                     blendFunc(blend::One, blend::One)} +
                         onePixel),
              0x10C0FFU);
}

TEST(Blending, DestinationAlphaIsWhatHasBeenDrawnThere) {
    EXPECT_EQ(pixelAfter(std::vector{word(opcode::ClearColorA, 51), clearAll, colorRgb(0xFFFFFF),
                                     blendFunc(blend::DstAlpha, blend::Zero)} +
                         onePixel),
              0x333333U);
    EXPECT_EQ(pixelAfter(std::vector{word(opcode::ClearColorA, 51), clearAll, colorRgb(0xFFFFFF),
                                     blendFunc(blend::OneMinusDstAlpha, blend::Zero)} +
                         onePixel),
              0xCCCCCCU);
}

TEST(Blending, GoesTheSameWayWithAndWithoutATest) {
    // A test that always passes takes the slow path; both must round alike.
    Scanner scanner;
    for (std::uint32_t a = 0; a < 256; ++a) {
        const auto pixel = [&](std::uint32_t extra) {
            const std::vector<std::uint32_t> setUp{clearColorRgb(0x3C5A77), clearAll, extra,
                                                   colorRgb(0xF10488), colorA(a)};
            return scanner.scan(1, 1, setUp + onePixel).picture.at(0, 0);
        };
        EXPECT_EQ(pixel(alphaFunc(test::Always, 0)), pixel(alphaFunc(test::GreaterOrEqual, 0)));
    }
}

TEST(Blending, ColorMaskKeepsChannels) {
    EXPECT_EQ(pixelAfter(std::vector{clearColorRgb(0x112233), clearAll,
                                     word(opcode::ColorMask, 0b1010), colorRgb(0xAABBCC)} +
                         onePixel),
              0xAA22CCU);
}

// --- alpha test

TEST(AlphaTest, ComparesTheSourcesAlphaWithTheReference) {
    const auto passing = [](std::uint32_t function) {
        std::string drawn;
        for (const std::uint32_t a : {99U, 100U, 101U}) {
            drawn += pixelAfter(std::vector{alphaFunc(function, 100), colorA(a)} + onePixel) != 0
                         ? 'x'
                         : '.';
        }
        return drawn;
    };
    EXPECT_EQ(passing(test::Never), "...");
    EXPECT_EQ(passing(test::Less), "x..");
    EXPECT_EQ(passing(test::LessOrEqual), "xx.");
    EXPECT_EQ(passing(test::Greater), "..x");
    EXPECT_EQ(passing(test::GreaterOrEqual), ".xx");
    EXPECT_EQ(passing(test::Equal), ".x.");
    EXPECT_EQ(passing(test::NotEqual), "x.x");
    EXPECT_EQ(passing(test::Always), "xxx");
}

TEST(AlphaTest, CutsTransparentTexelsOutOfTheTags) {
    Scanner scanner;
    scanner.store(0, {0b10100000});
    const std::vector<std::uint32_t> bitmap{
        bitmapSource(0), bitmapLayout(format::L1, 1, 1), bitmapSize(nearest, 4, 1),
        tag(1),          begin(primitive::Bitmaps),      vertex2ii(0, 0)};
    EXPECT_EQ(letterpicture::tags(scanner.scan(5, 1, bitmap), {{0, '.'}, {1, '1'}}),
              rows({"1111."}));
    EXPECT_EQ(
        letterpicture::tags(scanner.scan(5, 1, std::vector{alphaFunc(test::Greater, 0)} + bitmap),
                            {{0, '.'}, {1, '1'}}),
        rows({"1.1.."}));
}

// --- stencil

TEST(Stencil, LetsThroughWhereAShapeHasBeen) {
    EXPECT_EQ(brightness(8, std::vector{stencilOp(stencilop::Keep, stencilop::Increment),
                                        word(opcode::ColorMask, 0)} +
                                columns(2, 6) +
                                std::vector{stencilOp(stencilop::Keep, stencilop::Keep),
                                            word(opcode::ColorMask, 15),
                                            stencilFunc(test::Equal, 1, 255)} +
                                columns(4, 8)),
              rows({"....##.."}));
}

TEST(Stencil, OperationsChangeTheValue) {
    // What the operation makes of 5, read back by comparing.
    const auto after = [](std::uint32_t operation, std::uint32_t start, std::uint32_t expected) {
        return pixelAfter(std::vector{word(opcode::ClearStencil, start), clearAll,
                                      stencilFunc(test::Always, 9, 255),
                                      stencilOp(stencilop::Keep, operation), colorRgb(0)} +
                          onePixel +
                          std::vector{stencilOp(stencilop::Keep, stencilop::Keep),
                                      stencilFunc(test::Equal, expected, 255), colorRgb(0xFFFFFF)} +
                          onePixel) != 0;
    };
    EXPECT_TRUE(after(stencilop::Zero, 5, 0));
    EXPECT_TRUE(after(stencilop::Keep, 5, 5));
    EXPECT_TRUE(after(stencilop::Replace, 5, 9));
    EXPECT_TRUE(after(stencilop::Increment, 5, 6));
    EXPECT_TRUE(after(stencilop::Increment, 255, 255));
    EXPECT_TRUE(after(stencilop::Decrement, 5, 4));
    EXPECT_TRUE(after(stencilop::Decrement, 0, 0));
    EXPECT_TRUE(after(stencilop::Invert, 5, 250));
    EXPECT_TRUE(after(stencilop::IncrementWrapping, 255, 0));
    EXPECT_TRUE(after(stencilop::DecrementWrapping, 0, 255));
}

TEST(Stencil, FailOperationAppliesWhereTheTestFails) {
    EXPECT_EQ(pixelAfter(std::vector{stencilFunc(test::Never, 3, 255),
                                     stencilOp(stencilop::Replace, stencilop::Keep)} +
                         onePixel +
                         std::vector{stencilFunc(test::Equal, 3, 255), colorRgb(0x00FF00)} +
                         onePixel),
              0x00FF00U);
}

TEST(Stencil, MasksLimitWhatIsComparedAndWritten) {
    EXPECT_EQ(pixelAfter(std::vector{word(opcode::ClearStencil, 0xF5), clearAll,
                                     stencilFunc(test::Equal, 0x05, 0x0F)} +
                         onePixel),
              0xFFFFFFU);
    EXPECT_EQ(pixelAfter(
                  std::vector{word(opcode::StencilMask, 0x0F), stencilFunc(test::Always, 0xFF, 255),
                              stencilOp(stencilop::Keep, stencilop::Replace), colorRgb(0)} +
                  onePixel + std::vector{stencilFunc(test::Equal, 0x0F, 255), colorRgb(0xFFFFFF)} +
                  onePixel),
              0xFFFFFFU);
}

// --- tags

TEST(Tags, DrawingTagsWithTheCurrentTag) {
    EXPECT_EQ(tags(8, 1,
                   columns(0, 1) + std::vector{tag(1)} + columns(1, 3) + std::vector{tag(2)} +
                       columns(5, 7)),
              rows({"F11..22."}));
}

TEST(Tags, TagMaskZeroLeavesTheTagsBelow) {
    EXPECT_EQ(tags(6, 1,
                   std::vector{tag(1)} + columns(0, 4) + std::vector{tagMask(0), tag(2)} +
                       columns(2, 6) + std::vector{tagMask(1), tag(3)} + columns(3, 5)),
              rows({"11133."}));
}

TEST(Tags, WhereCoverageIsZeroThereIsNoTag) {
    EXPECT_EQ(tags(6, 6, {tag(1), pointSize(32), begin(primitive::Points), pixels(3, 3)}),
              rows({
                  "......",
                  ".1111.",
                  ".1111.",
                  ".1111.",
                  ".1111.",
                  "......",
              }));
}

TEST(Tags, AnInvisibleColourStillTags) {
    EXPECT_EQ(tags(3, 1, std::vector{tag(1), colorA(0)} + columns(0, 2)), rows({"11."}));
}

TEST(Tags, AClearTakesTheClearTag) {
    EXPECT_EQ(tags(3, 1,
                   std::vector{tag(1)} + columns(0, 2) +
                       std::vector{word(opcode::ClearTag, 2), word(opcode::Clear, 1)}),
              rows({"222"}));
}
