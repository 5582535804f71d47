#pragma once

#include "frame.h"
#include "generation.h"
#include "graphicsmemory.h"

#include <array>
#include <cstdint>
#include <memory>

namespace controller {

// The part of the chip that walks a display list and draws it: state machine, context stack and
// rasteriser. Its results are those of integers, so a frame is the same bit for bit on every
// machine.
//
// Not modelled, and complained about where a list uses it: the text and bar-graph formats,
// compressed formats and bitmaps in flash. The chip gives each line of the panel only so much time;
// here a whole list is given up when it costs too much (work.h) or runs in circles. Edges of a
// window at a fraction of a pixel are not smoothed.
class GraphicsEngine {
public:
    explicit GraphicsEngine(Generation generation);
    ~GraphicsEngine();
    GraphicsEngine(const GraphicsEngine&) = delete;
    GraphicsEngine& operator=(const GraphicsEngine&) = delete;

    // Power-on state: handles 16 to 31 are the ROM fonts, the others empty. Bitmap handles are
    // the only state that outlives a frame.
    void reset();

    // Draws the list of `displayListWords` words into `frame` (reusing its storage), `width` x
    // `height` pixels. `macros` are the words in the two macro registers.
    void scan(const std::uint32_t* list, const GraphicsMemory& memory,
              const std::array<std::uint32_t, 2>& macros, int width, int height, Frame& frame);

private:
    class State;
    std::unique_ptr<State> m_state;
};

} // namespace controller
