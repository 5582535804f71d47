#pragma once

#include "complaints.h"
#include "generation.h"
#include "graphicsmemory.h"
#include "graphicsstate.h"
#include "pixelpipeline.h"
#include "shapes.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace controller {

// A bitmap as one vertex draws it: a handle's words put together, of one cell.
struct Bitmap {
    std::uint32_t address = 0; // of the cell
    std::uint32_t format = 0;
    std::uint32_t bitsPerTexel = 0; // 0: not a format that can be drawn
    std::uint32_t stride = 0;       // bytes
    int width = 0;                  // texels
    int height = 0;
    bool bilinear = false;
    bool repeatX = false;
    bool repeatY = false;
    int windowWidth = 0; // pixels
    int windowHeight = 0;
};

Bitmap bitmapOf(Generation generation, const BitmapHandle& handle, std::uint32_t cell);

// Draws bitmaps: walks the pixels of the window and samples the texels through the transform.
class BitmapDrawer {
public:
    BitmapDrawer(const GraphicsMemory& memory, Complaints& complaints)
        : m_memory(memory), m_complaints(complaints) {}

    // Where in the clip the bitmap's window is with its top left corner at `corner`.
    static PixelRect window(const Bitmap& bitmap, Position corner, const PixelRect& clip);

    // Draws the window's pixels `within`, which window() gave.
    void draw(PixelPipeline& pipeline, const GraphicsState& state, const BitmapHandle& handle,
              const Bitmap& bitmap, Position corner, const PixelRect& within);

private:
    bool check(const Bitmap& bitmap);

    const GraphicsMemory& m_memory;
    Complaints& m_complaints;
    std::vector<std::uint8_t> m_alphas; // of one row
    std::vector<std::uint32_t> m_pixels;
};

} // namespace controller
