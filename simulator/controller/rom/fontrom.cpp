#include "fontrom.h"

#include "displaylist.h"
#include "memorylayout.h"
#include "romfontdata.h"

#include <cassert>
#include <cstring>
#include <vector>

// The layout of the ROM: the font table, then for each font its cells of characters 32 to 127,
// then the ramp, and in the last word the address of the font table.
//
// There is no room for characters 0 to 31, which no font has: a font's address stands that many
// cells before its first stored one, inside what lies before it in the ROM. Their width is 0.

namespace controller {

namespace {

constexpr std::size_t cellsPerFont = 128;
constexpr std::size_t storedCells = cellsPerFont - firstPackedCharacter;
constexpr std::size_t fontBlockSize = 148;
constexpr std::uint32_t rampLength = 256;
constexpr std::uint32_t rampLineLength = 1023; // the longest line every generation can describe

class Rom {
public:
    explicit Rom(Generation generation);

    RomImage image() const { return {m_place.base, m_bytes.data(), m_bytes.size()}; }
    const RomFont& font(int number) const {
        return m_fonts.at(static_cast<std::size_t>(number - firstRomFont));
    }
    RomRamp ramp() const { return {m_rampAddress, rampLength, rampLineLength}; }

private:
    std::uint32_t allocate(std::size_t size);
    std::uint8_t* at(std::uint32_t address) { return m_bytes.data() + (address - m_place.base); }
    void putWord(std::uint32_t address, std::uint32_t word);
    RomFont makeFont(const PackedFont& packed);
    void putFontBlock(std::uint32_t address, const RomFont& font);
    void putRamp();

    Span m_place;
    std::uint32_t m_end;  // the last word, which points at the font table
    std::uint32_t m_free; // next free address
    std::vector<std::uint8_t> m_bytes;
    std::vector<RomFont> m_fonts;
    std::uint32_t m_rampAddress = 0;
};

// Writes a glyph's ink into its cell, which is zeroed.
class CellWriter {
public:
    CellWriter(const PackedFont& font, std::uint8_t* cell, std::size_t stride)
        : m_font(font), m_cell(cell), m_stride(stride) {}

    void write(const char* runs) {
        while (*runs != '\0') {
            const int ink = *runs++ - 'a';
            int length = 0;
            for (; *runs >= '0' && *runs <= '9'; ++runs) {
                length = length * 10 + (*runs - '0');
            }
            putRun(ink, length == 0 ? 1 : length);
        }
    }

private:
    void putRun(int ink, int length) {
        for (const int end = m_position + length; m_position < end; ++m_position) {
            putPixel(m_position % m_font.width, m_position / m_font.width, ink);
        }
    }

    void putPixel(int x, int y, int ink) {
        assert(y < m_font.height);
        const int pixelsPerByte = 8 / m_font.bitsPerPixel;
        const int shift = 8 - m_font.bitsPerPixel * (1 + x % pixelsPerByte);
        const int value = m_font.bitsPerPixel == 1 ? ink & 1 : ink; // full ink is all ones
        const auto column =
            static_cast<std::size_t>(x) * static_cast<std::size_t>(m_font.bitsPerPixel) / 8;
        std::uint8_t& byte = m_cell[static_cast<std::size_t>(y) * m_stride + column];
        byte = static_cast<std::uint8_t>(byte | value << shift);
    }

    const PackedFont& m_font;
    std::uint8_t* m_cell;
    std::size_t m_stride;
    int m_position = 0;
};

Rom::Rom(Generation generation)
    : m_place(memoryLayout(generation).rom), m_end(memoryLayout(generation).fontTable),
      m_free(m_place.base), m_bytes(m_place.size) {
    const int last = generation == Generation::E1 ? lastRomFontE1 : lastRomFont;
    const int fontCount = last - firstRomFont + 1;
    const auto fonts = static_cast<std::size_t>(fontCount);
    const std::uint32_t table = allocate(fonts * fontBlockSize);
    for (std::size_t i = 0; i < fonts; ++i) {
        m_fonts.push_back(makeFont(packedFonts[i]));
        putFontBlock(table + static_cast<std::uint32_t>(i * fontBlockSize), m_fonts.back());
    }
    putRamp();
    putWord(m_end, table);
    if (m_place.contains(chipIdAddress)) {
        putWord(chipIdAddress, memoryLayout(generation).chipId);
    }
}

// The next `size` bytes, but never the chip's identity, which E1 has in the midst of its ROM.
std::uint32_t Rom::allocate(std::size_t size) {
    std::uint32_t start = m_free;
    auto end = static_cast<std::uint32_t>(start + size);
    if (start < chipIdAddress + 4 && end > chipIdAddress) {
        start = chipIdAddress + 4;
        end = static_cast<std::uint32_t>(start + size);
    }
    assert(end <= m_end);
    m_free = (end + 3U) & ~3U;
    return start;
}

void Rom::putWord(std::uint32_t address, std::uint32_t word) {
    for (int i = 0; i < 4; ++i) {
        at(address)[i] = static_cast<std::uint8_t>(word >> 8 * i);
    }
}

RomFont Rom::makeFont(const PackedFont& packed) {
    RomFont font{};
    font.format = packed.bitsPerPixel == 1 ? format::L1 : format::L4;
    font.width = static_cast<std::uint32_t>(packed.width);
    font.height = static_cast<std::uint32_t>(packed.height);
    font.stride = static_cast<std::uint32_t>((packed.width * packed.bitsPerPixel + 7) / 8);

    const std::uint32_t cellSize = font.stride * font.height;
    const std::uint32_t pixels = allocate(storedCells * cellSize);
    font.address = pixels - firstPackedCharacter * cellSize;
    std::uint8_t* cell = at(pixels);
    for (std::size_t i = 0; i < packed.glyphs.size(); ++i, cell += cellSize) {
        const PackedGlyph& glyph = packed.glyphs[i];
        font.widths[firstPackedCharacter + i] = static_cast<std::uint8_t>(glyph.advance);
        CellWriter(packed, cell, font.stride).write(glyph.runs);
    }
    return font;
}

void Rom::putFontBlock(std::uint32_t address, const RomFont& font) {
    std::memcpy(at(address), font.widths.data(), font.widths.size());
    auto next = static_cast<std::uint32_t>(address + font.widths.size());
    for (const std::uint32_t word :
         {font.format, font.stride, font.width, font.height, font.address}) {
        putWord(next, word);
        next += 4;
    }
}

void Rom::putRamp() {
    m_rampAddress = allocate(rampLineLength);
    std::uint8_t* texels = at(m_rampAddress);
    for (std::uint32_t i = 0; i < rampLineLength; ++i) {
        texels[i] = static_cast<std::uint8_t>(i < rampLength ? i : rampLength - 1);
    }
}

const Rom& romOf(Generation generation) {
    if (generation == Generation::E1) {
        static const Rom rom(Generation::E1);
        return rom;
    }
    static const Rom rom(Generation::E2); // E3 has the same
    return rom;
}

} // namespace

RomImage romImage(Generation generation) {
    return romOf(generation).image();
}

const RomFont& romFont(Generation generation, int font) {
    return romOf(generation).font(font);
}

RomRamp romRamp(Generation generation) {
    return romOf(generation).ramp();
}

} // namespace controller
