#include "inflate.h"
#include "streams.h"

#include <algorithm>

namespace {

template<std::size_t N>
std::vector<std::uint8_t> pixelsOf(const std::array<unsigned char, N>& stream) {
    return inflated(stream.data(), stream.size());
}

// Alpha of pixel (x, y) in an ARGB4 picture.
int alpha(const std::vector<std::uint8_t>& pixels, std::size_t width, std::size_t x,
          std::size_t y) {
    return pixels[2 * (y * width + x) + 1] >> 4;
}

TEST(Streams, LogoInflatesTo470By85PixelsOfTwoBytes) {
    EXPECT_EQ(pixelsOf(assets::logo).size(), 79900U);
}

TEST(Streams, LogoPiecesInflateToThePackedLengthOfAllThirteen) {
    EXPECT_EQ(pixelsOf(assets::logoPieces).size(), 70815U);
}

TEST(Streams, EveryLogoPieceHasFullInkSomewhere) {
    const auto pixels = pixelsOf(assets::logoPieces);
    const std::vector<std::size_t> starts = {0x0,    0x14F5, 0x43CB, 0x4561, 0x46F7, 0x489B, 0x4A4E,
                                             0x4BF2, 0x4D96, 0x4F1E, 0x50A6, 0xC50E, 0xF286, 70815};
    for (std::size_t i = 0; i + 1 < starts.size(); ++i) {
        EXPECT_TRUE(std::any_of(pixels.begin() + static_cast<std::ptrdiff_t>(starts[i]),
                                pixels.begin() + static_cast<std::ptrdiff_t>(starts[i + 1]),
                                [](std::uint8_t pair) { return pair == 0xFF; }))
            << "piece " << i;
    }
}

TEST(Streams, DerivativeIconHasItsFractionBarAcrossTheMiddle) {
    const auto pixels = pixelsOf(assets::derivativeIcon);
    ASSERT_EQ(pixels.size(), 1008U);
    for (std::size_t x = 1; x < 17; ++x) {
        EXPECT_EQ(alpha(pixels, 18, x, 13), 15) << x;
    }
    EXPECT_EQ(alpha(pixels, 18, 0, 0), 0);
}

TEST(Streams, IntegralIconIsDarkInkOnTransparentGround) {
    const auto pixels = pixelsOf(assets::integralIcon);
    ASSERT_EQ(pixels.size(), 1728U);
    int inked = 0;
    for (std::size_t i = 0; i < pixels.size(); i += 2) {
        if (pixels[i + 1] >> 4 == 0) {
            EXPECT_EQ(pixels[i] | pixels[i + 1], 0);
        } else {
            EXPECT_EQ(pixels[i], 0x11);
            EXPECT_EQ(pixels[i + 1] & 0x0F, 0x01);
            ++inked;
        }
    }
    EXPECT_GT(inked, 100);
}

} // namespace
