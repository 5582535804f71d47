#pragma once

#include "generation.h"
#include "graphicsengine.h"
#include "graphicsstate.h"
#include "pixelrect.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace controller {

// A word of a list that has left something on a pixel.
struct PixelStep {
    // Its index in the list: CLEAR, or the vertex that completed the primitive. What of an edge
    // strip is drawn only when it ends counts as its last vertex's.
    std::size_t word = 0;
    std::optional<std::size_t> begin;  // index of the BEGIN of a primitive
    std::vector<std::size_t> vertices; // of the primitive, `word` the last of them
    std::uint32_t before = 0;          // the pixel's colour, 0xAARRGGBB
    std::uint32_t after = 0;
    bool colours = false; // the colour, or a part of it, comes from here
    bool covers = false;  // nothing of the colour before shows any more
    bool tags = false;    // so does the tag
};

// How a pixel came to be what it is, from the beginning of the list on.
struct PixelHistory {
    std::vector<PixelStep> steps; // those that left something
    std::uint32_t colour = 0;     // 0xAARRGGBB
    std::uint8_t tag = 0;
};

// These walk the whole list once more, and draw next to nothing of it. `handles` are those that the
// list begins with. A list that is given up because it is too much is followed further here than
// it was drawn.
//
// The pixel must lie in the scene.
PixelHistory historyOf(Generation generation, const Scene& scene, const BitmapHandles& handles,
                       int x, int y);
// The pixels that these words of the list reach, in one rectangle; empty when there are none.
PixelRect areaOf(Generation generation, const Scene& scene, const BitmapHandles& handles,
                 const std::vector<std::size_t>& words);

} // namespace controller
