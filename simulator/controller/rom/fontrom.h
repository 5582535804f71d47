#pragma once

#include "generation.h"
#include "romimage.h"

#include <array>
#include <cstdint>

namespace controller {

// First and last built-in font. Fonts 16 to 31 exist in every generation, 32 to 34 in E2 and E3.
constexpr int firstRomFont = 16;
constexpr int lastRomFont = 34;
constexpr int lastRomFontE1 = 31;

// The whole ROM. The data is static and lives as long as the program.
RomImage romImage(Generation generation);

// A font's block in the ROM's font table, decoded.
struct RomFont {
    std::array<std::uint8_t, 128> widths; // advance of each character, pixels
    std::uint32_t format = 0;             // bitmap format number: L1 or L4
    std::uint32_t stride = 0;             // bytes a line
    std::uint32_t width = 0;              // of the widest character, pixels
    std::uint32_t height = 0;             // pixels
    std::uint32_t address = 0;            // of character 0's pixels
};

// `font` from firstRomFont to the generation's last; anything else is a programming error.
const RomFont& romFont(Generation generation, int font);

// A grey ramp in ROM beside the fonts, from which the coprocessor builds gradients: L8, one line.
struct RomRamp {
    std::uint32_t address = 0;
    std::uint32_t length = 0; // texels: the first is 0, the last 255
    std::uint32_t line = 0;   // texels of the whole line: those behind the ramp are 255
};

RomRamp romRamp(Generation generation);

} // namespace controller
