#include "rampslope.h"

#include "dlwords.h"
#include "fixedmath.h"

#include <algorithm>
#include <utility>
#include <vector>

// Where rounding shows: the ramp is only as wide as the vector is long, but runs right across the
// canvas, so that a small mistake in its direction shifts it far away from the vector. For a short
// vector the direction is what counts, and its numbers may be a little off as long as their ratio
// is right: of the numbers around the rounded ones those are taken that are best where the ramp can
// be seen.

namespace controller {

namespace {

constexpr std::int64_t highestBitmap = 511; // in every generation
constexpr int farthestTried = 4;            // from the rounded numbers
// What the rounded numbers may be off without a look at others: 3/8 of the ramp's 256 steps.
constexpr std::int64_t tolerance = 96;

struct Range {
    std::int64_t low = 0;
    std::int64_t high = 0;
    std::int64_t largest() const { return std::max(std::abs(low), std::abs(high)); }
};

class SlopeFinder {
public:
    SlopeFinder(const Gradient& gradient, const GradientCanvas& canvas)
        : m_gradient(gradient), m_canvas(canvas), m_vx(gradient.x1 - gradient.x0),
          m_vy(gradient.y1 - gradient.y0), m_square(m_vx * m_vx + m_vy * m_vy) {
        findCorners();
    }

    RampSlope find() const;

private:
    using Corner = std::pair<std::int64_t, std::int64_t>;

    void findCorners();
    void addCorner(std::int64_t x, std::int64_t y);
    RampSlope slope(std::uint32_t step, std::int64_t dx, std::int64_t dy) const;
    RampSlope rounded(std::uint32_t step) const;
    Range errors(const RampSlope& slope) const;
    RampSlope centred(RampSlope slope) const;

    Gradient m_gradient;
    GradientCanvas m_canvas;
    std::int64_t m_vx;
    std::int64_t m_vy;
    std::int64_t m_square;
    std::vector<Corner> m_corners; // of the part of the canvas where the ramp is, in whole pixels
};

void SlopeFinder::addCorner(std::int64_t x, std::int64_t y) {
    if (x >= 0 && y >= 0 && x <= m_canvas.width && y <= m_canvas.height) {
        m_corners.emplace_back(x, y);
    }
}

void SlopeFinder::findCorners() {
    for (const int x : {0, m_canvas.width}) {
        for (const int y : {0, m_canvas.height}) {
            const std::int64_t along = (x - m_gradient.x0) * m_vx + (y - m_gradient.y0) * m_vy;
            if (along >= 0 && along <= m_square) {
                m_corners.emplace_back(x, y);
            }
        }
    }
    // Where the lines across both ends of the vector meet the border
    for (const std::int64_t along : {std::int64_t{0}, m_square}) {
        const std::int64_t sum = along + m_vx * m_gradient.x0 + m_vy * m_gradient.y0;
        for (const int x : {0, m_canvas.width}) {
            if (m_vy != 0) {
                addCorner(x, roundedQuotient(sum - m_vx * x, m_vy));
            }
        }
        for (const int y : {0, m_canvas.height}) {
            if (m_vx != 0) {
                addCorner(roundedQuotient(sum - m_vy * y, m_vx), y);
            }
        }
    }
}

// Exact in the middle of the vector, so that rounding shows least at its ends.
RampSlope SlopeFinder::slope(std::uint32_t step, std::int64_t dx, std::int64_t dy) const {
    RampSlope slope;
    slope.step = step;
    slope.texels = m_canvas.ramp.length / step;
    slope.dx = dx;
    slope.dy = dy;
    slope.rows = slope.isSteep() ? std::min<std::int64_t>(m_canvas.ramp.line / step, highestBitmap)
                                 : slope.texels;
    slope.start = (slope.texels * RampSlope::one - dx * (m_gradient.x0 + m_gradient.x1) -
                   dy * (m_gradient.y0 + m_gradient.y1)) /
                  2;
    return slope;
}

RampSlope SlopeFinder::rounded(std::uint32_t step) const {
    const std::int64_t length = m_canvas.ramp.length / step * RampSlope::one;
    return slope(step, roundedQuotient(length * m_vx, m_square),
                 roundedQuotient(length * m_vy, m_square));
}

// How far positions are off where the ramp can be seen.
Range SlopeFinder::errors(const RampSlope& slope) const {
    std::vector<std::int64_t> all;
    for (const auto& [x, y] : m_corners) {
        const std::int64_t along = (x - m_gradient.x0) * m_vx + (y - m_gradient.y0) * m_vy;
        all.push_back(roundedQuotient(
            slope.at(x, y) * m_square - slope.texels * RampSlope::one * along, m_square));
    }
    if (all.empty()) {
        return {};
    }
    const auto [low, high] = std::minmax_element(all.begin(), all.end());
    return {*low, *high};
}

// As much too far at one place as it is too short at another.
RampSlope SlopeFinder::centred(RampSlope slope) const {
    const Range range = errors(slope);
    slope.start -= (range.low + range.high) / 2;
    return slope;
}

// A strip begins half way through the full texels behind a steep ramp. A pixel that it covers in
// part must lie within these, also when the rounded vertices shift it by a quarter pixel.
bool hasRoomForStrip(const RampSlope& slope) {
    return !slope.isSteep() ||
           slope.perPixel() * 5 / 4 <= (slope.rows - slope.texels) * RampSlope::one / 2;
}

RampSlope SlopeFinder::find() const {
    RampSlope best = rounded(1);
    while ((!hasRoomForStrip(best) || !best.canStart()) && best.step < m_canvas.ramp.length / 2) {
        best = rounded(best.step * 2);
    }
    const RampSlope first = best;
    std::int64_t least = errors(best).largest();
    if (least * best.step <= tolerance) {
        return best;
    }
    for (int x = -farthestTried; x <= farthestTried; ++x) {
        for (int y = -farthestTried; y <= farthestTried; ++y) {
            const RampSlope tried = centred(slope(first.step, first.dx + x, first.dy + y));
            const std::int64_t error = errors(tried).largest();
            if (error < least && tried.canStart()) {
                least = error;
                best = tried;
            }
        }
    }
    return best;
}

} // namespace

bool RampSlope::canStart() const {
    return std::abs(start) <= dl::largestTransformOffset;
}

RampSlope rampSlope(const Gradient& gradient, const GradientCanvas& canvas) {
    return SlopeFinder(gradient, canvas).find();
}

} // namespace controller
