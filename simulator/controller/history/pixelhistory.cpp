#include "pixelhistory.h"

#include "canvas.h"
#include "complaints.h"
#include "displaylistwalker.h"
#include "pixelpipeline.h"
#include "primitiveassembler.h"

#include <algorithm>

namespace controller {

namespace {

constexpr std::uint32_t colourBits = 0x00FFFFFF;
constexpr std::size_t longestPrimitive = 2; // vertices

// A walk over a list of its own, with a canvas of its own.
struct Walk {
    Walk(Generation generation, const Scene& drawnScene, const BitmapHandles& handlesBefore)
        : scene(drawnScene), handles(handlesBefore),
          pipeline(canvas, rowLoops(Vectors::Usual), Work()),
          assembler(generation, scene.memory, pipeline, frame, complaints),
          walker(generation, scene.list.data(), scene.macros, handles, pipeline, assembler,
                 complaints) {
        canvas.start(scene.width, scene.height);
    }

    bool isRunning() const { return walker.place().running; }
    std::size_t next() const { return walker.place().next; }

    const Scene& scene;
    BitmapHandles handles;
    Canvas canvas;
    Frame frame;
    Complaints complaints;
    PixelPipeline pipeline;
    PrimitiveAssembler assembler;
    DisplayListWalker walker;
};

// Which words the primitives are made of.
class PrimitiveWords {
public:
    explicit PrimitiveWords(const Scene& scene) : m_scene(scene) {}

    // The word at `index` is about to be executed.
    void follow(std::size_t index) {
        const std::uint32_t word = wordAt(index);
        const std::uint32_t kind = word >> 30;
        if (kind == 1 || kind == 2) {
            m_vertices.push_back(index);
            ++m_count;
            if (m_vertices.size() > longestPrimitive) {
                m_vertices.erase(m_vertices.begin());
            }
        } else if (word >> 24 == opcode::Begin) {
            m_next = {index, word & 15U};
        } else if (word >> 24 == opcode::End) {
            m_next = {std::nullopt, primitive::None};
        } else if (word >> 24 == opcode::Clear) {
            m_isClear = true;
        }
        m_index = index;
    }

    // It has been executed. To be called when `step` has been described, if it had to be.
    void executed() {
        if (m_next) {
            m_begin = m_next->begin;
            m_primitive = m_next->primitive;
            m_vertices.clear();
            m_count = 0;
            m_next.reset();
        }
        m_isClear = false;
    }

    // What the word being executed has drawn.
    void describe(PixelStep& step) const {
        if (m_isClear) {
            step.word = m_index;
            return;
        }
        step.begin = m_begin;
        step.vertices = m_vertices;
        const bool isPair = m_primitive == primitive::Rects || m_primitive == primitive::Lines;
        const bool isSingle = m_primitive == primitive::Points || m_primitive == primitive::Bitmaps;
        if ((isSingle || (isPair && m_count % 2 != 0)) && step.vertices.size() > 1) {
            step.vertices.erase(step.vertices.begin());
        }
        step.word = step.vertices.empty() ? m_index : step.vertices.back();
    }

private:
    struct Begun {
        std::optional<std::size_t> begin;
        std::uint32_t primitive;
    };

    // What a MACRO stands for.
    std::uint32_t wordAt(std::size_t index) const {
        const std::uint32_t word = index < displayListWords ? m_scene.list[index] : 0;
        return word >> 24 == opcode::Macro ? m_scene.macros[word & 1U] : word;
    }

    const Scene& m_scene;
    std::optional<Begun> m_next; // from the next word on
    std::optional<std::size_t> m_begin;
    std::uint32_t m_primitive = primitive::None;
    std::vector<std::size_t> m_vertices; // the last ones since
    std::size_t m_count = 0;             // of all since
    std::size_t m_index = 0;
    bool m_isClear = false;
};

// Two walks at once, which differ in nothing but what the pixel is before each word: in one of them
// its true value, in the other all that this is not. So what a word leaves on it shows even where
// it was of the same colour before.
class Probe {
public:
    Probe(Generation generation, const Scene& scene, const BitmapHandles& handles, int x, int y)
        : m_true(generation, scene, handles), m_inverse(generation, scene, handles), m_words(scene),
          m_at(m_true.canvas.index(x, y)) {
        for (Walk* walk : {&m_true, &m_inverse}) {
            walk->pipeline.limitTo({x, y, x + 1, y + 1});
        }
    }

    PixelHistory run() {
        PixelHistory history;
        while (m_true.isRunning()) {
            m_words.follow(m_true.next());
            execute(history, [](Walk& walk) { walk.walker.walkOn(); });
            m_words.executed();
        }
        execute(history, [](Walk& walk) { walk.assembler.end(); });
        history.colour = colour(m_true);
        history.tag = tag(m_true);
        return history;
    }

private:
    std::uint32_t& colour(Walk& walk) const { return walk.canvas.pixels()[m_at]; }
    std::uint8_t& tag(Walk& walk) const { return walk.canvas.tags()[m_at]; }

    template<typename Action>
    void execute(PixelHistory& history, Action action) {
        PixelStep step;
        step.before = colour(m_true);
        const std::uint32_t otherColour = step.before ^ colourBits;
        const auto otherTag = static_cast<std::uint8_t>(~tag(m_true));
        colour(m_inverse) = otherColour;
        tag(m_inverse) = otherTag;
        action(m_true);
        action(m_inverse);
        step.after = colour(m_true);
        step.colours = step.after != step.before || colour(m_inverse) != otherColour;
        step.covers = ((step.after ^ colour(m_inverse)) & colourBits) == 0;
        step.tags = tag(m_inverse) != otherTag;
        if (step.colours || step.tags) {
            m_words.describe(step);
            history.steps.push_back(std::move(step));
        }
    }

    Walk m_true;
    Walk m_inverse;
    PrimitiveWords m_words;
    std::size_t m_at;
};

} // namespace

PixelHistory historyOf(Generation generation, const Scene& scene, const BitmapHandles& handles,
                       int x, int y) {
    return Probe(generation, scene, handles, x, y).run();
}

PixelRect areaOf(Generation generation, const Scene& scene, const BitmapHandles& handles,
                 const std::vector<std::size_t>& words) {
    constexpr PixelRect nothing;
    const PixelRect everything{0, 0, scene.width, scene.height};
    Walk walk(generation, scene, handles);
    walk.canvas.keep();
    while (walk.isRunning()) {
        const bool counts = std::find(words.begin(), words.end(), walk.next()) != words.end();
        walk.pipeline.limitTo(counts ? everything : nothing);
        walk.walker.walkOn();
    }
    PixelRect area{scene.width, scene.height, 0, 0};
    walk.canvas.drawnSinceKept().forEachRow([&](std::size_t first, std::size_t count) {
        const auto left = static_cast<int>(first % static_cast<std::size_t>(scene.width));
        const auto y = static_cast<int>(first / static_cast<std::size_t>(scene.width));
        area.left = std::min(area.left, left);
        area.right = std::max(area.right, left + static_cast<int>(count));
        area.top = std::min(area.top, y);
        area.bottom = std::max(area.bottom, y + 1);
    });
    return area.empty() ? PixelRect() : area;
}

} // namespace controller
