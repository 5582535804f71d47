#pragma once

#include "memorymap.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace controller {

constexpr std::uint32_t fontBlockBytes = 148;

// What it takes to draw with a font: its metrics, its bitmap handle, and what must stand in the
// list before its characters.
struct Font {
    std::array<std::uint8_t, 128> widths{}; // by character code
    std::uint32_t height = 0;
    std::uint32_t handle = 0;
    std::uint32_t firstCharacter = 0; // the one in cell 0
    std::vector<std::uint32_t> setup; // words, for a font that has no handle of its own

    // 0 for what the font does not have.
    int widthOf(unsigned char character) const {
        return character >= firstCharacter && character < widths.size() ? widths[character] : 0;
    }
    int widthOf(const std::string& text) const;
};

// `text` with line feeds instead of blanks where a line would be wider than `width` pixels; a word
// that is wider stands alone. Unchanged when the width is 0.
std::string brokenText(const Font& font, const std::string& text, int width);

// The coprocessor's table of fonts: which metric block belongs to which font number. Numbers 0 to
// 31 are bitmap handles; 16 to 31, and beyond them the larger ROM fonts of E2 and E3, stand for
// ROM fonts until changed. A font beyond 31 is drawn through the scratch handle.
class FontTable {
public:
    FontTable(Generation generation, const MemoryMap& memory);

    void reset();
    // SETFONT and SETFONT2: the metric block is in memory.
    void setFont(std::uint32_t font, std::uint32_t block, std::uint32_t firstCharacter);
    // ROMFONT: a ROM font under another number. False for numbers that do not exist.
    bool setRomFont(std::uint32_t font, std::uint32_t romFont);
    void setScratchHandle(std::uint32_t handle) { m_scratchHandle = handle; }
    std::uint32_t scratchHandle() const { return m_scratchHandle; }

    std::optional<Font> find(std::uint32_t number) const;
    // Words that make bitmap handle `handle` the font's.
    std::vector<std::uint32_t> handleSetup(std::uint32_t font, std::uint32_t handle) const;

private:
    struct Entry {
        bool isSet = false;
        std::uint32_t block = 0; // address of the metrics
        std::uint32_t firstCharacter = 0;
    };
    std::uint32_t romBlock(std::uint32_t font) const;
    std::uint32_t lastRomFont() const;

    Generation m_generation;
    const MemoryMap& m_memory;
    std::array<Entry, 64> m_entries{};
    std::uint32_t m_scratchHandle = 15;
};

} // namespace controller
