#pragma once

#include "commandtable.h"

#include <cstdint>
#include <string>
#include <vector>

namespace controller {

// What the coprocessor takes from the ring as one: a command, without the data that may follow it,
// or a word for the display list.
struct RingCommand {
    const CommandInfo* info = nullptr; // null: a word for the list
    std::uint32_t offset = 0;          // of its first word in the ring, bytes
    std::uint32_t length = 0;          // bytes, around the ring's end if need be
    std::vector<std::uint32_t> words;  // the command's arguments; or that word
    std::string text;                  // of a command that has one
};

} // namespace controller
