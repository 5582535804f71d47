#include "displaylistwalker.h"

#include "displaylist.h"
#include "fixedmath.h"
#include "pixelmath.h"
#include "work.h"

#include <algorithm>

namespace controller {

namespace {

constexpr std::size_t deepestNesting = 4; // of saved contexts and of calls
constexpr int mostSteps = 16 * static_cast<int>(displayListWords);
constexpr std::uint32_t colorBits = 0x00FFFFFF;

constexpr std::uint32_t bits(std::uint32_t word, int lowest, int count) {
    return word >> lowest & ((1U << count) - 1);
}

constexpr int number(std::uint32_t word, int lowest, int count) {
    return static_cast<int>(bits(word, lowest, count));
}

constexpr std::uint8_t byte(std::uint32_t word, int lowest = 0) {
    return static_cast<std::uint8_t>(word >> lowest);
}

// Two's complement field of `count` bits.
constexpr std::int32_t signedNumber(std::uint32_t word, int lowest, unsigned count) {
    return signExtend(word >> lowest, count);
}

} // namespace

// --- the table of instructions

std::array<DisplayListWalker::Instruction, DisplayListWalker::instructionCount>
DisplayListWalker::makeInstructions() {
    using Walker = DisplayListWalker;
    using Transform = BitmapTransform;
    constexpr Generation e2 = Generation::E2;
    constexpr Generation e3 = Generation::E3;
    std::array<Instruction, instructionCount> table{};
    table[opcode::Display] = {&Walker::display};
    table[opcode::BitmapSource] = {&Walker::bitmapSource};
    table[opcode::ClearColorRgb] = {&Walker::clearColorRgb};
    table[opcode::Tag] = {&Walker::tag};
    table[opcode::ColorRgb] = {&Walker::colorRgb};
    table[opcode::BitmapHandle] = {&Walker::bitmapHandle};
    table[opcode::Cell] = {&Walker::cell};
    table[opcode::BitmapLayout] = {&Walker::bitmapLayout};
    table[opcode::BitmapSize] = {&Walker::bitmapSize};
    table[opcode::AlphaFunc] = {&Walker::alphaFunc};
    table[opcode::StencilFunc] = {&Walker::stencilFunc};
    table[opcode::BlendFunc] = {&Walker::blendFunc};
    table[opcode::StencilOp] = {&Walker::stencilOp};
    table[opcode::PointSize] = {&Walker::pointSize};
    table[opcode::LineWidth] = {&Walker::lineWidth};
    table[opcode::ClearColorA] = {&Walker::clearColorA};
    table[opcode::ColorA] = {&Walker::colorA};
    table[opcode::ClearStencil] = {&Walker::clearStencil};
    table[opcode::ClearTag] = {&Walker::clearTag};
    table[opcode::StencilMask] = {&Walker::stencilMask};
    table[opcode::TagMask] = {&Walker::tagMask};
    table[opcode::BitmapTransformA] = {&Walker::transformFactor<&Transform::a>};
    table[opcode::BitmapTransformB] = {&Walker::transformFactor<&Transform::b>};
    table[opcode::BitmapTransformC] = {&Walker::transformOffset<&Transform::c>};
    table[opcode::BitmapTransformD] = {&Walker::transformFactor<&Transform::d>};
    table[opcode::BitmapTransformE] = {&Walker::transformFactor<&Transform::e>};
    table[opcode::BitmapTransformF] = {&Walker::transformOffset<&Transform::f>};
    table[opcode::ScissorXy] = {&Walker::scissorXy};
    table[opcode::ScissorSize] = {&Walker::scissorSize};
    table[opcode::Call] = {&Walker::call};
    table[opcode::Jump] = {&Walker::jump};
    table[opcode::Begin] = {&Walker::begin};
    table[opcode::ColorMask] = {&Walker::colorMask};
    table[opcode::End] = {&Walker::end};
    table[opcode::SaveContext] = {&Walker::saveContext};
    table[opcode::RestoreContext] = {&Walker::restoreContext};
    table[opcode::Return] = {&Walker::returnFromCall};
    table[opcode::Macro] = {&Walker::macro};
    table[opcode::Clear] = {&Walker::clear};
    table[opcode::VertexFormat] = {&Walker::vertexFormat, e2};
    table[opcode::BitmapLayoutH] = {&Walker::bitmapLayoutH, e2};
    table[opcode::BitmapSizeH] = {&Walker::bitmapSizeH, e2};
    table[opcode::PaletteSource] = {&Walker::paletteSource, e2};
    table[opcode::VertexTranslateX] = {&Walker::vertexTranslateX, e2};
    table[opcode::VertexTranslateY] = {&Walker::vertexTranslateY, e2};
    table[opcode::Nop] = {&Walker::nothing, e2};
    table[opcode::BitmapExtFormat] = {&Walker::bitmapExtFormat, e3};
    table[opcode::BitmapSwizzle] = {&Walker::bitmapSwizzle, e3};
    table[opcode::IntFrr] = {&Walker::nothing, e3};
    return table;
}

const std::array<DisplayListWalker::Instruction, DisplayListWalker::instructionCount>&
DisplayListWalker::instructions() {
    static const std::array<Instruction, instructionCount> table = makeInstructions();
    return table;
}

// --- walking

DisplayListWalker::DisplayListWalker(Generation generation, const std::uint32_t* list,
                                     const std::array<std::uint32_t, 2>& macros,
                                     BitmapHandles& handles, PixelPipeline& pipeline,
                                     PrimitiveAssembler& assembler, Complaints& complaints)
    : m_generation(generation), m_list(list), m_macros(macros), m_handles(handles),
      m_pipeline(pipeline), m_assembler(assembler), m_complaints(complaints), m_at(generation) {}

void DisplayListWalker::walkTo(std::size_t index) {
    while (m_at.running && (m_at.next < index || m_at.next >= displayListWords)) {
        step();
    }
}

void DisplayListWalker::step() {
    if (m_at.next >= displayListWords) {
        giveUp(Flaw::ListWithoutEnd, "display list: ends without DISPLAY");
        return;
    }
    if (m_at.steps++ >= mostSteps) {
        giveUp(Flaw::TooManySteps, "display list: runs in circles");
        return;
    }
    m_pipeline.work().add(cost::word);
    const std::uint32_t word = m_list[m_at.next++];
    m_at.reach = std::max(m_at.reach, m_at.next);
    execute(word);
    if (m_pipeline.work().isTooMuch()) {
        giveUp(Flaw::TooMuchWork, "display list: more to draw than a frame has time for");
    }
}

void DisplayListWalker::giveUp(Flaw flaw, const char* text) {
    complain(flaw, text);
    m_at.running = false;
}

void DisplayListWalker::execute(std::uint32_t word) {
    switch (word >> 30) {
    case 1:
        vertex2f(word);
        return;
    case 2:
        vertex2ii(word);
        return;
    default:
        break;
    }
    const std::uint32_t code = word >> 24;
    if (code < instructionCount) {
        const Instruction& instruction = instructions()[code];
        if (instruction.handler != nullptr && instruction.since <= m_generation) {
            (this->*instruction.handler)(word);
            return;
        }
    }
    m_complaints.addUnknownWord(word);
}

void DisplayListWalker::complain(Flaw flaw, const char* text) {
    m_complaints.add(flaw, text);
}

// --- control flow

void DisplayListWalker::display(std::uint32_t /*word*/) {
    m_at.running = false;
}

void DisplayListWalker::nothing(std::uint32_t /*word*/) {}

void DisplayListWalker::goTo(std::uint32_t index) {
    if (index >= displayListWords) {
        complain(Flaw::BadWordIndex, "display list: CALL or JUMP out of the list");
        m_at.running = false;
        return;
    }
    m_at.next = index;
}

void DisplayListWalker::jump(std::uint32_t word) {
    goTo(bits(word, 0, 16));
}

void DisplayListWalker::call(std::uint32_t word) {
    if (m_at.returns.size() == deepestNesting) {
        complain(Flaw::CallsTooDeep, "display list: CALLs nested too deep");
        return;
    }
    m_at.returns.push_back(m_at.next);
    goTo(bits(word, 0, 16));
}

void DisplayListWalker::returnFromCall(std::uint32_t /*word*/) {
    if (m_at.returns.empty()) {
        complain(Flaw::ReturnWithoutCall, "display list: RETURN without CALL");
        return;
    }
    m_at.next = m_at.returns.back();
    m_at.returns.pop_back();
}

void DisplayListWalker::macro(std::uint32_t word) {
    if (m_inMacro) {
        complain(Flaw::MacroInMacro, "display list: a MACRO register holds MACRO");
        return;
    }
    m_inMacro = true;
    execute(m_macros[bits(word, 0, 1)]);
    m_inMacro = false;
}

// --- drawing

void DisplayListWalker::begin(std::uint32_t word) {
    m_assembler.begin(bits(word, 0, 4));
}

void DisplayListWalker::end(std::uint32_t /*word*/) {
    m_assembler.end();
}

void DisplayListWalker::clear(std::uint32_t word) {
    m_assembler.finishEdges();
    m_pipeline.use(m_at.state);
    m_pipeline.clear(bits(word, 2, 1) != 0, bits(word, 1, 1) != 0, bits(word, 0, 1) != 0);
}

void DisplayListWalker::vertex2f(std::uint32_t word) {
    const int scale = subpixels >> m_at.state.vertexFraction;
    const Position place{signedNumber(word, 15, 15) * scale + m_at.state.translateX,
                         signedNumber(word, 0, 15) * scale + m_at.state.translateY};
    m_assembler.vertex(m_at.state, place, currentHandle(), m_at.state.handle, m_at.state.cell);
}

void DisplayListWalker::vertex2ii(std::uint32_t word) {
    const Position place{number(word, 21, 9) * subpixels + m_at.state.translateX,
                         number(word, 12, 9) * subpixels + m_at.state.translateY};
    const auto handle = static_cast<std::uint8_t>(bits(word, 7, 5));
    m_assembler.vertex(m_at.state, place, m_handles[handle], handle,
                       static_cast<std::uint8_t>(bits(word, 0, 7)));
}

// --- contexts

void DisplayListWalker::saveContext(std::uint32_t /*word*/) {
    if (m_at.saved.size() == deepestNesting) {
        complain(Flaw::ContextsTooDeep, "display list: SAVE_CONTEXT nested too deep");
        ++m_at.notSaved;
        return;
    }
    m_at.saved.push_back(m_at.state);
}

void DisplayListWalker::restoreContext(std::uint32_t /*word*/) {
    if (m_at.notSaved > 0) {
        --m_at.notSaved; // the pairs within it and around it stay pairs
        return;
    }
    if (m_at.saved.empty()) {
        complain(Flaw::RestoreWithoutSave, "display list: RESTORE_CONTEXT without SAVE_CONTEXT");
        m_at.state = initialState(m_generation);
        return;
    }
    m_at.state = m_at.saved.back();
    m_at.saved.pop_back();
}

// --- state

void DisplayListWalker::clearColorRgb(std::uint32_t word) {
    m_at.state.clearColor = (m_at.state.clearColor & ~colorBits) | (word & colorBits);
}

void DisplayListWalker::clearColorA(std::uint32_t word) {
    m_at.state.clearColor = withAlpha(m_at.state.clearColor, byte(word));
}

void DisplayListWalker::clearStencil(std::uint32_t word) {
    m_at.state.clearStencil = byte(word);
}

void DisplayListWalker::clearTag(std::uint32_t word) {
    m_at.state.clearTag = byte(word);
}

void DisplayListWalker::colorRgb(std::uint32_t word) {
    m_at.state.color = (m_at.state.color & ~colorBits) | (word & colorBits);
}

void DisplayListWalker::colorA(std::uint32_t word) {
    m_at.state.color = withAlpha(m_at.state.color, byte(word));
}

void DisplayListWalker::colorMask(std::uint32_t word) {
    m_at.state.colorMask = bits(word, 0, 1) * 0xFF000000 | bits(word, 3, 1) * 0x00FF0000 |
                           bits(word, 2, 1) * 0x0000FF00 | bits(word, 1, 1) * 0x000000FF;
}

void DisplayListWalker::tag(std::uint32_t word) {
    m_at.state.tag = byte(word);
}

void DisplayListWalker::tagMask(std::uint32_t word) {
    m_at.state.tagging = bits(word, 0, 1) != 0;
}

void DisplayListWalker::alphaFunc(std::uint32_t word) {
    m_at.state.alphaFunction = bits(word, 8, 3);
    m_at.state.alphaReference = byte(word);
}

void DisplayListWalker::stencilFunc(std::uint32_t word) {
    m_at.state.stencilFunction = bits(word, 16, 3);
    m_at.state.stencilReference = byte(word, 8);
    m_at.state.stencilCompareMask = byte(word);
}

void DisplayListWalker::stencilOp(std::uint32_t word) {
    m_at.state.stencilFail = bits(word, 3, 3);
    m_at.state.stencilPass = bits(word, 0, 3);
}

void DisplayListWalker::stencilMask(std::uint32_t word) {
    m_at.state.stencilWriteMask = byte(word);
}

void DisplayListWalker::blendFunc(std::uint32_t word) {
    m_at.state.blendSource = bits(word, 3, 3);
    m_at.state.blendDestination = bits(word, 0, 3);
    if (std::max(m_at.state.blendSource, m_at.state.blendDestination) > blend::OneMinusDstAlpha) {
        complain(Flaw::BadBlendFactor, "display list: unknown blend factor");
    }
}

void DisplayListWalker::pointSize(std::uint32_t word) {
    m_at.state.pointSize = number(word, 0, 13);
}

void DisplayListWalker::lineWidth(std::uint32_t word) {
    m_at.state.lineWidth = number(word, 0, 12);
}

void DisplayListWalker::scissorXy(std::uint32_t word) {
    m_at.state.scissor.x = isE1() ? number(word, 9, 9) : number(word, 11, 11);
    m_at.state.scissor.y = isE1() ? number(word, 0, 9) : number(word, 0, 11);
}

void DisplayListWalker::scissorSize(std::uint32_t word) {
    m_at.state.scissor.width = isE1() ? number(word, 10, 10) : number(word, 12, 12);
    m_at.state.scissor.height = isE1() ? number(word, 0, 10) : number(word, 0, 12);
}

void DisplayListWalker::vertexFormat(std::uint32_t word) {
    constexpr int finest = 4;
    m_at.state.vertexFraction = number(word, 0, 3);
    if (m_at.state.vertexFraction > finest) {
        complain(Flaw::BadVertexFormat, "display list: VERTEX_FORMAT of more than 4 bits");
        m_at.state.vertexFraction = finest;
    }
}

void DisplayListWalker::vertexTranslateX(std::uint32_t word) {
    m_at.state.translateX = signedNumber(word, 0, 17);
}

void DisplayListWalker::vertexTranslateY(std::uint32_t word) {
    m_at.state.translateY = signedNumber(word, 0, 17);
}

void DisplayListWalker::bitmapHandle(std::uint32_t word) {
    m_at.state.handle = static_cast<std::uint8_t>(bits(word, 0, 5));
}

void DisplayListWalker::cell(std::uint32_t word) {
    m_at.state.cell = static_cast<std::uint8_t>(bits(word, 0, 7));
}

void DisplayListWalker::paletteSource(std::uint32_t word) {
    m_at.state.paletteSource = bits(word, 0, 22);
}

// Signed 8.8; on E3 with bit 17 set signed 1.15, which is the state's own unit.
template<std::int32_t BitmapTransform::*Factor>
void DisplayListWalker::transformFactor(std::uint32_t word) {
    const bool fine = m_generation == Generation::E3 && bits(word, 17, 1) != 0;
    m_at.state.transform.*Factor = signedNumber(word, 0, 17) * (fine ? 1 : 32768 / 256);
}

template<std::int32_t BitmapTransform::*Offset>
void DisplayListWalker::transformOffset(std::uint32_t word) {
    m_at.state.transform.*Offset = signedNumber(word, 0, 24);
}

// --- state of the current bitmap handle

void DisplayListWalker::bitmapSource(std::uint32_t word) {
    if (m_generation == Generation::E3 && bits(word, 23, 1) != 0) {
        complain(Flaw::SourceInFlash, "display list: bitmaps in flash are not drawn");
    }
    currentHandle().source = bits(word, 0, isE1() ? 20 : 22);
}

void DisplayListWalker::bitmapLayout(std::uint32_t word) {
    BitmapHandle& handle = currentHandle();
    handle.format = bits(word, 19, 5);
    handle.stride = bits(word, 9, 10);
    handle.layoutHeight = bits(word, 0, 9);
}

void DisplayListWalker::bitmapLayoutH(std::uint32_t word) {
    currentHandle().strideHigh = bits(word, 2, 2);
    currentHandle().layoutHeightHigh = bits(word, 0, 2);
}

void DisplayListWalker::bitmapSize(std::uint32_t word) {
    BitmapHandle& handle = currentHandle();
    handle.bilinear = bits(word, 20, 1) != 0;
    handle.repeatX = bits(word, 19, 1) != 0;
    handle.repeatY = bits(word, 18, 1) != 0;
    handle.width = bits(word, 9, 9);
    handle.height = bits(word, 0, 9);
}

void DisplayListWalker::bitmapSizeH(std::uint32_t word) {
    currentHandle().widthHigh = bits(word, 2, 2);
    currentHandle().heightHigh = bits(word, 0, 2);
}

void DisplayListWalker::bitmapExtFormat(std::uint32_t word) {
    currentHandle().extendedFormat = bits(word, 0, 16);
}

void DisplayListWalker::bitmapSwizzle(std::uint32_t word) {
    currentHandle().swizzle = {bits(word, 9, 3), bits(word, 6, 3), bits(word, 3, 3),
                               bits(word, 0, 3)};
    for (const std::uint32_t source : currentHandle().swizzle) {
        if (source > swizzle::Alpha) {
            complain(Flaw::BadSwizzle, "display list: unknown swizzle source");
        }
    }
}

} // namespace controller
