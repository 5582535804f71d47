#include "names.h"

#include "fixedmath.h"
#include "memorylayout.h"
#include "registers.h"

#include <array>
#include <cstdio>

namespace controller {

namespace {

std::string hexadecimal(std::uint32_t value, int digits) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "0x%0*X", digits, value);
    return text.data();
}

std::string withOffset(const std::string& name, std::uint32_t offset) {
    return offset ? name + "+" + std::to_string(offset) : name;
}

struct NamedAddress {
    std::uint32_t address; // on E2 and E3
    const char* name;
};

// Registers in the coprocessor's own memory.
constexpr NamedAddress coprocessorRegisters[] = {
    {0x309000, "REG_TRACKER"},         {0x309004, "REG_TRACKER_1"},
    {0x309008, "REG_TRACKER_2"},       {0x30900C, "REG_TRACKER_3"},
    {0x309010, "REG_TRACKER_4"},       {0x309014, "REG_MEDIAFIFO_READ"},
    {0x309018, "REG_MEDIAFIFO_WRITE"}, {0x30901C, "REG_MEDIAFIFO_BASE"},
    {0x309020, "REG_MEDIAFIFO_SIZE"},  {0x309024, "REG_FLASH_SIZE"},
    {0x30902C, "REG_ANIM_ACTIVE"},     {0x30914E, "REG_PLAY_CONTROL"},
};

std::string coprocessorRegisterName(Generation generation, std::uint32_t address) {
    if (generation == Generation::E1) {
        return address == 0x109000 ? "REG_TRACKER" : "";
    }
    for (const NamedAddress& known : coprocessorRegisters) {
        const bool e3Alone = known.address >= 0x30901C;
        if (known.address == address && (generation == Generation::E3 || !e3Alone)) {
            return known.name;
        }
    }
    return {};
}

struct NamedSpan {
    Span span;
    const char* name;
};

// What the values of a field are called, from 0 on; null where a number means nothing.
using ValueNames = std::array<const char*, 32>;

constexpr ValueNames noNames{};
constexpr ValueNames primitives{nullptr,        "BITMAPS",      "POINTS",       "LINES",
                                "LINE_STRIP",   "EDGE_STRIP_R", "EDGE_STRIP_L", "EDGE_STRIP_A",
                                "EDGE_STRIP_B", "RECTS"};
constexpr ValueNames tests{"NEVER",  "LESS",  "LEQUAL",   "GREATER",
                           "GEQUAL", "EQUAL", "NOTEQUAL", "ALWAYS"};
constexpr ValueNames stencilOperations{"ZERO", "KEEP",   "REPLACE",   "INCR",
                                       "DECR", "INVERT", "INCR_WRAP", "DECR_WRAP"};
constexpr ValueNames blendFactors{
    "ZERO", "ONE", "SRC_ALPHA", "DST_ALPHA", "ONE_MINUS_SRC_ALPHA", "ONE_MINUS_DST_ALPHA"};
constexpr ValueNames filters{"NEAREST", "BILINEAR"};
constexpr ValueNames wraps{"BORDER", "REPEAT"};
constexpr ValueNames channels{"ZERO", "ONE", "RED", "GREEN", "BLUE", "ALPHA"};
constexpr ValueNames formats{"ARGB1555",     "L1",        "L4",     "L8",       "RGB332",
                             "ARGB2",        "ARGB4",     "RGB565", "PALETTED", "TEXT8X8",
                             "TEXTVGA",      "BARGRAPH",  nullptr,  nullptr,    "PALETTED565",
                             "PALETTED4444", "PALETTED8", "L2"};

// One field of a display-list word.
struct Field {
    enum Kind : std::uint8_t { End, Unsigned, Signed, Hex, Named } kind = End;
    std::uint8_t shift = 0;
    std::uint8_t bits = 0;
    const ValueNames* names = &noNames;
};

struct WordForm {
    const char* name = nullptr;
    std::array<Field, 5> fields{};
};

