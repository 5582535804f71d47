#include "shapes.h"

#include "fixedmath.h"
#include "work.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>

// Every shape here says, for a line of samples at a given y, which one span of it is covered.
// drawShape() puts the lines together to rows of pixels.
//
// Inside this file all lengths are in 1/4096 pixel, which holds the corners of a slanting line
// closely enough; vertices come in 1/16 and spans go out in 1/256.

namespace controller {

namespace {

constexpr std::int64_t pixel = 4096;
constexpr std::int64_t perSubpixel = pixel / subpixels;
constexpr std::int64_t perRowUnit = pixel / rowUnits;
constexpr RowSpan nothing{};

struct Vector {
    std::int64_t x;
    std::int64_t y;
};

Vector fine(Position point) {
    return {point.x * perSubpixel, point.y * perSubpixel};
}

// floor(sqrt(value)), whatever the machine makes of the first guess.
std::int64_t squareRoot(std::int64_t value) {
    if (value <= 0) {
        return 0;
    }
    auto root = static_cast<std::int64_t>(std::sqrt(static_cast<double>(value)));
    while (root * root > value) {
        --root;
    }
    while ((root + 1) * (root + 1) <= value) {
        ++root;
    }
    return root;
}

// Spans are made in 1/4096 pixel and rounded once, here.
RowSpan rounded(std::int64_t left, std::int64_t right) {
    return {floorQuotient(left + perRowUnit / 2, perRowUnit),
            floorQuotient(right + perRowUnit / 2, perRowUnit)};
}

// --- shapes: top and bottom, the span at y, and whether all lines between two y are alike

class Disc {
public:
    Disc(Vector centre, std::int64_t radius) : m_centre(centre), m_radius(radius) {}

    std::int64_t top() const { return m_centre.y - m_radius; }
    std::int64_t bottom() const { return m_centre.y + m_radius; }
    bool isAlike(std::int64_t /*from*/, std::int64_t /*to*/) const { return false; }

    RowSpan at(std::int64_t y) const {
        const std::int64_t half = halfChord(y);
        return half == 0 ? nothing : rounded(m_centre.x - half, m_centre.x + half);
    }

    // Half the length of the chord at y, 0 outside.
    std::int64_t halfChord(std::int64_t y) const {
        const std::int64_t distance = y - m_centre.y;
        return squareRoot(m_radius * m_radius - distance * distance);
    }
    std::int64_t x() const { return m_centre.x; }

private:
    Vector m_centre;
    std::int64_t m_radius;
};

// A side of a convex polygon.
class Side {
public:
    Side() = default;
    Side(Vector a, Vector b) : m_upper(a.y < b.y ? a : b), m_bottom(std::max(a.y, b.y)) {
        if (a.y != b.y) {
            m_slope = (b.x - a.x) * slopeUnit / (b.y - a.y);
        }
    }

    bool crosses(std::int64_t y) const { return y >= m_upper.y && y < m_bottom; }
    // Where it crosses y.
    std::int64_t at(std::int64_t y) const {
        return m_upper.x + floorQuotient((y - m_upper.y) * m_slope, slopeUnit);
    }

private:
    static constexpr std::int64_t slopeUnit = 1 << 24;

    Vector m_upper{};
    std::int64_t m_bottom = 0;
    std::int64_t m_slope = 0; // x per y, in 1/2^24
};

// A line with round ends: two discs and the band between them.
class Capsule {
public:
    Capsule(Vector from, Vector to, std::int64_t radius)
        : m_from(from, radius), m_to(to, radius), m_radius(radius), m_upright(from.x == to.x),
          m_upper(std::min(from.y, to.y)), m_lower(std::max(from.y, to.y)) {
        const Vector along{to.x - from.x, to.y - from.y};
        const std::int64_t length = squareRoot(along.x * along.x + along.y * along.y);
        const Vector across = length == 0
                                  ? Vector{0, 0}
                                  : Vector{-along.y * radius / length, along.x * radius / length};
        const Vector a{from.x + across.x, from.y + across.y};
        const Vector b{to.x + across.x, to.y + across.y};
        const Vector c{to.x - across.x, to.y - across.y};
        const Vector d{from.x - across.x, from.y - across.y};
        m_band = {Side(a, b), Side(b, c), Side(c, d), Side(d, a)};
    }

