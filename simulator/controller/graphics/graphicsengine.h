#pragma once

#include "frame.h"
#include "generation.h"
#include "graphicsmemory.h"
#include "graphicsstate.h"
#include "memorylayout.h"
#include "rowloops.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace controller {

// What a frame is made of.
struct Scene {
    const DisplayList& list;
    GraphicsMemory memory;
    std::array<std::uint32_t, 2> macros{}; // the words in the two macro registers
    int width = 0;
    int height = 0;
};

// The part of the chip that walks a display list and draws it: state machine, context stack and
// rasteriser. Its results are those of integers, so a frame is the same bit for bit on every
// machine.
//
// Frames that follow each other mostly begin with the same words. What those have drawn is kept,
// and the next frame goes on from there, as long as the memory that was read for it is unchanged.
//
// Not modelled, and complained about where a list uses it: the text and bar-graph formats,
// compressed formats and bitmaps in flash. The chip gives each line of the panel only so much time;
// here a whole list is given up when it costs too much (work.h) or runs in circles. Edges of a
// window at a fraction of a pixel are not smoothed.
class GraphicsEngine {
public:
    explicit GraphicsEngine(Generation generation, Vectors vectors = widestVectors());
    ~GraphicsEngine();
    GraphicsEngine(const GraphicsEngine&) = delete;
    GraphicsEngine& operator=(const GraphicsEngine&) = delete;

    // Power-on state: handles 16 to 31 are the ROM fonts, the others empty. Bitmap handles are
    // the only state that outlives a frame. Forgets what has been drawn.
    void reset();

    // The frame of a scene, drawn as far as it must be; it stands until the next call.
    const Frame& draw(const Scene& scene);
    // Walks over the list for what it leaves behind, without a picture. Returns its complaints.
    std::vector<std::string> walk(const Scene& scene);

    // The bitmap handles as the last list has left them, for the next one.
    const BitmapHandles& handles() const;

    // Keeps nothing of the frames before: the next is drawn as a first one is.
    void forget();
    // Gives a list up when it costs more than this, instead of Work::limit.
    void limitWork(std::int64_t most);
    // What all frames have cost so far, without what was kept of one for the next.
    std::int64_t workDone() const;

private:
    class State;
    std::unique_ptr<State> m_state;
};

} // namespace controller
