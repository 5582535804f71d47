#include "host.h"

#include <gtest/gtest.h>

#include <numeric>

namespace {

using namespace controllertest;
using V = std::vector<std::uint32_t>;

std::uint32_t vertexAt16(int x, int y) {
    return 0x40000000U | static_cast<std::uint32_t>(x) << 15U | static_cast<std::uint32_t>(y);
}

// Where the dot is that all lists draw.
constexpr std::uint32_t seenDot = 0x40000000U | (20 * 16 + 5) << 15U | 20 * 16;

// A word that sets a piece of graphics state to what it is at the start of every list, and one
// that sets it to something else; and what shows the difference, if the drawing does not.
struct State {
    const char* name;
    std::uint32_t initial;
    std::uint32_t other;
    V show = {};
};

const State states[] = {
    {"COLOR_RGB", 0x04FFFFFF, 0x04FFFF00},
    {"COLOR_A", 0x100000FF, 0x10000080},
    {"CLEAR_COLOR_RGB", 0x02000000, 0x02000040},
    {"CLEAR_TAG", 0x12000000, 0x12000001},
    // Blended by the alpha that is there
    {"CLEAR_COLOR_A", 0x0F000000, 0x0F000080, {0x0B000019}},
    // Drawn only where the stencil is 0
    {"CLEAR_STENCIL", 0x11000000, 0x11000001, {0x0A0500FF}},
    // A dot in the way of those behind it, if it changes the stencil by passing or by failing
    {"STENCIL_OP", 0x0C000009, 0x0C00000B, {0x1F000002, seenDot, 0x04FF0000, 0x0A0500FF}},
    {"STENCIL_OPWhereTheTestFails",
     0x0C000009,
     0x0C000019,
     {0x0A0000FF, 0x1F000002, seenDot, 0x0A0500FF}},
    {"STENCIL_MASK",
     0x130000FF,
     0x13000000,
     {0x0C00000B, 0x1F000002, seenDot, 0x04FF0000, 0x0A0500FF}},
    // PALETTED565
    {"PALETTE_SOURCE",
     0x2A000000,
     0x2A000002,
     {0x05000001, 0x01000000, 0x07000000U | 14U << 19U | 4U << 9U | 2U, 0x08000000U | 4U << 9U | 2U,
      0x1F000001, 0x40000000U | 320U << 15U | 800U}},
    {"TAG", 0x030000FF, 0x030000FE},
    {"TAG_MASK", 0x14000001, 0x14000000},
    {"POINT_SIZE", 0x0D000010, 0x0D000020},
    {"LINE_WIDTH", 0x0E000010, 0x0E000020},
    {"ALPHA_FUNC", 0x09000700, 0x09000000},
    {"STENCIL_FUNC", 0x0A0700FF, 0x0A0000FF},
    {"BLEND_FUNC", 0x0B000014, 0x0B000008},
    {"COLOR_MASK", 0x2000000F, 0x20000007},
    {"CELL", 0x06000000, 0x06000001},
    {"BITMAP_HANDLE", 0x05000000, 0x05000001},
    {"BITMAP_TRANSFORM_A", 0x15000100, 0x15000080},
    {"BITMAP_TRANSFORM_B", 0x16000000, 0x16000100},
    {"BITMAP_TRANSFORM_C", 0x17000000, 0x17000100},
    {"BITMAP_TRANSFORM_D", 0x18000000, 0x18000100},
    {"BITMAP_TRANSFORM_E", 0x19000100, 0x19000080},
    {"BITMAP_TRANSFORM_F", 0x1A000000, 0x1A000100},
    {"SCISSOR_XY", 0x1B000000, 0x1B01B80A},
    {"SCISSOR_SIZE", 0x1C800800, 0x1C010010},
    {"VERTEX_FORMAT", 0x27000004, 0x27000003},
    {"VERTEX_TRANSLATE_X", 0x2B000000, 0x2B000010},
    {"VERTEX_TRANSLATE_Y", 0x2C000000, 0x2C000010},
};

// Of the 24 behind the opcode, those that stand in a field of the word.
std::uint32_t usedBits(std::uint32_t word) {
    switch (word >> 24U) {
    case 0x14: // TAG_MASK
        return 0x1;
    case 0x27: // VERTEX_FORMAT
        return 0x7;
    case 0x20: // COLOR_MASK
        return 0xF;
    case 0x05: // BITMAP_HANDLE
        return 0x1F;
    case 0x0B: // BLEND_FUNC
    case 0x0C: // STENCIL_OP
        return 0x3F;
    case 0x06: // CELL
        return 0x7F;
    case 0x03: // TAG
    case 0x0F: // CLEAR_COLOR_A
    case 0x10: // COLOR_A
    case 0x11: // CLEAR_STENCIL
    case 0x12: // CLEAR_TAG
    case 0x13: // STENCIL_MASK
        return 0xFF;
    case 0x09: // ALPHA_FUNC
        return 0x7FF;
    case 0x0E: // LINE_WIDTH
        return 0xFFF;
    case 0x0D: // POINT_SIZE
        return 0x1FFF;
    case 0x2B: // VERTEX_TRANSLATE_X
    case 0x2C: // VERTEX_TRANSLATE_Y
        return 0x1FFFF;
    case 0x15: // BITMAP_TRANSFORM_A
    case 0x16:
    case 0x18:
    case 0x19: // BITMAP_TRANSFORM_E
        return 0x3FFFF;
    case 0x0A: // STENCIL_FUNC
        return 0x7FFFF;
    case 0x1B: // SCISSOR_XY
    case 0x2A: // PALETTE_SOURCE
        return 0x3FFFFF;
    default:
        return 0xFFFFFF;
    }
}

class GraphicsDefaults : public testing::TestWithParam<State> {
protected:
    GraphicsDefaults() {
        host.bootWithPanel();
        host.write(0, {0x10, 0x20, 0x30, 0x40, 0x50, 0x60, 0x70, 0x80, 0x90, 0xA0, 0xB0, 0xC0, 0xD0,
                       0xE0, 0xF0, 0xFF});
        std::vector<std::uint8_t> palette(512);
        std::iota(palette.begin(), palette.end(), std::uint8_t{0});
        host.write(16, palette);
    }
    // Something of everything: a bitmap of two cells, a dot and a line, all where they can be seen.
    controller::Frame drawnAfter(const V& words) {
        const V bitmap = {0x05000000, 0x01000000, 0x07000000 | 3U << 19 | 4 << 9 | 2,
                          0x08000000 | 4 << 9 | 2};
        const V drawing = {0x1F000001,
                           vertexAt16(50 * 16, 30 * 16),
                           0x1F000002,
                           seenDot,
                           0x1F000003,
                           vertexAt16(60 * 16, 8 * 16),
                           vertexAt16(90 * 16, 14 * 16),
                           0,
                           cmd::swap};
        host.send(V{cmd::dlStart} + bitmap + words + V{0x26000007} + GetParam().show + drawing);
        host.waitFrames(2);
        return host.chip.frame();
    }

