#pragma once

#include <cstdint>

namespace controller {

// Positions and lengths on the panel are in 1/16 pixel.
constexpr int subpixels = 16;

// A place on the panel in 1/16 pixel.
struct Position {
    std::int64_t x = 0;
    std::int64_t y = 0;
};

} // namespace controller
