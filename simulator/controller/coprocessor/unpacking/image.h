#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace controller {

// An image as the chip's bitmaps have it.
struct Image {
    enum class Format : std::uint8_t { L8, Rgb565, Argb4, Paletted565, Paletted4444 };

    Format format = Format::L8;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::vector<std::uint8_t> palette; // 256 entries of two bytes, or none
    std::vector<std::uint8_t> pixels;  // line by line, without gaps, the low byte first

    std::uint32_t bytesPerPixel() const {
        return format == Format::Rgb565 || format == Format::Argb4 ? 2 : 1;
    }
};

// The image in a whole file, or why there is none.
struct ImageResult {
    Image image;
    std::string error; // empty: none
};

// Eight bits deep; grey, colour, with alpha or a palette. Damaged is what fails a checksum or ends
// early. An image of more than `mostPixels` is refused before it is unpacked.
ImageResult unpackPng(const std::vector<std::uint8_t>& file, std::size_t mostPixels);

// Baseline, grey or colour. `mono`: as L8, not RGB565.
ImageResult unpackJpeg(const std::vector<std::uint8_t>& file, bool mono, std::size_t mostPixels);

namespace detail {

// Appends a pixel.
inline void appendRgb565(std::vector<std::uint8_t>& bytes, unsigned r, unsigned g, unsigned b) {
    const unsigned pixel = r >> 3U << 11U | g >> 2U << 5U | b >> 3U;
    bytes.push_back(static_cast<std::uint8_t>(pixel));
    bytes.push_back(static_cast<std::uint8_t>(pixel >> 8U));
}

inline void appendArgb4(std::vector<std::uint8_t>& bytes, unsigned a, unsigned r, unsigned g,
                        unsigned b) {
    bytes.push_back(static_cast<std::uint8_t>(g >> 4U << 4U | b >> 4U));
    bytes.push_back(static_cast<std::uint8_t>(a >> 4U << 4U | r >> 4U));
}

} // namespace detail

} // namespace controller
