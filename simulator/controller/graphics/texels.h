#pragma once

#include "displaylist.h"
#include "generation.h"
#include "graphicsmemory.h"
#include "pixelmath.h"

#include <array>
#include <cstddef>
#include <cstdint>

// How the bitmap formats keep their texels. A reader gives texel x of a row: formats that hold
// alpha only give an alpha of 0 to 255 (std::uint8_t), the others a pixel 0xAARRGGBB.
namespace controller {

constexpr std::uint32_t paletteEntries = 256;
using Palette = std::array<std::uint32_t, paletteEntries>; // 0xAARRGGBB

// Bits a texel takes, or 0 for a format that the generation does not have or the model does not
// draw.
std::uint32_t bitsPerTexel(Generation generation, std::uint32_t format);
bool isPaletted(std::uint32_t format);
// The palette for `format` at `address`. False when part of it is not mapped: those colours are 0.
bool readPalette(const GraphicsMemory& memory, std::uint32_t format, std::uint32_t address,
                 Palette& palette);

// Widening a channel of a few bits to 0..255, all ones becoming 255.
constexpr std::uint32_t widened2(std::uint32_t v) {
    return (v & 3) * 85;
}
constexpr std::uint32_t widened3(std::uint32_t v) {
    return ((v & 7) * 255 + 3) / 7;
}
constexpr std::uint32_t widened4(std::uint32_t v) {
    return (v & 15) * 17;
}
constexpr std::uint32_t widened5(std::uint32_t v) {
    return ((v & 31) * 255 + 15) / 31;
}
constexpr std::uint32_t widened6(std::uint32_t v) {
    return ((v & 63) * 255 + 31) / 63;
}

constexpr std::uint32_t argb(std::uint32_t a, std::uint32_t r, std::uint32_t g, std::uint32_t b) {
    return a << 24 | r << 16 | g << 8 | b;
}

inline std::uint32_t littleEndian16(const std::uint8_t* bytes) {
    return bytes[0] | static_cast<std::uint32_t>(bytes[1]) << 8;
}

constexpr std::uint32_t fromArgb1555(std::uint32_t v) {
    return argb((v >> 15) * 255, widened5(v >> 10), widened5(v >> 5), widened5(v));
}
constexpr std::uint32_t fromArgb4(std::uint32_t v) {
    return argb(widened4(v >> 12), widened4(v >> 8), widened4(v >> 4), widened4(v));
}
constexpr std::uint32_t fromRgb565(std::uint32_t v) {
    return argb(opaque, widened5(v >> 11), widened6(v >> 5), widened5(v));
}

// Alpha in `Bits` bits, the leftmost texel in the byte's top bits.
template<unsigned Bits>
struct LuminanceTexels {
    using Value = std::uint8_t;
    Value operator()(const std::uint8_t* row, std::uint32_t x) const {
        constexpr unsigned perByte = 8 / Bits;
        constexpr unsigned mask = (1U << Bits) - 1;
        const unsigned shift = 8 - Bits - x % perByte * Bits;
        return static_cast<Value>((row[x / perByte] >> shift & mask) * (255 / mask));
    }
};

// Colours of two bytes.
template<std::uint32_t (*argbOf)(std::uint32_t)>
struct TwoByteTexels {
    using Value = std::uint32_t;
    Value operator()(const std::uint8_t* row, std::uint32_t x) const {
        return argbOf(littleEndian16(row + std::size_t{2} * x));
    }
};
using Argb1555Texels = TwoByteTexels<fromArgb1555>;
using Argb4Texels = TwoByteTexels<fromArgb4>;
using Rgb565Texels = TwoByteTexels<fromRgb565>;

struct Rgb332Texels {
    using Value = std::uint32_t;
    Value operator()(const std::uint8_t* row, std::uint32_t x) const {
        const std::uint32_t v = row[x];
        return argb(opaque, widened3(v >> 5), widened3(v >> 2), widened2(v));
    }
};

struct Argb2Texels {
    using Value = std::uint32_t;
    Value operator()(const std::uint8_t* row, std::uint32_t x) const {
        const std::uint32_t v = row[x];
        return argb(widened2(v >> 6), widened2(v >> 4), widened2(v >> 2), widened2(v));
    }
};

struct PalettedTexels {
    using Value = std::uint32_t;
    const Palette& palette;
    Value operator()(const std::uint8_t* row, std::uint32_t x) const { return palette[row[x]]; }
};

} // namespace controller