    Host host{Generation::E3};
};

INSTANTIATE_TEST_SUITE_P(EachState, GraphicsDefaults, testing::ValuesIn(states),
                         [](const testing::TestParamInfo<State>& state) {
                             return std::string(state.param.name);
                         });

TEST_P(GraphicsDefaults, EveryListStartsWithIt) {
    const controller::Frame plain = drawnAfter({});
    const controller::Frame initial = drawnAfter({GetParam().initial});
    EXPECT_TRUE(initial.picture == plain.picture);
    EXPECT_TRUE(initial.tags == plain.tags);
    const controller::Frame other = drawnAfter({GetParam().other});
    EXPECT_TRUE(other.picture != plain.picture || other.tags != plain.tags)
        << "the drawing does not depend on it";
}

TEST_P(GraphicsDefaults, BitsOutsideOfItsFieldsDoNothing) {
    for (const std::uint32_t word : {GetParam().initial, GetParam().other}) {
        const controller::Frame plain = drawnAfter({word});
        const controller::Frame filled = drawnAfter({word | (0xFFFFFFU & ~usedBits(word))});
        EXPECT_TRUE(filled.picture == plain.picture) << std::hex << word;
        EXPECT_TRUE(filled.tags == plain.tags) << std::hex << word;
    }
}

} // namespace
