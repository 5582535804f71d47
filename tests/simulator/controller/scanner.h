#pragma once

#include "displaylist.h"
#include "fontrom.h"
#include "graphicsengine.h"
#include "graphicsmemory.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <vector>

// A graphics engine with its memories, and words to feed it.
namespace controller {

// --- display-list words (E2/E3 layout where the generations differ)
namespace words {

constexpr std::uint32_t word(std::uint32_t code, std::uint32_t fields = 0) {
    return code << 24 | fields;
}

constexpr std::uint32_t display = word(opcode::Display);
constexpr std::uint32_t end = word(opcode::End);
constexpr std::uint32_t clearAll = word(opcode::Clear, 7);
constexpr std::uint32_t saveContext = word(opcode::SaveContext);
constexpr std::uint32_t restoreContext = word(opcode::RestoreContext);
constexpr std::uint32_t returnFromCall = word(opcode::Return);

constexpr std::uint32_t clearColor(std::uint32_t rgb) {
    return word(opcode::ClearColorRgb, rgb);
}
constexpr std::uint32_t color(std::uint32_t rgb) {
    return word(opcode::ColorRgb, rgb);
}
constexpr std::uint32_t alpha(std::uint32_t a) {
    return word(opcode::ColorA, a);
}
constexpr std::uint32_t tag(std::uint32_t value) {
    return word(opcode::Tag, value);
}
constexpr std::uint32_t tagMask(std::uint32_t mask) {
    return word(opcode::TagMask, mask);
}
constexpr std::uint32_t begin(std::uint32_t kind) {
    return word(opcode::Begin, kind);
}
constexpr std::uint32_t pointSize(std::uint32_t radius) {
    return word(opcode::PointSize, radius);
}
constexpr std::uint32_t lineWidth(std::uint32_t half) {
    return word(opcode::LineWidth, half);
}
constexpr std::uint32_t scissorXy(std::uint32_t x, std::uint32_t y) {
    return word(opcode::ScissorXy, x << 11 | y);
}
constexpr std::uint32_t scissorSize(std::uint32_t width, std::uint32_t height) {
    return word(opcode::ScissorSize, width << 12 | height);
}
constexpr std::uint32_t bitmapHandle(std::uint32_t handle) {
    return word(opcode::BitmapHandle, handle);
}
constexpr std::uint32_t bitmapSource(std::uint32_t address) {
    return word(opcode::BitmapSource, address);
}
constexpr std::uint32_t bitmapLayout(std::uint32_t format, std::uint32_t stride,
                                     std::uint32_t height) {
    return word(opcode::BitmapLayout, format << 19 | stride << 9 | height);
}
constexpr std::uint32_t nearest = 0;
constexpr std::uint32_t bilinear = 1U << 20;
constexpr std::uint32_t repeatX = 1U << 19;
constexpr std::uint32_t repeatY = 1U << 18;
constexpr std::uint32_t bitmapSize(std::uint32_t flags, std::uint32_t width, std::uint32_t height) {
    return word(opcode::BitmapSize, flags | width << 9 | height);
}
// `value` in the word's own unit: 1/256 pixel.
constexpr std::uint32_t transformFactor(std::uint32_t code, int value) {
    return word(code, static_cast<std::uint32_t>(value) & 0x1FFFF);
}
constexpr std::uint32_t transformOffset(std::uint32_t code, int value) {
    return word(code, static_cast<std::uint32_t>(value) & 0xFFFFFF);
}
// Whole pixels.
constexpr std::uint32_t vertex2ii(std::uint32_t x, std::uint32_t y, std::uint32_t handle = 0,
                                  std::uint32_t cell = 0) {
    return 2U << 30 | x << 21 | y << 12 | handle << 7 | cell;
}
// 1/16 pixel, unless VERTEX_FORMAT says otherwise.
constexpr std::uint32_t vertex2f(int x, int y) {
    return 1U << 30 | (static_cast<std::uint32_t>(x) & 0x7FFF) << 15 |
           (static_cast<std::uint32_t>(y) & 0x7FFF);
}

} // namespace words

class Scanner {
public:
    explicit Scanner(Generation generation = Generation::E3)
        : m_generation(generation), m_engine(generation),
          m_general(generation == Generation::E1 ? 256 * 1024 : 1024 * 1024), m_palette(1024) {}

    GraphicsEngine& engine() { return m_engine; }
    std::array<std::uint32_t, 2>& macros() { return m_macros; }
    std::vector<std::uint8_t>& palette() { return m_palette; }
    void store(std::size_t address, std::initializer_list<int> bytes) {
        for (const int byte : bytes) {
            m_general.at(address++) = static_cast<std::uint8_t>(byte);
        }
    }

    // Scans the words, which need not end with DISPLAY.
    const Frame& scan(int width, int height, const std::vector<std::uint32_t>& list) {
        std::vector<std::uint32_t> whole(displayListWords);
        std::copy_n(list.begin(), std::min(list.size(), whole.size()), whole.begin());
        return scanWhole(width, height, whole);
    }

    // Scans a list of exactly displayListWords words as it is.
    const Frame& scanWhole(int width, int height, const std::vector<std::uint32_t>& list) {
        const RomImage rom = romImage(m_generation);
        const GraphicsMemory memory({0, m_general.data(), m_general.size()},
                                    {rom.base, rom.data, rom.size}, paletteRegion());
        m_engine.scan(list.data(), memory, m_macros, width, height, m_frame);
        return m_frame;
    }

private:
    GraphicsMemory::Region paletteRegion() const {
        if (m_generation != Generation::E1) {
            return {};
        }
        return {0x102000, m_palette.data(), m_palette.size()};
    }

    Generation m_generation;
    GraphicsEngine m_engine;
    std::vector<std::uint8_t> m_general;
    std::vector<std::uint8_t> m_palette; // E1 only
    std::array<std::uint32_t, 2> m_macros{};
    Frame m_frame;
};

} // namespace controller
