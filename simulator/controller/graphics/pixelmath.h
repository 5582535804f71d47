#pragma once

#include <cstdint>

// Arithmetic on pixels 0xAARRGGBB with channels of 0 to 255, where 255 means 1.
namespace controller {

constexpr std::uint32_t opaque = 255;

// a * b / 255, rounded to nearest.
constexpr std::uint32_t multiplied(std::uint32_t a, std::uint32_t b) {
    const std::uint32_t product = a * b + 128;
    return (product + (product >> 8)) >> 8;
}

constexpr std::uint32_t alphaOf(std::uint32_t pixel) {
    return pixel >> 24;
}

constexpr std::uint32_t withAlpha(std::uint32_t pixel, std::uint32_t alpha) {
    return (pixel & 0x00FFFFFF) | alpha << 24;
}

constexpr std::uint32_t channel(std::uint32_t pixel, int shift) {
    return pixel >> shift & 0xFF;
}

// The four channels of a pixel in the four 16-bit lanes of a word, so that one multiplication
// does all of them.
constexpr std::uint64_t lanes = 0x00FF00FF00FF00FF;

constexpr std::uint64_t spread(std::uint32_t pixel) {
    return (pixel | static_cast<std::uint64_t>(pixel) << 24) & lanes;
}

constexpr std::uint32_t gathered(std::uint64_t word) {
    return static_cast<std::uint32_t>(word | word >> 24);
}

// Channel by channel product.
constexpr std::uint32_t modulated(std::uint32_t pixel, std::uint32_t color) {
    return multiplied(alphaOf(pixel), alphaOf(color)) << 24 |
           multiplied(channel(pixel, 16), channel(color, 16)) << 16 |
           multiplied(channel(pixel, 8), channel(color, 8)) << 8 |
           multiplied(channel(pixel, 0), channel(color, 0));
}

} // namespace controller
