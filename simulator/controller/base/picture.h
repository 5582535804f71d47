#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace controller {

// A finished picture of the panel: rows from the top, pixels from the left, each 0xFFRRGGBB.
// Whoever holds a Picture owns its pixels.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;

    std::uint32_t at(int x, int y) const {
        return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                      static_cast<std::size_t>(x)];
    }
    friend bool operator==(const Picture& a, const Picture& b) {
        return a.width == b.width && a.height == b.height && a.pixels == b.pixels;
    }
    friend bool operator!=(const Picture& a, const Picture& b) { return !(a == b); }
};

} // namespace controller