    std::int64_t top() const { return m_upper - m_radius; }
    std::int64_t bottom() const { return m_lower + m_radius; }
    bool isAlike(std::int64_t from, std::int64_t to) const {
        return m_upright && from >= m_upper && to <= m_lower;
    }

    // The capsule is convex, so what its parts cover of a line is one span.
    RowSpan at(std::int64_t y) const {
        std::int64_t left = std::numeric_limits<std::int64_t>::max();
        std::int64_t right = std::numeric_limits<std::int64_t>::min();
        for (const Disc* disc : {&m_from, &m_to}) {
            if (const std::int64_t half = disc->halfChord(y); half > 0) {
                left = std::min(left, disc->x() - half);
                right = std::max(right, disc->x() + half);
            }
        }
        for (const Side& side : m_band) {
            if (side.crosses(y)) {
                left = std::min(left, side.at(y));
                right = std::max(right, side.at(y));
            }
        }
        return left < right ? rounded(left, right) : nothing;
    }

private:
    Disc m_from;
    Disc m_to;
    std::int64_t m_radius;
    bool m_upright;
    std::int64_t m_upper; // end of the segment
    std::int64_t m_lower;
    std::array<Side, 4> m_band;
};

class RoundedRectangle {
public:
    RoundedRectangle(Vector corner, Vector opposite, std::int64_t radius)
        : m_left(std::min(corner.x, opposite.x)), m_right(std::max(corner.x, opposite.x)),
          m_upper(std::min(corner.y, opposite.y)), m_lower(std::max(corner.y, opposite.y)),
          m_radius(radius) {}

    std::int64_t top() const { return m_upper - m_radius; }
    std::int64_t bottom() const { return m_lower + m_radius; }
    bool isAlike(std::int64_t from, std::int64_t to) const {
        return from >= m_upper && to <= m_lower;
    }

    RowSpan at(std::int64_t y) const {
        const std::int64_t distance = y - std::clamp(y, m_upper, m_lower);
        const std::int64_t reach = squareRoot(m_radius * m_radius - distance * distance);
        return reach == 0 ? nothing : rounded(m_left - reach, m_right + reach);
    }

private:
    std::int64_t m_left; // of the rectangle before rounding
    std::int64_t m_right;
    std::int64_t m_upper;
    std::int64_t m_lower;
    std::int64_t m_radius;
};

// The half plane on one side of the line through two points, within a range of whole pixels.
class EdgeRegion {
public:
    // Covers `within`; `toLeft`: the part of each line of samples that is left of the edge.
    EdgeRegion(Vector from, Vector to, bool toLeft, const PixelRect& within)
        : m_from(from.y < to.y ? from : to), m_to(from.y < to.y ? to : from), m_toLeft(toLeft),
          m_left(within.left * pixel), m_right(within.right * pixel), m_top(within.top * pixel),
          m_bottom(within.bottom * pixel) {}

    std::int64_t top() const { return m_top; }
    std::int64_t bottom() const { return m_bottom; }

    bool isAlike(std::int64_t from, std::int64_t to) const {
        const std::int64_t first = crossing(from);
        const std::int64_t last = crossing(to);
        return first == last || std::max(first, last) <= m_left || std::min(first, last) >= m_right;
    }

    RowSpan at(std::int64_t y) const {
        const std::int64_t x = std::clamp(crossing(y), m_left, m_right);
        return m_toLeft ? rounded(m_left, x) : rounded(x, m_right);
    }

private:
    // Where the edge, which is not level, crosses y.
    std::int64_t crossing(std::int64_t y) const {
        return m_from.x + floorQuotient((y - m_from.y) * (m_to.x - m_from.x), m_to.y - m_from.y);
    }

