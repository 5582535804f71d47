#pragma once

#include "commandtable.h"
#include "fixedmath.h"
#include "memorymap.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace controller {

// A command with all that came with it but its data.
struct Call {
    const CommandInfo* info = nullptr;
    std::vector<std::uint32_t> words;  // the fixed arguments
    std::vector<std::uint32_t> places; // where in the ring these stand
    std::string text;
    std::vector<std::uint32_t> formatWords; // what goes into the text

    const char* name() const { return info->name; }
    std::uint32_t operator[](std::size_t index) const { return words[index]; }
    std::int32_t asSigned(std::size_t index) const { return signExtend(words[index], 32); }
    // Halves of an argument.
    int low(std::size_t index) const { return lowHalf(words[index]); }
    int high(std::size_t index) const { return highHalf(words[index]); }
    unsigned lowUnsigned(std::size_t index) const { return words[index] & 0xFFFFU; }
    unsigned highUnsigned(std::size_t index) const { return words[index] >> 16U; }

    // The options of a command with text: TOGGLE has them in the low half of its last word, the
    // others in the high half.
    unsigned textOptions() const {
        const std::size_t last = words.size() - 1;
        return info->command == Command::Toggle ? lowUnsigned(last) : highUnsigned(last);
    }
    // A result takes its placeholder's place in the ring.
    void putResult(MemoryMap& memory, std::size_t index, std::uint32_t value) const {
        memory.setRingWord(places[index], value);
    }
};

} // namespace controller
