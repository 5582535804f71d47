// The loops over rows of pixels, with all the vectors of the machine that runs the test.

#include "pixelmath.h"
#include "randomlists.h"
#include "rowloops.h"
#include "scanner.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

using namespace controller;

namespace {

std::uint32_t blendedByChannels(std::uint32_t source, std::uint32_t pixel) {
    std::uint32_t result = 0;
    for (int shift = 0; shift < 32; shift += 8) {
        const std::uint32_t sum = channel(source, shift) * alphaOf(source) +
                                  channel(pixel, shift) * (255 - alphaOf(source)) + 128;
        result |= (sum + (sum >> 8)) >> 8 << shift;
    }
    return result;
}

class RowLoopsTest : public testing::TestWithParam<Vectors> {
protected:
    RowLoopsTest() {
        for (std::size_t i = 0; i < sources.size(); ++i) {
            sources[i] = static_cast<std::uint32_t>(random());
            pixels[i] = static_cast<std::uint32_t>(random());
            alphas[i] = static_cast<std::uint8_t>(i < 3 ? 127 * i : random());
        }
    }

    // As many as leave something over, however many are done at once.
    static constexpr std::size_t count = 515;
    std::mt19937 random{1};
    const RowLoops& loops = rowLoops(GetParam());
    std::vector<std::uint32_t> sources = std::vector<std::uint32_t>(count);
    std::vector<std::uint32_t> pixels = std::vector<std::uint32_t>(count);
    std::vector<std::uint8_t> alphas = std::vector<std::uint8_t>(count);
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Here, RowLoopsTest, testing::ValuesIn(vectorsHere()),
                         [](const testing::TestParamInfo<Vectors>& test) {
                             return std::to_string(static_cast<int>(test.param));
                         });

TEST_P(RowLoopsTest, BlendAColourByTheAlphaOfEachPixel) {
    for (const std::uint32_t color : {0xFF8040C0U, 0x70FFFFFFU, 0x00123456U}) {
        std::vector<std::uint32_t> expected;
        for (std::size_t i = 0; i < count; ++i) {
            const std::uint32_t alpha = multiplied(alphaOf(color), alphas[i]);
            expected.push_back(blendedByChannels(withAlpha(color, alpha), pixels[i]));
        }
        loops.blendColor(pixels.data(), count, color, alphas.data());
        EXPECT_EQ(pixels, expected) << std::hex << color;
    }
}

TEST_P(RowLoopsTest, BlendAColourByItsOwnAlpha) {
    for (std::uint32_t alpha = 0; alpha < 256; ++alpha) {
        const std::uint32_t color = alpha << 24 | 0x4020FE;
        std::vector<std::uint32_t> expected;
        for (const std::uint32_t pixel : pixels) {
            expected.push_back(blendedByChannels(color, pixel));
        }
        loops.blendAlike(pixels.data(), count, color);
        ASSERT_EQ(pixels, expected) << alpha;
    }
}

TEST_P(RowLoopsTest, BlendPixelsByTheirOwnAlpha) {
    std::vector<std::uint32_t> expected;
    for (std::size_t i = 0; i < count; ++i) {
        expected.push_back(blendedByChannels(sources[i], pixels[i]));
    }
    loops.blendPixels(pixels.data(), count, sources.data());
    EXPECT_EQ(pixels, expected);
}

TEST_P(RowLoopsTest, MultiplyChannels) {
    std::vector<std::uint32_t> expected;
    for (const std::uint32_t pixel : pixels) {
        expected.push_back(modulated(pixel, 0x80FF3300));
    }
    loops.modulate(pixels.data(), count, 0x80FF3300);
    EXPECT_EQ(pixels, expected);
}

TEST_P(RowLoopsTest, TagWhatIsCovered) {
    std::vector<std::uint8_t> tags(count, 7);
    loops.tagCovered(tags.data(), count, alphas.data(), 9);
    for (std::size_t i = 0; i < count; ++i) {
        ASSERT_EQ(tags[i], alphas[i] != 0 ? 9 : 7) << i;
    }
}

TEST_P(RowLoopsTest, DrawTheSamePictures) {
    constexpr int width = 200;
    constexpr int height = 100;
    for (std::uint32_t seed = 0; seed < 40; ++seed) {
        RandomLists lists(seed);
        std::vector<std::uint32_t> list;
        lists.append(list, 40, width, height);
        Scanner usual(Generation::E3, Vectors::Usual);
        Scanner other(Generation::E3, GetParam());
        ASSERT_TRUE(areSame(usual.scan(width, height, list), other.scan(width, height, list)))
            << seed;
    }
}
