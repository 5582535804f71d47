#include "graphicsengine.h"

#include "complaints.h"
#include "displaylistwalker.h"
#include "fontrom.h"
#include "graphicsstate.h"
#include "pixelpipeline.h"
#include "primitiveassembler.h"

#include <cstddef>
#include <cstdint>

namespace controller {

namespace {

constexpr int fontHandles = 32; // fonts 16 to 31 stand at the handles of their numbers

BitmapHandle fontHandle(const RomFont& font) {
    BitmapHandle handle;
    handle.source = font.address;
    handle.format = font.format;
    handle.stride = font.stride;
    handle.layoutHeight = font.height;
    handle.width = font.width;
    handle.height = font.height;
    return handle;
}

} // namespace

class GraphicsEngine::State {
public:
    explicit State(Generation generation) : m_generation(generation) { reset(); }

    void reset() {
        m_handles = {};
        for (int font = firstRomFont; font < fontHandles; ++font) {
            m_handles[static_cast<std::size_t>(font)] = fontHandle(romFont(m_generation, font));
        }
    }

    void scan(const std::uint32_t* list, const GraphicsMemory& memory,
              const std::array<std::uint32_t, 2>& macros, int width, int height, Frame& frame) {
        frame.characters.clear();
        frame.complaints.clear();
        Complaints complaints(frame.complaints);
        PixelPipeline pipeline(frame, width, height);
        PrimitiveAssembler assembler(m_generation, memory, pipeline, frame, complaints);
        DisplayListWalker walker(m_generation, list, macros, m_handles, pipeline, assembler,
                                 complaints);
        walker.walk();
        assembler.end();
        pipeline.finish();
        frame.work = pipeline.work().done();
    }

private:
    Generation m_generation;
    BitmapHandles m_handles;
};

GraphicsEngine::GraphicsEngine(Generation generation)
    : m_state(std::make_unique<State>(generation)) {}

GraphicsEngine::~GraphicsEngine() = default;

void GraphicsEngine::reset() {
    m_state->reset();
}

void GraphicsEngine::scan(const std::uint32_t* list, const GraphicsMemory& memory,
                          const std::array<std::uint32_t, 2>& macros, int width, int height,
                          Frame& frame) {
    m_state->scan(list, memory, macros, width, height, frame);
}

} // namespace controller
