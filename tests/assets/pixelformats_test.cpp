#include "pixelformats.h"

#include <gtest/gtest.h>

namespace {

using Bytes = std::vector<std::uint8_t>;

TEST(PixelFormats, Argb4KeepsTheTopBitsLittleEndianWithAlphaHighest) {
    QImage image(2, 1, QImage::Format_ARGB32);
    image.setPixel(0, 0, qRgba(0x22, 0x33, 0x44, 0xFF));
    image.setPixel(1, 0, qRgba(0xFF, 0x00, 0x88, 0x77));
    EXPECT_EQ(toArgb4(image), (Bytes{0x34, 0xF2, 0x08, 0x7F}));
}

TEST(PixelFormats, Argb4DropsTheColourOfWhatCannotBeSeen) {
    QImage image(1, 1, QImage::Format_ARGB32);
    image.setPixel(0, 0, qRgba(0xFF, 0xFF, 0xFF, 0x00));
    EXPECT_EQ(toArgb4(image), (Bytes{0x00, 0x00}));
}

TEST(PixelFormats, L4PacksTheLeftPixelIntoTheUpperHalf) {
    QImage image(2, 2, QImage::Format_ARGB32);
    image.setPixel(0, 0, qRgba(0, 0, 0, 0xFF));
    image.setPixel(1, 0, qRgba(0, 0, 0, 0x00));
    image.setPixel(0, 1, qRgba(0, 0, 0, 0x88));
    image.setPixel(1, 1, qRgba(0, 0, 0, 0x11));
    EXPECT_EQ(toL4(image), (Bytes{0xF0, 0x81}));
}

} // namespace
