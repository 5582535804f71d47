#pragma once

#include "frame.h"
#include "graphicsstate.h"
#include "work.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace controller {

// Pixels [left, right) x [top, bottom).
struct PixelRect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    bool empty() const { return left >= right || top >= bottom; }
};

// The last stage of drawing: takes rows of fragments and does with each what the graphics state
// says: alpha test, stencil test, blending, colour mask, tagging.
//
// Rows handed in must lie inside clip(), which is the scissor cut to the panel.
class PixelPipeline {
public:
    // Starts a frame of width x height pixels in `frame`, all buffers 0.
    PixelPipeline(Frame& frame, int width, int height);

    // The state to draw with from now on; it must live until the next call.
    void use(const GraphicsState& state);
    const PixelRect& clip() const { return m_clip; }
    // What the frame has cost. Whoever draws more than a row looks whether it is too much.
    Work& work() { return m_work; }

    void clear(bool color, bool stencil, bool tag);

    // Fully covered pixels in the state's colour.
    void fill(int y, int left, int right);
    // Pixels in the state's colour, each covered by so many 255ths; 0 is not drawn at all.
    void cover(int y, int left, std::size_t count, const std::uint8_t* coverage);
    // Texels of a bitmap: the state's colour with its alpha scaled by each of `alphas`.
    void shade(int y, int left, std::size_t count, const std::uint8_t* alphas);
    // Texels of a bitmap, the state's colour multiplied in already.
    void paint(int y, int left, std::size_t count, const std::uint32_t* pixels);

    // Sets the alpha that a finished picture has.
    void finish();

private:
    std::size_t offset(int x, int y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(m_width) +
               static_cast<std::size_t>(x);
    }
    void addWork(std::size_t pixels);
    void fillTags(std::size_t first, std::size_t count);
    void drawFragment(std::size_t at, std::uint32_t source);
    bool passesStencil(std::size_t at);
    std::uint32_t mixed(std::uint32_t source, std::uint32_t destination) const;

    Frame& m_frame;
    int m_width;
    int m_height;
    std::uint32_t* m_pixels;
    std::uint8_t* m_tags;
    std::vector<std::uint8_t> m_stencil;
    const GraphicsState* m_state = nullptr;
    PixelRect m_clip;
    Work m_work;
    bool m_plain = true; // the usual blend and nothing else: fragments need no single treatment
    std::int64_t m_pixelCost = cost::plainPixel;
};

} // namespace controller
