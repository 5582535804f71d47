#pragma once

#include <QImage>

#include <cstdint>
#include <vector>

// Pixels as the display controller holds them.

// Two bytes a pixel, little-endian: alpha, red, green, blue of four bits from the top.
std::vector<std::uint8_t> toArgb4(const QImage& image);

// Half a byte a pixel, the left one in the upper half: the picture's alpha. Even widths only.
std::vector<std::uint8_t> toL4(const QImage& image);
