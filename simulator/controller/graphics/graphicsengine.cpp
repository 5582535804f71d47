#include "graphicsengine.h"

#include "canvas.h"
#include "complaints.h"
#include "displaylistwalker.h"
#include "fontrom.h"
#include "graphicsstate.h"
#include "pixelpipeline.h"
#include "primitiveassembler.h"
#include "work.h"

#include <algorithm>
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

// Everything about a frame when the words before one of them have been executed.
struct Checkpoint {
    explicit Checkpoint(Generation generation) : walk(generation) {}

    // To be had again with the same of these
    std::vector<std::uint32_t> words; // up to the furthest executed
    std::array<std::uint32_t, 2> macros{};
    BitmapHandles handlesBefore; // at the list's beginning
    GraphicsMemory::Reads reads;
    std::uint64_t moment = 0; // of the memory
    // What there was
    DisplayListWalker::Place walk;
    PrimitiveAssembler::Place assembly;
    BitmapHandles handles;
    Complaints complaints;
    std::size_t characters = 0;
    Work work;
};

// Says after how many words of a list to keep what they have drawn. The number of words that two
// lists have in common varies: they end with the digit that has changed, and the rest of a longer
// beginning is cheap to draw once more, while a list that differs before is drawn all anew. So a
// checkpoint moves on only when many lists in turn would have reached further.
class CheckpointPlace {
public:
    // Nothing is kept.
    void start(std::size_t common) {
        m_place = common;
        m_lists = 0;
    }
    // The next list has `common` words in common with the last one.
    void follow(std::size_t common) {
        m_least = m_lists == 0 ? common : std::min(m_least, common);
        if (++m_lists == listsToMoveOn) {
            m_place = std::max(m_place, m_least);
            m_lists = 0;
        }
    }
    std::size_t place() const { return m_place; }

private:
    static constexpr int listsToMoveOn = 16;

    std::size_t m_place = 0;
    std::size_t m_least = 0; // of the last m_lists
    int m_lists = 0;
};

std::size_t commonWords(const DisplayList& a, const DisplayList& b) {
    return static_cast<std::size_t>(std::mismatch(a.begin(), a.end(), b.begin()).first - a.begin());
}

} // namespace

class GraphicsEngine::State {
public:
    State(Generation generation, const RowLoops& loops)
        : m_generation(generation), m_loops(loops), m_checkpoint(generation) {
        reset();
    }

    void reset() {
        forget();
        m_handles = {};
        for (int font = firstRomFont; font < fontHandles; ++font) {
            m_handles[static_cast<std::size_t>(font)] = fontHandle(romFont(m_generation, font));
        }
    }

    const Frame& draw(const Scene& scene);
    std::vector<std::string> walk(const Scene& scene);
    void forget() {
        m_hasFrame = false;
        m_hasCheckpoint = false;
    }
    void limitWork(std::int64_t most) {
        forget();
        m_workLimit = most;
    }
    std::int64_t workDone() const { return m_workDone; }
    const BitmapHandles& handles() const { return m_handles; }

private:
    struct Drawing;

    bool isDrawn(const Scene& scene) const;
    bool canGoOn(const Scene& scene) const;
    bool hasSize(const Scene& scene) const {
        return m_canvas.width() == scene.width && m_canvas.height() == scene.height;
    }
    void goOn(Drawing& drawing);
    void startAnew(const Scene& scene);
    void keep(const Drawing& drawing, const BitmapHandles& handlesBefore);

    Generation m_generation;
    const RowLoops& m_loops;
    BitmapHandles m_handles;
    std::int64_t m_workLimit = Work::limit;
    std::int64_t m_workDone = 0;

    // The last frame, and what it was drawn of.
    Frame m_frame;
    Canvas m_canvas;
    bool m_hasFrame = false;
    DisplayList m_list{};
    std::array<std::uint32_t, 2> m_macros{};
    BitmapHandles m_handlesBefore;
    GraphicsMemory::Reads m_reads;
    std::uint64_t m_moment = 0;

    // What is kept of it. The canvas keeps the picture.
    bool m_hasCheckpoint = false;
    Checkpoint m_checkpoint;
    CheckpointPlace m_place;
};

// The parts that draw one list.
struct GraphicsEngine::State::Drawing {
    Drawing(Generation generation, const Scene& drawnScene, const GraphicsMemory& watchedMemory,
            BitmapHandles& handles, Canvas& canvas, const RowLoops& loops, const Work& work,
            Frame& drawnFrame)
        : scene(drawnScene), memory(watchedMemory), frame(drawnFrame),
          pipeline(canvas, loops, work), assembler(generation, memory, pipeline, frame, complaints),
          walker(generation, scene.list.data(), scene.macros, handles, pipeline, assembler,
                 complaints) {}

    void finish() {
        walker.walkTo(displayListWords);
        assembler.end();
        frame.complaints = complaints.lines();
        frame.work = pipeline.work().done();
    }

    const Scene& scene;
    const GraphicsMemory& memory;
    Frame& frame;
    Complaints complaints;
    PixelPipeline pipeline;
    PrimitiveAssembler assembler;
    DisplayListWalker walker;
};

