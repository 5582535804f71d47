#include "primitiveassembler.h"

#include "fixedmath.h"
#include "fontrom.h"
#include "work.h"

#include <algorithm>
#include <string>

namespace controller {

namespace {

constexpr int leastRounding = 16; // of rectangles, 1/16 pixel

bool isStrip(std::uint32_t kind) {
    return kind != primitive::Lines && kind != primitive::Rects;
}

bool isRomFont(Generation generation, std::uint32_t source) {
    const int last = generation == Generation::E1 ? lastRomFontE1 : lastRomFont;
    for (int font = firstRomFont; font <= last; ++font) {
        if (romFont(generation, font).address == source) {
            return true;
        }
    }
    return false;
}

int wholePixels(std::int64_t position) {
    return static_cast<int>(floorQuotient(position, subpixels));
}

} // namespace

void PrimitiveAssembler::begin(std::uint32_t primitive) {
    finishEdges();
    m_at.primitive = primitive;
    m_at.hasPrevious = false;
    if (primitive > primitive::Rects) {
        m_complaints.add(Flaw::UnknownPrimitive,
                         "display list: unknown primitive " + std::to_string(primitive));
    }
}

void PrimitiveAssembler::vertex(const GraphicsState& state, Position place,
                                const BitmapHandle& handle, std::uint8_t handleNumber,
                                std::uint8_t cell) {
    m_pipeline.use(state);
    m_pipeline.work().add(cost::vertex);
    if (m_at.primitive == primitive::None || m_at.primitive > primitive::Rects) {
        m_complaints.add(Flaw::VertexOutsideBegin, "display list: a vertex of no primitive");
        return;
    }
    if (m_at.primitive == primitive::Bitmaps) {
        drawBitmap(state, place, handle, handleNumber, cell);
        return;
    }
    if (m_at.primitive == primitive::Points) {
        drawPoint(m_row, place, state.pointSize);
        return;
    }
    if (m_at.hasPrevious) {
        drawSegment(state, m_at.previous, place);
    }
    m_at.hasPrevious = isStrip(m_at.primitive) || !m_at.hasPrevious;
    m_at.previous = place;
}

void PrimitiveAssembler::drawSegment(const GraphicsState& state, Position from, Position to) {
    switch (m_at.primitive) {
    case primitive::Rects:
        return drawRectangle(m_row, from, to, std::max(state.lineWidth, leastRounding));
    case primitive::EdgeStripR:
        return m_edges.segment(state, from, to, EdgeSide::Right);
    case primitive::EdgeStripL:
        return m_edges.segment(state, from, to, EdgeSide::Left);
    case primitive::EdgeStripA:
        return m_edges.segment(state, from, to, EdgeSide::Above);
    case primitive::EdgeStripB:
        return m_edges.segment(state, from, to, EdgeSide::Below);
    default:
        return drawLine(m_row, from, to, state.lineWidth);
    }
}

void PrimitiveAssembler::drawBitmap(const GraphicsState& state, Position corner,
                                    const BitmapHandle& handle, std::uint8_t handleNumber,
                                    std::uint8_t cell) {
    const Bitmap bitmap = bitmapOf(m_generation, handle, cell);
    const PixelRect window = BitmapDrawer::window(bitmap, corner, m_pipeline.clip());
    if (window.empty()) {
        return;
    }
    noteCharacter(corner, handle, handleNumber, cell);
    m_bitmaps.draw(m_pipeline, state, handle, bitmap, corner, window);
}

void PrimitiveAssembler::noteCharacter(Position corner, const BitmapHandle& handle,
                                       std::uint8_t handleNumber, std::uint8_t cell) {
    if (isRomFont(m_generation, handle.source)) {
        m_frame.characters.push_back(
            {wholePixels(corner.x), wholePixels(corner.y), handleNumber, cell});
    }
}

} // namespace controller
