#pragma once

#include "bitmapdrawer.h"
#include "complaints.h"
#include "coveragerow.h"
#include "edgestrip.h"
#include "frame.h"
#include "generation.h"
#include "graphicsstate.h"
#include "pixelpipeline.h"
#include "position.h"
#include "shapes.h"

#include <cstdint>

namespace controller {

// Makes primitives of vertices between BEGIN and END and has them drawn.
class PrimitiveAssembler {
public:
    PrimitiveAssembler(Generation generation, const GraphicsMemory& memory, PixelPipeline& pipeline,
                       Frame& frame, Complaints& complaints)
        : m_generation(generation), m_pipeline(pipeline), m_bitmaps(memory, complaints),
          m_row(pipeline), m_edges(m_row), m_frame(frame), m_complaints(complaints) {}

    void begin(std::uint32_t primitive);
    void end() { begin(primitive::None); }

    // What has been begun. Nothing to go on from while an edge strip waits for its next segment.
    struct Place {
        std::uint32_t primitive = primitive::None;
        bool hasPrevious = false;
        Position previous;
    };
    bool canGoOnFromHere() const { return !m_edges.isWaiting(); }
    const Place& place() const { return m_at; }
    void goOnFrom(const Place& place) { m_at = place; }

    // Draws what an edge strip has begun and not ended; the pipeline may use another state then.
    void finishEdges() { m_edges.finish(); }
    // A vertex, the state's translation added already. The handle and the cell, which count for
    // bitmaps, are the state's or the vertex's own.
    void vertex(const GraphicsState& state, Position place, const BitmapHandle& handle,
                std::uint8_t handleNumber, std::uint8_t cell);

private:
    void drawBitmap(const GraphicsState& state, Position corner, const BitmapHandle& handle,
                    std::uint8_t handleNumber, std::uint8_t cell);
    void drawSegment(const GraphicsState& state, Position from, Position to);
    void noteCharacter(Position corner, const BitmapHandle& handle, std::uint8_t handleNumber,
                       std::uint8_t cell);

    Generation m_generation;
    PixelPipeline& m_pipeline;
    BitmapDrawer m_bitmaps;
    CoverageRow m_row;
    EdgeStrip m_edges;
    Frame& m_frame;
    Complaints& m_complaints;

    Place m_at;
};

} // namespace controller
