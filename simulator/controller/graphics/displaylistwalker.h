#pragma once

#include "complaints.h"
#include "generation.h"
#include "graphicsstate.h"
#include "pixelpipeline.h"
#include "primitiveassembler.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace controller {

// Walks one display list: follows its jumps and calls, keeps the graphics state and its saved
// contexts, and hands vertices on. Ends at DISPLAY or when the list has gone wrong beyond use.
class DisplayListWalker {
public:
    // `list` has displayListWords words. All arguments but the generation outlive the walker.
    DisplayListWalker(Generation generation, const std::uint32_t* list,
                      const std::array<std::uint32_t, 2>& macros, BitmapHandles& handles,
                      PixelPipeline& pipeline, PrimitiveAssembler& assembler,
                      Complaints& complaints);

    // Goes on until the next word is this one, or one behind it, or until the list has ended.
    void walkTo(std::size_t index);

    // Executes one word, unless the list has ended.
    void walkOn() {
        if (m_at.running) {
            step();
        }
    }

    // Where a walk stands. One that has gone over the same words may go on from there instead.
    struct Place {
        explicit Place(Generation generation) : state(initialState(generation)) {}

        GraphicsState state;
        std::vector<GraphicsState> saved;
        std::size_t notSaved = 0;         // contexts that were too many, until they are restored
        std::vector<std::size_t> returns; // word indices
        std::size_t next = 0;             // index of the word after the one being executed
        std::size_t reach = 0;            // behind the furthest word that has been executed
        int steps = 0;
        bool running = true;
    };
    const Place& place() const { return m_at; }
    void goOnFrom(const Place& place) { m_at = place; }

private:
    using Handler = void (DisplayListWalker::*)(std::uint32_t word);
    struct Instruction {
        Handler handler = nullptr;
        Generation since = Generation::E1;
    };
    static constexpr std::size_t instructionCount = 0x31;
    static std::array<Instruction, instructionCount> makeInstructions();
    static const std::array<Instruction, instructionCount>& instructions();

    void step();
    void execute(std::uint32_t word);
    void giveUp(Flaw flaw, const char* text);
    void complain(Flaw flaw, const char* text);
    bool isE1() const { return m_generation == Generation::E1; }
    BitmapHandle& currentHandle() { return m_handles[m_at.state.handle]; }

    // Control flow
    void display(std::uint32_t word);
    void call(std::uint32_t word);
    void jump(std::uint32_t word);
    void returnFromCall(std::uint32_t word);
    void macro(std::uint32_t word);
    void nothing(std::uint32_t word);
    void goTo(std::uint32_t index);

    // Drawing
    void begin(std::uint32_t word);
    void end(std::uint32_t word);
    void clear(std::uint32_t word);
    void vertex2f(std::uint32_t word);
    void vertex2ii(std::uint32_t word);

    // Contexts
    void saveContext(std::uint32_t word);
    void restoreContext(std::uint32_t word);

    // State
    void clearColorRgb(std::uint32_t word);
    void clearColorA(std::uint32_t word);
    void clearStencil(std::uint32_t word);
    void clearTag(std::uint32_t word);
    void colorRgb(std::uint32_t word);
    void colorA(std::uint32_t word);
    void colorMask(std::uint32_t word);
    void tag(std::uint32_t word);
    void tagMask(std::uint32_t word);
    void alphaFunc(std::uint32_t word);
    void stencilFunc(std::uint32_t word);
    void stencilOp(std::uint32_t word);
    void stencilMask(std::uint32_t word);
    void blendFunc(std::uint32_t word);
    void pointSize(std::uint32_t word);
    void lineWidth(std::uint32_t word);
    void scissorXy(std::uint32_t word);
    void scissorSize(std::uint32_t word);
    void vertexFormat(std::uint32_t word);
    void vertexTranslateX(std::uint32_t word);
    void vertexTranslateY(std::uint32_t word);
    void bitmapHandle(std::uint32_t word);
    void cell(std::uint32_t word);
    void paletteSource(std::uint32_t word);
    template<std::int32_t BitmapTransform::*Factor>
    void transformFactor(std::uint32_t word);
    template<std::int32_t BitmapTransform::*Offset>
    void transformOffset(std::uint32_t word);

    // State of the current bitmap handle
    void bitmapSource(std::uint32_t word);
    void bitmapLayout(std::uint32_t word);
    void bitmapLayoutH(std::uint32_t word);
    void bitmapSize(std::uint32_t word);
    void bitmapSizeH(std::uint32_t word);
    void bitmapExtFormat(std::uint32_t word);
    void bitmapSwizzle(std::uint32_t word);

    Generation m_generation;
    const std::uint32_t* m_list;
    const std::array<std::uint32_t, 2>& m_macros;
    BitmapHandles& m_handles;
    PixelPipeline& m_pipeline;
    PrimitiveAssembler& m_assembler;
    Complaints& m_complaints;

    Place m_at;
    bool m_inMacro = false;
};

} // namespace controller
