#pragma once

#include "bitmap.h"
#include "complaints.h"
#include "graphicsmemory.h"
#include "graphicsstate.h"
#include "pixelpipeline.h"
#include "position.h"
#include "texels.h"

#include <cstdint>
#include <vector>

namespace controller {

// Draws bitmaps: walks the pixels of the window and samples the texels through the transform.
class BitmapDrawer {
public:
    BitmapDrawer(const GraphicsMemory& memory, Complaints& complaints)
        : m_memory(memory), m_complaints(complaints) {}

    // Where in the clip the bitmap's window is with its top left corner at `corner`.
    static PixelRect window(const Bitmap& bitmap, Position corner, const PixelRect& clip);

    // Draws the window's pixels `within`, which window() gave, until the pipeline's work is too
    // much.
    void draw(PixelPipeline& pipeline, const GraphicsState& state, const BitmapHandle& handle,
              const Bitmap& bitmap, Position corner, const PixelRect& within);

private:
    bool check(const Bitmap& bitmap);
    const Palette& paletteFor(PixelPipeline& pipeline, std::uint32_t format, std::uint32_t address);

    const GraphicsMemory& m_memory;
    Complaints& m_complaints;
    std::vector<std::uint8_t> m_alphas; // of one row
    std::vector<std::uint32_t> m_pixels;
    // The palette read last: memory does not change while a frame is drawn.
    Palette m_palette{};
    std::uint32_t m_paletteFormat = 0;
    std::uint32_t m_paletteAddress = 0;
    bool m_hasPalette = false;
};

} // namespace controller
