#pragma once

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace controller {

// What can be wrong with a display list, besides words that the generation does not have.
enum class Flaw : std::uint8_t {
    ListWithoutEnd,
    TooManySteps,
    TooMuchWork,
    BadWordIndex,
    CallsTooDeep,
    ReturnWithoutCall,
    MacroInMacro,
    ContextsTooDeep,
    RestoreWithoutSave,
    UnknownPrimitive,
    VertexOutsideBegin,
    BadVertexFormat,
    BadBlendFactor,
    BadSwizzle,
    UnknownBitmapFormat,
    BitmapWithoutLayout,
    BitmapOutsideMemory,
    PaletteOutsideMemory,
    SourceInFlash,
};

// Collects the complaints about one frame: each kind once, so that a bad list shown for an hour
// does not drown everything else.
class Complaints {
public:
    void add(Flaw flaw, const std::string& text) { addOnce(opcodes + index(flaw), text); }
    void addUnknownWord(std::uint32_t word);
    const std::vector<std::string>& lines() const { return m_lines; }

private:
    static constexpr std::size_t opcodes = 256;
    static std::size_t index(Flaw flaw) { return static_cast<std::size_t>(flaw); }
    void addOnce(std::size_t kind, const std::string& text);

    std::vector<std::string> m_lines;
    std::bitset<opcodes + 64> m_seen;
};

// 0x and eight digits, as words are written in documentation.
std::string hexadecimal(std::uint32_t word);

} // namespace controller
