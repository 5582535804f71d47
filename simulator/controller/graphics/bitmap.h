#pragma once

#include "generation.h"
#include "graphicsstate.h"

#include <cstdint>

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

} // namespace controller
