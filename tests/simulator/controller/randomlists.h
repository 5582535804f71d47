#pragma once

#include "scanner.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

namespace controller {

// Makes up lists for an E3 that draw something of everything. The same seed gives the same lists.
class RandomLists {
public:
    explicit RandomLists(std::uint32_t seed) : m_random(seed) {}

    // A number below `limit`.
    std::uint32_t below(std::uint32_t limit) {
        return static_cast<std::uint32_t>(m_random() % (limit == 0 ? 1 : limit));
    }

    // Adds some words for a panel of this size.
    void append(std::vector<std::uint32_t>& list, int count, int width, int height) {
        for (int i = 0; i < count; ++i) {
            appendOne(list, static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height));
        }
    }

private:
    void appendOne(std::vector<std::uint32_t>& list, std::uint32_t width, std::uint32_t height) {
        using namespace listwords;
        const auto put = [&](std::uint32_t word) { list.push_back(word); };
        switch (below(16)) {
        case 0:
            put(dl::clearColorRgb(bits()));
            put(word(opcode::ClearColorA, below(256)));
            put(word(opcode::Clear, below(8)));
            return;
        case 1:
            put(dl::colorRgb(bits()));
            put(dl::colorA(below(3) != 0 ? 255 : below(256)));
            return;
        case 2:
            put(pointSize(below(below(4) != 0 ? 400 : 8192)));
            put(lineWidth(below(below(4) != 0 ? 200 : 4096)));
            return;
        case 3:
            put(word(opcode::AlphaFunc, below(2) != 0 ? 0x700 : below(0x800)));
            put(word(opcode::StencilFunc, below(2) != 0 ? 0x700FF : below(0x80000)));
            put(word(opcode::StencilOp, below(64)));
            return;
        case 4:
            put(below(2) != 0 ? dl::blendFunc(2, 4) : dl::blendFunc(below(6), below(6)));
            put(word(opcode::ColorMask, below(2) != 0 ? 15 : below(16)));
            return;
        case 5:
            put(scissorXy(below(width), below(height)));
            put(scissorSize(below(width + 50), below(height + 50)));
            return;
        case 6:
            put(below(2) != 0 ? dl::saveContext() : dl::restoreContext());
            return;
        case 7:
            put(word(opcode::Tag, below(256)));
            put(dl::tagMask(below(4) != 0 ? 1 : 0));
            return;
        case 8:
            appendLayout(list);
            return;
        case 9:
            for (unsigned field = 0; field < 6; ++field) {
                const bool straight = field == 0 || field == 4;
                put(dl::bitmapTransform(field, static_cast<int>(below(straight ? 512 : 200)) -
                                                   (straight ? 0 : 100)));
            }
            return;
        case 10:
            put(word(opcode::PaletteSource, below(70000)));
            put(word(opcode::BitmapSwizzle, below(2) != 0 ? 02345 : below(4096)));
            return;
        case 11:
            put(dl::macro(below(2)));
            return;
        case 12: {
            const std::uint32_t x = below(width);
            const std::uint32_t y = below(height);
            put(begin(primitive::Bitmaps));
            for (std::uint32_t letter = below(6); letter > 0; --letter) {
                put(dl::vertex2ii(x + 9 * letter, y, below(32), 32 + below(96)));
            }
            put(end());
            return;
        }
        default:
            put(begin(1 + below(9)));
            for (std::uint32_t vertex = 1 + below(5); vertex > 0; --vertex) {
                put(vertex2f(static_cast<int>(below(width * 20)) - 100,
                             static_cast<int>(below(height * 20)) - 100));
            }
            if (below(2) != 0) {
                put(end());
            }
            return;
        }
    }

    void appendLayout(std::vector<std::uint32_t>& list) {
        using namespace listwords;
        list.push_back(bitmapHandle(below(4)));
        list.push_back(dl::bitmapSource(below(70000)));
        list.push_back(dl::bitmapLayout(below(18), below(below(2) != 0 ? 40 : 1024),
                                        below(below(2) != 0 ? 40 : 512)));
        list.push_back(bitmapSize(below(8) << 18U, below(below(2) != 0 ? 100 : 512),
                                  below(below(2) != 0 ? 60 : 512)));
    }

    std::uint32_t bits() { return static_cast<std::uint32_t>(m_random()); }

    std::mt19937 m_random;
};

// Fills the start of a scanner's memory.
inline void storeRandom(Scanner& scanner, RandomLists& random) {
    constexpr std::size_t stored = 70000;
    for (std::size_t i = 0; i < stored; ++i) {
        scanner.store(i, {static_cast<int>(random.below(256))});
    }
}

inline bool areSame(const Frame& a, const Frame& b) {
    const auto sameCharacter = [](const DrawnCharacter& one, const DrawnCharacter& other) {
        return one.x == other.x && one.y == other.y && one.handle == other.handle &&
               one.cell == other.cell;
    };
    return a.picture == b.picture && a.tags == b.tags && a.complaints == b.complaints &&
           a.work == b.work &&
           std::equal(a.characters.begin(), a.characters.end(), b.characters.begin(),
                      b.characters.end(), sameCharacter);
}

} // namespace controller
