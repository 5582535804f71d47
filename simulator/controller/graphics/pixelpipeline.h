#pragma once

#include "canvas.h"
#include "graphicsstate.h"
#include "pixelmath.h"
#include "pixelrect.h"
#include "rowloops.h"
#include "work.h"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace controller {

// The last stage of drawing: takes rows of fragments and does with each what the graphics state
// says: alpha test, stencil test, blending, colour mask, tagging.
//
// Rows handed in must lie inside clip(), which is the scissor cut to the panel.
class PixelPipeline {
public:
    PixelPipeline(Canvas& canvas, const RowLoops& loops, const Work& work)
        : m_canvas(canvas), m_loops(loops), m_work(work) {}

    // The state to draw with from now on; it must live until the next call.
    void use(const GraphicsState& state);
    // From the next use() on nothing is drawn outside of this, for whoever wants to know about a
    // few pixels only. By default there is no such limit.
    void limitTo(const PixelRect& limit);
    const PixelRect& clip() const { return m_clip; }
    // What the frame has cost. Whoever draws more than a row looks whether it is too much.
    Work& work() { return m_work; }
    const Work& work() const { return m_work; }

    void clear(bool color, bool stencil, bool tag);

    // Pixels in the state's colour, all of them covered by so many 255ths.
    void fill(int y, int left, int right, std::uint8_t coverage = opaque);
    // Pixels in the state's colour, each covered by so many 255ths; 0 is not drawn at all.
    void cover(int y, int left, std::size_t count, const std::uint8_t* coverage);
    // Texels of a bitmap: the state's colour with its alpha scaled by each of `alphas`.
    void shade(int y, int left, std::size_t count, const std::uint8_t* alphas);
    // Texels of a bitmap, multiplied by the state's colour. Uses up `pixels`.
    void paint(int y, int left, std::size_t count, std::uint32_t* pixels);

private:
    std::size_t startRow(int y, int left, std::size_t count);
    void fillTags(std::size_t first, std::size_t count);
    void drawFragment(std::size_t at, std::uint32_t source);
    bool passesStencil(std::size_t at);
    std::uint32_t mixed(std::uint32_t source, std::uint32_t destination) const;

    Canvas& m_canvas;
    const RowLoops& m_loops;
    const GraphicsState* m_state = nullptr;
    PixelRect m_clip;
    std::optional<PixelRect> m_limit;
    Work m_work;
    bool m_plain = true; // the usual blend and nothing else: fragments need no single treatment
    std::int64_t m_pixelCost = cost::plainPixel;
};

} // namespace controller