const Frame& GraphicsEngine::State::draw(const Scene& scene) {
    if (isDrawn(scene)) {
        return m_frame;
    }
    const std::size_t common = m_hasFrame ? commonWords(scene.list, m_list) : 0;
    const BitmapHandles handlesBefore = m_handles;
    GraphicsMemory memory = scene.memory;
    memory.noteReads(m_reads);
    Drawing drawing(m_generation, scene, memory, m_handles, m_canvas, m_loops, Work(m_workLimit),
                    m_frame);
    std::int64_t workBefore = 0;
    if (canGoOn(scene)) {
        m_place.follow(common);
        goOn(drawing);
        workBefore = drawing.pipeline.work().done();
    } else {
        m_place.start(common);
        startAnew(scene);
        drawing.pipeline.work().add(cost::panelPixel * scene.width * scene.height);
    }
    drawing.walker.walkTo(m_place.place());
    keep(drawing, handlesBefore);
    drawing.finish();
    m_canvas.show(m_frame);
    m_workDone += m_frame.work - workBefore;

    m_hasFrame = true;
    m_list = scene.list;
    m_macros = scene.macros;
    m_handlesBefore = handlesBefore;
    m_moment = scene.memory.moment();
    return m_frame;
}

bool GraphicsEngine::State::isDrawn(const Scene& scene) const {
    return m_hasFrame && hasSize(scene) && scene.macros == m_macros && scene.list == m_list &&
           m_handles == m_handlesBefore && !scene.memory.hasChanged(m_reads, m_moment);
}

bool GraphicsEngine::State::canGoOn(const Scene& scene) const {
    return m_hasCheckpoint && hasSize(scene) && scene.macros == m_checkpoint.macros &&
           std::equal(m_checkpoint.words.begin(), m_checkpoint.words.end(), scene.list.begin()) &&
           m_handles == m_checkpoint.handlesBefore &&
           !scene.memory.hasChanged(m_checkpoint.reads, m_checkpoint.moment);
}

void GraphicsEngine::State::startAnew(const Scene& scene) {
    m_hasCheckpoint = false;
    m_canvas.start(scene.width, scene.height);
    m_frame.characters.clear();
    m_reads = {};
}

void GraphicsEngine::State::goOn(Drawing& drawing) {
    m_canvas.takeBack();
    m_frame.characters.resize(m_checkpoint.characters);
    m_reads = m_checkpoint.reads;
    m_handles = m_checkpoint.handles;
    drawing.complaints = m_checkpoint.complaints;
    drawing.pipeline.work() = m_checkpoint.work;
    drawing.assembler.goOnFrom(m_checkpoint.assembly);
    drawing.walker.goOnFrom(m_checkpoint.walk);
}

// Unless there is nothing new to keep, or so little that copying it would cost more.
void GraphicsEngine::State::keep(const Drawing& drawing, const BitmapHandles& handlesBefore) {
    constexpr std::int64_t leastWork = 100'000;
    const DisplayListWalker::Place& walk = drawing.walker.place();
    const bool isThere = m_hasCheckpoint && walk.next == m_checkpoint.walk.next;
    if (!walk.running || isThere || !drawing.assembler.canGoOnFromHere() ||
        drawing.pipeline.work().done() < leastWork) {
        return;
    }
    m_canvas.keep();
    m_hasCheckpoint = true;
    const auto words = drawing.scene.list.begin();
    m_checkpoint.words.assign(words, words + static_cast<std::ptrdiff_t>(walk.reach));
    m_checkpoint.macros = drawing.scene.macros;
    m_checkpoint.handlesBefore = handlesBefore;
    m_checkpoint.reads = m_reads;
    m_checkpoint.moment = drawing.scene.memory.moment();
    m_checkpoint.walk = walk;
    m_checkpoint.assembly = drawing.assembler.place();
    m_checkpoint.handles = m_handles;
    m_checkpoint.complaints = drawing.complaints;
    m_checkpoint.characters = m_frame.characters.size();
    m_checkpoint.work = drawing.pipeline.work();
}

std::vector<std::string> GraphicsEngine::State::walk(const Scene& scene) {
    Canvas noCanvas;
    Frame noFrame;
    Drawing drawing(m_generation, scene, scene.memory, m_handles, noCanvas, m_loops,
                    Work(m_workLimit), noFrame);
    drawing.finish();
    m_workDone += noFrame.work;
    return noFrame.complaints;
}

GraphicsEngine::GraphicsEngine(Generation generation, Vectors vectors)
    : m_state(std::make_unique<State>(generation, rowLoops(vectors))) {}

GraphicsEngine::~GraphicsEngine() = default;

void GraphicsEngine::reset() {
    m_state->reset();
}

const Frame& GraphicsEngine::draw(const Scene& scene) {
    return m_state->draw(scene);
}

std::vector<std::string> GraphicsEngine::walk(const Scene& scene) {
    return m_state->walk(scene);
}

const BitmapHandles& GraphicsEngine::handles() const {
    return m_state->handles();
}

void GraphicsEngine::forget() {
    m_state->forget();
}

void GraphicsEngine::limitWork(std::int64_t most) {
    m_state->limitWork(most);
}

std::int64_t GraphicsEngine::workDone() const {
    return m_state->workDone();
}

} // namespace controller