constexpr Field u(int shift, int bits) {
    return {Field::Unsigned, static_cast<std::uint8_t>(shift), static_cast<std::uint8_t>(bits)};
}
constexpr Field s(int shift, int bits) {
    return {Field::Signed, static_cast<std::uint8_t>(shift), static_cast<std::uint8_t>(bits)};
}
constexpr Field x(int shift, int bits) {
    return {Field::Hex, static_cast<std::uint8_t>(shift), static_cast<std::uint8_t>(bits)};
}
constexpr Field named(int shift, int bits, const ValueNames& names) {
    return {Field::Named, static_cast<std::uint8_t>(shift), static_cast<std::uint8_t>(bits),
            &names};
}

constexpr WordForm vertex2f{"VERTEX2F", {s(15, 15), s(0, 15)}};
constexpr WordForm vertex2ii{"VERTEX2II", {u(21, 9), u(12, 9), u(7, 5), u(0, 7)}};
constexpr WordForm scissorXyE1{"SCISSOR_XY", {u(9, 9), u(0, 9)}};
constexpr WordForm scissorSizeE1{"SCISSOR_SIZE", {u(10, 10), u(0, 10)}};

// By opcode, the word's top byte. Opcodes missing here belong to no word.
constexpr WordForm wordForms[] = {
    {"DISPLAY", {}},
    {"BITMAP_SOURCE", {x(0, 22)}},
    {"CLEAR_COLOR_RGB", {x(0, 24)}},
    {"TAG", {u(0, 8)}},
    {"COLOR_RGB", {x(0, 24)}},
    {"BITMAP_HANDLE", {u(0, 5)}},
    {"CELL", {u(0, 7)}},
    {"BITMAP_LAYOUT", {named(19, 5, formats), u(9, 10), u(0, 9)}},
    {"BITMAP_SIZE",
     {named(20, 1, filters), named(19, 1, wraps), named(18, 1, wraps), u(9, 9), u(0, 9)}},
    {"ALPHA_FUNC", {named(8, 3, tests), u(0, 8)}},
    {"STENCIL_FUNC", {named(16, 3, tests), u(8, 8), u(0, 8)}},
    {"BLEND_FUNC", {named(3, 3, blendFactors), named(0, 3, blendFactors)}},
    {"STENCIL_OP", {named(3, 3, stencilOperations), named(0, 3, stencilOperations)}},
    {"POINT_SIZE", {u(0, 13)}},
    {"LINE_WIDTH", {u(0, 12)}},
    {"CLEAR_COLOR_A", {u(0, 8)}},
    {"COLOR_A", {u(0, 8)}},
    {"CLEAR_STENCIL", {u(0, 8)}},
    {"CLEAR_TAG", {u(0, 8)}},
    {"STENCIL_MASK", {u(0, 8)}},
    {"TAG_MASK", {u(0, 1)}},
    {"BITMAP_TRANSFORM_A", {s(0, 17)}},
    {"BITMAP_TRANSFORM_B", {s(0, 17)}},
    {"BITMAP_TRANSFORM_C", {s(0, 24)}},
    {"BITMAP_TRANSFORM_D", {s(0, 17)}},
    {"BITMAP_TRANSFORM_E", {s(0, 17)}},
    {"BITMAP_TRANSFORM_F", {s(0, 24)}},
    {"SCISSOR_XY", {u(11, 11), u(0, 11)}},
    {"SCISSOR_SIZE", {u(12, 12), u(0, 12)}},
    {"CALL", {u(0, 16)}},
    {"JUMP", {u(0, 16)}},
    {"BEGIN", {named(0, 4, primitives)}},
    {"COLOR_MASK", {u(3, 1), u(2, 1), u(1, 1), u(0, 1)}},
    {"END", {}},
    {"SAVE_CONTEXT", {}},
    {"RESTORE_CONTEXT", {}},
    {"RETURN", {}},
    {"MACRO", {u(0, 1)}},
    {"CLEAR", {u(2, 1), u(1, 1), u(0, 1)}},
    {"VERTEX_FORMAT", {u(0, 3)}},
    {"BITMAP_LAYOUT_H", {u(2, 2), u(0, 2)}},
    {"BITMAP_SIZE_H", {u(2, 2), u(0, 2)}},
    {"PALETTE_SOURCE", {x(0, 22)}},
    {"VERTEX_TRANSLATE_X", {s(0, 17)}},
    {"VERTEX_TRANSLATE_Y", {s(0, 17)}},
    {"NOP", {}},
    {"BITMAP_EXT_FORMAT", {u(0, 16)}},
    {"BITMAP_SWIZZLE",
     {named(9, 3, channels), named(6, 3, channels), named(3, 3, channels), named(0, 3, channels)}},
};
constexpr std::size_t wordFormCount = sizeof(wordForms) / sizeof(wordForms[0]);