    Vector m_from; // the upper end
    Vector m_to;
    bool m_toLeft;
    std::int64_t m_left;
    std::int64_t m_right;
    std::int64_t m_top;
    std::int64_t m_bottom;
};

// --- drawing

template<typename Shape>
void addRow(CoverageRow& row, const Shape& shape, std::int64_t top) {
    constexpr std::int64_t lineHeight = pixel / linesPerRow;
    Work& work = row.pipeline().work();
    if (shape.isAlike(top, top + pixel)) {
        work.add(cost::sampleLine);
        row.add(shape.at(top + pixel / 2), linesPerRow);
        return;
    }
    work.add(cost::sampleLine * linesPerRow);
    for (std::int64_t y = top + lineHeight / 2; y < top + pixel; y += lineHeight) {
        row.add(shape.at(y), 1);
    }
}

template<typename Shape>
void drawShape(CoverageRow& row, const Shape& shape) {
    const PixelRect& clip = row.pipeline().clip();
    const auto top =
        static_cast<int>(std::max<std::int64_t>(floorQuotient(shape.top(), pixel), clip.top));
    const auto bottom =
        static_cast<int>(std::min<std::int64_t>(ceilQuotient(shape.bottom(), pixel), clip.bottom));
    if (clip.empty()) {
        return;
    }
    row.reach(clip.left, clip.right);
    for (int y = top; y < bottom && !row.pipeline().work().isTooMuch(); ++y) {
        addRow(row, shape, y * pixel);
        row.draw(y);
    }
}

// The pixels that lie wholly between two positions (1/16 pixel).
struct PixelRange {
    PixelRange(std::int64_t from, std::int64_t to)
        : first(ceilQuotient(std::min(from, to), subpixels)),
          end(floorQuotient(std::max(from, to), subpixels)) {}

    std::int64_t first;
    std::int64_t end;
};

int clampedTo(std::int64_t value, int low, int high) {
    return static_cast<int>(std::clamp<std::int64_t>(value, low, high));
}

// Above or below a level edge: a rectangle whose rows are all full but perhaps the one that the
// edge crosses.
void drawLevelEdge(CoverageRow& row, std::int64_t y, bool above, const PixelRect& columns) {
    row.reach(columns.left, columns.right);
    const auto edgeRow = floorQuotient(y, subpixels);
    const auto linesAbove = static_cast<int>(y - edgeRow * subpixels);
    const RowSpan full{static_cast<std::int64_t>(columns.left) * rowUnits,
                       static_cast<std::int64_t>(columns.right) * rowUnits};
    Work& work = row.pipeline().work();
    for (int line = columns.top; line < columns.bottom && !work.isTooMuch(); ++line) {
        work.add(cost::sampleLine);
        int covered = (line < edgeRow) == above ? linesPerRow : 0;
        if (line == edgeRow) {
            covered = above ? linesAbove : linesPerRow - linesAbove;
        }
        if (covered > 0) {
            row.add(full, covered);
            row.draw(line);
        }
    }
}

} // namespace

void drawPoint(CoverageRow& row, Position centre, int radius) {
    drawShape(row, Disc(fine(centre), radius * perSubpixel));
}

void drawLine(CoverageRow& row, Position from, Position to, int halfWidth) {
    drawShape(row, Capsule(fine(from), fine(to), halfWidth * perSubpixel));
}

void drawRectangle(CoverageRow& row, Position corner, Position opposite, int rounding) {
    drawShape(row, RoundedRectangle(fine(corner), fine(opposite), rounding * perSubpixel));
}

void drawEdge(CoverageRow& row, Position from, Position to, EdgeSide side) {
    PixelRect within = row.pipeline().clip();
    const bool vertical = side == EdgeSide::Above || side == EdgeSide::Below;
    if (vertical) {
        const PixelRange columns(from.x, to.x);
        within.right = clampedTo(columns.end, within.left, within.right);
        within.left = clampedTo(columns.first, within.left, within.right);
    } else {
        const PixelRange rows(from.y, to.y);
        within.bottom = clampedTo(rows.end, within.top, within.bottom);
        within.top = clampedTo(rows.first, within.top, within.bottom);
    }
    if (within.empty()) {
        return;
    }
    if (vertical && from.y == to.y) {
        drawLevelEdge(row, from.y, side == EdgeSide::Above, within);
        return;
    }
    // What lies above an edge that falls to the right lies right of it, and so on.
    const bool fallsToTheRight = (to.x > from.x) == (to.y > from.y);
    const bool toLeft = side == EdgeSide::Left || (side == EdgeSide::Above && !fallsToTheRight) ||
                        (side == EdgeSide::Below && fallsToTheRight);
    drawShape(row, EdgeRegion(fine(from), fine(to), toLeft, within));
}

} // namespace controller
