#pragma once

#include "gradient.h"

#include <cstdint>
#include <cstdlib>

namespace controller {

// How the ROM's ramp lies along a gradient's vector. The position along the ramp of pixel (x, y),
// in texels with 8 fraction bits: dx*x + dy*y + start.
struct RampSlope {
    static constexpr std::int64_t one = 256; // of the 8 fraction bits

    std::int64_t dx = 0;
    std::int64_t dy = 0;
    std::int64_t start = 0;
    std::int64_t texels = 0; // of the ramp in use
    std::int64_t rows = 0;   // of the bitmap: these and perhaps full ones
    std::uint32_t step = 1;  // between them, in texels of the ROM's ramp

    std::int64_t perPixel() const { return std::abs(dx) + std::abs(dy); }
    bool isSteep() const { return perPixel() > one; }
    std::int64_t at(std::int64_t x, std::int64_t y) const { return dx * x + dy * y + start; }
    // Whether a transform's constant term can hold the start.
    bool canStart() const;
};

// As true as the rounded numbers of a transform can be, all over the canvas.
RampSlope rampSlope(const Gradient& gradient, const GradientCanvas& canvas);

} // namespace controller
