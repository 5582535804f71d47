#pragma once

#include "bytes.h"

#include <cstdint>

// Image files made for tests.

namespace controllertest {

// Kinds of PNG, by the number that stands in the file.
namespace png {
constexpr std::uint8_t grey = 0;
constexpr std::uint8_t rgb = 2;
constexpr std::uint8_t palette = 3;
constexpr std::uint8_t greyAlpha = 4;
constexpr std::uint8_t rgba = 6;
} // namespace png

struct PngParts {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint8_t kind = png::grey;
    Bytes samples{}; // as the kind has them, without gaps
    Bytes palette{}; // three bytes an entry
    Bytes alphas{};  // of the palette
    std::uint8_t depth = 8;
};
Bytes pngFile(const PngParts& parts);

// Samples are grey or colours, one or three bytes a pixel.
Bytes jpegFile(std::uint32_t width, std::uint32_t height, const Bytes& samples,
               bool progressive = false);

} // namespace controllertest
