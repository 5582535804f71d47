#include "edgestrip.h"

#include "fixedmath.h"
#include "work.h"

#include <algorithm>
#include <cstddef>

namespace controller {

namespace {

constexpr int perSubpixel = rowUnits / subpixels;
constexpr std::uint32_t wholePixel = (1U << subpixels) - 1;
constexpr std::int64_t middle = subpixels / 2;

bool isUpright(EdgeSide side) { // what is drawn stands above or below the edge
    return side == EdgeSide::Above || side == EdgeSide::Below;
}

bool isBeforeEdge(EdgeSide side) { // and is where positions are smaller
    return side == EdgeSide::Above || side == EdgeSide::Left;
}

// Along the axis that the segment reaches over, and the other one.
struct Ends {
    Ends(Position from, Position to, EdgeSide side)
        : start(isUpright(side) ? from.x : from.y), startHeight(isUpright(side) ? from.y : from.x),
          end(isUpright(side) ? to.x : to.y), endHeight(isUpright(side) ? to.y : to.x) {}

    // Where the edge crosses the middle of the step of 1/16 pixel that begins at `position`, in
    // 1/256 pixel.
    std::int64_t crossing(std::int64_t position) const {
        const std::int64_t steps = 2 * (position - start) + 1;
        return startHeight * perSubpixel +
               roundedQuotient(steps * (endHeight - startHeight) * perSubpixel, 2 * (end - start));
    }

    std::int64_t start; // 1/16 pixel
    std::int64_t startHeight;
    std::int64_t end;
    std::int64_t endHeight;
};

} // namespace

void EdgeStrip::segment(const GraphicsState& state, Position from, Position to, EdgeSide side) {
    const Ends ends(from, to, side);
    const std::int64_t first = std::min(ends.start, ends.end);
    const std::int64_t end = std::max(ends.start, ends.end);
    const std::int64_t firstWhole = std::min(ceilQuotient(first, subpixels) * subpixels, end);
    const std::int64_t endWhole = std::max(floorQuotient(end, subpixels) * subpixels, firstWhole);
    const bool backwards = ends.end < ends.start;
    // First the part that the segment before may have begun, last the one that the next may go on.
    if (backwards) {
        addPart(state, from, to, side, endWhole, end);
    } else {
        addPart(state, from, to, side, first, firstWhole);
    }
    m_pipeline.use(state);
    drawEdge(m_row, from, to, side);
    if (backwards) {
        addPart(state, from, to, side, first, firstWhole);
    } else {
        addPart(state, from, to, side, endWhole, end);
    }
    m_pipeline.use(state);
}

// The segment's steps from `first` to before `end`, all of one pixel.
void EdgeStrip::addPart(const GraphicsState& state, Position from, Position to, EdgeSide side,
                        std::int64_t first, std::int64_t end) {
    if (first == end) {
        return;
    }
    const std::int64_t pixel = floorQuotient(first, subpixels);
    const std::int64_t start = pixel * subpixels;
    const std::uint32_t reached = (1U << (end - start)) - (1U << (first - start));
    if (m_part.pixel != pixel || m_part.side != side || (m_part.reached & reached) != 0) {
        finish();
    }
    if (m_part.reached == 0 || (first <= start + middle && start + middle < end)) {
        m_part.state = state;
    }
    m_part.side = side;
    m_part.pixel = pixel;
    const Ends ends(from, to, side);
    for (std::int64_t position = first; position < end; ++position) {
        m_part.crossings[static_cast<std::size_t>(position - start)] = ends.crossing(position);
    }
    m_part.reached |= reached;
    if (m_part.reached == wholePixel) {
        finish();
    }
}

int EdgeStrip::coverageOf(const Part& part, int pixel) {
    const std::int64_t start = std::int64_t{pixel} * rowUnits;
    std::int64_t coverage = 0;
    for (std::size_t i = 0; i < part.crossings.size(); ++i) {
        if (part.reached >> i & 1U) {
            const std::int64_t before =
                std::clamp<std::int64_t>(part.crossings[i] - start, 0, rowUnits);
            coverage += isBeforeEdge(part.side) ? before : rowUnits - before;
        }
    }
    return static_cast<int>(coverage);
}

void EdgeStrip::finish() {
    if (m_part.reached == 0) {
        return;
    }
    const Part part = m_part;
    m_part.reached = 0;
    m_drawn = part.state;
    m_pipeline.use(m_drawn);
    const PixelRect& clip = m_pipeline.clip();
    const bool upright = isUpright(part.side);
    const int lowest = upright ? clip.left : clip.top;
    const int highest = upright ? clip.right : clip.bottom;
    if (part.pixel < lowest || part.pixel >= highest) {
        return;
    }
    const auto across = static_cast<int>(part.pixel);
    const int end = upright ? clip.bottom : clip.right;
    Work& work = m_pipeline.work();
    for (int along = upright ? clip.top : clip.left; along < end && !work.isTooMuch(); ++along) {
        work.add(cost::edgePixel);
        const std::uint8_t coverage = asFraction255(coverageOf(part, along));
        m_pipeline.cover(upright ? along : across, upright ? across : along, 1, &coverage);
    }
}

} // namespace controller
