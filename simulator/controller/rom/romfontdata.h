#pragma once

#include "fontrom.h"

#include <array>
#include <cstddef>

// The glyphs of the built-in fonts, as fonts/makeromfonts makes them.
namespace controller {

constexpr int firstPackedCharacter = 32;
constexpr std::size_t packedCharacterCount = 95; // the printable ASCII characters
constexpr std::size_t packedFontCount = lastRomFont - firstRomFont + 1;

// A glyph's cell row by row, as runs of equal ink: a letter from 'a' (none) to 'p' (full), then
// the run's length in decimal unless it is 1.
struct PackedGlyph {
    int advance; // pixels
    const char* runs;
};

struct PackedFont {
    int number;
    int width; // of every cell, pixels
    int height;
    int bitsPerPixel; // 1 (ink 'a' and 'p' only) or 4
    std::array<PackedGlyph, packedCharacterCount> glyphs;
};

extern const std::array<PackedFont, packedFontCount> packedFonts;

} // namespace controller
