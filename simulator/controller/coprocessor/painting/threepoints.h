#pragma once

#include <array>
#include <cstdint>
#include <optional>

namespace controller {

// x' = a*x + b*y + c, y' = d*x + e*y + f, in units of 1 / `unit`.
struct Affine {
    std::int32_t a = 0;
    std::int32_t b = 0;
    std::int32_t c = 0;
    std::int32_t d = 0;
    std::int32_t e = 0;
    std::int32_t f = 0;

    std::array<std::int32_t, 6> values() const { return {a, b, c, d, e, f}; }
};

struct PointPair {
    std::int32_t x = 0; // from ...
    std::int32_t y = 0;
    std::int32_t tx = 0; // ... to
    std::int32_t ty = 0;
};

// The transform that takes three points to three others, each factor rounded to nearest and exact
// at the first point. Nothing when the points lie on one line, do not fit 17 bits, or the factors
// do not fit theirs.
std::optional<Affine> affineThrough(const std::array<PointPair, 3>& points, std::int32_t unit);

} // namespace controller