std::string nameOf(const ValueNames& names, std::uint32_t value) {
    const char* name = names[value];
    return name ? name : std::to_string(value);
}

std::string fieldText(const Field& field, std::uint32_t word) {
    const std::uint32_t raw = (word >> field.shift) & ((1U << field.bits) - 1U);
    switch (field.kind) {
    case Field::Signed:
        return std::to_string(signExtend(raw, field.bits));
    case Field::Hex:
        return hexadecimal(raw, 6);
    case Field::Named:
        return nameOf(*field.names, raw);
    case Field::Unsigned:
    case Field::End:
        break;
    }
    return std::to_string(raw);
}

std::string text(const WordForm& form, std::uint32_t word) {
    std::string result = form.name;
    for (const Field& field : form.fields) {
        if (field.kind != Field::End) {
            result += ' ' + fieldText(field, word);
        }
    }
    return result;
}

const WordForm* formOf(Generation generation, std::uint32_t word) {
    switch (word >> 30U) {
    case 1:
        return &vertex2f;
    case 2:
        return &vertex2ii;
    case 3:
        return nullptr;
    default:
        break;
    }
    const std::uint32_t opcode = word >> 24U;
    if (opcode >= wordFormCount) {
        return nullptr;
    }
    const WordForm* form = &wordForms[opcode];
    if (generation == Generation::E1 && opcode == 0x1B) {
        form = &scissorXyE1;
    } else if (generation == Generation::E1 && opcode == 0x1C) {
        form = &scissorSizeE1;
    }
    return form;
}

} // namespace

std::string registerName(Generation generation, std::uint32_t address) {
    if (const RegisterInfo* info = registerAt(generation, address)) {
        return withOffset(info->name, address % 4);
    }
    return coprocessorRegisterName(generation, address);
}

std::string memoryName(Generation generation, std::uint32_t address) {
    const MemoryLayout layout = memoryLayout(generation);
    const NamedSpan spans[] = {
        {layout.general, "RAM_G"},
        {layout.rom, "ROM"},
        {layout.displayList, "RAM_DL"},
        {layout.palette, "RAM_PAL"},
        {layout.registers, "RAM_REG"},
        {layout.ring, "RAM_CMD"},
        {{layout.faultText, layout.faultText ? faultTextBytes : 0}, "RAM_ERR_REPORT"},
        {layout.coprocessor, "RAM_COPRO"},
    };
    for (const NamedSpan& known : spans) {
        if (known.span.contains(address)) {
            return withOffset(known.name, address - known.span.base);
        }
    }
    return hexadecimal(address, 6);
}

std::string hostCommandName(std::uint8_t command) {
    switch (command) {
    case 0x00:
        return "ACTIVE";
    case 0x41:
        return "STANDBY";
    case 0x42:
        return "SLEEP";
    case 0x43:
    case 0x50:
        return "PWRDOWN";
    case 0x44:
        return "CLKEXT";
    case 0x48:
        return "CLKINT";
    case 0x49:
        return "PD_ROMS";
    case 0x61:
        return "CLKSEL";
    case 0x62:
        return "CLKSEL2";
    case 0x68:
        return "RST_PULSE";
    case 0x70:
        return "PINDRIVE";
    case 0x71:
        return "PIN_PD_STATE";
    default:
        return hexadecimal(command, 2);
    }
}

std::string displayListWordText(Generation generation, std::uint32_t word) {
    const WordForm* form = formOf(generation, word);
    return form ? text(*form, word) : hexadecimal(word, 8);
}

std::string displayListWordText(std::uint32_t word) {
    return displayListWordText(Generation::E3, word);
}

} // namespace controller
