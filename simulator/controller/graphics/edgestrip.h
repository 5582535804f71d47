#pragma once

#include "coveragerow.h"
#include "graphicsstate.h"
#include "pixelpipeline.h"
#include "position.h"
#include "shapes.h"

#include <array>
#include <cstdint>

namespace controller {

// Draws one edge strip segment by segment.
//
// Pixels that a segment reaches over their whole width (along x for above and below, along y for
// left and right) are drawn at once. The pixel lines in which it begins or ends half way wait for
// the neighbouring segment, so that where two meet each pixel is drawn once, with what both cover
// of it, in the colour of the one that reaches its middle.
class EdgeStrip {
public:
    explicit EdgeStrip(CoverageRow& row) : m_row(row), m_pipeline(row.pipeline()) {}

    // Draws a segment with `state`, which the pipeline uses already.
    void segment(const GraphicsState& state, Position from, Position to, EdgeSide side);
    // Draws what waits. The pipeline may use another state afterwards, one that lives as long as
    // this object.
    void finish();
    bool isWaiting() const { return m_part.reached != 0; }

private:
    // A line of pixels that is reached in part: a column for above and below, else a row.
    struct Part {
        EdgeSide side = EdgeSide::Above;
        std::int64_t pixel = 0;
        std::uint32_t reached = 0; // a bit for each sixteenth of its width
        // Where the edge crosses the middle of each of these, in 1/256 pixel.
        std::array<std::int64_t, subpixels> crossings{};
        GraphicsState state;
    };

    void addPart(const GraphicsState& state, Position from, Position to, EdgeSide side,
                 std::int64_t first, std::int64_t end);
    static int coverageOf(const Part& part, int pixel);

    CoverageRow& m_row;
    PixelPipeline& m_pipeline;
    Part m_part;           // reached by nothing: none
    GraphicsState m_drawn; // the state of the part drawn last
};

} // namespace controller
