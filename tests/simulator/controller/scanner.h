#pragma once

#include "displaylist.h"
#include "dlwords.h"
#include "fontrom.h"
#include "graphicsengine.h"
#include "graphicsmemory.h"
#include "joinedwords.h"
#include "memorylayout.h"
#include "pixelhistory.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <vector>

// A graphics engine with its memories, and words to feed it.
namespace controller {

// What the tests need beside the words of dlwords.h: shorter forms for E3.
namespace listwords {

using namespace dl;
using controllertest::operator+;

constexpr std::uint32_t clearAll = dl::clear(true, true, true);
constexpr std::uint32_t nearest = 0;
constexpr std::uint32_t bilinear = 1U << 20;
constexpr std::uint32_t repeatX = 1U << 19;
constexpr std::uint32_t repeatY = 1U << 18;

constexpr std::uint32_t word(std::uint32_t code) {
    return dl::word(code, 0);
}
constexpr std::uint32_t scissorXy(std::uint32_t x, std::uint32_t y) {
    return dl::scissorXy(Generation::E3, x, y);
}
constexpr std::uint32_t scissorSize(std::uint32_t width, std::uint32_t height) {
    return dl::scissorSize(Generation::E3, width, height);
}
constexpr std::uint32_t bitmapSize(std::uint32_t flags, std::uint32_t width, std::uint32_t height) {
    return dl::bitmapSize(width, height) | flags;
}
// A vertex in whole pixels, which may lie outside of the panel.
constexpr std::uint32_t pixels(int x, int y) {
    return dl::vertex2f(x * 16, y * 16);
}
constexpr std::uint32_t vertex2ii(std::uint32_t x, std::uint32_t y, std::uint32_t handle = 0) {
    return dl::vertex2ii(x, y, handle, 0);
}

} // namespace listwords

class Scanner {
public:
    explicit Scanner(Generation generation = Generation::E3, Vectors vectors = widestVectors())
        : m_generation(generation), m_engine(generation, vectors),
          m_general(generation == Generation::E1 ? 256 * 1024 : 1024 * 1024),
          m_changes(pagesOf(m_general.size())), m_palette(1024),
          m_noChanges(pagesOf(romImage(generation).size)) {}

    GraphicsEngine& engine() { return m_engine; }
    std::array<std::uint32_t, 2>& macros() { return m_macros; }
    std::vector<std::uint8_t>& palette() { return m_palette; }
    void store(std::size_t address, std::initializer_list<int> bytes) {
        ++m_moment;
        for (const int byte : bytes) {
            m_changes.at(address / pageBytes) = m_moment;
            m_general.at(address++) = static_cast<std::uint8_t>(byte);
        }
    }

    // Scans the words, which need not end with DISPLAY.
    const Frame& scan(int width, int height, const std::vector<std::uint32_t>& list) {
        const DisplayList whole = filledUp(list);
        return m_engine.draw({whole, memory(), m_macros, width, height});
    }
    PixelHistory history(int width, int height, const std::vector<std::uint32_t>& list, int x,
                         int y) {
        const DisplayList whole = filledUp(list);
        return historyOf(m_generation, {whole, memory(), m_macros, width, height},
                         m_engine.handles(), x, y);
    }
    PixelRect area(int width, int height, const std::vector<std::uint32_t>& list,
                   const std::vector<std::size_t>& words) {
        const DisplayList whole = filledUp(list);
        return areaOf(m_generation, {whole, memory(), m_macros, width, height}, m_engine.handles(),
                      words);
    }

private:
    static DisplayList filledUp(const std::vector<std::uint32_t>& list) {
        DisplayList whole{};
        std::copy_n(list.begin(), std::min(list.size(), whole.size()), whole.begin());
        return whole;
    }
    GraphicsMemory memory() const {
        const RomImage rom = romImage(m_generation);
        return {{0, m_general.data(), m_general.size(), m_changes.data()},
                {rom.base, rom.data, rom.size, m_noChanges.data()},
                paletteRegion(),
                m_moment};
    }
    GraphicsMemory::Region paletteRegion() const {
        if (m_generation != Generation::E1) {
            return {};
        }
        return {0x102000, m_palette.data(), m_palette.size()};
    }

    Generation m_generation;
    GraphicsEngine m_engine;
    std::vector<std::uint8_t> m_general;
    std::vector<std::uint64_t> m_changes;
    std::vector<std::uint8_t> m_palette; // E1 only
    std::vector<std::uint64_t> m_noChanges;
    std::uint64_t m_moment = 0;
    std::array<std::uint32_t, 2> m_macros{};
};

} // namespace controller
